// The records the component reads from the connector, indexed: every command output, the
// session outputs and the registration answer, in the order of the sample exchanges.
#pragma once

#include "support/SampleRecords.h"

#include <type_traits>

namespace vanto::fuzz {

// Calls `visit(sample)` for each, in the same order every time.
template <class Visit> void ForEachReadableRecord(Visit&& visit) {
    testsupport::ForEachSample([&](auto sample) {
        if constexpr (!std::is_void_v<typename decltype(sample)::Output>) {
            visit(sample);
        }
    });
}

} // namespace vanto::fuzz
