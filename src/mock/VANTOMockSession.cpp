// The mock session: always connected, never offline. It writes no log records.
#include "entry/VANTOManager.h"
#include "log/Guard.h"
#include "mock/MockStore.h"
#include "os/Os.h"

bool STDMETHODCALLTYPE VANTOManager::VANTOMockSession::IsConnected(bool /*force*/) {
    return true;
}

// The store's root folder, created when it is not there yet (one level, as CreateDirectoryW does).
HRESULT STDMETHODCALLTYPE
VANTOManager::VANTOMockSession::GetRootFolders(RootFolderSet* rootFolders) {
    return vanto::mock::AnswerFromStore([&](const vanto::mock::MockStore& store) {
        if (!platform::os::DirectoryExists(store.rootFolder.wstr())) {
            platform::os::MakeDirectory(store.rootFolder.wstr());
        }
        if (rootFolders != nullptr) {
            rootFolders->insert(store.rootFolder);
        }
        return S_OK;
    });
}

HRESULT STDMETHODCALLTYPE
VANTOManager::VANTOMockSession::GetCurrentLoggedInUserInfo(LoggedInUserInfo* user) {
    return vanto::Guard(E_OUTOFMEMORY, vanto::WithoutLine, [&] {
        const wchar_t* name = vanto::mock::LogonUser();
        if (user != nullptr) {
            user->loginName = GUserText(name);
            user->displayName = GUserText(name);
        }
        return S_OK;
    });
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
