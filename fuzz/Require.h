// What a harness checks beyond the sanitizers: a property that fails stops the run as a crash.
#pragma once

#include <cstdio>
#include <cstdlib>

namespace vanto::fuzz {

inline void Require(bool holds, const char* what) {
    if (!holds) {
        std::fprintf(stderr, "broken: %s\n", what);
        std::abort();
    }
}

} // namespace vanto::fuzz
