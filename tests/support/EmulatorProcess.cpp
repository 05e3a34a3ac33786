#include "support/EmulatorProcess.h"

#include "os/Process.h"
#include "os/TextConversion.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <thread>

namespace testsupport {

namespace {

namespace fs = std::filesystem;

#ifdef VANTO_EMULATOR_PROGRAM
constexpr const char* ProgramPath = VANTO_EMULATOR_PROGRAM;
#else
constexpr const char* ProgramPath = "";
#endif

std::wstring ScratchFolder() {
    static int count = 0;
    const fs::path folder =
        fs::temp_directory_path() /
        ("vanto-emulator-" +
         std::to_string(std::chrono::steady_clock::now().time_since_epoch().count()) + "-" +
         std::to_string(++count));
    fs::create_directories(folder);
    return folder.wstring();
}

} // namespace

bool EmulatorProcess::Available() {
    return *ProgramPath != '\0';
}

std::wstring EmulatorProcess::Program() {
    return platform::os::Utf8ToWide(ProgramPath);
}

EmulatorProcess::EmulatorProcess(std::vector<std::wstring> extraArguments, std::wstring workspace)
    : data_(ScratchFolder()), workspace_(std::move(workspace)), extra_(std::move(extraArguments)) {
    if (workspace_.empty()) {
        workspace_ = platform::os::Utf8ToWide(VANTO_EXAMPLES_DIR "/workspace");
    }
    previousProgram_ = platform::os::EnvironmentValue(L"VANTO_CORVANE_EMULATOR");
    previousData_ = platform::os::EnvironmentValue(L"VANTO_CORVANE_DATA");
    platform::os::SetEnvironmentValue(L"VANTO_CORVANE_EMULATOR", Program());
    platform::os::SetEnvironmentValue(L"VANTO_CORVANE_DATA", data_);
    Start();
}

EmulatorProcess::~EmulatorProcess() {
    Stop();
    std::error_code ignored;
    fs::remove_all(fs::path(data_), ignored);
    platform::os::SetEnvironmentValue(L"VANTO_CORVANE_EMULATOR", previousProgram_);
    platform::os::SetEnvironmentValue(L"VANTO_CORVANE_DATA", previousData_);
}

std::string EmulatorProcess::WorkspaceFolder() const {
    return platform::os::WideToUtf8(workspace_);
}

void EmulatorProcess::Start() {
    const fs::path endpoint = fs::path(data_) / "endpoint.json";
    std::error_code ignored;
    fs::remove(endpoint, ignored);
    std::vector<std::wstring> arguments{L"serve", L"--data", data_, L"--workspace", workspace_};
    arguments.insert(arguments.end(), extra_.begin(), extra_.end());
    pid_ = platform::os::LaunchDetached(Program(), arguments);
    ASSERT_NE(0u, pid_);
    for (int waited = 0; !fs::exists(endpoint); waited += 20) {
        ASSERT_LT(waited, 20000) << "the emulator did not start";
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
}

void EmulatorProcess::Kill() {
    if (pid_ != 0) {
        EXPECT_TRUE(platform::os::KillProcess(pid_));
        pid_ = 0;
    }
}

void EmulatorProcess::Stop() {
    if (pid_ == 0) {
        return;
    }
    try {
        Control(R"({"Action":"stop"})");
    } catch (...) {
        // Gone already.
    }
    if (!platform::os::WaitForExit(pid_, 10000)) {
        platform::os::KillProcess(pid_);
    }
    pid_ = 0;
}

Corvane::Endpoint EmulatorProcess::Endpoint() const {
    const auto endpoint = Corvane::ReadEndpointFile(data_ + L"/endpoint.json");
    return endpoint ? *endpoint : Corvane::Endpoint{};
}

std::string EmulatorProcess::Control(const std::string& request) const {
    Corvane::ConnectorLink link(std::chrono::seconds(10));
    return link.Call(Endpoint(), "control", request);
}

} // namespace testsupport
