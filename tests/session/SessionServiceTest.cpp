// The session interface driven as the host drives it: through a manager from the class factory,
// against the scriptable connector, with the log captured.
#include "fileservices/FileServicesFixture.h"
#include "host/HostUtil.h"
#include "os/Os.h"

#include <regex>

namespace {

using Corvane::FakeConnector;
using testsupport::Line;
using testsupport::Lines;
using testsupport::Texts;

constexpr const wchar_t* ModeOn = L"Corvane mode is ON.";
constexpr const wchar_t* NotValid = testsupport::NotValidLine;
constexpr const wchar_t* Deregistering = L"Deregistering from Corvane";
constexpr const wchar_t* Deregistered = L"Deregistered from Corvane";

// The method-scope tags of session methods.
std::vector<std::wstring> Scopes(std::initializer_list<const wchar_t*> methods) {
    std::vector<std::wstring> tags;
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
    EXPECT_TRUE(std::regex_match(
        connector.registerRequests.at(0),
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
    EXPECT_EQ((Lines{{2, ModeOn}}), Take());
}

TEST_F(SessionService, ConnectWithoutRegistrationOrProxyKeepsTryingOnlyUntilAnAttempt) {
    connector.readyAfterPolls = -1;
    EXPECT_FALSE(session->IsConnected(false));
    EXPECT_EQ((Lines{{2, ModeOn}, {0, NotValid}}), Take());
    EXPECT_TRUE(state.firstConnect);

    // An attempt that yields no session id still counts as the first connect; it sends nothing.
    connector.readyAfterPolls = 0;
    connector.registerAnswer = "{}";
    EXPECT_FALSE(session->IsConnected(false));
    EXPECT_FALSE(state.firstConnect || state.registered);

    // Without a proxy nothing is registered and no session is valid, whatever id is kept.
    connector.proxyAvailable = false;
    testsupport::ManagerHandle noProxy;
    state.sessionId = "s-old";
    Take();
    EXPECT_FALSE(noProxy.Session()->IsConnected(true));
    EXPECT_EQ((Lines{{2, ModeOn}, {0, NotValid}}), Take());
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

TEST_F(SessionService, StartLaunchesDeregistersThenRegisters) {
    connector.running = false;
    state.registered = true;
    state.sessionId = "s-0";
    EXPECT_TRUE(Start(5000));
    EXPECT_FALSE(timedOut);
    EXPECT_EQ(Texts{""}, connector.launchArguments);

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
    EXPECT_EQ("s-1", state.sessionId);
    EXPECT_TRUE(session->IsCorvaneInOffLineMode()); // until IsConnected finds otherwise

    // Already running: no launch, and the running check says so. The register call returning
    // is enough to count as registered, with or without an id.
    connector.registerAnswer = "{}";
    EXPECT_FALSE(Start(5000));
    EXPECT_EQ(1, connector.launches);
    EXPECT_TRUE(state.registered);
    const Lines lines = Take();
    EXPECT_EQ((Line{2, L"Connector is ON and running!!"}), lines.front());
    EXPECT_EQ((Lines{{2, L"Corvane Auto Start Session Id is :  "}, {0, NotValid}}),
              Lines(lines.end() - 2, lines.end()));
    EXPECT_EQ(2u, connector.executeRequests.size());
}

constexpr const wchar_t* TimedOut = L"Connector was not running, Launching Connector from "
                                    L"StartCorvaneAndWaitForReadyState has timed out.";
int callbackCalls = 0;
int extendFor = 0;
void ExtendSomeTimes(bool* stopAtTimeout) {
    if (++callbackCalls <= extendFor) {
        *stopAtTimeout = false;
    }
}

// Polls every 100 ms until strictly past the time-out (at 200 ms of 200 it waits once more). A
// callback extends the wait for as long as it asks (giving up at the time-out after that), and is
// not asked when the connector is ready at once.
TEST_F(SessionService, WaitPollsEveryHundredMillisecondsUntilPastTheTimeoutOrLonger) {
    const struct {
        int timeoutMs, readyAfterPolls, extendFor; // extendFor < 0: no callback
        bool started;
        std::size_t sleeps;
        int callbackCalls;
    } cases[] = {{0, -1, -1, false, 1, 0},
                 {200, -1, -1, false, 3, 0},
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
        EXPECT_EQ(std::vector<std::uint32_t>(c.sleeps, 100), sleeps);
        EXPECT_EQ(c.callbackCalls, callbackCalls);
        EXPECT_EQ(!c.started, Take().back().second == TimedOut);
    }
}

// A failing call is walked in tests/faults; the barrier table shows it skips the rest.
TEST_F(SessionService, DeregisteringSendsOnceAndReleasingDeregistersOnlyWhenRegistered) {
    testsupport::ManagerHandle unused;
    unused.Reset();
    EXPECT_TRUE(log.records.empty());

    // Keyed by the session id alone; the id is kept, so commands still carry it.
    ASSERT_TRUE(session->IsConnected(false));
    log.Clear();
    session->DeRegisterFromCorvane();
    session->DeRegisterFromCorvane();
    EXPECT_EQ(Texts{R"({"SessionId":"s-1","ProcessId":0,"ProcessStartTime":""})"},
              connector.deregisterRequests);
    EXPECT_EQ("s-1", state.sessionId);
    EXPECT_EQ((Lines{{2, Deregistering},
                     {2, Deregistered},
                     {2, Deregistering},
                     {2, L"App was not registered with Corvane when DeRegisterFromCorvane was "
                         L"called so nothing to do."}}),
              Take());

    state.registered = true;
    manager.Reset();
    EXPECT_EQ(2u, connector.deregisterRequests.size());
    EXPECT_EQ(Scopes({L"DeRegisterFromCorvane"}), log.ScopesOpened());
    EXPECT_FALSE(state.registered);
}

TEST_F(SessionService, SessionInfoAndUser) {
    LoggedInUserInfo user{L"host", L"", L"kept"};
    EXPECT_EQ(S_OK, session->GetCurrentLoggedInUserInfo(&user));
    EXPECT_EQ(L"kept", user.email.wstr());

    // A valid session that never registered: asking for the user marks it registered.
    state.sessionId = "s-9";
    EXPECT_EQ(S_OK, session->GetCurrentLoggedInUserInfo(&user));
    EXPECT_TRUE(state.registered);
    EXPECT_EQ(L"ann@example.com", user.email.wstr());

    connector.Answer("GETSESSIONINFO", R"({"Errors":[{"ErrorCode":1}],"UserEmail":"x@y"})");
    Take();
    SessionInfo info{L"", L"", L"", L"kept"};
    EXPECT_EQ(S_OK, session->GetSessionInfo(&info));
    EXPECT_EQ(L"kept", info.userEmail.wstr());
    EXPECT_EQ((Lines{{0, L"Failed to get session information."}}), Take());
    // The user's e-mail comes from a fresh record, so a failed answer empties it.
    EXPECT_EQ(S_OK, session->GetCurrentLoggedInUserInfo(&user));
    EXPECT_TRUE(user.email.IsEmpty());
}

} // namespace
