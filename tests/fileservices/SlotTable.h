// The file-service slots, 3 to 29 in the interface's order, each with the connector calls it
// makes when every call is answered, and how to run one against the scriptable connector with
// the log captured. Shared by the frame's walk of every slot and the fault-injection test.
#pragma once

#include "fileservices/FileServicesFixture.h"

#include "core/MemoryManager.h"

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

namespace testsupport::slots {

// Which line a failing call writes.
enum class Says {
    ExecuteLine,    // "... exception from Execute call : " + text
    RegisterLine,   // IsConnected's registration: the communication exception has its own line
    DeregisterLine, // "Failure to deregister from Corvane - exception from call : " + text
    LaunchLine,     // "Corvane failed to start with exception: " + text
};

inline const GUserText PathA(L"C:\\Corvane\\Pump\\Housing.par");
inline const GUserText PathB(L"C:\\Corvane\\Pump\\Pump.asm");

// One connector call of a method and what the method does when it throws.
struct Site {
    std::string call; // as FakeConnector::calls names it
    std::string result;
    Says says = Says::ExecuteLine;
    bool goesOn = false; // the calls after it are still made
};

// Arguments whose values a call that stops at the session test must leave as they are.
inline SlotArguments Arguments() {
    SlotArguments a;
    a.checkIns = {{PathA, 5, GUserText(L"bob")}};
    a.locks = {{PathA, {}}};
    a.status.isNewVersionAvailable = 7;
    a.stamps = {{PathA, {}}};
    a.uids = {{GUserText(L"d-1"), GUserText()}};
    a.containerStatus = 9;
    a.count = 2;
    a.revision = L"A";
    return a;
}

struct Rig {
    Corvane::FakeConnector connector;
    CapturingLogSink log;
    testsupport::ManagerHandle manager;
    IVANTOSession* session = manager.Session();
    IVANTOFileServices* files = manager.FileServices();
    SlotArguments a = Arguments();
};

// The session granted, as after registration.
inline void Granted(Rig&) {
    vanto::Session().sessionId = "s-1";
    vanto::Session().registered = true;
}

inline std::string Show(HRESULT result) {
    return result == S_OK     ? "S_OK"
           : result == E_FAIL ? "E_FAIL"
                              : std::to_string(static_cast<std::uint32_t>(result));
}

inline std::string Show(bool result) {
    return result ? "true" : "false";
}

// A method's result as a text.
struct Shown {
    Shown(HRESULT result) : text(Show(result)) {}
    Shown(bool result) : text(Show(result)) {}
    Shown(std::string result) : text(std::move(result)) {}
    std::string text;
};

struct Method {
    std::string name;
    std::function<Shown(Rig&)> call;
    std::vector<Site> sites = {}; // every connector call, in order
    std::function<void(Rig&)> prepare = &Granted;
};

inline Method Slot(std::string name, std::function<Shown(Rig&)> call, std::vector<Site> sites = {},
                   std::function<void(Rig&)> prepare = &Granted) {
    return {std::move(name), std::move(call), std::move(sites), std::move(prepare)};
}

// Granted, with `command` answered by `answer`.
inline std::function<void(Rig&)> Answering(std::string command, std::string answer) {
    return [command, answer](Rig& r) {
        Granted(r);
        r.connector.Answer(command, answer);
    };
}

// The file-service slots, 3 to 29 in the interface's order.
inline std::vector<Method> FileServiceMethods() {
    return {
        Slot("CheckIn", [](Rig& r) { return r.files->CheckIn(&r.a.checkIns); },
             {{"Execute UNLOCKDESIGNREVISIONS", "E_FAIL"}}),
        Slot("CheckOut", [](Rig& r) { return r.files->CheckOut(&r.a.locks); },
             {{"Execute GETSESSIONINFO", "S_OK", Says::ExecuteLine, true},
              {"Execute LOCKDESIGNREVISIONS", "E_FAIL"}}),
        Slot("IsValidCorvaneFile(list)",
             [](Rig& r) { return r.files->IsValidCorvaneFile(PathList{PathA}, &r.a.monitored); },
             {{"Execute ISPATHMONITORED", "E_FAIL"}}),
        Slot("IsValidCorvaneFile(path)", [](Rig& r) { return r.files->IsValidCorvaneFile(PathA); },
             {{"Execute ISPATHMONITORED", "false"}}),
        Slot("GetStatusInformation",
             [](Rig& r) { return r.files->GetStatusInformation(PathA, &r.a.status); },
             {{"Execute GETPROPERTIES", "S_OK", Says::ExecuteLine, true},
              {"Execute CHECKFORNEWERVERSION", "S_OK"}}),
        Slot("IsNewRevisionAvailable",
             [](Rig& r) { return r.files->IsNewRevisionAvailable(PathA); }),
        Slot("IsNewVersionAvailable", [](Rig& r) { return r.files->IsNewVersionAvailable(PathA); },
             {{"Execute GETPROPERTIES", "false", Says::ExecuteLine, true},
              {"Execute CHECKFORNEWERVERSION", "false"}}),
        Slot(
            "GetCheckOutStatus",
            [](Rig& r) { return r.files->GetCheckOutStatus(&r.a.locks, true); },
            {{"Execute GETSESSIONINFO", "S_OK", Says::ExecuteLine, true},
             {"Execute GETPROPERTIES", "E_FAIL"},
             {"Execute GETPROPERTIES", "S_OK", Says::ExecuteLine, true},
             {"Execute CHECKFORNEWERVERSION", "S_OK"}},
            // The file is in the answer, so its newer version is asked for as well.
            Answering("GETPROPERTIES",
                      R"({"Errors":[],"FilePropertiesArray":[{"FilePath":)"
                      R"("C:\\Corvane\\Pump\\Housing.par","ObjectTypeToPropertiesArray":[]}]})")),
        Slot("DownloadLatestVersion", [](Rig& r) { return r.files->DownloadLatestVersion(PathA); }),
        Slot("AttachDocumentToRevision",
             [](Rig& r) { return r.files->AttachDocumentToRevision({}); }),
        Slot("GetDocumentConsistencyStamp",
             [](Rig& r) { return r.files->GetDocumentConsistencyStamp(&r.a.stamps); },
             {{"Execute GETPROPERTIES", "E_FAIL"}}),
        Slot(
            "IsFileSynchronized", [](Rig& r) { return r.files->IsFileSynchronized(PathA); },
            {{"Execute ISPATHMONITORED", "true"}, {"Execute GETPROPERTIES", "true"}},
            Answering("ISPATHMONITORED", R"({"Errors":[],"PathToIsMonitored":[{"Key":)"
                                         R"("C:\\Corvane\\Pump\\Housing.par","Value":true}]})")),
        Slot("GetFilePath", [](Rig& r) { return r.files->GetFilePath(&r.a.uids); },
             {{"Execute GETFILEPATHBYUID", "E_FAIL"}}),
        Slot("GetContextInformation",
             [](Rig& r) { return r.files->GetContextInformation(PathList{PathA}, &r.a.contexts); },
             {{"Execute GETFILECONTEXTINFO", "E_FAIL"}}),
        Slot("GetAvailableContainers",
             [](Rig& r) {
                 return r.files->GetAvailableContainers(&r.a.containers, &r.a.containerStatus);
             },
             {{"Execute GETAVAILABLECONTAINERS", "E_FAIL"}}),
        Slot("AddProjectToSync",
             [](Rig& r) { return r.files->AddProjectToSync(L"urn:p:4", &r.a.containerStatus); },
             {{"Execute ADDPROJECTTOSYNC", "E_FAIL"}}),
        Slot("GetFileAccessPermissions",
             [](Rig& r) {
                 return r.files->GetFileAccessPermissions(PathList{PathA}, &r.a.permissions);
             },
             {{"Execute GETACCESSPERMISSIONS", "E_FAIL"}}),
        Slot("GenerateItemIDAndRevision",
             [](Rig& r) {
                 return r.files->GenerateItemIDAndRevision(GUserText(L"C:\\Corvane\\Pump"),
                                                           GUserText(L"par"), r.a.count, &r.a.ids);
             },
             {{"Execute GETNEXTID", "E_FAIL"}}),
        Slot("GenerateNextRevisionID",
             [](Rig& r) { return r.files->GenerateNextRevisionID(L"urn:dr:7", &r.a.revision); },
             {{"Execute GETNEXTREVISIONID", "E_FAIL"}}),
        Slot("GetProperties",
             [](Rig& r) { return r.files->GetProperties(PathList{PathA}, {}, &r.a.properties); },
             {{"Execute GETPROPERTIES", "E_FAIL"}}),
        Slot("SetDataObject", [](Rig& r) { return r.files->SetDataObject(L"layout", L"{}"); },
             {{"Execute SETDATAOBJECT", "E_FAIL"}}),
        Slot("GetDesignRevisions",
             [](Rig& r) { return r.files->GetDesignRevisions(L"Housing", &r.a.names); },
             {{"Execute QUERYDESIGNREVISIONS", "E_FAIL"}}),
        Slot("AddChildren", [](Rig& r) { return r.files->AddChildren(PathB, PathList{PathA}); },
             {{"Execute ADDCHILDREN", "E_FAIL"}}),
        Slot("RemoveChildren",
             [](Rig& r) { return r.files->RemoveChildren(PathB, PathList{PathA}); },
             {{"Execute GETCHILDREN", "S_OK", Says::ExecuteLine, true},
              {"Execute REMOVECHILDREN", "E_FAIL"}}),
        Slot("GetChildren", [](Rig& r) { return r.files->GetChildren(PathB, &r.a.relations); },
             {{"Execute GETCHILDREN", "E_FAIL"}}),
        Slot(
            "GetCorvaneWUResults",
            [](Rig& r) {
                return r.files->GetCorvaneWUResults(PathList{PathA, PathB}, &r.a.relations, false);
            },
            {{"Execute QUERYPRIMARYOBJECTS", "E_FAIL"}, {"Execute QUERYPRIMARYOBJECTS", "E_FAIL"}}),
        Slot("LogErrors", [](Rig& r) { return r.files->LogErrors(&r.a.code); }, {}),
    };
}

// What one run of a method did.
struct MethodRun {
    std::string result;
    bool escaped = false;
    std::vector<std::string> calls;
    std::vector<std::wstring> errors; // severity 0 lines
    std::int64_t leaked = 0;          // core blocks left live by the call
    std::vector<std::wstring> scopes; // the scope records opened, in order
    std::ptrdiff_t closed = 0;        // and the ones closed
    SlotArguments args;               // the arguments after the call
};

inline MethodRun RunMethod(const Method& method,
                           const std::function<void(Corvane::FakeConnector&)>& arm) {
    vanto::ResetSessionStateForTesting();
    MethodRun run;
    {
        Rig rig;
        method.prepare(rig);
        arm(rig.connector);
        const std::int64_t live = Core::MemoryManager::LiveAllocations();
        try {
            run.result = method.call(rig).text;
        } catch (...) {
            run.escaped = true;
        }
        run.leaked = Core::MemoryManager::LiveAllocations() - live;
        run.calls = rig.connector.calls;
        run.errors = rig.log.Messages(0);
        run.args = rig.a;
        run.scopes = rig.log.ScopesOpened();
        run.closed = std::count_if(
            rig.log.records.begin(), rig.log.records.end(),
            [](const LogRecord& record) { return record.kind == LogRecord::Kind::ScopeClose; });
        rig.connector.ClearFailures();
    }
    vanto::ResetSessionStateForTesting();
    return run;
}

// Runs `method` with every call answered: it makes the calls of its sites in order, writes no
// error line and leaks nothing.
inline MethodRun CleanRun(const Method& method) {
    const MethodRun clean = RunMethod(method, [](Corvane::FakeConnector&) {});
    std::vector<std::string> expectedCalls;
    for (const Site& site : method.sites) {
        expectedCalls.push_back(site.call);
    }
    EXPECT_FALSE(clean.escaped);
    EXPECT_EQ(expectedCalls, clean.calls) << "the method's connector calls changed";
    EXPECT_TRUE(clean.errors.empty());
    EXPECT_EQ(0, clean.leaked);
    return clean;
}

// The session slots, in the interface's order.
inline std::vector<Method> SessionMethods() {
    return {
        Slot(
            "IsConnected", [](Rig& r) { return r.session->IsConnected(true); },
            {{"RegisterClient", "false", Says::RegisterLine},
             {"Execute GETCORVANEROOTFOLDERS", "true", Says::ExecuteLine, true},
             {"Execute GETSESSIONINFO", "true", Says::ExecuteLine, true},
             {"Execute GETCONNECTIONSTATUS", "false"}},
            [](Rig&) {}), // not yet registered
        Slot("GetRootFolders", [](Rig& r) { return r.session->GetRootFolders(&r.a.folders); },
             {{"Execute GETCORVANEROOTFOLDERS", "S_OK"}}),
        Slot("GetCurrentLoggedInUserInfo",
             [](Rig& r) { return r.session->GetCurrentLoggedInUserInfo(&r.a.user); },
             {{"Execute GETSESSIONINFO", "S_OK"}}),
        Slot("IsCorvaneRunning", [](Rig& r) { return r.session->IsCorvaneRunning(); }),
        Slot("IsCorvaneInstalled", [](Rig& r) { return r.session->IsCorvaneInstalled(); }),
        Slot(
            "StartCorvaneAndWaitForReadyState",
            [](Rig& r) {
                return r.session->StartCorvaneAndWaitForReadyState(0, &r.a.timedOut, nullptr);
            },
            {{"LaunchApplication", "false", Says::LaunchLine},
             {"DeRegisterClient", "true", Says::DeregisterLine, true},
             {"RegisterClient", "false"},
             {"Execute GETSESSIONINFO", "true", Says::ExecuteLine, true},
             {"Execute GETCONNECTIONSTATUS", "false"}},
            [](Rig& r) {
                Granted(r);
                r.connector.running = false;
            }),
        Slot("DeRegisterFromCorvane",
             [](Rig& r) {
                 r.session->DeRegisterFromCorvane();
                 return std::string("-");
             },
             {{"DeRegisterClient", "-", Says::DeregisterLine}}),
        Slot("IsCorvaneInOffLineMode", [](Rig& r) { return r.session->IsCorvaneInOffLineMode(); }),
        Slot("GetSessionInfo", [](Rig& r) { return r.session->GetSessionInfo(&r.a.info); },
             {{"Execute GETSESSIONINFO", "S_OK"}}),
    };
}

} // namespace testsupport::slots
