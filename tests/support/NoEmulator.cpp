// The component's default backend looks for a connector emulator through the environment, the
// user's settings and the folder of the module. In this test program it finds none unless a test
// starts one (EmulatorProcess), whatever the machine has set up for its user.
#include "os/Process.h"
#include "os/TextConversion.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

class NoEmulator : public ::testing::Environment {
public:
    void SetUp() override {
        const auto nowhere = std::filesystem::temp_directory_path() / "vanto-no-emulator-here";
        platform::os::SetEnvironmentValue(L"VANTO_CORVANE_EMULATOR", nowhere.wstring());
        platform::os::SetEnvironmentValue(L"VANTO_CORVANE_DATA", nowhere.wstring());
    }
};

[[maybe_unused]] ::testing::Environment* const noEmulator =
    ::testing::AddGlobalTestEnvironment(new NoEmulator);

} // namespace
