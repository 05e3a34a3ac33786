#include "support/EmulatorProcess.h"

#include "os/Process.h"
#include "os/TextConversion.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <thread>
#include <vector>

namespace testsupport {

namespace {

namespace fs = std::filesystem;

std::wstring ScratchFolder() {
    static int count = 0;
    const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
    const fs::path folder = fs::temp_directory_path() / ("vanto-emulator-" + std::to_string(now) +
                                                         "-" + std::to_string(++count));
    fs::create_directories(folder);
    return folder.wstring();
}

// The Windows build's remove_all stops advancing at an entry that vanished after it was listed
// and loops for ever; this lists a folder first and then removes whatever is still there.
void RemoveTree(const fs::path& folder) {
    std::error_code ignored;
    std::vector<fs::path> entries;
    for (fs::directory_iterator entry(folder, ignored), end; !ignored && entry != end;
         entry.increment(ignored)) {
        entries.push_back(entry->path());
    }
    for (const fs::path& entry : entries) {
        if (fs::is_directory(fs::symlink_status(entry, ignored))) {
            RemoveTree(entry);
        } else {
            fs::remove(entry, ignored);
        }
    }
    fs::remove(folder, ignored);
}

// The emulator of this build, by the name this program knows it by (under Wine its DOS name).
std::wstring Program() {
    return platform::os::PathFromUnix(VANTO_EMULATOR_PROGRAM);
}

// The component's default backend looks for an emulator through the environment, the user's
// settings and the folder of the module. In this test program it finds none unless a test starts
// one, whatever the machine has set up for its user.
class NoEmulator : public ::testing::Environment {
public:
    void SetUp() override {
        const auto nowhere = fs::temp_directory_path() / "vanto-no-emulator-here";
        platform::os::SetEnvironmentValue(L"VANTO_CORVANE_EMULATOR", nowhere.wstring());
        platform::os::SetEnvironmentValue(L"VANTO_CORVANE_DATA", nowhere.wstring());
    }
};

[[maybe_unused]] ::testing::Environment* const noEmulator =
    ::testing::AddGlobalTestEnvironment(new NoEmulator);

} // namespace

EmulatorProcess::EmulatorProcess() : EmulatorProcess(Options()) {}

EmulatorProcess::EmulatorProcess(Options options)
    : options_(std::move(options)), scratch_(ScratchFolder()),
      data_((fs::path(scratch_) / "data").wstring()) {
    fs::create_directories(fs::path(data_));
    if (options_.workspace.empty() && options_.cloudOf != nullptr) {
        workspace_ = options_.cloudOf->workspace_; // the same files, seen from another desktop
    } else if (options_.workspace.empty()) {
        // A copy: the tests change documents, and the example stays as it is.
        const fs::path copy = fs::path(scratch_) / "workspace";
        fs::copy(platform::os::PathFromUnix(VANTO_EXAMPLES_DIR "/workspace"), copy,
                 fs::copy_options::recursive);
        workspace_ = copy.wstring();
    } else {
        workspace_ = options_.workspace;
    }
    previousProgram_ = platform::os::EnvironmentValue(L"VANTO_CORVANE_EMULATOR");
    previousData_ = platform::os::EnvironmentValue(L"VANTO_CORVANE_DATA");
    if (options_.current) {
        platform::os::SetEnvironmentValue(L"VANTO_CORVANE_EMULATOR", Program());
        platform::os::SetEnvironmentValue(L"VANTO_CORVANE_DATA", data_);
    }
    Start();
}

EmulatorProcess::~EmulatorProcess() {
    Stop();
    RemoveTree(fs::path(scratch_));
    platform::os::SetEnvironmentValue(L"VANTO_CORVANE_EMULATOR", previousProgram_);
    platform::os::SetEnvironmentValue(L"VANTO_CORVANE_DATA", previousData_);
}

std::string EmulatorProcess::WorkspaceFolder() const {
    return platform::os::WideToUtf8(workspace_);
}

std::wstring EmulatorProcess::Document(const std::string& relative) const {
    return (fs::path(workspace_) / fs::path(relative).make_preferred()).wstring();
}

void EmulatorProcess::Start() {
    const std::string before = Endpoint().secret; // a dead emulator's, replaced at the start
    std::vector<std::wstring> arguments{L"serve", L"--data", data_, L"--workspace", workspace_};
    if (!options_.user.empty()) {
        arguments.insert(arguments.end(), {L"--user", options_.user});
    }
    if (options_.cloudOf != nullptr) {
        arguments.insert(
            arguments.end(),
            {L"--cloud", (fs::path(options_.cloudOf->data_) / "corvane.db").wstring()});
    }
    const platform::os::LaunchedProgram launched =
        platform::os::LaunchDetached(Program(), arguments);
    ASSERT_TRUE(launched.started);
    pid_ = launched.pid;
    for (int waited = 0; Endpoint().secret == before; waited += 20) {
        ASSERT_LT(waited, 20000) << "the emulator did not start";
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
}

void EmulatorProcess::Kill() {
    ASSERT_NE(0u, pid_) << "no process to end";
    EXPECT_TRUE(platform::os::KillProcess(pid_));
    pid_ = 0;
}

void EmulatorProcess::Stop() {
    bool asked = true;
    try {
        Control(R"({"Action":"stop"})");
    } catch (...) {
        asked = false; // gone already
    }
    // It removes its endpoint file last, after closing its database.
    const fs::path endpoint = fs::path(data_) / "endpoint.json";
    for (int waited = 0; asked && fs::exists(endpoint) && waited < 10000; waited += 20) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    if (pid_ != 0 && !platform::os::WaitForExit(pid_, 10000)) {
        platform::os::KillProcess(pid_);
    }
    pid_ = 0;
}

Corvane::Endpoint EmulatorProcess::Endpoint() const {
    const auto endpoint = Corvane::ReadEndpointFile((fs::path(data_) / "endpoint.json").wstring());
    return endpoint ? *endpoint : Corvane::Endpoint{};
}

std::string EmulatorProcess::Control(const std::string& request) const {
    Corvane::ConnectorLink link(std::chrono::seconds(10));
    return link.Call(Endpoint(), "control", request);
}

std::string EmulatorProcess::StatusWithout(const std::string& piece) const {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    std::string status;
    do {
        status = Control(R"({"Action":"status"})");
    } while (status.find(piece) != std::string::npos &&
             std::chrono::steady_clock::now() < deadline);
    return status;
}

} // namespace testsupport
