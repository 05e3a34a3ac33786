// Session methods not built yet: each opens its scope record and gives its neutral result.
#include "entry/VANTOManager.h"
#include "log/VANTOLog.h"

bool STDMETHODCALLTYPE VANTOManager::VANTOSession::IsConnected(bool /*force*/) {
    const LogEntry scope = vanto::OpenScope(L"VANTOManager::VANTOSession::IsConnected");
    return false;
}

HRESULT STDMETHODCALLTYPE
VANTOManager::VANTOSession::GetRootFolders(RootFolderSet* /*rootFolders*/) {
    const LogEntry scope = vanto::OpenScope(L"VANTOManager::VANTOSession::GetRootFolders");
    return S_OK;
}

HRESULT STDMETHODCALLTYPE
VANTOManager::VANTOSession::GetCurrentLoggedInUserInfo(LoggedInUserInfo* /*user*/) {
    const LogEntry scope =
        vanto::OpenScope(L"VANTOManager::VANTOSession::GetCurrentLoggedInUserInfo");
    return S_OK;
}

bool STDMETHODCALLTYPE VANTOManager::VANTOSession::IsCorvaneRunning() {
    const LogEntry scope = vanto::OpenScope(L"VANTOManager::VANTOSession::IsCorvaneRunning");
    return false;
}

bool STDMETHODCALLTYPE VANTOManager::VANTOSession::IsCorvaneInstalled() {
    const LogEntry scope = vanto::OpenScope(L"VANTOManager::VANTOSession::IsCorvaneInstalled");
    return false;
}

bool STDMETHODCALLTYPE VANTOManager::VANTOSession::StartCorvaneAndWaitForReadyState(
    int /*timeoutMs*/, bool* /*timedOut*/, StopAtTimeoutCallback /*callback*/) {
    const LogEntry scope =
        vanto::OpenScope(L"VANTOManager::VANTOSession::StartCorvaneAndWaitForReadyState");
    return false;
}

void STDMETHODCALLTYPE VANTOManager::VANTOSession::DeRegisterFromCorvane() {
    const LogEntry scope = vanto::OpenScope(L"VANTOManager::VANTOSession::DeRegisterFromCorvane");
}

bool STDMETHODCALLTYPE VANTOManager::VANTOSession::IsCorvaneInOffLineMode() {
    const LogEntry scope = vanto::OpenScope(L"VANTOManager::VANTOSession::IsCorvaneInOffLineMode");
    return false;
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOSession::GetSessionInfo(SessionInfo* /*info*/) {
    const LogEntry scope = vanto::OpenScope(L"VANTOManager::VANTOSession::GetSessionInfo");
    return S_OK;
}
