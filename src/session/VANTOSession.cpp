// The session interface: finds, launches and waits for the connector, registers the host process
// with it, and asks it about the session and its root folders. The session state it keeps is
// process-wide (session/SessionState.h) and outlives any one manager.
#include "connector/CorvaneClient.h"
#include "entry/VANTOManager.h"
#include "host/HostUtil.h"
#include "log/VANTOLog.h"
#include "os/Os.h"
#include "protocol/Envelope.h"
#include "protocol/registration/Registration.h"
#include "protocol/registration/SessionOutputs.h"
#include "session/ClientInformation.h"
#include "session/SessionState.h"

#include <cstdint>
#include <exception>
#include <stdexcept>
#include <string_view>
#include <vector>

namespace {

using vanto::SeverityError;
using vanto::SeverityInformation;

constexpr const wchar_t* RootFolderSetting = L"CorvaneRootFolderPath";
constexpr int CommonUserScope = 1;
constexpr std::uint32_t ReadyPollMilliseconds = 100;

using vanto::ExecuteExceptionPrefix;
using vanto::NotAValidSessionText;

void LogInfo(const VANTOManager& manager, const wchar_t* text) {
    LogMessage(&manager, SeverityInformation, GUserText(text));
}

void LogException(const VANTOManager& /*manager*/, const wchar_t* prefix, const std::exception& e) {
    vanto::LogExceptionText(prefix, e.what());
}

// An exception that is no std::exception must not reach the host either: it is logged like one,
// with a fixed text in place of its description.
void LogForeignException(const VANTOManager& /*manager*/, const wchar_t* prefix) {
    vanto::LogExceptionText(prefix, vanto::ForeignExceptionText);
}

GUserText Wide(const Core::TevString& text) {
    return GUserText(std::string_view(text));
}

// Sends one of the bare session commands with the current session id; returns the answer.
Core::TevString ExecuteSessionCommand(const VANTOManager& manager, const char* command) {
    Core::CommandIO::CommandInputBase input(command);
    input.SessionId = vanto::Session().sessionId;
    return manager.RequireProxy().Execute(input.ToJson());
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

// GETCONNECTIONSTATUS: true when the answer has no errors; error code 6 means offline.
bool CheckConnectionStatus(const VANTOManager& manager) {
    if (!vanto::IsValidSession(manager)) {
        LogMessage(&manager, SeverityError, GUserText(NotAValidSessionText));
        return false;
    }
    try {
        const Corvane::CommandIO::CommandOutputBase output(
            ExecuteSessionCommand(manager, "GETCONNECTIONSTATUS"));
        if (output.Errors.empty()) {
            return true;
        }
        for (const auto& error : output.Errors) {
            if (error && error->ErrorCode == 6) {
                vanto::Session().offline = true;
            }
        }
        return false;
    } catch (const std::exception& e) {
        LogException(manager, ExecuteExceptionPrefix, e);
        return false;
    } catch (...) {
        LogForeignException(manager, ExecuteExceptionPrefix);
        return false;
    }
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

    if (owner_.Proxy() != nullptr && Corvane::CorvaneApplication().IsReady() &&
        !(state.registered && !state.sessionId.empty())) {
        try {
            state.firstConnect = false;
            const Core::TevString request = RegisterInput(owner_);
            state.sessionId = GrantedSessionId(owner_.Proxy()->RegisterClient(request)).str();

            wchar_t stored[HostUserValueLength] = {};
            GetHostCommonUserValue(RootFolderSetting, stored, CommonUserScope);
            const GUserText storedFolder(stored);
            RootFolderSet folders;
            GetRootFolders(&folders);
            // Every differing folder is written in turn: with several, the set's last one stays.
            for (const GUserText& folder : folders) {
                if (folder != storedFolder) {
                    SetHostCommonUserValue(RootFolderSetting, folder.c_str(), CommonUserScope);
                }
            }

            LogMessage(&owner_, SeverityInformation, GUserText(L"Corvane Session Id is : %s "),
                       GUserText(state.sessionId));
            if (!state.sessionId.empty()) {
                state.registered = true;
                SessionInfo info;
                GetSessionInfo(&info);
                LogMessage(&owner_, SeverityInformation,
                           GUserText(L"Corvane Log File Path is : %s "), info.corvaneLogPath);
            }
        } catch (const Corvane::CorvaneCommunicationException& e) {
            LogMessage(&owner_, SeverityError, GUserText(L"Exception occurred in API : %s "),
                       Wide(e.GetExceptionMessage()));
            if (!state.sessionId.empty()) {
                state.registered = true;
            }
        } catch (const std::exception& e) {
            LogException(owner_, ExecuteExceptionPrefix, e);
            return false;
        } catch (...) {
            LogForeignException(owner_, ExecuteExceptionPrefix);
            return false;
        }
    }
    return CheckConnectionStatus(owner_);
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOSession::GetRootFolders(RootFolderSet* rootFolders) {
    const LogEntry scope = vanto::OpenScope(L"VANTOManager::VANTOSession::GetRootFolders");
    if (!vanto::IsValidSession(owner_)) {
        LogMessage(&owner_, SeverityError, GUserText(NotAValidSessionText));
        return S_OK;
    }
    try {
        const Corvane::CommandIO::DataManagement::CorvaneGetRootFoldersOutput output(
            ExecuteSessionCommand(owner_, "GETCORVANEROOTFOLDERS"));
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
    } catch (const std::exception& e) {
        LogException(owner_, ExecuteExceptionPrefix, e);
    } catch (...) {
        LogForeignException(owner_, ExecuteExceptionPrefix);
    }
    return S_OK;
}

HRESULT STDMETHODCALLTYPE
VANTOManager::VANTOSession::GetCurrentLoggedInUserInfo(LoggedInUserInfo* user) {
    const LogEntry scope =
        vanto::OpenScope(L"VANTOManager::VANTOSession::GetCurrentLoggedInUserInfo");
    try {
        if (vanto::IsValidSession(owner_) && !vanto::Session().sessionId.empty()) {
            // Asking for the user counts as proof of registration; the host relies on it.
            vanto::Session().registered = true;
            SessionInfo info;
            GetSessionInfo(&info);
            if (user != nullptr) {
                user->email = info.userEmail;
            }
        }
    } catch (const std::exception& e) {
        LogException(owner_, ExecuteExceptionPrefix, e);
    } catch (...) {
        LogForeignException(owner_, ExecuteExceptionPrefix);
    }
    return S_OK;
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
    vanto::SessionState& state = vanto::Session();
    if (timedOut != nullptr) {
        *timedOut = false;
    }
    // Stays on unless a later IsConnected finds work to do.
    state.offline = true;

    Corvane::CorvaneApplication application;
    if (!IsCorvaneRunning()) {
        LogInfo(owner_, L"Connector was not running, hence launching Connector from "
                        L"StartCorvaneAndWaitForReadyState!!");
        try {
            application.LaunchApplication(Core::TevString());
        } catch (const std::exception& e) {
            LogException(owner_, L"Corvane failed to start with exception: ", e);
            return false;
        } catch (...) {
            LogForeignException(owner_, L"Corvane failed to start with exception: ");
            return false;
        }
    }

    std::int64_t elapsed = 0;
    while (!application.IsReady()) {
        bool stopAtTimeout = true;
        if (callback != nullptr) {
            callback(&stopAtTimeout);
        }
        if (elapsed > timeoutMs && stopAtTimeout) {
            LogInfo(owner_, L"Connector was not running, Launching Connector from "
                            L"StartCorvaneAndWaitForReadyState has timed out.");
            if (timedOut != nullptr) {
                *timedOut = true;
            }
            return false;
        }
        elapsed += ReadyPollMilliseconds;
        platform::os::SleepMilliseconds(ReadyPollMilliseconds);
    }

    try {
        const Core::TevString request = RegisterInput(owner_);
        // A registration left over from an earlier start is ended before the new one.
        DeRegisterFromCorvane();
        const Core::TevString answer = owner_.RequireProxy().RegisterClient(request);
        state.registered = true;
        state.sessionId = GrantedSessionId(answer).str();
        LogMessage(&owner_, SeverityInformation,
                   GUserText(L"Corvane Auto Start Session Id is : %s "),
                   GUserText(state.sessionId));
        if (!state.sessionId.empty()) {
            state.registered = true;
            SessionInfo info;
            GetSessionInfo(&info);
            LogMessage(&owner_, SeverityInformation, GUserText(L"Corvane Log File Path is : %s "),
                       info.corvaneLogPath);
        }
    } catch (const std::exception& e) {
        LogException(owner_, ExecuteExceptionPrefix, e);
        return false;
    } catch (...) {
        LogForeignException(owner_, ExecuteExceptionPrefix);
        return false;
    }
    return CheckConnectionStatus(owner_);
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
    try {
        Core::Registration::DeRegisterClientInput input;
        input.SessionId = state.sessionId;
        owner_.RequireProxy().DeRegisterClient(input.ToJson());
        // The session id stays: commands keep carrying it after deregistration.
        state.registered = false;
        LogInfo(owner_, L"Deregistered from Corvane");
    } catch (const std::exception& e) {
        LogException(owner_, L"Failure to deregister from Corvane - exception from call : ", e);
    } catch (...) {
        LogForeignException(owner_, L"Failure to deregister from Corvane - exception from call : ");
    }
}

bool STDMETHODCALLTYPE VANTOManager::VANTOSession::IsCorvaneInOffLineMode() {
    const LogEntry scope = vanto::OpenScope(L"VANTOManager::VANTOSession::IsCorvaneInOffLineMode");
    return vanto::Session().offline;
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOSession::GetSessionInfo(SessionInfo* info) {
    const LogEntry scope = vanto::OpenScope(L"VANTOManager::VANTOSession::GetSessionInfo");
    if (!vanto::IsValidSession(owner_)) {
        LogMessage(&owner_, SeverityError, GUserText(NotAValidSessionText));
        return S_OK;
    }
    try {
        const Corvane::CommandIO::Generic::CorvaneGetSessionInfoOutput output(
            ExecuteSessionCommand(owner_, "GETSESSIONINFO"));
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
    } catch (const std::exception& e) {
        LogException(owner_, ExecuteExceptionPrefix, e);
    } catch (...) {
        LogForeignException(owner_, ExecuteExceptionPrefix);
    }
    return S_OK;
}
