// What every file-service method shares: the result it gives before any session exists, the
// exception line of its guard, and the messages of the return-code table.
#include "fileservices/FileServicesFixture.h"
#include "log/VANTOLog.h"

#include <functional>

namespace {

using testsupport::ExceptionLine;
using testsupport::FileServicesTest;
using testsupport::Line;
using testsupport::Lines;
using testsupport::NotValidLine;

using FrameTest = FileServicesTest;

TEST_F(FrameTest, BeforeRegistrationEachMethodSendsNothingAndGivesItsOwnResult) {
    Unregister();
    FileCheckInList checkIns{{L"/w/a.par", 5, L"bob"}};
    FileLockStatusMap locks{{L"/w/a.par", {}}};
    PathMonitoredMap monitored;
    FileStatusInformation status;
    status.isNewVersionAvailable = 7;
    DocumentStampMap stamps{{L"/w/a.par", {}}};
    FileUidPathMap uids{{L"id-1", L""}};
    FileContextList contexts;
    ContainerList containers;
    std::int32_t code = 9;
    AccessPermissionMap permissions;
    std::int32_t count = 1;
    ItemIdRevisionList ids;
    GUserText revision(L"A");
    PathList names;
    RelationMap relations;
    const GUserText path(L"/w/a.par");
    const PathList paths{path};
    const struct {
        const char* method;
        std::function<long()> call;
        long notConnected;
    } methods[] = {
        {"CheckIn", [&] { return files->CheckIn(&checkIns); }, E_FAIL},
        {"CheckOut", [&] { return files->CheckOut(&locks); }, E_FAIL},
        {"IsValidCorvaneFile list", [&] { return files->IsValidCorvaneFile(paths, &monitored); },
         E_FAIL},
        {"IsValidCorvaneFile", [&] { return long{files->IsValidCorvaneFile(path)}; }, false},
        {"GetStatusInformation", [&] { return files->GetStatusInformation(path, &status); },
         E_FAIL},
        {"IsNewRevisionAvailable", [&] { return long{files->IsNewRevisionAvailable(path)}; },
         false},
        {"IsNewVersionAvailable", [&] { return long{files->IsNewVersionAvailable(path)}; }, false},
        {"GetCheckOutStatus", [&] { return files->GetCheckOutStatus(&locks, true); }, S_OK},
        {"GetDocumentConsistencyStamp", [&] { return files->GetDocumentConsistencyStamp(&stamps); },
         S_OK},
        {"IsFileSynchronized", [&] { return long{files->IsFileSynchronized(path)}; }, true},
        {"GetFilePath", [&] { return files->GetFilePath(&uids); }, S_OK},
        {"GetContextInformation", [&] { return files->GetContextInformation(paths, &contexts); },
         S_OK},
        {"GetAvailableContainers",
         [&] { return files->GetAvailableContainers(&containers, &code); }, S_OK},
        {"AddProjectToSync", [&] { return files->AddProjectToSync(L"urn:p", &code); }, S_OK},
        {"GetFileAccessPermissions",
         [&] { return files->GetFileAccessPermissions(paths, &permissions); }, S_OK},
        {"GenerateItemIDAndRevision",
         [&] { return files->GenerateItemIDAndRevision(L"/w", L"par", count, &ids); }, S_OK},
        {"GenerateNextRevisionID", [&] { return files->GenerateNextRevisionID(path, &revision); },
         S_OK},
        {"SetDataObject", [&] { return files->SetDataObject(L"k", L"d"); }, S_OK},
        {"GetDesignRevisions", [&] { return files->GetDesignRevisions(L"a", &names); }, S_OK},
        {"AddChildren", [&] { return files->AddChildren(path, paths); }, S_OK},
        {"RemoveChildren", [&] { return files->RemoveChildren(path, paths); }, S_OK},
        {"GetChildren", [&] { return files->GetChildren(path, &relations); }, S_OK},
        {"GetCorvaneWUResults",
         [&] { return files->GetCorvaneWUResults(paths, &relations, false); }, S_OK},
    };
    for (const auto& method : methods) {
        SCOPED_TRACE(method.method);
        EXPECT_EQ(method.notConnected, method.call());
        // GetStatusInformation stops at its own test, before the two slots it would ask.
        EXPECT_EQ((Lines{{0, NotValidLine}}), Take());
    }
    EXPECT_TRUE(connector.executeRequests.empty());
    // Nothing of the caller's was touched.
    EXPECT_EQ(5, checkIns[0].errorCode);
    EXPECT_FALSE(locks.begin()->second.isCheckedOut);
    EXPECT_TRUE(monitored.empty() && contexts.empty() && containers.empty() &&
                permissions.empty() && ids.empty() && names.empty() && relations.empty());
    EXPECT_EQ(7, status.isNewVersionAvailable);
    EXPECT_EQ(9, code);
    EXPECT_EQ(L"A", revision.wstr());
    EXPECT_TRUE(uids.begin()->second.IsEmpty());
}

TEST_F(FrameTest, EveryKindOfExceptionBecomesTheGuardsLineAndTheFailureResult) {
    for (const auto& [failure, line] : ExceptionKinds()) {
        connector.ClearFailures();
        connector.Fail(Op::Execute, failure, "connector gone");
        FileContextList contexts;
        EXPECT_EQ(E_FAIL, files->GetContextInformation({L"/w/a.par"}, &contexts));
        EXPECT_EQ(Lines{line}, Take());
        EXPECT_FALSE(files->IsValidCorvaneFile(GUserText(L"/w/a.par")));
        EXPECT_TRUE(files->IsFileSynchronized(L"/w/a.par"));
        EXPECT_EQ((Lines{line, line}), Take());
    }
    // The prefix alone when the exception has no text, and a "%s" in a text stays as it came.
    CapturingLogSink sink;
    vanto::LogExceptionText(vanto::ExecuteExceptionPrefix, nullptr);
    vanto::LogExceptionText(vanto::ExecuteExceptionPrefix, "100%s done");
    EXPECT_EQ(
        (std::vector<std::wstring>{ExceptionLine(L"").second, ExceptionLine(L"100%s done").second}),
        sink.Messages(0));
}

TEST_F(FrameTest, LogErrorsWritesTheMessageOfEachKnownCodeOnly) {
    for (std::uint32_t silent : {0u, 15u, 22u, 99u, 103u, 0xFFFFFFFFu}) {
        EXPECT_EQ(S_OK, files->LogErrors(&silent));
    }
    EXPECT_EQ(S_OK, files->LogErrors(nullptr));
    EXPECT_TRUE(log.records.empty()); // not even a scope record
    for (std::uint32_t code : {1u, 13u, 14u, 16u, 21u, 100u, 101u, 102u}) {
        EXPECT_EQ(S_OK, files->LogErrors(&code));
    }
    EXPECT_EQ((Lines{{0, L"Service is failed. - ReturnCodes_FAIL"},
                     {0, L"Object is locked - ReturnCodes_OBJECT_LOCKED"},
                     {0, L"Design revision is not found in cloud - "
                         L"ReturnCodes_DESIGN_REVISION_NOT_FOUND_IN_CLOUD"},
                     {0, L"Container has not been selected for synchronization by the user - "
                         L"ReturnCodes_CONTAINER_UNSYNCHRONIZED"},
                     {0, L"The reference already exists in the container - "
                         L"ReturnCodes_REFERENCE_EXISTS"},
                     {0, L"Status is not valid for the given file - ReturnCodes_STATUS_NOT_VALID"},
                     {0, L"Preceding Status constraint not satisfied - "
                         L"ReturnCodes_PRECEDING_STATUS_CONSTRAINT_NOT_SATISFIED"},
                     {0, L"Container is already synchronized - "
                         L"ReturnCodes_CONTAINER_ALREADY_SYNCHRONIZED"}}),
              Take());
}

} // namespace
