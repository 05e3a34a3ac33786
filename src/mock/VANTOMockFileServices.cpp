// The mock file services. The few methods with behaviour answer from the mock store; every other
// slot opens its scope record and gives a fixed result without touching its arguments.
#include "entry/VANTOManager.h"
#include "log/Guard.h"
#include "log/VANTOLog.h"
#include "mock/MockStore.h"

namespace {
// HRESULT_FROM_WIN32(ERROR_NOT_FOUND): the store holds no files.
constexpr HRESULT ElementNotFound = static_cast<HRESULT>(0x80070490);

// Check-in and check-out work out each item's result from the store, on a copy: the host's items
// stay as they came in. Slots 3 to 7 write no log records.
template <class Items, class Answer>
HRESULT AnswerFromStoreFiles(const Items* items, Answer answer) {
    return vanto::mock::AnswerFromStore([&](const vanto::mock::MockStore& store) {
        const vanto::mock::MockFileMap known = store.files;
        if (known.empty()) {
            return ElementNotFound;
        }
        if (items != nullptr) {
            answer(known, *items);
        }
        return S_OK;
    });
}

} // namespace

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOMockFileServices::CheckIn(FileCheckInList* files) {
    return AnswerFromStoreFiles(
        files, [](const vanto::mock::MockFileMap& known, const FileCheckInList& items) {
            FileCheckInList results;
            results.reserve(items.size());
            for (const FileCheckInEntry& item : items) {
                results.push_back(vanto::mock::CheckInResult(known, item));
            }
        });
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOMockFileServices::CheckOut(FileLockStatusMap* files) {
    return AnswerFromStoreFiles(
        files, [](const vanto::mock::MockFileMap& known, const FileLockStatusMap& items) {
            FileLockStatusMap results;
            for (const auto& [name, item] : items) {
                results.emplace(name, vanto::mock::CheckOutResult(known, name, item));
            }
        });
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOMockFileServices::IsValidCorvaneFile(
    const PathList& paths, PathMonitoredMap* monitored) {
    return vanto::Guard(E_OUTOFMEMORY, vanto::WithoutLine, [&] {
        for (const GUserText& path : paths) {
            const bool valid = IsValidCorvaneFile(path);
            if (monitored != nullptr) {
                monitored->emplace(path, valid);
            }
        }
        return S_OK;
    });
}

// A file is valid when its name starts with the root folder, exactly as written there.
bool STDMETHODCALLTYPE
VANTOManager::VANTOMockFileServices::IsValidCorvaneFile(const GUserText& path) {
    const vanto::mock::MockStore* store = vanto::mock::Store();
    return store != nullptr && !store->rootFolder.IsEmpty() &&
           path.BeginsWith(store->rootFolder, 0);
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOMockFileServices::GetStatusInformation(
    const GUserText& path, FileStatusInformation* status) {
    return vanto::mock::AnswerFromStore([&](const vanto::mock::MockStore& store) {
        const auto found = store.files.find(path);
        if (found != store.files.end() && status != nullptr) {
            status->checkedOutBy = found->second.checkedOutBy;
            status->isCheckedOutByMe = status->checkedOutBy.EqualsNoCase(store.userName);
        }
        return S_OK;
    });
}

bool STDMETHODCALLTYPE
VANTOManager::VANTOMockFileServices::IsNewRevisionAvailable(const GUserText& /*path*/) {
    const LogEntry scope =
        vanto::OpenScope(L"VANTOManager::VANTOMockFileServices::IsNewRevisionAvailable");
    return false;
}

bool STDMETHODCALLTYPE
VANTOManager::VANTOMockFileServices::IsNewVersionAvailable(const GUserText& /*path*/) {
    const LogEntry scope =
        vanto::OpenScope(L"VANTOManager::VANTOMockFileServices::IsNewVersionAvailable");
    return false;
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOMockFileServices::GetCheckOutStatus(
    FileLockStatusMap* /*files*/, bool /*checkNewVersion*/) {
    const LogEntry scope =
        vanto::OpenScope(L"VANTOManager::VANTOMockFileServices::GetCheckOutStatus");
    return S_OK;
}

HRESULT STDMETHODCALLTYPE
VANTOManager::VANTOMockFileServices::DownloadLatestVersion(const GUserText& /*path*/) {
    const LogEntry scope =
        vanto::OpenScope(L"VANTOManager::VANTOMockFileServices::DownloadLatestVersion");
    return S_OK;
}

// Nothing to attach to: the items are dropped and their memory given back.
HRESULT STDMETHODCALLTYPE
VANTOManager::VANTOMockFileServices::AttachDocumentToRevision(RevisionAttachmentList attachments) {
    const LogEntry scope =
        vanto::OpenScope(L"VANTOManager::VANTOMockFileServices::AttachDocumentToRevision");
    RevisionAttachmentList().swap(attachments);
    return S_OK;
}

HRESULT STDMETHODCALLTYPE
VANTOManager::VANTOMockFileServices::GetDocumentConsistencyStamp(DocumentStampMap* /*stamps*/) {
    const LogEntry scope =
        vanto::OpenScope(L"VANTOManager::VANTOMockFileServices::GetDocumentConsistencyStamp");
    return S_OK;
}

bool STDMETHODCALLTYPE
VANTOManager::VANTOMockFileServices::IsFileSynchronized(const GUserText& /*path*/) {
    const LogEntry scope =
        vanto::OpenScope(L"VANTOManager::VANTOMockFileServices::IsFileSynchronized");
    return true;
}

HRESULT STDMETHODCALLTYPE
VANTOManager::VANTOMockFileServices::GetFilePath(FileUidPathMap* /*paths*/) {
    const LogEntry scope = vanto::OpenScope(L"VANTOManager::VANTOMockFileServices::GetFilePath");
    return S_OK;
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOMockFileServices::GetContextInformation(
    const PathList& /*paths*/, FileContextList* /*contexts*/) {
    const LogEntry scope =
        vanto::OpenScope(L"VANTOManager::VANTOMockFileServices::GetContextInformation");
    return S_OK;
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOMockFileServices::GetAvailableContainers(
    ContainerList* /*containers*/, std::int32_t* /*status*/) {
    const LogEntry scope =
        vanto::OpenScope(L"VANTOManager::VANTOMockFileServices::GetAvailableContainers");
    return S_OK;
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOMockFileServices::AddProjectToSync(
    const GUserText& /*projectUrn*/, std::int32_t* /*status*/) {
    const LogEntry scope =
        vanto::OpenScope(L"VANTOManager::VANTOMockFileServices::AddProjectToSync");
    return S_OK;
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOMockFileServices::GetFileAccessPermissions(
    const PathList& /*paths*/, AccessPermissionMap* /*permissions*/) {
    const LogEntry scope =
        vanto::OpenScope(L"VANTOManager::VANTOMockFileServices::GetFileAccessPermissions");
    return S_OK;
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOMockFileServices::GenerateItemIDAndRevision(
    const GUserText& /*directoryPath*/, const GUserText& /*fileExtension*/, std::int32_t& /*count*/,
    ItemIdRevisionList* /*ids*/) {
    const LogEntry scope =
        vanto::OpenScope(L"VANTOManager::VANTOMockFileServices::GenerateItemIDAndRevision");
    return S_OK;
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOMockFileServices::GenerateNextRevisionID(
    const GUserText& /*designIdentifier*/, GUserText* /*revisionId*/) {
    const LogEntry scope =
        vanto::OpenScope(L"VANTOManager::VANTOMockFileServices::GenerateNextRevisionID");
    return S_OK;
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOMockFileServices::GetProperties(
    const PathList& /*paths*/, const PropertyNameSet& /*filter*/,
    FilePropertyList* /*properties*/) {
    const LogEntry scope = vanto::OpenScope(L"VANTOManager::VANTOMockFileServices::GetProperties");
    return S_OK;
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOMockFileServices::SetDataObject(
    const GUserText& /*primaryKey*/, const GUserText& /*data*/) {
    const LogEntry scope = vanto::OpenScope(L"VANTOManager::VANTOMockFileServices::SetDataObject");
    return S_OK;
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOMockFileServices::GetDesignRevisions(
    const GUserText& /*designName*/, PathList* /*revisionNames*/) {
    const LogEntry scope =
        vanto::OpenScope(L"VANTOManager::VANTOMockFileServices::GetDesignRevisions");
    return S_OK;
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOMockFileServices::AddChildren(
    const GUserText& /*parentPath*/, const PathList& /*childPaths*/) {
    const LogEntry scope = vanto::OpenScope(L"VANTOManager::VANTOMockFileServices::AddChildren");
    return S_OK;
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOMockFileServices::RemoveChildren(
    const GUserText& /*parentPath*/, const PathList& /*childPaths*/) {
    const LogEntry scope = vanto::OpenScope(L"VANTOManager::VANTOMockFileServices::RemoveChildren");
    return S_OK;
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOMockFileServices::GetChildren(
    const GUserText& /*parentPath*/, RelationMap* /*children*/) {
    const LogEntry scope = vanto::OpenScope(L"VANTOManager::VANTOMockFileServices::GetChildren");
    return S_OK;
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOMockFileServices::GetCorvaneWUResults(
    const PathList& /*paths*/, RelationMap* /*whereUsed*/, bool /*drawingsOnly*/) {
    const LogEntry scope =
        vanto::OpenScope(L"VANTOManager::VANTOMockFileServices::GetCorvaneWUResults");
    return S_OK;
}

HRESULT STDMETHODCALLTYPE
VANTOManager::VANTOMockFileServices::LogErrors(std::uint32_t* /*returnCode*/) {
    const LogEntry scope = vanto::OpenScope(L"VANTOManager::VANTOMockFileServices::LogErrors");
    return S_OK;
}
