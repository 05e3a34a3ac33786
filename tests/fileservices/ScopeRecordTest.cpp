// Every file-service slot reaches the method of its name, which opens its scope record with that
// name (all but IsFileSynchronized and LogErrors), whatever state the session is in.
#include "support/ComTestSupport.h"

#include "host/HostLog.h"
#include "session/SessionState.h"

#include <gtest/gtest.h>

namespace {

std::vector<std::wstring> Tags(const std::wstring& prefix,
                               std::initializer_list<const wchar_t*> names) {
    std::vector<std::wstring> tags;
    for (const wchar_t* name : names) {
        tags.push_back(prefix + name);
    }
    return tags;
}

// Calls slots 3 to 29 in order, with arguments that touch nothing outside the test.
void CallEverySlot(IVANTOFileServices* files) {
    FileCheckInList checkIns;
    FileLockStatusMap locks;
    PathMonitoredMap monitored;
    FileStatusInformation status;
    DocumentStampMap stamps;
    FileUidPathMap uids;
    FileContextList contexts;
    ContainerList containers;
    std::int32_t containerStatus = 0;
    AccessPermissionMap permissions;
    std::int32_t count = 1;
    ItemIdRevisionList ids;
    GUserText revision;
    FilePropertyList properties;
    PathList names;
    RelationMap relations;
    std::uint32_t code = 0;
    const GUserText path(L"C:\\none\\part.par");

    files->CheckIn(&checkIns);
    files->CheckOut(&locks);
    files->IsValidCorvaneFile(PathList{}, &monitored);
    files->IsValidCorvaneFile(path);
    files->GetStatusInformation(path, &status);
    files->IsNewRevisionAvailable(path);
    files->IsNewVersionAvailable(path);
    files->GetCheckOutStatus(&locks, false);
    files->DownloadLatestVersion(path);
    files->AttachDocumentToRevision(RevisionAttachmentList{});
    files->GetDocumentConsistencyStamp(&stamps);
    files->IsFileSynchronized(path);
    files->GetFilePath(&uids);
    files->GetContextInformation(PathList{}, &contexts);
    files->GetAvailableContainers(&containers, &containerStatus);
    files->AddProjectToSync(GUserText(L"urn:none"), &containerStatus);
    files->GetFileAccessPermissions(PathList{}, &permissions);
    files->GenerateItemIDAndRevision(GUserText(), GUserText(), count, &ids);
    files->GenerateNextRevisionID(path, &revision);
    files->GetProperties(PathList{}, PropertyNameSet{}, &properties);
    files->SetDataObject(GUserText(L"key"), GUserText(L"data"));
    files->GetDesignRevisions(GUserText(L"part"), &names);
    files->AddChildren(path, PathList{});
    files->RemoveChildren(path, PathList{});
    files->GetChildren(path, &relations);
    files->GetCorvaneWUResults(PathList{}, &relations, false);
    files->LogErrors(&code);
}

TEST(FileServicesScopeRecords, EachSlotOpensTheRecordOfItsMethod) {
    vanto::ResetSessionStateForTesting();
    testsupport::ManagerHandle manager;
    CapturingLogSink log;
    CallEverySlot(manager.FileServices());
    EXPECT_EQ(Tags(L"VANTOManager::VANTOFileServices::", {L"CheckIn",
                                                          L"CheckOut",
                                                          L"IsValidCorvaneFile",
                                                          L"IsValidCorvaneFile",
                                                          L"GetStatusInformation",
                                                          L"IsNewRevisionAvailable",
                                                          L"IsNewVersionAvailable",
                                                          L"GetCheckOutStatus",
                                                          L"DownloadLatestVersion",
                                                          L"AttachDocumentToRevision",
                                                          L"GetDocumentConsistencyStamp",
                                                          L"GetFilePath",
                                                          L"GetContextInformation",
                                                          L"GetAvailableContainers",
                                                          L"AddProjectToSync",
                                                          L"GetFileAccessPermissions",
                                                          L"GenerateItemIDAndRevision",
                                                          L"GenerateNextRevisionID",
                                                          L"GetProperties",
                                                          L"SetDataObject",
                                                          L"GetDesignRevisions",
                                                          L"AddChildren",
                                                          L"RemoveChildren",
                                                          L"GetChildren",
                                                          L"GetCorvaneWUResults"}),
              log.ScopesOpened());
    // Every record opened is closed again before the call returns.
    std::size_t open = 0;
    for (const LogRecord& record : log.records) {
        if (record.kind == LogRecord::Kind::ScopeOpen) {
            ++open;
        } else if (record.kind == LogRecord::Kind::ScopeClose) {
            ASSERT_GT(open, 0u);
            --open;
        }
    }
    EXPECT_EQ(0u, open);
}

} // namespace
