// Every file-service slot reaches the method of its name, which opens its scope record with that
// name (all but IsFileSynchronized and LogErrors) and closes it before returning, whatever state
// the session is in.
#include "support/ComTestSupport.h"

#include "host/HostLog.h"
#include "session/SessionState.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <iterator>
#include <utility>

namespace {

TEST(FileServicesScopeRecords, EachSlotOpensAndClosesTheRecordOfItsMethod) {
    vanto::ResetSessionStateForTesting();
    testsupport::ManagerHandle manager;
    IVANTOFileServices* files = manager.FileServices();
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
    // Slots 3 to 29 in order, with arguments that touch nothing outside the test.
    const std::pair<const wchar_t*, std::function<void()>> calls[] = {
        {L"CheckIn", [&] { files->CheckIn(&checkIns); }},
        {L"CheckOut", [&] { files->CheckOut(&locks); }},
        {L"IsValidCorvaneFile", [&] { files->IsValidCorvaneFile(PathList{}, &monitored); }},
        {L"IsValidCorvaneFile", [&] { files->IsValidCorvaneFile(path); }},
        {L"GetStatusInformation", [&] { files->GetStatusInformation(path, &status); }},
        {L"IsNewRevisionAvailable", [&] { files->IsNewRevisionAvailable(path); }},
        {L"IsNewVersionAvailable", [&] { files->IsNewVersionAvailable(path); }},
        {L"GetCheckOutStatus", [&] { files->GetCheckOutStatus(&locks, false); }},
        {L"DownloadLatestVersion", [&] { files->DownloadLatestVersion(path); }},
        {L"AttachDocumentToRevision", [&] { files->AttachDocumentToRevision({}); }},
        {L"GetDocumentConsistencyStamp", [&] { files->GetDocumentConsistencyStamp(&stamps); }},
        {nullptr, [&] { files->IsFileSynchronized(path); }},
        {L"GetFilePath", [&] { files->GetFilePath(&uids); }},
        {L"GetContextInformation", [&] { files->GetContextInformation({}, &contexts); }},
        {L"GetAvailableContainers",
         [&] { files->GetAvailableContainers(&containers, &containerStatus); }},
        {L"AddProjectToSync", [&] { files->AddProjectToSync(L"urn:none", &containerStatus); }},
        {L"GetFileAccessPermissions", [&] { files->GetFileAccessPermissions({}, &permissions); }},
        {L"GenerateItemIDAndRevision",
         [&] { files->GenerateItemIDAndRevision(GUserText(), GUserText(), count, &ids); }},
        {L"GenerateNextRevisionID", [&] { files->GenerateNextRevisionID(path, &revision); }},
        {L"GetProperties", [&] { files->GetProperties({}, {}, &properties); }},
        {L"SetDataObject", [&] { files->SetDataObject(L"key", L"data"); }},
        {L"GetDesignRevisions", [&] { files->GetDesignRevisions(L"part", &names); }},
        {L"AddChildren", [&] { files->AddChildren(path, {}); }},
        {L"RemoveChildren", [&] { files->RemoveChildren(path, {}); }},
        {L"GetChildren", [&] { files->GetChildren(path, &relations); }},
        {L"GetCorvaneWUResults", [&] { files->GetCorvaneWUResults({}, &relations, false); }},
        {nullptr, [&] { files->LogErrors(&code); }},
    };
    CapturingLogSink log;
    const auto records = [&log](LogRecord::Kind kind) {
        return std::count_if(log.records.begin(), log.records.end(),
                             [kind](const LogRecord& record) { return record.kind == kind; });
    };
    for (std::size_t slot = 0; slot < std::size(calls); ++slot) {
        SCOPED_TRACE(slot + 3);
        const auto& [method, call] = calls[slot];
        log.Clear();
        call();
        std::vector<std::wstring> expected;
        if (method != nullptr) {
            expected.push_back(std::wstring(L"VANTOManager::VANTOFileServices::") + method);
        }
        EXPECT_EQ(expected, log.ScopesOpened());
        EXPECT_EQ(static_cast<std::ptrdiff_t>(expected.size()),
                  records(LogRecord::Kind::ScopeClose));
    }
}

} // namespace
