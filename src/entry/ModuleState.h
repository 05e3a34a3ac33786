// Module-wide counters that decide whether the module may be unloaded.
#pragma once

#include <cstdint>

namespace vanto {

// Raised and lowered by IClassFactory::LockServer.
extern std::int32_t moduleLockCount;
// Only ever lowered (by a manager's destruction); non-zero for good once a manager has gone.
extern std::int32_t liveObjectCount;

} // namespace vanto
