// File-service methods not built yet: each opens its scope record (all but IsFileSynchronized and
// LogErrors) and gives its neutral result.
#include "entry/VANTOManager.h"
#include "log/VANTOLog.h"

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOFileServices::CheckIn(FileCheckInList* /*files*/) {
    const LogEntry scope = vanto::OpenScope(L"VANTOManager::VANTOFileServices::CheckIn");
    return S_OK;
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOFileServices::CheckOut(FileLockStatusMap* /*files*/) {
    const LogEntry scope = vanto::OpenScope(L"VANTOManager::VANTOFileServices::CheckOut");
    return S_OK;
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOFileServices::IsValidCorvaneFile(
    const PathList& /*paths*/, PathMonitoredMap* /*monitored*/) {
    const LogEntry scope = vanto::OpenScope(L"VANTOManager::VANTOFileServices::IsValidCorvaneFile");
    return S_OK;
}

bool STDMETHODCALLTYPE
VANTOManager::VANTOFileServices::IsValidCorvaneFile(const GUserText& /*path*/) {
    const LogEntry scope = vanto::OpenScope(L"VANTOManager::VANTOFileServices::IsValidCorvaneFile");
    return false;
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOFileServices::GetStatusInformation(
    const GUserText& /*path*/, FileStatusInformation* /*status*/) {
    const LogEntry scope =
        vanto::OpenScope(L"VANTOManager::VANTOFileServices::GetStatusInformation");
    return S_OK;
}

bool STDMETHODCALLTYPE
VANTOManager::VANTOFileServices::IsNewRevisionAvailable(const GUserText& /*path*/) {
    const LogEntry scope =
        vanto::OpenScope(L"VANTOManager::VANTOFileServices::IsNewRevisionAvailable");
    return false;
}

bool STDMETHODCALLTYPE
VANTOManager::VANTOFileServices::IsNewVersionAvailable(const GUserText& /*path*/) {
    const LogEntry scope =
        vanto::OpenScope(L"VANTOManager::VANTOFileServices::IsNewVersionAvailable");
    return false;
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOFileServices::GetCheckOutStatus(
    FileLockStatusMap* /*files*/, bool /*checkNewVersion*/) {
    const LogEntry scope = vanto::OpenScope(L"VANTOManager::VANTOFileServices::GetCheckOutStatus");
    return S_OK;
}

HRESULT STDMETHODCALLTYPE
VANTOManager::VANTOFileServices::DownloadLatestVersion(const GUserText& /*path*/) {
    const LogEntry scope =
        vanto::OpenScope(L"VANTOManager::VANTOFileServices::DownloadLatestVersion");
    return S_OK;
}

HRESULT STDMETHODCALLTYPE
VANTOManager::VANTOFileServices::AttachDocumentToRevision(RevisionAttachmentList /*attachments*/) {
    const LogEntry scope =
        vanto::OpenScope(L"VANTOManager::VANTOFileServices::AttachDocumentToRevision");
    return S_OK;
}

HRESULT STDMETHODCALLTYPE
VANTOManager::VANTOFileServices::GetDocumentConsistencyStamp(DocumentStampMap* /*stamps*/) {
    const LogEntry scope =
        vanto::OpenScope(L"VANTOManager::VANTOFileServices::GetDocumentConsistencyStamp");
    return S_OK;
}

bool STDMETHODCALLTYPE
VANTOManager::VANTOFileServices::IsFileSynchronized(const GUserText& /*path*/) {
    // Writes no scope record of its own.
    return true;
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOFileServices::GetFilePath(FileUidPathMap* /*paths*/) {
    const LogEntry scope = vanto::OpenScope(L"VANTOManager::VANTOFileServices::GetFilePath");
    return S_OK;
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOFileServices::GetContextInformation(
    const PathList& /*paths*/, FileContextList* /*contexts*/) {
    const LogEntry scope =
        vanto::OpenScope(L"VANTOManager::VANTOFileServices::GetContextInformation");
    return S_OK;
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOFileServices::GetAvailableContainers(
    ContainerList* /*containers*/, std::int32_t* /*status*/) {
    const LogEntry scope =
        vanto::OpenScope(L"VANTOManager::VANTOFileServices::GetAvailableContainers");
    return S_OK;
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOFileServices::AddProjectToSync(
    const GUserText& /*projectUrn*/, std::int32_t* /*status*/) {
    const LogEntry scope = vanto::OpenScope(L"VANTOManager::VANTOFileServices::AddProjectToSync");
    return S_OK;
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOFileServices::GetFileAccessPermissions(
    const PathList& /*paths*/, AccessPermissionMap* /*permissions*/) {
    const LogEntry scope =
        vanto::OpenScope(L"VANTOManager::VANTOFileServices::GetFileAccessPermissions");
    return S_OK;
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOFileServices::GenerateItemIDAndRevision(
    const GUserText& /*directoryPath*/, const GUserText& /*fileExtension*/, std::int32_t& /*count*/,
    ItemIdRevisionList* /*ids*/) {
    const LogEntry scope =
        vanto::OpenScope(L"VANTOManager::VANTOFileServices::GenerateItemIDAndRevision");
    return S_OK;
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOFileServices::GenerateNextRevisionID(
    const GUserText& /*designIdentifier*/, GUserText* /*revisionId*/) {
    const LogEntry scope =
        vanto::OpenScope(L"VANTOManager::VANTOFileServices::GenerateNextRevisionID");
    return S_OK;
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOFileServices::GetProperties(
    const PathList& /*paths*/, const PropertyNameSet& /*filter*/,
    FilePropertyList* /*properties*/) {
    const LogEntry scope = vanto::OpenScope(L"VANTOManager::VANTOFileServices::GetProperties");
    return S_OK;
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOFileServices::SetDataObject(
    const GUserText& /*primaryKey*/, const GUserText& /*data*/) {
    const LogEntry scope = vanto::OpenScope(L"VANTOManager::VANTOFileServices::SetDataObject");
    return S_OK;
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOFileServices::GetDesignRevisions(
    const GUserText& /*designName*/, PathList* /*revisionNames*/) {
    const LogEntry scope = vanto::OpenScope(L"VANTOManager::VANTOFileServices::GetDesignRevisions");
    return S_OK;
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOFileServices::AddChildren(
    const GUserText& /*parentPath*/, const PathList& /*childPaths*/) {
    const LogEntry scope = vanto::OpenScope(L"VANTOManager::VANTOFileServices::AddChildren");
    return S_OK;
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOFileServices::RemoveChildren(
    const GUserText& /*parentPath*/, const PathList& /*childPaths*/) {
    const LogEntry scope = vanto::OpenScope(L"VANTOManager::VANTOFileServices::RemoveChildren");
    return S_OK;
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOFileServices::GetChildren(
    const GUserText& /*parentPath*/, RelationMap* /*children*/) {
    const LogEntry scope = vanto::OpenScope(L"VANTOManager::VANTOFileServices::GetChildren");
    return S_OK;
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOFileServices::GetCorvaneWUResults(
    const PathList& /*paths*/, RelationMap* /*whereUsed*/, bool /*drawingsOnly*/) {
    const LogEntry scope =
        vanto::OpenScope(L"VANTOManager::VANTOFileServices::GetCorvaneWUResults");
    return S_OK;
}

HRESULT STDMETHODCALLTYPE
VANTOManager::VANTOFileServices::LogErrors(std::uint32_t* /*returnCode*/) {
    // Writes no scope record of its own: it reports inside its caller's.
    return S_OK;
}
