// Every test in this binary keeps the host's per-user values in a scratch store of its own, so
// that no test reads or changes the values of the user who runs it.
#include "host/HostUtil.h"
#include "os/Os.h"

#include <gtest/gtest.h>

#include <string>

namespace {

class ScratchUserValues : public ::testing::Environment {
public:
    void SetUp() override {
        HostTesting::UseScratchUserValues(L"tests-" +
                                          std::to_wstring(platform::os::CurrentProcessId()));
        HostTesting::ClearUserValues();
    }
    void TearDown() override {
        HostTesting::ClearUserValues();
        HostTesting::UseScratchUserValues(std::wstring());
    }
};

[[maybe_unused]] ::testing::Environment* const scratchUserValues =
    ::testing::AddGlobalTestEnvironment(new ScratchUserValues);

} // namespace
