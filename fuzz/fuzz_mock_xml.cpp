// Any text as the mock's input file, read into a fresh store each time.
#include "Require.h"
#include "mock/MockStore.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view xml(reinterpret_cast<const char*>(data), size);
    vanto::mock::ResetMockStateForTesting();
    vanto::mock::MockStore store;
    vanto::mock::ReadInput(xml, store);
    // Too deep a file is refused before anything is taken from it.
    const bool empty = store.files.empty() && store.projects.empty() &&
                       store.rootFolder.IsEmpty() && store.userName.IsEmpty();
    vanto::fuzz::Require(empty || vanto::mock::DeepestNesting(xml) <= vanto::mock::MaxInputNesting,
                         "a file nested too deep is not read");
    return 0;
}
