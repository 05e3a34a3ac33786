// The message each of the connector's return codes is reported with (the codes themselves are in
// protocol/Numbers.h).
#pragma once

#include "protocol/Numbers.h"

#include <cstdint>

namespace vanto::fileservices {

// The message LogErrors writes for `code`, or null for a code that has none (15 among them).
const wchar_t* ReturnCodeMessage(std::uint32_t code) noexcept;

} // namespace vanto::fileservices
