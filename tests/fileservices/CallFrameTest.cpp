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
    // Inputs that would be sent, and outputs with values of their own that must stay.
    testsupport::SlotArguments a;
    a.checkIns = {{L"/w/a.par", 5, L"bob"}};
    a.locks = {{L"/w/a.par", {}}};
    a.status.isNewVersionAvailable = 7;
    a.stamps = {{L"/w/a.par", {}}};
    a.uids = {{L"id-1", L""}};
    a.containerStatus = 9;
    a.revision = L"A";
    const GUserText path(L"/w/a.par");
    const PathList paths{path};
    // Every method that tests the session; GetProperties and the two inert ones test none and are
    // covered with their groups.
    const struct {
        const char* method;
        std::function<long()> call;
        long notConnected;
    } methods[] = {
        {"CheckIn", [&] { return files->CheckIn(&a.checkIns); }, E_FAIL},
        {"CheckOut", [&] { return files->CheckOut(&a.locks); }, E_FAIL},
        {"IsValidCorvaneFile list", [&] { return files->IsValidCorvaneFile(paths, &a.monitored); },
         E_FAIL},
        {"IsValidCorvaneFile", [&] { return long{files->IsValidCorvaneFile(path)}; }, false},
        {"GetStatusInformation", [&] { return files->GetStatusInformation(path, &a.status); },
         E_FAIL},
        {"IsNewRevisionAvailable", [&] { return long{files->IsNewRevisionAvailable(path)}; },
         false},
        {"IsNewVersionAvailable", [&] { return long{files->IsNewVersionAvailable(path)}; }, false},
        {"GetCheckOutStatus", [&] { return files->GetCheckOutStatus(&a.locks, true); }, S_OK},
        {"GetDocumentConsistencyStamp",
         [&] { return files->GetDocumentConsistencyStamp(&a.stamps); }, S_OK},
        {"IsFileSynchronized", [&] { return long{files->IsFileSynchronized(path)}; }, true},
        {"GetFilePath", [&] { return files->GetFilePath(&a.uids); }, S_OK},
        {"GetContextInformation", [&] { return files->GetContextInformation(paths, &a.contexts); },
         S_OK},
        {"GetAvailableContainers",
         [&] { return files->GetAvailableContainers(&a.containers, &a.containerStatus); }, S_OK},
        {"AddProjectToSync", [&] { return files->AddProjectToSync(L"urn:p", &a.containerStatus); },
         S_OK},
        {"GetFileAccessPermissions",
         [&] { return files->GetFileAccessPermissions(paths, &a.permissions); }, S_OK},
        // Without a folder or file type: the session is tested before the arguments.
        {"GenerateItemIDAndRevision",
         [&] { return files->GenerateItemIDAndRevision(L"", L"", a.count, &a.ids); }, S_OK},
        {"GenerateNextRevisionID", [&] { return files->GenerateNextRevisionID(path, &a.revision); },
         S_OK},
        {"SetDataObject", [&] { return files->SetDataObject(L"k", L"d"); }, S_OK},
        {"GetDesignRevisions", [&] { return files->GetDesignRevisions(L"a", &a.names); }, S_OK},
        {"AddChildren", [&] { return files->AddChildren(path, paths); }, S_OK},
        {"RemoveChildren", [&] { return files->RemoveChildren(path, paths); }, S_OK},
        {"GetChildren", [&] { return files->GetChildren(path, &a.relations); }, S_OK},
        {"GetCorvaneWUResults",
         [&] { return files->GetCorvaneWUResults(paths, &a.relations, false); }, S_OK},
    };
    for (const auto& method : methods) {
        SCOPED_TRACE(method.method);
        EXPECT_EQ(method.notConnected, method.call());
        // GetStatusInformation stops at its own test, before the two slots it would ask.
        EXPECT_EQ((Lines{{0, NotValidLine}}), Take());
    }
    EXPECT_TRUE(connector.executeRequests.empty());
    // Nothing of the caller's was touched.
    EXPECT_EQ(5, a.checkIns[0].errorCode);
    EXPECT_FALSE(a.locks.begin()->second.isCheckedOut);
    EXPECT_TRUE(a.monitored.empty() && a.contexts.empty() && a.containers.empty() &&
                a.permissions.empty() && a.ids.empty() && a.names.empty() && a.relations.empty());
    EXPECT_EQ(7, a.status.isNewVersionAvailable);
    EXPECT_EQ(9, a.containerStatus);
    EXPECT_EQ(L"A", a.revision.wstr());
    EXPECT_TRUE(a.uids.begin()->second.IsEmpty());
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
