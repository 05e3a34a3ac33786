// Every file-service slot reaches the method of its name, which opens its scope record with that
// name (all but IsFileSynchronized and LogErrors) and closes it before returning, whatever state
// the session is in.
#include "fileservices/FileServicesFixture.h"

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
    testsupport::SlotArguments a;
    const GUserText path(L"C:\\none\\part.par");
    // Slots 3 to 29 in order, with arguments that touch nothing outside the test.
    const std::pair<const wchar_t*, std::function<void()>> calls[] = {
        {L"CheckIn", [&] { files->CheckIn(&a.checkIns); }},
        {L"CheckOut", [&] { files->CheckOut(&a.locks); }},
        {L"IsValidCorvaneFile", [&] { files->IsValidCorvaneFile(PathList{}, &a.monitored); }},
        {L"IsValidCorvaneFile", [&] { files->IsValidCorvaneFile(path); }},
        {L"GetStatusInformation", [&] { files->GetStatusInformation(path, &a.status); }},
        {L"IsNewRevisionAvailable", [&] { files->IsNewRevisionAvailable(path); }},
        {L"IsNewVersionAvailable", [&] { files->IsNewVersionAvailable(path); }},
        {L"GetCheckOutStatus", [&] { files->GetCheckOutStatus(&a.locks, false); }},
        {L"DownloadLatestVersion", [&] { files->DownloadLatestVersion(path); }},
        {L"AttachDocumentToRevision", [&] { files->AttachDocumentToRevision({}); }},
        {L"GetDocumentConsistencyStamp", [&] { files->GetDocumentConsistencyStamp(&a.stamps); }},
        {nullptr, [&] { files->IsFileSynchronized(path); }},
        {L"GetFilePath", [&] { files->GetFilePath(&a.uids); }},
        {L"GetContextInformation", [&] { files->GetContextInformation({}, &a.contexts); }},
        {L"GetAvailableContainers",
         [&] { files->GetAvailableContainers(&a.containers, &a.containerStatus); }},
        {L"AddProjectToSync", [&] { files->AddProjectToSync(L"urn:none", &a.containerStatus); }},
        {L"GetFileAccessPermissions", [&] { files->GetFileAccessPermissions({}, &a.permissions); }},
        {L"GenerateItemIDAndRevision",
         [&] { files->GenerateItemIDAndRevision(GUserText(), GUserText(), a.count, &a.ids); }},
        {L"GenerateNextRevisionID", [&] { files->GenerateNextRevisionID(path, &a.revision); }},
        {L"GetProperties", [&] { files->GetProperties({}, {}, &a.properties); }},
        {L"SetDataObject", [&] { files->SetDataObject(L"key", L"data"); }},
        {L"GetDesignRevisions", [&] { files->GetDesignRevisions(L"part", &a.names); }},
        {L"AddChildren", [&] { files->AddChildren(path, {}); }},
        {L"RemoveChildren", [&] { files->RemoveChildren(path, {}); }},
        {L"GetChildren", [&] { files->GetChildren(path, &a.relations); }},
        {L"GetCorvaneWUResults", [&] { files->GetCorvaneWUResults({}, &a.relations, false); }},
        {nullptr, [&] { files->LogErrors(&a.code); }},
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
