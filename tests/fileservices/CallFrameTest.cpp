// What every file-service method shares: the result it gives before any session exists, the
// exception line of its guard, and the messages of the return-code table.
#include "fileservices/FileServicesFixture.h"
#include "fileservices/SlotTable.h"
#include "log/VANTOLog.h"

#include <map>
#include <set>
#include <string>
#include <vector>

namespace {

using testsupport::ExceptionLine;
using testsupport::FileServicesTest;
using testsupport::Line;
using testsupport::Lines;
using testsupport::NotValidLine;
using namespace testsupport::slots;

using FrameTest = FileServicesTest;

// What each method that tests the session answers before there is one, where it is not S_OK.
// GetProperties, the two inert ones and LogErrors test none.
const std::map<std::string, std::string> NotConnected = {{"CheckIn", "E_FAIL"},
                                                         {"CheckOut", "E_FAIL"},
                                                         {"IsValidCorvaneFile(list)", "E_FAIL"},
                                                         {"IsValidCorvaneFile(path)", "false"},
                                                         {"GetStatusInformation", "E_FAIL"},
                                                         {"IsNewRevisionAvailable", "false"},
                                                         {"IsNewVersionAvailable", "false"},
                                                         {"IsFileSynchronized", "true"}};
const std::set<std::string> NoSessionTest = {"GetProperties", "DownloadLatestVersion",
                                             "AttachDocumentToRevision", "LogErrors"};

// Before any session a method sends nothing, gives its own result and leaves the caller's data
// as it was (GetStatusInformation stops at its own test, before the two slots it would ask).
void ExpectNotConnected(const std::string& result, const MethodRun& bare) {
    EXPECT_EQ(result, bare.result);
    EXPECT_TRUE(bare.calls.empty());
    EXPECT_EQ(std::vector<std::wstring>{NotValidLine}, bare.errors);
    const testsupport::SlotArguments& a = bare.args;
    EXPECT_EQ(5, a.checkIns[0].errorCode);
    EXPECT_FALSE(a.locks.begin()->second.isCheckedOut);
    EXPECT_TRUE(a.monitored.empty() && a.contexts.empty() && a.containers.empty() &&
                a.permissions.empty() && a.ids.empty() && a.names.empty() && a.relations.empty());
    EXPECT_EQ(7, a.status.isNewVersionAvailable);
    EXPECT_EQ(9, a.containerStatus);
    EXPECT_EQ(L"A", a.revision.wstr());
    EXPECT_TRUE(a.uids.begin()->second.IsEmpty());
}

// Every slot of the file-services interface, in order (the calls each makes with a session are
// FaultInjectionTest's clean runs). Before any session: it reaches the method of its name, which
// opens its scope record (all but IsFileSynchronized and LogErrors) and closes it before returning,
// and gives its not-connected result.
TEST(FileServicesSlots, EachSlotSendsTheCommandsOfItsMethodWithinItsScope) {
    for (const Method& method : FileServiceMethods()) {
        SCOPED_TRACE(method.name);
        Method unregistered = method;
        unregistered.prepare = [](Rig&) {};
        const auto bare = RunMethod(unregistered, [](Corvane::FakeConnector&) {});
        const std::string name = method.name.substr(0, method.name.find('('));
        std::vector<std::wstring> expected;
        if (name != "IsFileSynchronized" && name != "LogErrors") {
            expected.push_back(L"VANTOManager::VANTOFileServices::" + GUserText(name).wstr());
        }
        EXPECT_EQ(expected, bare.scopes);
        EXPECT_EQ(static_cast<std::ptrdiff_t>(expected.size()), bare.closed);
        if (NoSessionTest.count(name) == 0) {
            const auto notConnected = NotConnected.find(method.name);
            ExpectNotConnected(notConnected == NotConnected.end() ? "S_OK" : notConnected->second,
                               bare);
        } else if (name != "GetProperties") {
            // The inert two and LogErrors do nothing, with a session or without.
            EXPECT_EQ("S_OK", bare.result);
            EXPECT_TRUE(bare.calls.empty() && bare.errors.empty());
        }
    }
}

// Which line each kind of exception gives is FaultInjectionTest's walk; here the text itself:
// the prefix alone when the exception has none, and a "%s" in a text stays as it came.
TEST_F(FrameTest, AnExceptionsTextIsWrittenAsItCame) {
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
