// The mock session: always connected, never offline. It writes no log records.
#include "entry/VANTOManager.h"

bool STDMETHODCALLTYPE VANTOManager::VANTOMockSession::IsConnected(bool /*force*/) {
    return true;
}

HRESULT STDMETHODCALLTYPE
VANTOManager::VANTOMockSession::GetRootFolders(RootFolderSet* /*rootFolders*/) {
    return S_OK;
}

HRESULT STDMETHODCALLTYPE
VANTOManager::VANTOMockSession::GetCurrentLoggedInUserInfo(LoggedInUserInfo* /*user*/) {
    return S_OK;
}

bool STDMETHODCALLTYPE VANTOManager::VANTOMockSession::IsCorvaneRunning() {
    return true;
}

bool STDMETHODCALLTYPE VANTOManager::VANTOMockSession::IsCorvaneInstalled() {
    return true;
}

bool STDMETHODCALLTYPE VANTOManager::VANTOMockSession::StartCorvaneAndWaitForReadyState(
    int /*timeoutMs*/, bool* timedOut, StopAtTimeoutCallback /*callback*/) {
    if (timedOut != nullptr) {
        *timedOut = false;
    }
    return true;
}

void STDMETHODCALLTYPE VANTOManager::VANTOMockSession::DeRegisterFromCorvane() {}

bool STDMETHODCALLTYPE VANTOManager::VANTOMockSession::IsCorvaneInOffLineMode() {
    return false;
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOMockSession::GetSessionInfo(SessionInfo* /*info*/) {
    return S_OK;
}
