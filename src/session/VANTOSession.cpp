// The session interface: finds, launches and waits for the connector, registers the host process
// with it, and asks it about the session and its root folders. The session state it keeps is
// process-wide (session/SessionState.h) and outlives any one manager.
#include "connector/CorvaneClient.h"
#include "entry/VANTOManager.h"
#include "host/HostUtil.h"
#include "log/Guard.h"
#include "log/VANTOLog.h"
#include "os/Os.h"
#include "protocol/Catalogue.h"
#include "protocol/Envelope.h"
#include "protocol/Numbers.h"
#include "protocol/registration/Registration.h"
#include "protocol/registration/SessionOutputs.h"
#include "session/ClientInformation.h"
#include "session/SessionState.h"

#include <cstdint>
#include <string_view>
#include <vector>

namespace {

using vanto::SeverityError;
using vanto::SeverityInformation;
using Service = VANTOManager::VANTOSession;

constexpr const wchar_t* RootFolderSetting = L"CorvaneRootFolderPath";
constexpr int CommonUserScope = 1;
constexpr std::uint32_t ReadyPollMilliseconds = 100;

using vanto::ExecuteExceptionPrefix;
using vanto::NotAValidSessionText;
constexpr const wchar_t* LaunchExceptionPrefix = L"Corvane failed to start with exception: ";
constexpr const wchar_t* DeregisterExceptionPrefix =
    L"Failure to deregister from Corvane - exception from call : ";

void LogInfo(const VANTOManager& manager, const wchar_t* text) {
    LogMessage(&manager, SeverityInformation, GUserText(text));
}

GUserText Wide(const Core::TevString& text) {
    return GUserText(std::string_view(text));
}

// The session test of the methods that ask the connector; writes the invalid-session line.
bool SessionIsValid(const VANTOManager& manager) {
    if (vanto::IsValidSession(manager)) {
        return true;
    }
    LogMessage(&manager, SeverityError, GUserText(NotAValidSessionText));
    return false;
}

// Sends one of the session commands (the bare envelope) with the current session id; gives the
// answer read into the command's output.
template <class Command>
typename Command::Output ExecuteSessionCommand(const VANTOManager& manager) {
    static_assert(vanto::protocol::IsCatalogued<Command>::value,
                  "a command the component sends is listed in protocol/Catalogue.h");
    Core::CommandIO::CommandInputBase input(Command::CommandName);
    input.SessionId = vanto::Session().sessionId;
    return typename Command::Output(manager.RequireProxy().Execute(input.ToJson()));
}

// The registration request for this process, logged as it goes out.
Core::TevString RegisterInput(const VANTOManager& manager) {
    const vanto::ClientInformation client = vanto::BuildClientInformation();
    auto info = Core::UniquePtr<Core::Registration::RegisterClientInfo>(
        new Core::Registration::RegisterClientInfo());
    info->FullName = client.fullName;
    info->Product = client.product;
    Core::Registration::RegisterClientInput input;
    input.ProcessId = static_cast<std::int32_t>(client.processId);
    input.ProcessStartTime = client.processStartTime;
    input.FilePath = client.productPath;
    input.ClientInfo = std::move(info);
    Core::TevString json = input.ToJson();
    LogMessage(&manager, SeverityInformation, GUserText(L"Corvane register input : %s "),
               Wide(json));
    return json;
}

Core::TevString GrantedSessionId(const Core::TevString& answer) {
    return Core::Registration::RegisterClientOutput(answer).SessionId;
}

// The connector's root folders into the host's setting. Every differing folder is written in
// turn: with several, the set's last one stays.
void StoreRootFolders(Service& self) {
    wchar_t stored[HostUserValueLength] = {};
    GetHostCommonUserValue(RootFolderSetting, stored, CommonUserScope);
    const GUserText storedFolder(stored);
    RootFolderSet folders;
    self.GetRootFolders(&folders);
    for (const GUserText& folder : folders) {
        if (folder != storedFolder) {
            SetHostCommonUserValue(RootFolderSetting, folder.c_str(), CommonUserScope);
        }
    }
}

// With a session id granted: registered, and the connector's log file named.
void AcceptSessionId(Service& self) {
    if (vanto::Session().sessionId.empty()) {
        return;
    }
    vanto::Session().registered = true;
    SessionInfo info;
    self.GetSessionInfo(&info);
    LogMessage(&self.Manager(), SeverityInformation, GUserText(L"Corvane Log File Path is : %s "),
               info.corvaneLogPath);
}

// IsConnected's registration. False after an exception; one from the connector's link is
// logged on its own and the method goes on, an id kept from before counting as registered.
bool RegisterOnConnect(Service& self) {
    vanto::SessionState& state = vanto::Session();
    const VANTOManager& manager = self.Manager();
    const auto communicationFailed = [&](const Corvane::CorvaneCommunicationException& e) {
        LogMessage(&manager, SeverityError, GUserText(L"Exception occurred in API : %s "),
                   Wide(e.GetExceptionMessage()));
        if (!state.sessionId.empty()) {
            state.registered = true;
        }
        return true;
    };
    return vanto::Guard(
        false, ExecuteExceptionPrefix,
        [&] {
            state.firstConnect = false;
            const Core::TevString request = RegisterInput(manager);
            state.sessionId = GrantedSessionId(manager.Proxy()->RegisterClient(request)).str();
            StoreRootFolders(self);
            LogMessage(&manager, SeverityInformation, GUserText(L"Corvane Session Id is : %s "),
                       GUserText(state.sessionId));
            AcceptSessionId(self);
            return true;
        },
        vanto::Expect<Corvane::CorvaneCommunicationException>(communicationFailed));
}

// The start's registration: a registration left over from an earlier start is ended first; the
// register call returning counts as registered, with or without an id. False after an exception.
bool RegisterOnStart(Service& self) {
    vanto::SessionState& state = vanto::Session();
    const VANTOManager& manager = self.Manager();
    return vanto::Guard(false, ExecuteExceptionPrefix, [&] {
        const Core::TevString request = RegisterInput(manager);
        self.DeRegisterFromCorvane();
        const Core::TevString answer = manager.RequireProxy().RegisterClient(request);
        state.registered = true;
        state.sessionId = GrantedSessionId(answer).str();
        LogMessage(&manager, SeverityInformation,
                   GUserText(L"Corvane Auto Start Session Id is : %s "),
                   GUserText(state.sessionId));
        AcceptSessionId(self);
        return true;
    });
}

// Polls every 100 ms until the connector is ready; false once past `timeoutMs` unless the
// callback asks to wait on.
bool WaitUntilReady(const VANTOManager& manager, Corvane::CorvaneApplication& application,
                    int timeoutMs, StopAtTimeoutCallback callback) {
    std::int64_t elapsed = 0;
    while (!application.IsReady()) {
        bool stopAtTimeout = true;
        if (callback != nullptr) {
            callback(&stopAtTimeout);
        }
        if (elapsed > timeoutMs && stopAtTimeout) {
            LogInfo(manager, L"Connector was not running, Launching Connector from "
                             L"StartCorvaneAndWaitForReadyState has timed out.");
            return false;
        }
        elapsed += ReadyPollMilliseconds;
        platform::os::SleepMilliseconds(ReadyPollMilliseconds);
    }
    return true;
}

// GETCONNECTIONSTATUS: true when the answer has no errors; an offline error sets the flag.
bool CheckConnectionStatus(const VANTOManager& manager) {
    if (!SessionIsValid(manager)) {
        return false;
    }
    return vanto::Guard(false, ExecuteExceptionPrefix, [&] {
        const auto output =
            ExecuteSessionCommand<vanto::protocol::GetConnectionStatusCommand>(manager);
        for (const auto& error : output.Errors) {
            if (error && error->ErrorCode == vanto::protocol::ReturnCode::Offline) {
                vanto::Session().offline = true;
            }
        }
        return output.Errors.empty();
    });
}

} // namespace

bool STDMETHODCALLTYPE VANTOManager::VANTOSession::IsConnected(bool force) {
    const LogEntry scope = vanto::OpenScope(L"VANTOManager::VANTOSession::IsConnected");
    vanto::SessionState& state = vanto::Session();
    if (!state.firstConnect && !force) {
        return state.registered;
    }
    state.offline = false;
    LogInfo(owner_, L"Corvane mode is ON.");
    const bool toRegister = owner_.Proxy() != nullptr && Corvane::CorvaneApplication().IsReady() &&
                            !(state.registered && !state.sessionId.empty());
    if (toRegister && !RegisterOnConnect(*this)) {
        return false;
    }
    return CheckConnectionStatus(owner_);
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOSession::GetRootFolders(RootFolderSet* rootFolders) {
    const LogEntry scope = vanto::OpenScope(L"VANTOManager::VANTOSession::GetRootFolders");
    if (!SessionIsValid(owner_)) {
        return S_OK;
    }
    return vanto::Guard(S_OK, ExecuteExceptionPrefix, [&]() -> HRESULT {
        const auto output = ExecuteSessionCommand<vanto::protocol::GetRootFoldersCommand>(owner_);
        if (!output.Errors.empty()) {
            return E_FAIL;
        }
        std::vector<GUserText> found;
        for (const Core::TevString& folder : output.RootFolders) {
            found.push_back(Wide(folder));
            LogMessage(&owner_, SeverityInformation, GUserText(L"Corvane RootFolder is : %s "),
                       found.back());
        }
        if (rootFolders != nullptr) {
            rootFolders->insert(found.begin(), found.end());
        }
        return S_OK;
    });
}

HRESULT STDMETHODCALLTYPE
VANTOManager::VANTOSession::GetCurrentLoggedInUserInfo(LoggedInUserInfo* user) {
    const LogEntry scope =
        vanto::OpenScope(L"VANTOManager::VANTOSession::GetCurrentLoggedInUserInfo");
    return vanto::Guard(S_OK, ExecuteExceptionPrefix, [&] {
        if (vanto::IsValidSession(owner_) && !vanto::Session().sessionId.empty()) {
            // Asking for the user counts as proof of registration; the host relies on it.
            vanto::Session().registered = true;
            SessionInfo info;
            GetSessionInfo(&info);
            if (user != nullptr) {
                user->email = info.userEmail;
            }
        }
        return S_OK;
    });
}

bool STDMETHODCALLTYPE VANTOManager::VANTOSession::IsCorvaneRunning() {
    const LogEntry scope = vanto::OpenScope(L"VANTOManager::VANTOSession::IsCorvaneRunning");
    if (owner_.Proxy() == nullptr) {
        return false;
    }
    const bool running = Corvane::CorvaneApplication().IsRunning();
    if (running) {
        LogInfo(owner_, L"Connector is ON and running!!");
    }
    return running;
}

bool STDMETHODCALLTYPE VANTOManager::VANTOSession::IsCorvaneInstalled() {
    const LogEntry scope = vanto::OpenScope(L"VANTOManager::VANTOSession::IsCorvaneInstalled");
    return Corvane::CorvaneApplication().IsInstalled();
}

bool STDMETHODCALLTYPE VANTOManager::VANTOSession::StartCorvaneAndWaitForReadyState(
    int timeoutMs, bool* timedOut, StopAtTimeoutCallback callback) {
    const LogEntry scope =
        vanto::OpenScope(L"VANTOManager::VANTOSession::StartCorvaneAndWaitForReadyState");
    if (timedOut != nullptr) {
        *timedOut = false;
    }
    // Stays on unless a later IsConnected finds work to do.
    vanto::Session().offline = true;

    Corvane::CorvaneApplication application;
    if (!IsCorvaneRunning()) {
        LogInfo(owner_, L"Connector was not running, hence launching Connector from "
                        L"StartCorvaneAndWaitForReadyState!!");
        const bool launched = vanto::Guard(false, LaunchExceptionPrefix, [&] {
            application.LaunchApplication(Core::TevString());
            return true;
        });
        if (!launched) {
            return false;
        }
    }
    if (!WaitUntilReady(owner_, application, timeoutMs, callback)) {
        if (timedOut != nullptr) {
            *timedOut = true;
        }
        return false;
    }
    return RegisterOnStart(*this) && CheckConnectionStatus(owner_);
}

void STDMETHODCALLTYPE VANTOManager::VANTOSession::DeRegisterFromCorvane() {
    const LogEntry scope = vanto::OpenScope(L"VANTOManager::VANTOSession::DeRegisterFromCorvane");
    vanto::SessionState& state = vanto::Session();
    LogInfo(owner_, L"Deregistering from Corvane");
    if (!state.registered) {
        LogInfo(owner_, L"App was not registered with Corvane when DeRegisterFromCorvane was "
                        L"called so nothing to do.");
        return;
    }
    vanto::Guard(DeregisterExceptionPrefix, [&] {
        Core::Registration::DeRegisterClientInput input;
        input.SessionId = state.sessionId;
        owner_.RequireProxy().DeRegisterClient(input.ToJson());
        // The session id stays: commands keep carrying it after deregistration.
        state.registered = false;
        LogInfo(owner_, L"Deregistered from Corvane");
    });
}

bool STDMETHODCALLTYPE VANTOManager::VANTOSession::IsCorvaneInOffLineMode() {
    const LogEntry scope = vanto::OpenScope(L"VANTOManager::VANTOSession::IsCorvaneInOffLineMode");
    return vanto::Session().offline;
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOSession::GetSessionInfo(SessionInfo* info) {
    const LogEntry scope = vanto::OpenScope(L"VANTOManager::VANTOSession::GetSessionInfo");
    if (!SessionIsValid(owner_)) {
        return S_OK;
    }
    return vanto::Guard(S_OK, ExecuteExceptionPrefix, [&] {
        const auto output = ExecuteSessionCommand<vanto::protocol::GetSessionInfoCommand>(owner_);
        if (!output.Errors.empty()) {
            LogMessage(&owner_, SeverityError, GUserText(L"Failed to get session information."));
            return S_OK;
        }
        SessionInfo received;
        received.authenticatedUserName = Wide(output.AuthenticatedUserName);
        received.corvaneLogPath = Wide(output.CorvaneLogPath);
        received.cloudGatewayLogPath = Wide(output.CloudGatewayLogPath);
        received.userEmail = Wide(output.UserEmail);
        if (info != nullptr) {
            *info = received;
        }
        LogMessage(&owner_, SeverityInformation, GUserText(L"Authenticated User Name is : %s"),
                   received.authenticatedUserName);
        LogMessage(&owner_, SeverityInformation, GUserText(L"Corvane Log Path is : %s"),
                   received.corvaneLogPath);
        LogMessage(&owner_, SeverityInformation, GUserText(L"Cloud Gateway Log Path is : %s"),
                   received.cloudGatewayLogPath);
        return S_OK;
    });
}
