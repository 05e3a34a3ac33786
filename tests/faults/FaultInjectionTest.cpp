// Every method of the real session and file-services interfaces, with each connector call it
// makes failing in turn, once with each kind of exception: the method's result and the line it
// writes are those its design gives for that call, later calls are made or not as it says,
// nothing leaks from the core allocator, and no exception reaches the caller.
#include "connector/FakeConnector.h"
#include "core/MemoryManager.h"
#include "host/HostLog.h"
#include "session/SessionState.h"
#include "support/ComTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <iostream>
#include <string>
#include <vector>

namespace {

using Corvane::FakeConnector;
using Failure = FakeConnector::Failure;

constexpr const char* Message = "connector gone";

// Which line a failing call writes.
enum class Says {
    ExecuteLine,    // "... exception from Execute call : " + text
    RegisterLine,   // IsConnected's registration: the communication exception has its own line
    DeregisterLine, // "Failure to deregister from Corvane - exception from call : " + text
    LaunchLine,     // "Corvane failed to start with exception: " + text
};

std::wstring TextOf(Failure failure) {
    return failure == Failure::Foreign ? L"unknown exception" : L"connector gone";
}

std::wstring ExpectedLine(Says says, Failure failure) {
    switch (says) {
    case Says::RegisterLine:
        if (failure == Failure::Communication) {
            return L"Exception occurred in API : connector gone ";
        }
        break;
    case Says::DeregisterLine:
        return L"Failure to deregister from Corvane - exception from call : " + TextOf(failure);
    case Says::LaunchLine:
        return L"Corvane failed to start with exception: " + TextOf(failure);
    case Says::ExecuteLine:
        break;
    }
    return L"Corvane session is not a valid session - exception from Execute call : " +
           TextOf(failure);
}

// One connector call of a method and what the method does when it throws.
struct Site {
    std::string call; // as FakeConnector::calls names it
    std::string result;
    Says says = Says::ExecuteLine;
    bool goesOn = false; // the calls after it are still made
};

struct Rig {
    FakeConnector connector;
    CapturingLogSink log;
    testsupport::ManagerHandle manager;
    IVANTOSession* session = manager.Session();
    IVANTOFileServices* files = manager.FileServices();
};

// The session granted, as after registration.
void Granted(Rig&) {
    vanto::Session().sessionId = "s-1";
    vanto::Session().registered = true;
}

struct Method {
    std::string name;
    std::function<std::string(Rig&)> call; // the result as a text
    std::vector<Site> sites = {};          // every connector call, in order
    std::function<void(Rig&)> prepare = &Granted;
};

std::string Show(HRESULT result) {
    switch (static_cast<std::uint32_t>(result)) {
    case 0:
        return "S_OK";
    case 0x80004005U:
        return "E_FAIL";
    default:
        return std::to_string(static_cast<std::uint32_t>(result));
    }
}

std::string Show(bool result) {
    return result ? "true" : "false";
}

const GUserText PathA(L"C:\\Corvane\\Pump\\Housing.par");
const GUserText PathB(L"C:\\Corvane\\Pump\\Pump.asm");

// The file-service slots, 3 to 29 in the interface's order.
std::vector<Method> FileServiceMethods() {
    return {
        {"CheckIn",
         [](Rig& r) {
             FileCheckInList files{{PathA, 0, GUserText()}};
             return Show(r.files->CheckIn(&files));
         },
         {{"Execute UNLOCKDESIGNREVISIONS", "E_FAIL"}}},
        {"CheckOut",
         [](Rig& r) {
             FileLockStatusMap files{{PathA, {}}};
             return Show(r.files->CheckOut(&files));
         },
         {{"Execute GETSESSIONINFO", "S_OK", Says::ExecuteLine, true},
          {"Execute LOCKDESIGNREVISIONS", "E_FAIL"}}},
        {"IsValidCorvaneFile(list)",
         [](Rig& r) {
             PathMonitoredMap monitored;
             return Show(r.files->IsValidCorvaneFile(PathList{PathA}, &monitored));
         },
         {{"Execute ISPATHMONITORED", "E_FAIL"}}},
        {"IsValidCorvaneFile(path)",
         [](Rig& r) { return Show(r.files->IsValidCorvaneFile(PathA)); },
         {{"Execute ISPATHMONITORED", "false"}}},
        {"GetStatusInformation",
         [](Rig& r) {
             FileStatusInformation status;
             return Show(r.files->GetStatusInformation(PathA, &status));
         },
         {{"Execute GETPROPERTIES", "S_OK", Says::ExecuteLine, true},
          {"Execute CHECKFORNEWERVERSION", "S_OK"}}},
        {"IsNewRevisionAvailable",
         [](Rig& r) { return Show(r.files->IsNewRevisionAvailable(PathA)); }},
        {"IsNewVersionAvailable",
         [](Rig& r) { return Show(r.files->IsNewVersionAvailable(PathA)); },
         {{"Execute GETPROPERTIES", "false", Says::ExecuteLine, true},
          {"Execute CHECKFORNEWERVERSION", "false"}}},
        {"GetCheckOutStatus",
         [](Rig& r) {
             FileLockStatusMap files{{PathA, {}}};
             return Show(r.files->GetCheckOutStatus(&files, true));
         },
         {{"Execute GETSESSIONINFO", "S_OK", Says::ExecuteLine, true},
          {"Execute GETPROPERTIES", "E_FAIL"},
          {"Execute GETPROPERTIES", "S_OK", Says::ExecuteLine, true},
          {"Execute CHECKFORNEWERVERSION", "S_OK"}},
         [](Rig& r) {
             Granted(r);
             // The file is in the answer, so its newer version is asked for as well.
             r.connector.Answer(
                 "GETPROPERTIES",
                 R"({"Errors":[],"FilePropertiesArray":[{"FilePath":)"
                 R"("C:\\Corvane\\Pump\\Housing.par","ObjectTypeToPropertiesArray":[]}]})");
         }},
        {"DownloadLatestVersion",
         [](Rig& r) { return Show(r.files->DownloadLatestVersion(PathA)); }},
        {"AttachDocumentToRevision",
         [](Rig& r) { return Show(r.files->AttachDocumentToRevision({})); }},
        {"GetDocumentConsistencyStamp",
         [](Rig& r) {
             DocumentStampMap stamps{{PathA, {}}};
             return Show(r.files->GetDocumentConsistencyStamp(&stamps));
         },
         {{"Execute GETPROPERTIES", "E_FAIL"}}},
        {"IsFileSynchronized",
         [](Rig& r) { return Show(r.files->IsFileSynchronized(PathA)); },
         {{"Execute ISPATHMONITORED", "true"}, {"Execute GETPROPERTIES", "true"}},
         [](Rig& r) {
             Granted(r);
             r.connector.Answer("ISPATHMONITORED",
                                R"({"Errors":[],"PathToIsMonitored":[{"Key":)"
                                R"("C:\\Corvane\\Pump\\Housing.par","Value":true}]})");
         }},
        {"GetFilePath",
         [](Rig& r) {
             FileUidPathMap paths{{GUserText(L"d-1"), GUserText()}};
             return Show(r.files->GetFilePath(&paths));
         },
         {{"Execute GETFILEPATHBYUID", "E_FAIL"}}},
        {"GetContextInformation",
         [](Rig& r) {
             FileContextList contexts;
             return Show(r.files->GetContextInformation(PathList{PathA}, &contexts));
         },
         {{"Execute GETFILECONTEXTINFO", "E_FAIL"}}},
        {"GetAvailableContainers",
         [](Rig& r) {
             ContainerList containers;
             std::int32_t status = 0;
             return Show(r.files->GetAvailableContainers(&containers, &status));
         },
         {{"Execute GETAVAILABLECONTAINERS", "E_FAIL"}}},
        {"AddProjectToSync",
         [](Rig& r) {
             std::int32_t status = 0;
             return Show(r.files->AddProjectToSync(GUserText(L"urn:p:4"), &status));
         },
         {{"Execute ADDPROJECTTOSYNC", "E_FAIL"}}},
        {"GetFileAccessPermissions",
         [](Rig& r) {
             AccessPermissionMap permissions;
             return Show(r.files->GetFileAccessPermissions(PathList{PathA}, &permissions));
         },
         {{"Execute GETACCESSPERMISSIONS", "E_FAIL"}}},
        {"GenerateItemIDAndRevision",
         [](Rig& r) {
             std::int32_t count = 2;
             ItemIdRevisionList ids;
             return Show(r.files->GenerateItemIDAndRevision(GUserText(L"C:\\Corvane\\Pump"),
                                                            GUserText(L"par"), count, &ids));
         },
         {{"Execute GETNEXTID", "E_FAIL"}}},
        {"GenerateNextRevisionID",
         [](Rig& r) {
             GUserText revision;
             return Show(r.files->GenerateNextRevisionID(GUserText(L"urn:dr:7"), &revision));
         },
         {{"Execute GETNEXTREVISIONID", "E_FAIL"}}},
        {"GetProperties",
         [](Rig& r) {
             FilePropertyList properties;
             return Show(r.files->GetProperties(PathList{PathA}, {}, &properties));
         },
         {{"Execute GETPROPERTIES", "E_FAIL"}}},
        {"SetDataObject",
         [](Rig& r) {
             return Show(r.files->SetDataObject(GUserText(L"layout"), GUserText(L"{}")));
         },
         {{"Execute SETDATAOBJECT", "E_FAIL"}}},
        {"GetDesignRevisions",
         [](Rig& r) {
             PathList names;
             return Show(r.files->GetDesignRevisions(GUserText(L"Housing"), &names));
         },
         {{"Execute QUERYDESIGNREVISIONS", "E_FAIL"}}},
        {"AddChildren",
         [](Rig& r) { return Show(r.files->AddChildren(PathB, PathList{PathA})); },
         {{"Execute ADDCHILDREN", "E_FAIL"}}},
        {"RemoveChildren",
         [](Rig& r) { return Show(r.files->RemoveChildren(PathB, PathList{PathA})); },
         {{"Execute GETCHILDREN", "S_OK", Says::ExecuteLine, true},
          {"Execute REMOVECHILDREN", "E_FAIL"}}},
        {"GetChildren",
         [](Rig& r) {
             RelationMap children;
             return Show(r.files->GetChildren(PathB, &children));
         },
         {{"Execute GETCHILDREN", "E_FAIL"}}},
        {"GetCorvaneWUResults",
         [](Rig& r) {
             RelationMap whereUsed;
             return Show(r.files->GetCorvaneWUResults(PathList{PathA, PathB}, &whereUsed, false));
         },
         {{"Execute QUERYPRIMARYOBJECTS", "E_FAIL"}, {"Execute QUERYPRIMARYOBJECTS", "E_FAIL"}}},
        {"LogErrors",
         [](Rig& r) {
             std::uint32_t code = 0; // a code without a message
             return Show(r.files->LogErrors(&code));
         },
         {}},
    };
}

std::vector<Method> SessionMethods() {
    return {
        {"IsConnected",
         [](Rig& r) { return Show(r.session->IsConnected(true)); },
         {{"RegisterClient", "false", Says::RegisterLine},
          {"Execute GETCORVANEROOTFOLDERS", "true", Says::ExecuteLine, true},
          {"Execute GETSESSIONINFO", "true", Says::ExecuteLine, true},
          {"Execute GETCONNECTIONSTATUS", "false"}},
         [](Rig&) {}}, // not yet registered
        {"GetRootFolders",
         [](Rig& r) {
             RootFolderSet folders;
             return Show(r.session->GetRootFolders(&folders));
         },
         {{"Execute GETCORVANEROOTFOLDERS", "S_OK"}}},
        {"GetCurrentLoggedInUserInfo",
         [](Rig& r) {
             LoggedInUserInfo user;
             return Show(r.session->GetCurrentLoggedInUserInfo(&user));
         },
         {{"Execute GETSESSIONINFO", "S_OK"}}},
        {"IsCorvaneRunning", [](Rig& r) { return Show(r.session->IsCorvaneRunning()); }},
        {"IsCorvaneInstalled", [](Rig& r) { return Show(r.session->IsCorvaneInstalled()); }},
        {"StartCorvaneAndWaitForReadyState",
         [](Rig& r) {
             bool timedOut = true;
             return Show(r.session->StartCorvaneAndWaitForReadyState(0, &timedOut, nullptr));
         },
         {{"LaunchApplication", "false", Says::LaunchLine},
          {"DeRegisterClient", "true", Says::DeregisterLine, true},
          {"RegisterClient", "false"},
          {"Execute GETSESSIONINFO", "true", Says::ExecuteLine, true},
          {"Execute GETCONNECTIONSTATUS", "false"}},
         [](Rig& r) {
             Granted(r);
             r.connector.running = false;
         }},
        {"DeRegisterFromCorvane",
         [](Rig& r) {
             r.session->DeRegisterFromCorvane();
             return std::string("-");
         },
         {{"DeRegisterClient", "-", Says::DeregisterLine}}},
        {"IsCorvaneInOffLineMode",
         [](Rig& r) { return Show(r.session->IsCorvaneInOffLineMode()); }},
        {"GetSessionInfo",
         [](Rig& r) {
             SessionInfo info;
             return Show(r.session->GetSessionInfo(&info));
         },
         {{"Execute GETSESSIONINFO", "S_OK"}}},
    };
}

// What one run of a method did.
struct Run {
    std::string result;
    bool escaped = false;
    std::vector<std::string> calls;
    std::vector<std::wstring> errors; // severity 0 lines
    std::int64_t leaked = 0;          // core blocks left live by the call
    std::vector<std::wstring> scopes; // the scope records opened, in order
    std::ptrdiff_t closed = 0;        // and the ones closed
};

Run RunMethod(const Method& method, const std::function<void(FakeConnector&)>& arm) {
    vanto::ResetSessionStateForTesting();
    Run run;
    {
        Rig rig;
        method.prepare(rig);
        arm(rig.connector);
        const std::int64_t live = Core::MemoryManager::LiveAllocations();
        try {
            run.result = method.call(rig);
        } catch (...) {
            run.escaped = true;
        }
        run.leaked = Core::MemoryManager::LiveAllocations() - live;
        run.calls = rig.connector.calls;
        run.errors = rig.log.Messages(0);
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
Run CleanRun(const Method& method) {
    const Run clean = RunMethod(method, [](FakeConnector&) {});
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

// Every slot of the file-services interface, in order. With a session: the commands it sends
// (through the slots it calls, where it works through others); none for the inert ones. Before
// any session: it reaches the method of its name, which opens its scope record (all but
// IsFileSynchronized and LogErrors) and closes it before returning.
TEST(FileServicesSlots, EachSlotSendsTheCommandsOfItsMethodWithinItsScope) {
    for (const Method& method : FileServiceMethods()) {
        SCOPED_TRACE(method.name);
        CleanRun(method);
        Method unregistered = method;
        unregistered.prepare = [](Rig&) {};
        const auto bare = RunMethod(unregistered, [](FakeConnector&) {});
        const std::string name = method.name.substr(0, method.name.find('('));
        std::vector<std::wstring> expected;
        if (name != "IsFileSynchronized" && name != "LogErrors") {
            expected.push_back(L"VANTOManager::VANTOFileServices::" + GUserText(name).wstr());
        }
        EXPECT_EQ(expected, bare.scopes);
        EXPECT_EQ(static_cast<std::ptrdiff_t>(expected.size()), bare.closed);
    }
}

// Walks the methods; returns the number of call sites covered.
int WalkEveryCallSite(const std::vector<Method>& methods) {
    int sites = 0;
    for (const Method& method : methods) {
        SCOPED_TRACE(method.name);
        const Run clean = CleanRun(method);
        for (std::size_t index = 0; index < method.sites.size(); ++index) {
            const Site& site = method.sites[index];
            ++sites;
            for (Failure failure : {Failure::Communication, Failure::Standard, Failure::Foreign}) {
                SCOPED_TRACE("call " + std::to_string(index) + " (" + site.call + "), failure " +
                             std::to_string(static_cast<int>(failure)));
                const Run failed = RunMethod(method, [&](FakeConnector& connector) {
                    connector.FailCall(index, failure, Message);
                });
                EXPECT_FALSE(failed.escaped) << "an exception crossed the interface";
                EXPECT_EQ(site.result, failed.result);
                const std::wstring line = ExpectedLine(site.says, failure);
                EXPECT_EQ(1, std::count(failed.errors.begin(), failed.errors.end(), line))
                    << GUserText(line).Narrow();
                EXPECT_EQ(site.goesOn ? clean.calls.size() : index + 1, failed.calls.size());
                EXPECT_EQ(0, failed.leaked);
            }
        }
    }
    return sites;
}

TEST(FaultInjection, EveryConnectorCallOfEveryMethodFailsWithEachKindOfException) {
    const int fileServiceSites = WalkEveryCallSite(FileServiceMethods());
    const int sessionSites = WalkEveryCallSite(SessionMethods());
    std::cout << "fault injection: " << fileServiceSites << " file-service and " << sessionSites
              << " session call sites, three exception kinds each\n";
    ::testing::Test::RecordProperty("call_sites", fileServiceSites + sessionSites);
    EXPECT_EQ(32, fileServiceSites);
    EXPECT_EQ(13, sessionSites);
}

} // namespace
