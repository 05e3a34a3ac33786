// The session interface driven as the host drives it: through a manager from the class factory,
// against the scriptable connector, with the log captured.
#include "connector/FakeConnector.h"
#include "host/HostLog.h"
#include "host/HostUtil.h"
#include "os/Os.h"
#include "session/SessionState.h"
#include "support/ComTestSupport.h"

#include <boost/json.hpp>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace {

using Corvane::FakeConnector;
using Line = std::pair<int, std::wstring>;

constexpr const wchar_t* NotValid = L"Corvane session is not a valid session.";
constexpr const wchar_t* ExecutePrefix =
    L"Corvane session is not a valid session - exception from Execute call : ";
constexpr const wchar_t* Deregistering = L"Deregistering from Corvane";
constexpr const wchar_t* NothingToDo = L"App was not registered with Corvane when "
                                       L"DeRegisterFromCorvane was called so nothing to do.";
constexpr const char* SessionInfoAnswer =
    R"({"Errors":[],"AuthenticatedUserName":"ann","CorvaneLogPath":"/logs/corvane.log",)"
    R"("CloudGatewayLogPath":"/logs/gateway.log","UserEmail":"ann@example.com","IsLoggedIn":true})";

// The method-scope tag of a session method.
std::wstring Tag(const wchar_t* method) {
    return std::wstring(L"VANTOManager::VANTOSession::") + method;
}

std::wstring Wide(const std::string& text) {
    return GUserText(std::string_view(text)).wstr();
}

boost::json::object Json(const std::string& text) {
    return boost::json::parse(text).as_object();
}

std::wstring StoredRootFolder() {
    wchar_t value[HostUserValueLength];
    return GetHostCommonUserValue(L"CorvaneRootFolderPath", value, 1) ? value : L"<none>";
}

class SessionService : public ::testing::Test {
protected:
    void SetUp() override {
        vanto::ResetSessionStateForTesting();
        HostTesting::ClearUserValues();
        HostTesting::SetProductPath(GUserText(L"/opt/arbo"));
        previousSleep_ =
            platform::os::SetSleepHook([this](std::uint32_t ms) { sleeps.push_back(ms); });
        connector.registerAnswer = R"({"SessionId":"s-1"})";
        connector.Answer("GETSESSIONINFO", SessionInfoAnswer);
    }
    void TearDown() override {
        platform::os::SetSleepHook(previousSleep_);
        HostTesting::UseDefaultProductPath();
        HostTesting::ClearUserValues();
        vanto::ResetSessionStateForTesting();
    }

    // Free-text messages as (severity, text), in order.
    std::vector<Line> Lines() const {
        std::vector<Line> lines;
        for (const LogRecord& record : log.records) {
            if (record.kind == LogRecord::Kind::Message) {
                lines.emplace_back(record.severity, record.message);
            }
        }
        return lines;
    }
    Line RegisterInputLine(std::size_t index = 0) const {
        return {2,
                L"Corvane register input : " + Wide(connector.registerRequests.at(index)) + L" "};
    }
    static std::vector<Line> SessionInfoLines() {
        return {{2, L"Authenticated User Name is : ann"},
                {2, L"Corvane Log Path is : /logs/corvane.log"},
                {2, L"Cloud Gateway Log Path is : /logs/gateway.log"},
                {2, L"Corvane Log File Path is : /logs/corvane.log "}};
    }
    void Register() {
        ASSERT_TRUE(session->IsConnected(false));
        log.Clear();
        connector.executeRequests.clear();
    }

    FakeConnector connector;
    CapturingLogSink log;
    std::vector<std::uint32_t> sleeps;
    testsupport::ManagerHandle manager;
    IVANTOSession* session = manager.Session();

private:
    platform::os::SleepHook previousSleep_;
};

TEST_F(SessionService, FirstConnectRegistersThenLaterCallsAnswerFromTheFlag) {
    connector.Answer("GETCORVANEROOTFOLDERS",
                     R"({"Errors":[],"RootFolders":["/home/ann/Corvane"]})");
    EXPECT_TRUE(session->IsConnected(false));

    ASSERT_EQ(1u, connector.registerRequests.size());
    const boost::json::object request = Json(connector.registerRequests[0]);
    EXPECT_EQ(platform::os::CurrentProcessId(), request.at("ProcessId").as_int64());
    EXPECT_FALSE(request.at("ProcessStartTime").as_string().empty());
    EXPECT_EQ("/opt/arbo", request.at("FilePath").as_string());
    EXPECT_EQ("Arbo Lite V2024", request.at("ClientInfo").at("FullName").as_string());
    EXPECT_EQ("ArboLite", request.at("ClientInfo").at("Product").as_string());

    EXPECT_EQ((std::vector<std::string>{"GETCORVANEROOTFOLDERS", "GETSESSIONINFO",
                                        "GETCONNECTIONSTATUS"}),
              connector.CommandsSent());
    for (const std::string& sent : connector.executeRequests) {
        EXPECT_EQ("s-1", Json(sent).at("SessionId").as_string());
    }
    std::vector<Line> expected = {{2, L"Corvane mode is ON."},
                                  RegisterInputLine(),
                                  {2, L"Corvane RootFolder is : /home/ann/Corvane "},
                                  {2, L"Corvane Session Id is : s-1 "}};
    for (const Line& line : SessionInfoLines()) {
        expected.push_back(line);
    }
    EXPECT_EQ(expected, Lines());
    EXPECT_EQ((std::vector<std::wstring>{Tag(L"IsConnected"), Tag(L"GetRootFolders"),
                                         Tag(L"GetSessionInfo")}),
              log.ScopesOpened());
    EXPECT_EQ(L"/home/ann/Corvane", StoredRootFolder());
    EXPECT_TRUE(vanto::Session().registered);
    EXPECT_FALSE(vanto::Session().firstConnect);

    // Not forced: the flag answers, nothing is asked and nothing but the scope is written.
    log.Clear();
    EXPECT_TRUE(session->IsConnected(false));
    EXPECT_EQ(3u, connector.executeRequests.size());
    EXPECT_TRUE(Lines().empty());
    EXPECT_EQ(std::vector<std::wstring>{Tag(L"IsConnected")}, log.ScopesOpened());

    // Forced: the whole path again, but a registered session is not registered twice.
    EXPECT_TRUE(session->IsConnected(true));
    EXPECT_EQ(1u, connector.registerRequests.size());
    EXPECT_EQ("GETCONNECTIONSTATUS", connector.CommandsSent().back());
    EXPECT_EQ((std::vector<Line>{{2, L"Corvane mode is ON."}}), Lines());
}

TEST_F(SessionService, ConnectWithoutRegistrationKeepsTryingOnlyUntilAnAttemptIsMade) {
    connector.readyAfterPolls = -1;
    EXPECT_FALSE(session->IsConnected(false));
    EXPECT_EQ((std::vector<Line>{{2, L"Corvane mode is ON."}, {0, NotValid}}), Lines());
    EXPECT_TRUE(vanto::Session().firstConnect);

    // An attempt that yields no session id still counts as the first connect.
    connector.readyAfterPolls = 0;
    connector.registerAnswer = "{}";
    EXPECT_FALSE(session->IsConnected(false));
    EXPECT_FALSE(vanto::Session().firstConnect);
    EXPECT_FALSE(vanto::Session().registered);
    EXPECT_TRUE(connector.executeRequests.empty());
    log.Clear();
    EXPECT_FALSE(session->IsConnected(false));
    EXPECT_TRUE(Lines().empty());
    EXPECT_EQ(1u, connector.registerRequests.size());
}

TEST_F(SessionService, NullProxySkipsRegistrationAndIsNeverValid) {
    connector.proxyAvailable = false;
    testsupport::ManagerHandle noProxy;
    IVANTOSession* bare = noProxy.Session();
    vanto::Session().sessionId = "s-old";

    EXPECT_FALSE(bare->IsCorvaneRunning());
    EXPECT_FALSE(bare->IsConnected(true));
    RootFolderSet folders;
    EXPECT_EQ(S_OK, bare->GetRootFolders(&folders));
    SessionInfo info;
    EXPECT_EQ(S_OK, bare->GetSessionInfo(&info));
    EXPECT_EQ((std::vector<Line>{
                  {2, L"Corvane mode is ON."}, {0, NotValid}, {0, NotValid}, {0, NotValid}}),
              Lines());
    EXPECT_TRUE(connector.registerRequests.empty());
    EXPECT_TRUE(connector.executeRequests.empty());
}

TEST_F(SessionService, LastDifferingRootFolderIsStored) {
    SetHostCommonUserValue(L"CorvaneRootFolderPath", L"/c", 1);
    connector.Answer("GETCORVANEROOTFOLDERS",
                     R"({"Errors":[],"RootFolders":["/c","/b","/a","/b"]})");
    EXPECT_TRUE(session->IsConnected(true));
    // "/c" equals the stored value and is skipped; "/a" and then "/b" are written.
    EXPECT_EQ(L"/b", StoredRootFolder());

    // A failing root-folder answer leaves the setting alone and logs nothing of its own.
    connector.Answer("GETCORVANEROOTFOLDERS", R"({"Errors":[{"ErrorCode":3,"Ids":[]}]})");
    RootFolderSet folders{GUserText(L"/kept")};
    log.Clear();
    EXPECT_EQ(E_FAIL, session->GetRootFolders(&folders));
    EXPECT_EQ(RootFolderSet{GUserText(L"/kept")}, folders);
    EXPECT_TRUE(Lines().empty());
}

TEST_F(SessionService, RootFoldersAreLoggedEachAndStoredOnce) {
    Register();
    connector.Answer("GETCORVANEROOTFOLDERS", R"({"Errors":[],"RootFolders":["/z","/y","/z"]})");
    RootFolderSet folders{GUserText(L"/kept")};
    EXPECT_EQ(S_OK, session->GetRootFolders(&folders));
    EXPECT_EQ((RootFolderSet{GUserText(L"/kept"), GUserText(L"/y"), GUserText(L"/z")}), folders);
    EXPECT_EQ((std::vector<Line>{{2, L"Corvane RootFolder is : /z "},
                                 {2, L"Corvane RootFolder is : /y "},
                                 {2, L"Corvane RootFolder is : /z "}}),
              Lines());

    // A failed call is logged and still answers S_OK.
    connector.Fail(FakeConnector::Operation::Execute, FakeConnector::Failure::Standard, "lost",
                   "GETCORVANEROOTFOLDERS", 1);
    log.Clear();
    EXPECT_EQ(S_OK, session->GetRootFolders(&folders));
    EXPECT_EQ((std::vector<Line>{{0, std::wstring(ExecutePrefix) + L"lost"}}), Lines());
}

TEST_F(SessionService, StatusErrorsGoOfflineOnlyForCodeSix) {
    connector.Answer("GETCONNECTIONSTATUS",
                     R"({"Errors":[{"ErrorCode":3,"Ids":[]},{"ErrorCode":6,"Ids":[]}]})");
    EXPECT_FALSE(session->IsConnected(true));
    EXPECT_TRUE(session->IsCorvaneInOffLineMode());

    // Other codes leave the flag as it was: cleared by IsConnected ...
    connector.Answer("GETCONNECTIONSTATUS",
                     R"({"Errors":[{"ErrorCode":3,"Ids":[]},{"ErrorCode":13,"Ids":[]}]})");
    EXPECT_FALSE(session->IsConnected(true));
    EXPECT_FALSE(session->IsCorvaneInOffLineMode());
    // ... or set by the start, which also keeps it after a clean status.
    bool timedOut = true;
    EXPECT_FALSE(session->StartCorvaneAndWaitForReadyState(1000, &timedOut, nullptr));
    EXPECT_FALSE(timedOut);
    EXPECT_TRUE(session->IsCorvaneInOffLineMode());
    connector.Answer("GETCONNECTIONSTATUS", R"({"Errors":[]})");
    EXPECT_TRUE(session->StartCorvaneAndWaitForReadyState(1000, &timedOut, nullptr));

    // The flag and the installation are answered without a line of their own.
    log.Clear();
    connector.installed = false;
    EXPECT_TRUE(session->IsCorvaneInOffLineMode());
    EXPECT_FALSE(session->IsCorvaneInstalled());
    EXPECT_TRUE(Lines().empty());
    EXPECT_EQ(
        (std::vector<std::wstring>{Tag(L"IsCorvaneInOffLineMode"), Tag(L"IsCorvaneInstalled")}),
        log.ScopesOpened());
}

TEST_F(SessionService, ExceptionsAreHandledByKind) {
    // A communication failure while registering is logged and the method goes on; an id kept
    // from before counts as registered.
    vanto::Session().sessionId = "s-old";
    connector.Fail(FakeConnector::Operation::RegisterClient, FakeConnector::Failure::Communication,
                   "pipe closed", "", 1);
    EXPECT_TRUE(session->IsConnected(true));
    EXPECT_EQ((std::vector<Line>{{2, L"Corvane mode is ON."},
                                 RegisterInputLine(),
                                 {0, L"Exception occurred in API : pipe closed "}}),
              Lines());
    EXPECT_TRUE(vanto::Session().registered);
    EXPECT_EQ(std::vector<std::string>{"GETCONNECTIONSTATUS"}, connector.CommandsSent());

    // Any standard exception in the status check; its text is appended, then formatted.
    log.Clear();
    connector.Fail(FakeConnector::Operation::Execute, FakeConnector::Failure::Standard,
                   "100%% lost", "GETCONNECTIONSTATUS", 1);
    EXPECT_FALSE(session->IsConnected(true));
    EXPECT_EQ((std::vector<Line>{{2, L"Corvane mode is ON."},
                                 {0, std::wstring(ExecutePrefix) + L"100% lost"}}),
              Lines());

    // Anything else passes through, and the scope record is still closed.
    log.Clear();
    connector.Fail(FakeConnector::Operation::Execute, FakeConnector::Failure::Foreign, "alien",
                   "GETCONNECTIONSTATUS", 1);
    EXPECT_THROW(session->IsConnected(true), FakeConnector::ForeignException);
    ASSERT_EQ(2u, log.records.size() - Lines().size());
    EXPECT_EQ(LogRecord::Kind::ScopeClose, log.records.back().kind);

    // Another standard exception while registering ends the method.
    log.Clear();
    vanto::Session() = vanto::SessionState();
    connector.Fail(FakeConnector::Operation::RegisterClient, FakeConnector::Failure::Standard,
                   "refused", "", 1);
    EXPECT_FALSE(session->IsConnected(false));
    EXPECT_EQ((Line{0, std::wstring(ExecutePrefix) + L"refused"}), Lines().back());
    EXPECT_EQ(3u, connector.executeRequests.size());

    // A communication failure before any id was granted registers nothing.
    log.Clear();
    vanto::Session() = vanto::SessionState();
    connector.Fail(FakeConnector::Operation::RegisterClient, FakeConnector::Failure::Communication,
                   "pipe closed", "", 1);
    EXPECT_FALSE(session->IsConnected(false));
    EXPECT_FALSE(vanto::Session().registered);
    EXPECT_EQ((Line{0, NotValid}), Lines().back());
}

TEST_F(SessionService, StartLaunchesDeregistersThenRegisters) {
    connector.running = false;
    vanto::Session().registered = true;
    vanto::Session().sessionId = "s-0";
    bool timedOut = true;
    EXPECT_TRUE(session->StartCorvaneAndWaitForReadyState(5000, &timedOut, nullptr));
    EXPECT_FALSE(timedOut);
    EXPECT_EQ(std::vector<std::string>{""}, connector.launchArguments);
    EXPECT_TRUE(sleeps.empty());

    ASSERT_EQ(1u, connector.deregisterRequests.size());
    EXPECT_EQ("s-0", Json(connector.deregisterRequests[0]).at("SessionId").as_string());
    std::vector<Line> expected = {{2, L"Connector was not running, hence launching Connector from "
                                      L"StartCorvaneAndWaitForReadyState!!"},
                                  RegisterInputLine(),
                                  {2, Deregistering},
                                  {2, L"Deregistered from Corvane"},
                                  {2, L"Corvane Auto Start Session Id is : s-1 "}};
    for (const Line& line : SessionInfoLines()) {
        expected.push_back(line);
    }
    EXPECT_EQ(expected, Lines());
    EXPECT_EQ((std::vector<std::wstring>{Tag(L"StartCorvaneAndWaitForReadyState"),
                                         Tag(L"IsCorvaneRunning"), Tag(L"DeRegisterFromCorvane"),
                                         Tag(L"GetSessionInfo")}),
              log.ScopesOpened());
    EXPECT_EQ((std::vector<std::string>{"GETSESSIONINFO", "GETCONNECTIONSTATUS"}),
              connector.CommandsSent());
    EXPECT_EQ(L"<none>", StoredRootFolder());
    EXPECT_EQ("s-1", vanto::Session().sessionId);
    EXPECT_TRUE(vanto::Session().registered);

    // Already running: no launch, and the running check says so.
    log.Clear();
    EXPECT_TRUE(session->StartCorvaneAndWaitForReadyState(5000, &timedOut, nullptr));
    EXPECT_EQ(1, connector.launches);
    EXPECT_EQ((Line{2, L"Connector is ON and running!!"}), Lines().front());

    // A launch that throws ends the start before any wait.
    connector.running = false;
    connector.Fail(FakeConnector::Operation::LaunchApplication, FakeConnector::Failure::Standard,
                   "no binary");
    const int polls = connector.readyPolls;
    EXPECT_FALSE(session->StartCorvaneAndWaitForReadyState(5000, &timedOut, nullptr));
    EXPECT_FALSE(timedOut);
    EXPECT_EQ((Line{0, L"Corvane failed to start with exception: no binary"}), Lines().back());
    EXPECT_EQ(polls, connector.readyPolls);
    EXPECT_EQ(2u, connector.registerRequests.size());
}

TEST_F(SessionService, StartCountsTheRegisterCallAndStopsWhenItFails) {
    // The register call returning is enough to count as registered, with or without an id.
    connector.registerAnswer = "{}";
    bool timedOut = true;
    EXPECT_FALSE(session->StartCorvaneAndWaitForReadyState(5000, &timedOut, nullptr));
    EXPECT_TRUE(vanto::Session().registered);
    const std::vector<Line> lines = Lines();
    EXPECT_EQ((std::vector<Line>{{2, L"Corvane Auto Start Session Id is :  "}, {0, NotValid}}),
              std::vector<Line>(lines.end() - 2, lines.end()));
    EXPECT_TRUE(connector.executeRequests.empty());

    // Any failure of the registration step, a communication failure too, ends the start with the
    // Execute prefix and no status check; the deregistration before it has already happened.
    log.Clear();
    connector.Fail(FakeConnector::Operation::RegisterClient, FakeConnector::Failure::Communication,
                   "pipe closed", "", 1);
    EXPECT_FALSE(session->StartCorvaneAndWaitForReadyState(5000, &timedOut, nullptr));
    EXPECT_FALSE(vanto::Session().registered);
    EXPECT_EQ(1u, connector.deregisterRequests.size());
    EXPECT_EQ((Line{0, std::wstring(ExecutePrefix) + L"pipe closed"}), Lines().back());
    EXPECT_TRUE(connector.executeRequests.empty());
}

TEST_F(SessionService, WaitPollsEveryHundredMillisecondsUntilPastTheTimeout) {
    connector.readyAfterPolls = -1;
    const Line timedOutLine = {2, L"Connector was not running, Launching Connector from "
                                  L"StartCorvaneAndWaitForReadyState has timed out."};
    bool timedOut = false;
    EXPECT_FALSE(session->StartCorvaneAndWaitForReadyState(0, &timedOut, nullptr));
    EXPECT_TRUE(timedOut);
    EXPECT_EQ(std::vector<std::uint32_t>{100}, sleeps);
    EXPECT_EQ(timedOutLine, Lines().back());
    EXPECT_TRUE(connector.registerRequests.empty());

    // Strictly greater: at 200 ms of 200 it waits once more.
    sleeps.clear();
    EXPECT_FALSE(session->StartCorvaneAndWaitForReadyState(200, &timedOut, nullptr));
    EXPECT_EQ(3u, sleeps.size());
}

int callbackCalls = 0;
int extendFor = 0;
void ExtendSomeTimes(bool* stopAtTimeout) {
    if (++callbackCalls <= extendFor) {
        *stopAtTimeout = false;
    }
}

TEST_F(SessionService, CallbackExtendsTheWait) {
    callbackCalls = 0;
    extendFor = 1000;
    connector.readyAfterPolls = 5;
    bool timedOut = true;
    EXPECT_TRUE(session->StartCorvaneAndWaitForReadyState(0, &timedOut, ExtendSomeTimes));
    EXPECT_FALSE(timedOut);
    EXPECT_EQ(5, callbackCalls);
    EXPECT_EQ(5u, sleeps.size());

    // Extending two polls past a zero time-out gives up on the third.
    callbackCalls = 0;
    extendFor = 2;
    sleeps.clear();
    connector.readyPolls = 0;
    connector.readyAfterPolls = -1;
    EXPECT_FALSE(session->StartCorvaneAndWaitForReadyState(0, &timedOut, ExtendSomeTimes));
    EXPECT_TRUE(timedOut);
    EXPECT_EQ(3, callbackCalls);
    EXPECT_EQ(2u, sleeps.size());

    // Ready at once: the callback is never asked.
    callbackCalls = 0;
    connector.readyAfterPolls = 0;
    connector.readyPolls = 0;
    EXPECT_TRUE(session->StartCorvaneAndWaitForReadyState(0, &timedOut, ExtendSomeTimes));
    EXPECT_EQ(0, callbackCalls);
}

TEST_F(SessionService, DeregisteringFailsThenSendsOnceThenHasNothingToDo) {
    Register();
    connector.Fail(FakeConnector::Operation::DeRegisterClient, FakeConnector::Failure::Standard,
                   "gone", "", 1);
    session->DeRegisterFromCorvane();
    EXPECT_TRUE(vanto::Session().registered);

    session->DeRegisterFromCorvane();
    ASSERT_EQ(2u, connector.deregisterRequests.size());
    const boost::json::object request = Json(connector.deregisterRequests[1]);
    EXPECT_EQ("s-1", request.at("SessionId").as_string());
    EXPECT_EQ(0, request.at("ProcessId").as_int64());
    EXPECT_EQ("", request.at("ProcessStartTime").as_string());
    // The id is kept: commands still carry it.
    EXPECT_FALSE(vanto::Session().registered);
    EXPECT_EQ("s-1", vanto::Session().sessionId);

    session->DeRegisterFromCorvane();
    EXPECT_EQ(2u, connector.deregisterRequests.size());
    EXPECT_EQ(
        (std::vector<Line>{{2, Deregistering},
                           {0, L"Failure to deregister from Corvane - exception from call : gone"},
                           {2, Deregistering},
                           {2, L"Deregistered from Corvane"},
                           {2, Deregistering},
                           {2, NothingToDo}}),
        Lines());
}

TEST_F(SessionService, DestroyingTheManagerDeregistersOnlyWhenRegistered) {
    testsupport::ManagerHandle unused;
    unused.Reset();
    EXPECT_TRUE(log.records.empty());
    EXPECT_TRUE(connector.deregisterRequests.empty());

    Register();
    manager.Reset();
    EXPECT_EQ(1u, connector.deregisterRequests.size());
    EXPECT_EQ(std::vector<std::wstring>{Tag(L"DeRegisterFromCorvane")}, log.ScopesOpened());
    EXPECT_FALSE(vanto::Session().registered);
}

TEST_F(SessionService, ReleaseSurvivesAForeignExceptionFromDeregistration) {
    Register();
    connector.Fail(FakeConnector::Operation::DeRegisterClient, FakeConnector::Failure::Foreign,
                   "not a std::exception");
    EXPECT_NO_THROW(manager.Reset());
    EXPECT_EQ(1u, connector.deregisterRequests.size());
    EXPECT_TRUE(vanto::Session().registered);
}

TEST_F(SessionService, SessionInfoAndUser) {
    SessionInfo info;
    info.userEmail = L"kept";
    EXPECT_EQ(S_OK, session->GetSessionInfo(&info));
    EXPECT_EQ(L"kept", info.userEmail.wstr());
    EXPECT_EQ((std::vector<Line>{{0, NotValid}}), Lines());

    LoggedInUserInfo user;
    user.loginName = L"host";
    user.email = L"kept";
    log.Clear();
    EXPECT_EQ(S_OK, session->GetCurrentLoggedInUserInfo(&user));
    EXPECT_TRUE(Lines().empty());
    EXPECT_EQ(L"kept", user.email.wstr());

    // A valid session that never registered: asking for the user marks it registered.
    vanto::Session().sessionId = "s-9";
    log.Clear();
    EXPECT_EQ(S_OK, session->GetCurrentLoggedInUserInfo(&user));
    EXPECT_TRUE(vanto::Session().registered);
    EXPECT_EQ(L"ann@example.com", user.email.wstr());
    EXPECT_EQ(L"host", user.loginName.wstr());
    EXPECT_EQ(
        (std::vector<std::wstring>{Tag(L"GetCurrentLoggedInUserInfo"), Tag(L"GetSessionInfo")}),
        log.ScopesOpened());

    connector.Answer("GETSESSIONINFO", R"({"Errors":[{"ErrorCode":1}],"UserEmail":"x@y"})");
    log.Clear();
    EXPECT_EQ(S_OK, session->GetSessionInfo(&info));
    EXPECT_EQ(L"kept", info.userEmail.wstr());
    EXPECT_EQ((std::vector<Line>{{0, L"Failed to get session information."}}), Lines());
    // The user's e-mail comes from a fresh record, so a failed answer empties it.
    EXPECT_EQ(S_OK, session->GetCurrentLoggedInUserInfo(&user));
    EXPECT_TRUE(user.email.IsEmpty());

    connector.Fail(FakeConnector::Operation::Execute, FakeConnector::Failure::Communication,
                   "timeout", "GETSESSIONINFO", 1);
    log.Clear();
    EXPECT_EQ(S_OK, session->GetSessionInfo(&info));
    EXPECT_EQ((std::vector<Line>{{0, std::wstring(ExecutePrefix) + L"timeout"}}), Lines());
}

} // namespace
