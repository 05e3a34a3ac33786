#include "connector/EmulatorConnector.h"

#include "connector/CorvaneClient.h"
#include "os/Process.h"
#include "os/TextConversion.h"
#include "os/UserValues.h"

#include <algorithm>
#include <cwchar>
#include <vector>

namespace Corvane {

namespace {

#ifdef _WIN32
constexpr const wchar_t* Separator = L"\\";
constexpr const wchar_t* ProgramName = L"corvane_emulator.exe";
#else
constexpr const wchar_t* Separator = L"/";
constexpr const wchar_t* ProgramName = L"corvane_emulator";
#endif

// The scope of the host's per-user values that the component uses.
constexpr int UserValueScope = 1;

std::chrono::milliseconds CallTimeout() {
    const std::wstring text = platform::os::EnvironmentValue(L"VANTO_CORVANE_TIMEOUT_MS");
    const long value = text.empty() ? 0 : std::wcstol(text.c_str(), nullptr, 10);
    return std::chrono::milliseconds(value > 0 ? value : EmulatorConnector::DefaultTimeoutMs);
}

} // namespace

EmulatorConnector::EmulatorConnector()
    : link_(CallTimeout()), queries_(std::chrono::milliseconds(
                                std::min<long long>(CallTimeout().count(), QueryTimeoutMs))) {}

std::wstring EmulatorConnector::ProgramPath() {
    std::wstring path = platform::os::EnvironmentValue(L"VANTO_CORVANE_EMULATOR");
    if (path.empty()) {
        platform::os::ReadUserValue(UserValueScope, L"CorvaneEmulatorPath", path);
    }
    if (path.empty()) {
        const std::wstring module = platform::os::ModuleDirectory();
        path = module.empty() ? std::wstring() : module + Separator + ProgramName;
    }
    return path;
}

std::wstring EmulatorConnector::DataFolder() {
    std::wstring folder = platform::os::EnvironmentValue(L"VANTO_CORVANE_DATA");
    if (folder.empty()) {
        const std::wstring data = platform::os::UserDataDirectory();
        if (!data.empty()) {
            folder = data + Separator + L"vanto" + Separator + L"corvane-emulator";
        }
    }
    return folder;
}

std::wstring EmulatorConnector::EndpointFile() {
    const std::wstring folder = DataFolder();
    return folder.empty() ? std::wstring() : folder + Separator + L"endpoint.json";
}

Endpoint EmulatorConnector::RequireEndpoint(const std::wstring& file) {
    const std::optional<Endpoint> endpoint = ReadEndpointFile(file);
    if (!endpoint) {
        throw CorvaneCommunicationException("Corvane connector: no endpoint (no readable file " +
                                            platform::os::WideToUtf8(file) + ")");
    }
    return *endpoint;
}

std::string EmulatorConnector::Call(const char* operation, const Core::TevString& body) {
    // The endpoint file is read again only when there is no live connection to the emulator it
    // named (a restarted emulator has a new port and secret, and its old connection is closed).
    const std::wstring file = EndpointFile();
    if (!endpoint_ || file != endpointFile_ || !link_.Alive()) {
        endpoint_.reset();
        endpointFile_ = file;
        endpoint_ = RequireEndpoint(file);
    }
    return link_.Call(*endpoint_, operation, body);
}

template <class Query> bool EmulatorConnector::Ask(Query query) {
    try {
        lastFailure_.clear();
        return query();
    } catch (const std::exception& e) {
        lastFailure_ = e.what();
        return false;
    }
}

Core::TevString EmulatorConnector::Execute(const Core::TevString& input) {
    return Call("execute", input);
}

Core::TevString EmulatorConnector::RegisterClient(const Core::TevString& input) {
    return Call("register", input);
}

void EmulatorConnector::DeRegisterClient(const Core::TevString& input) {
    Call("deregister", input);
}

bool EmulatorConnector::IsInstalled() {
    try {
        return platform::os::IsExecutableFile(ProgramPath());
    } catch (...) {
        return false;
    }
}

bool EmulatorConnector::IsRunning() {
    return Ask([this] {
        queries_.Open(RequireEndpoint(EndpointFile()));
        return true;
    });
}

bool EmulatorConnector::IsReady() {
    return Ask([this] {
        return queries_.Call(RequireEndpoint(EndpointFile()), "ready", "") == R"({"Ready":true})";
    });
}

void EmulatorConnector::LaunchApplication(const Core::TevString& arguments) {
    const std::wstring program = ProgramPath();
    if (!platform::os::IsExecutableFile(program)) {
        throw CorvaneCommunicationException("Corvane connector is not installed");
    }
    // A Linux emulator started from Wine knows its data folder by the Unix name.
    std::vector<std::wstring> words{L"serve", L"--data",
                                    platform::os::PathForProgram(program, DataFolder())};
    if (!arguments.empty()) {
        words.push_back(platform::os::Utf8ToWide(arguments.str()));
    }
    if (!platform::os::LaunchDetached(program, words).started) {
        throw CorvaneCommunicationException("Corvane connector could not be started: " +
                                            platform::os::WideToUtf8(program));
    }
}

} // namespace Corvane
