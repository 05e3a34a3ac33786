// Any text as the mock's input file, read into a fresh store each time.
#include "mock/MockStore.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view xml(reinterpret_cast<const char*>(data), size);
    vanto::mock::ResetMockStateForTesting();
    vanto::mock::MockStore store;
    vanto::mock::ReadInput(xml, store);
    // Too deep a file is refused before anything is taken from it.
    if (vanto::mock::DeepestNesting(xml) > vanto::mock::MaxInputNesting &&
        (!store.files.empty() || !store.projects.empty() || !store.rootFolder.IsEmpty() ||
         !store.userName.IsEmpty())) {
        std::fprintf(stderr, "broken: a file nested too deep was read\n");
        std::abort();
    }
    return 0;
}
