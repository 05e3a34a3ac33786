// Mock file-service methods not built yet: each opens its scope record and gives its neutral
// result.
#include "entry/VANTOManager.h"
#include "log/VANTOLog.h"

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOMockFileServices::CheckIn(FileCheckInList* /*files*/) {
    const LogEntry scope = vanto::OpenScope(L"VANTOManager::VANTOMockFileServices::CheckIn");
    return S_OK;
}

HRESULT STDMETHODCALLTYPE
VANTOManager::VANTOMockFileServices::CheckOut(FileLockStatusMap* /*files*/) {
    const LogEntry scope = vanto::OpenScope(L"VANTOManager::VANTOMockFileServices::CheckOut");
    return S_OK;
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOMockFileServices::IsValidCorvaneFile(
    const PathList& /*paths*/, PathMonitoredMap* /*monitored*/) {
    const LogEntry scope =
        vanto::OpenScope(L"VANTOManager::VANTOMockFileServices::IsValidCorvaneFile");
    return S_OK;
}

bool STDMETHODCALLTYPE
VANTOManager::VANTOMockFileServices::IsValidCorvaneFile(const GUserText& /*path*/) {
    const LogEntry scope =
        vanto::OpenScope(L"VANTOManager::VANTOMockFileServices::IsValidCorvaneFile");
    return false;
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOMockFileServices::GetStatusInformation(
    const GUserText& /*path*/, FileStatusInformation* /*status*/) {
    const LogEntry scope =
        vanto::OpenScope(L"VANTOManager::VANTOMockFileServices::GetStatusInformation");
    return S_OK;
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

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOMockFileServices::AttachDocumentToRevision(
    RevisionAttachmentList /*attachments*/) {
    const LogEntry scope =
        vanto::OpenScope(L"VANTOManager::VANTOMockFileServices::AttachDocumentToRevision");
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
