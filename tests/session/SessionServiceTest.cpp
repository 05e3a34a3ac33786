// The session interface driven as the host drives it: through a manager from the class factory,
// against the scriptable connector, with the log captured.
#include "connector/FakeConnector.h"
#include "host/HostLog.h"
#include "host/HostUtil.h"
#include "os/Os.h"
#include "session/ClientInformation.h"
#include "session/SessionState.h"
#include "support/ComTestSupport.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <regex>
#include <string>
#include <utility>
#include <vector>

namespace {

using Corvane::FakeConnector;
using Op = FakeConnector::Operation;
using Failure = FakeConnector::Failure;
using Line = std::pair<int, std::wstring>;
using Lines = std::vector<Line>;
using Texts = std::vector<std::string>;
using Tags = std::vector<std::wstring>;

constexpr const wchar_t* ModeOn = L"Corvane mode is ON.";
constexpr const wchar_t* NotValid = L"Corvane session is not a valid session.";
constexpr const wchar_t* Deregistering = L"Deregistering from Corvane";
constexpr const wchar_t* Deregistered = L"Deregistered from Corvane";

// The method-scope tags of session methods.
Tags Scopes(std::initializer_list<const wchar_t*> methods) {
    Tags tags;
    for (const wchar_t* method : methods) {
        tags.push_back(std::wstring(L"VANTOManager::VANTOSession::") + method);
    }
    return tags;
}

// A bare session command as sent with the granted session id.
std::string Bare(const std::string& command) {
    return R"({"Command":")" + command + R"(","SessionId":"s-1"})";
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
        HostTesting::SetProductPath(GUserText(L"/opt/Arbo \u00c9dition"));
        HostTesting::SetMajorVersion(2026);
        previousSleep_ =
            platform::os::SetSleepHook([this](std::uint32_t ms) { sleeps.push_back(ms); });
        connector.registerAnswer = R"({"SessionId":"s-1"})";
        connector.Answer("GETSESSIONINFO", R"({"Errors":[],"AuthenticatedUserName":"ann",)"
                                           R"("CorvaneLogPath":"/logs/corvane.log",)"
                                           R"("CloudGatewayLogPath":"/logs/gateway.log",)"
                                           R"("UserEmail":"ann@example.com","IsLoggedIn":true})");
    }
    void TearDown() override {
        platform::os::SetSleepHook(previousSleep_);
        HostTesting::UseDefaultProductPath();
        HostTesting::SetMajorVersion(2024);
        HostTesting::ClearUserValues();
        vanto::ResetSessionStateForTesting();
    }

    Lines Take() { return log.TakeMessages(); }
    Line RegisterInputLine(std::size_t index = 0) const {
        const std::string& sent = connector.registerRequests.at(index);
        return {2, L"Corvane register input : " + GUserText(std::string_view(sent)).wstr() + L" "};
    }
    // `lines`, then what a successful session-information call after registration logs.
    static Lines ThenSessionInfo(Lines lines) {
        lines.insert(lines.end(), {{2, L"Authenticated User Name is : ann"},
                                   {2, L"Corvane Log Path is : /logs/corvane.log"},
                                   {2, L"Cloud Gateway Log Path is : /logs/gateway.log"},
                                   {2, L"Corvane Log File Path is : /logs/corvane.log "}});
        return lines;
    }
    bool Start(int timeoutMs, StopAtTimeoutCallback callback = nullptr) {
        return session->StartCorvaneAndWaitForReadyState(timeoutMs, &timedOut, callback);
    }
    void Register() {
        ASSERT_TRUE(session->IsConnected(false));
        log.Clear();
        connector.executeRequests.clear();
    }

    FakeConnector connector;
    CapturingLogSink log;
    std::vector<std::uint32_t> sleeps;
    bool timedOut = true;
    testsupport::ManagerHandle manager;
    IVANTOSession* session = manager.Session();
    vanto::SessionState& state = vanto::Session();

private:
    platform::os::SleepHook previousSleep_;
};

TEST_F(SessionService, FirstConnectRegistersThenLaterCallsAnswerFromTheFlag) {
    connector.Answer("GETCORVANEROOTFOLDERS",
                     R"({"Errors":[],"RootFolders":["/home/ann/Corvane"]})");
    EXPECT_TRUE(session->IsConnected(false));

    // This process, its start as local time, the host's folder in UTF-8 and its version.
    ASSERT_EQ(1u, connector.registerRequests.size());
    EXPECT_TRUE(std::regex_match(
        connector.registerRequests[0],
        std::regex(R"(\{"ProcessId":)" + std::to_string(platform::os::CurrentProcessId()) +
                   R"(,"ProcessStartTime":"\d{4}-[1-9]\d?-[1-9]\d?T\d\d:\d\d:\d\d",)"
                   R"("FilePath":"/opt/Arbo \xC3\x89dition","ClientInfo":)"
                   R"(\{"FullName":"Arbo Lite V2026","Product":"ArboLite"\}\})")))
        << connector.registerRequests[0];
    EXPECT_EQ(
        (Texts{Bare("GETCORVANEROOTFOLDERS"), Bare("GETSESSIONINFO"), Bare("GETCONNECTIONSTATUS")}),
        connector.executeRequests);
    EXPECT_EQ(Scopes({L"IsConnected", L"GetRootFolders", L"GetSessionInfo"}), log.ScopesOpened());
    EXPECT_EQ(ThenSessionInfo({{2, ModeOn},
                               RegisterInputLine(),
                               {2, L"Corvane RootFolder is : /home/ann/Corvane "},
                               {2, L"Corvane Session Id is : s-1 "}}),
              Take());
    EXPECT_EQ(L"/home/ann/Corvane", StoredRootFolder());
    EXPECT_TRUE(state.registered && !state.firstConnect);

    // Not forced: the flag answers, nothing is asked and nothing but the scope is written.
    EXPECT_TRUE(session->IsConnected(false));
    EXPECT_EQ(3u, connector.executeRequests.size());
    EXPECT_EQ(Scopes({L"IsConnected"}), log.ScopesOpened());
    EXPECT_TRUE(Take().empty());

    // Forced: the whole path again, but a registered session is not registered twice.
    EXPECT_TRUE(session->IsConnected(true));
    EXPECT_EQ(1u, connector.registerRequests.size());
    EXPECT_EQ("GETCONNECTIONSTATUS", connector.CommandsSent().back());
    EXPECT_EQ((Lines{{2, ModeOn}}), Take());
}

TEST_F(SessionService, ConnectWithoutRegistrationOrProxyKeepsTryingOnlyUntilAnAttempt) {
    connector.readyAfterPolls = -1;
    EXPECT_FALSE(session->IsConnected(false));
    EXPECT_EQ((Lines{{2, ModeOn}, {0, NotValid}}), Take());
    EXPECT_TRUE(state.firstConnect);

    // An attempt that yields no session id still counts as the first connect.
    connector.readyAfterPolls = 0;
    connector.registerAnswer = "{}";
    EXPECT_FALSE(session->IsConnected(false));
    EXPECT_FALSE(state.firstConnect || state.registered);
    EXPECT_TRUE(connector.executeRequests.empty());
    Take();
    EXPECT_FALSE(session->IsConnected(false));
    EXPECT_TRUE(Take().empty());
    EXPECT_EQ(1u, connector.registerRequests.size());

    // Without a proxy nothing is registered and no session is valid.
    connector.proxyAvailable = false;
    testsupport::ManagerHandle noProxy;
    IVANTOSession* bare = noProxy.Session();
    state = vanto::SessionState();
    state.sessionId = "s-old";
    EXPECT_FALSE(bare->IsCorvaneRunning());
    EXPECT_FALSE(bare->IsConnected(true));
    RootFolderSet folders;
    EXPECT_EQ(S_OK, bare->GetRootFolders(&folders));
    SessionInfo info;
    EXPECT_EQ(S_OK, bare->GetSessionInfo(&info));
    EXPECT_EQ((Lines{{2, ModeOn}, {0, NotValid}, {0, NotValid}, {0, NotValid}}), Take());
    EXPECT_EQ(1u, connector.registerRequests.size());
    EXPECT_TRUE(connector.executeRequests.empty());
}

TEST_F(SessionService, RootFoldersAreLoggedEachAndTheLastDifferingOneIsStored) {
    SetHostCommonUserValue(L"CorvaneRootFolderPath", L"/c", 1);
    connector.Answer("GETCORVANEROOTFOLDERS",
                     R"({"Errors":[],"RootFolders":["/c","/b","/a","/b"]})");
    EXPECT_TRUE(session->IsConnected(true));
    // "/c" equals the stored value and is skipped; "/a" and then "/b" are written.
    EXPECT_EQ(L"/b", StoredRootFolder());
    Take();

    connector.Answer("GETCORVANEROOTFOLDERS", R"({"Errors":[],"RootFolders":["/z","/y","/z"]})");
    RootFolderSet folders{GUserText(L"/kept")};
    EXPECT_EQ(S_OK, session->GetRootFolders(&folders));
    const RootFolderSet expected{GUserText(L"/kept"), GUserText(L"/y"), GUserText(L"/z")};
    EXPECT_EQ(expected, folders);
    EXPECT_EQ((Lines{{2, L"Corvane RootFolder is : /z "},
                     {2, L"Corvane RootFolder is : /y "},
                     {2, L"Corvane RootFolder is : /z "}}),
              Take());

    // A failing answer leaves the set alone and logs nothing of its own.
    connector.Answer("GETCORVANEROOTFOLDERS", R"({"Errors":[{"ErrorCode":3,"Ids":[]}]})");
    EXPECT_EQ(E_FAIL, session->GetRootFolders(&folders));
    EXPECT_EQ(expected, folders);
    EXPECT_TRUE(Take().empty());
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
    EXPECT_FALSE(Start(1000));
    EXPECT_FALSE(timedOut);
    EXPECT_TRUE(session->IsCorvaneInOffLineMode());
    connector.Answer("GETCONNECTIONSTATUS", R"({"Errors":[]})");
    EXPECT_TRUE(Start(1000));

    // The flag and the installation are answered without a line of their own.
    Take();
    connector.installed = false;
    EXPECT_TRUE(session->IsCorvaneInOffLineMode());
    EXPECT_FALSE(session->IsCorvaneInstalled());
    EXPECT_EQ(Scopes({L"IsCorvaneInOffLineMode", L"IsCorvaneInstalled"}), log.ScopesOpened());
    EXPECT_TRUE(Take().empty());
}

TEST_F(SessionService, ExceptionsAreHandledByKind) {
    // A communication failure while registering is logged and the method goes on; an id kept
    // from before counts as registered.
    state.sessionId = "s-old";
    connector.Fail(Op::RegisterClient, Failure::Communication, "pipe closed", "", 1);
    EXPECT_TRUE(session->IsConnected(true));
    EXPECT_EQ(
        (Lines{{2, ModeOn}, RegisterInputLine(), {0, L"Exception occurred in API : pipe closed "}}),
        Take());
    EXPECT_TRUE(state.registered);
    EXPECT_EQ(Texts{"GETCONNECTIONSTATUS"}, connector.CommandsSent());
}

TEST_F(SessionService, StartLaunchesDeregistersThenRegisters) {
    connector.running = false;
    state.registered = true;
    state.sessionId = "s-0";
    EXPECT_TRUE(Start(5000));
    EXPECT_FALSE(timedOut);
    EXPECT_EQ(Texts{""}, connector.launchArguments);
    EXPECT_TRUE(sleeps.empty());

    EXPECT_EQ(Texts{R"({"SessionId":"s-0","ProcessId":0,"ProcessStartTime":""})"},
              connector.deregisterRequests);
    EXPECT_EQ(Scopes({L"StartCorvaneAndWaitForReadyState", L"IsCorvaneRunning",
                      L"DeRegisterFromCorvane", L"GetSessionInfo"}),
              log.ScopesOpened());
    EXPECT_EQ(ThenSessionInfo({{2, L"Connector was not running, hence launching Connector from "
                                   L"StartCorvaneAndWaitForReadyState!!"},
                               RegisterInputLine(),
                               {2, Deregistering},
                               {2, Deregistered},
                               {2, L"Corvane Auto Start Session Id is : s-1 "}}),
              Take());
    EXPECT_EQ((Texts{"GETSESSIONINFO", "GETCONNECTIONSTATUS"}), connector.CommandsSent());
    EXPECT_EQ(L"<none>", StoredRootFolder());
    EXPECT_EQ("s-1", state.sessionId);
    EXPECT_TRUE(state.registered);

    // Already running: no launch, and the running check says so.
    EXPECT_TRUE(Start(5000));
    EXPECT_EQ(1, connector.launches);
    EXPECT_EQ((Line{2, L"Connector is ON and running!!"}), Take().front());
}

TEST_F(SessionService, StartCountsTheRegisterCallWithOrWithoutAnId) {
    // The register call returning is enough to count as registered, with or without an id.
    connector.registerAnswer = "{}";
    EXPECT_FALSE(Start(5000));
    EXPECT_TRUE(state.registered);
    const Lines lines = Take();
    EXPECT_EQ((Lines{{2, L"Corvane Auto Start Session Id is :  "}, {0, NotValid}}),
              Lines(lines.end() - 2, lines.end()));
    EXPECT_TRUE(connector.executeRequests.empty());
}

int callbackCalls = 0;
int extendFor = 0;
void ExtendSomeTimes(bool* stopAtTimeout) {
    if (++callbackCalls <= extendFor) {
        *stopAtTimeout = false;
    }
}

TEST_F(SessionService, WaitPollsEveryHundredMillisecondsUntilPastTheTimeoutOrLonger) {
    connector.readyAfterPolls = -1;
    timedOut = false;
    EXPECT_FALSE(Start(0));
    EXPECT_TRUE(timedOut);
    EXPECT_EQ(std::vector<std::uint32_t>{100}, sleeps);
    EXPECT_EQ((Line{2, L"Connector was not running, Launching Connector from "
                       L"StartCorvaneAndWaitForReadyState has timed out."}),
              Take().back());
    EXPECT_TRUE(connector.registerRequests.empty());

    // Strictly greater: at 200 ms of 200 it waits once more. A callback extends the wait for as
    // long as it asks (giving up at the time-out after that), and is not asked when the connector
    // is ready at once.
    const struct {
        int timeoutMs, readyAfterPolls, extendFor; // extendFor < 0: no callback
        bool started;
        std::size_t sleeps;
        int callbackCalls;
    } cases[] = {{200, -1, -1, false, 3, 0},
                 {0, -1, 2, false, 2, 3},
                 {0, 5, 1000, true, 5, 5},
                 {0, 0, 1000, true, 0, 0}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.timeoutMs + c.readyAfterPolls + c.extendFor);
        callbackCalls = 0;
        extendFor = c.extendFor;
        connector.readyPolls = 0;
        connector.readyAfterPolls = c.readyAfterPolls;
        sleeps.clear();
        EXPECT_EQ(c.started, Start(c.timeoutMs, c.extendFor < 0 ? nullptr : ExtendSomeTimes));
        EXPECT_EQ(!c.started, timedOut);
        EXPECT_EQ(c.sleeps, sleeps.size());
        EXPECT_EQ(c.callbackCalls, callbackCalls);
    }
}

TEST_F(SessionService, DeregisteringFailsThenSendsOnceThenHasNothingToDo) {
    Register();
    connector.Fail(Op::DeRegisterClient, Failure::Standard, "gone", "", 1);
    session->DeRegisterFromCorvane();
    EXPECT_TRUE(state.registered);

    // Keyed by the session id alone; the id is kept, so commands still carry it.
    session->DeRegisterFromCorvane();
    ASSERT_EQ(2u, connector.deregisterRequests.size());
    EXPECT_EQ(R"({"SessionId":"s-1","ProcessId":0,"ProcessStartTime":""})",
              connector.deregisterRequests[1]);
    EXPECT_FALSE(state.registered);
    EXPECT_EQ("s-1", state.sessionId);

    session->DeRegisterFromCorvane();
    EXPECT_EQ(2u, connector.deregisterRequests.size());
    EXPECT_EQ((Lines{{2, Deregistering},
                     {0, L"Failure to deregister from Corvane - exception from call : gone"},
                     {2, Deregistering},
                     {2, Deregistered},
                     {2, Deregistering},
                     {2, L"App was not registered with Corvane when DeRegisterFromCorvane was "
                         L"called so nothing to do."}}),
              Take());
}

TEST_F(SessionService, ReleasingTheManagerDeregistersOnlyWhenRegistered) {
    testsupport::ManagerHandle unused;
    unused.Reset();
    EXPECT_TRUE(log.records.empty());
    EXPECT_TRUE(connector.deregisterRequests.empty());

    Register();
    manager.Reset();
    EXPECT_EQ(1u, connector.deregisterRequests.size());
    EXPECT_EQ(Scopes({L"DeRegisterFromCorvane"}), log.ScopesOpened());
    EXPECT_FALSE(state.registered);
}

TEST_F(SessionService, SessionInfoAndUser) {
    LoggedInUserInfo user{L"host", L"", L"kept"};
    EXPECT_EQ(S_OK, session->GetCurrentLoggedInUserInfo(&user));
    EXPECT_TRUE(Take().empty());
    EXPECT_EQ(L"kept", user.email.wstr());

    // A valid session that never registered: asking for the user marks it registered.
    state.sessionId = "s-9";
    EXPECT_EQ(S_OK, session->GetCurrentLoggedInUserInfo(&user));
    EXPECT_TRUE(state.registered);
    EXPECT_EQ(L"ann@example.com", user.email.wstr());
    EXPECT_EQ(L"host", user.loginName.wstr());
    EXPECT_EQ(Scopes({L"GetCurrentLoggedInUserInfo", L"GetSessionInfo"}), log.ScopesOpened());

    connector.Answer("GETSESSIONINFO", R"({"Errors":[{"ErrorCode":1}],"UserEmail":"x@y"})");
    Take();
    SessionInfo info;
    info.userEmail = L"kept";
    EXPECT_EQ(S_OK, session->GetSessionInfo(&info));
    EXPECT_EQ(L"kept", info.userEmail.wstr());
    EXPECT_EQ((Lines{{0, L"Failed to get session information."}}), Take());
    // The user's e-mail comes from a fresh record, so a failed answer empties it.
    EXPECT_EQ(S_OK, session->GetCurrentLoggedInUserInfo(&user));
    EXPECT_TRUE(user.email.IsEmpty());
}

TEST(ProcessStartTimeText, DatePlainTimePadded) {
    EXPECT_EQ("2024-3-7T09:05:02", vanto::FormatProcessStartTime({2024, 3, 7, 9, 5, 2}).str());
    EXPECT_EQ("2025-1-1T00:00:00", vanto::FormatProcessStartTime({2025, 1, 1, 0, 0, 0}).str());
    EXPECT_EQ("-1--1--1T-1:-1:-1",
              vanto::FormatProcessStartTime(platform::os::LocalDateTime{}).str());
}

// The rest of the client information is read from the registration request.
TEST(ClientInformation, AnEmptyProductPathStaysEmpty) {
    HostTesting::SetProductPath(GUserText());
    EXPECT_TRUE(vanto::BuildClientInformation().productPath.empty());
    HostTesting::UseDefaultProductPath();
}

} // namespace
