// vanto_host run as a person or a script runs it: a separate process, against the component's
// real path and a running emulator (example workspace: Ada Byrne signed in, Ben Okafor holds
// housing.psm). What it prints, as a table and as JSON, and its exit status.
#include "os/ChildProcess.h"
#include "os/Paths.h"
#include "os/Process.h"
#include "os/TextConversion.h"
#include "protocol/Numbers.h"
#include "support/DriveRoot.h"
#include "support/EmulatorProcess.h"

#include <boost/json.hpp>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <regex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace {

using testsupport::EmulatorProcess;

std::string HostProgram() {
#ifdef _WIN32
    return platform::os::WideToUtf8(platform::os::ModuleDirectory()) + "\\vanto_host.exe";
#else
    return VANTO_HOST_PROGRAM;
#endif
}

struct HostRun {
    int status = -1;
    std::string out;
    std::string err;

    // The one JSON document a --json call prints.
    boost::json::object Json() const {
        boost::system::error_code error;
        const boost::json::value value = boost::json::parse(out, error);
        EXPECT_FALSE(error) << out;
        return !error && value.is_object() ? value.get_object() : boost::json::object();
    }
    bool Shows(const std::string& pattern) const {
        return std::regex_search(out, std::regex(pattern));
    }
};

// Windows programs end their lines with CR LF; the checks are about what the lines say.
std::string Lines(const std::string& text) {
    return std::regex_replace(text, std::regex("\r\n"), "\n");
}

HostRun Host(const std::vector<std::string>& arguments) {
    const platform::os::ProgramRun run = platform::os::RunProgram(HostProgram(), arguments, 60000);
    EXPECT_TRUE(run.started && run.finished);
    return HostRun{run.exitCode, Lines(run.out), Lines(run.err)};
}

std::string Text(const boost::json::value& value) {
    return value.is_string() ? std::string(value.get_string()) : boost::json::serialize(value);
}

// Where a step's pattern is looked for.
enum Where { InOutput, InErrors, NotInOutput };

// One run of the program: its arguments, the exit status it must give and, when given, a pattern
// that its standard output or standard error must (or must not) contain, and one that its
// standard error must contain.
struct Step {
    std::vector<std::string> arguments;
    int status;
    std::string pattern = "";
    Where where = InOutput;
    std::string said = "";
};

// Runs the steps in their order: later ones see what earlier ones changed.
void RunSteps(const std::vector<Step>& steps) {
    for (const Step& step : steps) {
        std::string command;
        for (const std::string& argument : step.arguments) {
            command += " " + argument;
        }
        SCOPED_TRACE("vanto_host" + command);
        const HostRun run = Host(step.arguments);
        EXPECT_EQ(step.status, run.status) << run.err;
        const std::string& stream = step.where == InErrors ? run.err : run.out;
        const bool found = std::regex_search(stream, std::regex(step.pattern));
        EXPECT_EQ(step.where != NotInOutput, found) << step.pattern << " in:\n" << stream;
        EXPECT_TRUE(std::regex_search(run.err, std::regex(step.said))) << step.said << " in:\n"
                                                                       << run.err;
    }
}

// ---- usage errors: no component needed ---------------------------------------------------------

TEST(HostCliUsage, EveryKindOfBadInvocationIsAUsageErrorNamingTheProblem) {
    // A path that is no text: bytes that are not UTF-8 here, an unpaired surrogate on Windows.
    const std::string notText = "\xED\xA0\x80";
    const std::pair<std::vector<std::string>, const char*> cases[] = {
        {{}, "A subcommand is required"},
        {{"chekout", "a.par"}, "unknown subcommand 'chekout'"},
        {{"checkout"}, "PATH is required"},
        {{"children", "add", "parent.asm"}, "CHILD is required"},
        {{"next-id", "folder"}, "EXTENSION is required"},
        {{"status", "a.par", "b.par"}, "not expected"},
        {{"status", notText}, "PATH: not UTF-8 text"},
        {{"status", ""}, "a path cannot be empty"},
        {{"next-id", "folder", "par", "--count", "many"}, "count"},
        // What the component's types cannot carry is refused before anything is sent.
        {{"next-id", "folder", "par", "--count", "0"}, "--count: Value 0 not in range 1 to 1000"},
        {{"next-id", "folder", "par", "--count", "1001"}, "not in range 1 to 1000"},
        {{"error-text", "-1"}, "CODE"},
        {{"start", "--timeout", "-1"}, "--timeout"},
        {{"--call-timeout", "0", "roots"}, "--call-timeout"}};
    for (const auto& [arguments, says] : cases) {
        const HostRun run = Host(arguments);
        EXPECT_EQ(2, run.status) << run.err;
        EXPECT_NE(std::string::npos, run.err.find(says)) << run.err;
        EXPECT_TRUE(run.out.empty()) << run.out;
    }
    // A module that cannot be loaded is a failure, not a usage error.
    RunSteps({{{"--module", "no-such-module.bin", "roots"},
               1,
               "cannot load no-such-module.bin",
               InErrors},
              {{"--json", "--module", "no-such-module.bin", "load"}, 1}});
}

TEST(HostCliUsage, HelpListsEveryOperationAndTheExitStatuses) {
    const std::pair<std::vector<std::string>, std::string> helps[] = {
        {{"--help"}, "0 1 2 3 4"},
        {{"--help"},
         "connect start session roots user running installed offline deregister checkout checkin "
         "lock-status status monitored valid synchronized newer new-revision stamp path-of context "
         "download attach revisions containers sync-project permissions next-id next-revision "
         "properties set-data error-text children where-used tree load"},
        {{"children", "--help"}, "list add remove"}};
    for (const auto& [arguments, names] : helps) {
        const HostRun help = Host(arguments);
        EXPECT_EQ(0, help.status);
        std::istringstream list(names);
        for (std::string name; list >> name;) {
            EXPECT_TRUE(help.Shows("\n  " + name + " ")) << name;
        }
    }
}

TEST(HostCliUsage, AMockInputReadAsEmptyIsToldOnce) {
    testsupport::ScopedDriveRoot drive;
    std::string deep;
    for (int level = 0; level < 300; ++level) {
        deep += "<a>";
    }
    // Each input in turn; the first is none at all.
    const std::pair<std::string, const char*> inputs[] = {
        {"", "cannot be read"},
        {"<Input><File></Input", "is malformed \\(line 1: "},
        {deep, "nests elements more than 256 deep"}};
    for (const auto& [xml, says] : inputs) {
        if (!xml.empty()) {
            drive.Write(L"Z:\\PDM\\VANTO\\Dev\\VANTOInput.xml", xml);
        }
        RunSteps({{{"--mock", "roots"},
                   0,
                   "",
                   InOutput,
                   std::string("^vanto_host: mock input .*") + says + ".*\n$"}});
    }
}

// ---- against the emulator ---------------------------------------------------------------------

class HostCli : public ::testing::Test {
protected:
    void SetUp() override {
        emulator = std::make_unique<EmulatorProcess>();
        shaft = Doc("Gearbox/Shaft/shaft.par");
        housing = Doc("Gearbox/housing.psm");
        cover = Doc("Gearbox/cover.par");
        assembly = Doc("Gearbox/gearbox.asm");
    }
    void TearDown() override { emulator.reset(); }

    std::string Doc(const char* relative) const {
        return platform::os::WideToUtf8(emulator->Document(relative));
    }
    // What the emulator's control is asked to do must succeed.
    void Control(const std::string& request) const {
        const std::string answer = emulator->Control(request);
        ASSERT_NE(std::string::npos, answer.find("\"Ok\":true")) << answer;
    }
    // Another user acting on one document; the emulator's answer.
    std::string AsOtherUser(const char* action, const std::string& path) const {
        return emulator->Control(boost::json::serialize(
            boost::json::object{{"Action", action}, {"User", "Ben Okafor"}, {"Path", path}}));
    }

    std::unique_ptr<EmulatorProcess> emulator;
    // Documents of the example workspace.
    std::string shaft, housing, cover, assembly;
};

TEST_F(HostCli, LoadAndSessionOperationsAnswerFromTheSignedInDesktop) {
    const boost::json::object json = Host({"--json", "load"}).Json();
    EXPECT_EQ("S_OK", Text(json.at("result")));
    EXPECT_EQ(8u, json.at("items").as_array().size());
    RunSteps({{{"load"}, 0, "DllGetClassObject +found\n[^]*\nmock file services +S_OK\n"},
              {{"connect"}, 0, "^IsConnected: true\n$"},
              {{"start", "--timeout", "2000"}, 0},
              {{"running"}, 0},
              {{"installed"}, 0},
              {{"offline"}, 1, "^IsCorvaneInOffLineMode: false\n$"},
              {{"session"}, 0, "\n  user +Ada Byrne\n[^]*\n  e-mail +ada\\.byrne@example\\.com\n"},
              {{"--json", "session"},
               0,
               R"(^\{"operation":"GetSessionInfo",.*"authenticatedUserName":"Ada Byrne")"},
              {{"user"}, 0, "e-mail +ada\\.byrne@example\\.com"},
              {{"deregister"}, 0},
              // The log, asked for, goes to standard error with severity and source; the table is
              // unchanged.
              {{"--log", "connect"},
               0,
               "^IsConnected: true\n$",
               InOutput,
               R"(\[info\] VANTO: Corvane Session Id is : )"}});
    const boost::json::object roots = Host({"--json", "roots"}).Json();
    ASSERT_EQ(1u, roots.at("items").as_array().size());
    EXPECT_EQ(emulator->WorkspaceFolder(), Text(roots.at("items").at(0).at("folder")));
}

TEST_F(HostCli, CheckOutNamesTheHolderOfALockedPartAndCheckInReleasesIt) {
    // Done in part, then none of it.
    RunSteps({{{"checkout", shaft, housing}, 3, "shaft\\.par +yes +yes +Ada Byrne +checked out\n"},
              {{"checkout", housing},
               1,
               "housing\\.psm +yes +no +Ben Okafor +refused: held by Ben Okafor\n"}});
    // Ada's lock, seen by another user, and by the lock and status queries.
    EXPECT_NE(std::string::npos, AsOtherUser("lock", shaft).find("locked by Ada Byrne"));
    RunSteps({{{"--json", "lock-status", "--new-version", shaft},
               0,
               R"("result":"S_OK",.*"items":\[\{"path":"[^"]*","checkedOut":true,"checkedOutByMe":)"
               R"(true,"checkedOutBy":"Ada Byrne","newVersionAvailable":false\}\])"},
              {{"status", shaft}, 0, "newer version +no\n"},
              {{"--json", "checkin", shaft}, 0, R"(^\{"operation":"CheckIn",)"},
              {{"--json", "lock-status", shaft}, 0, R"("checkedOut":false)"},
              // Another user's lock cannot be released by Ada.
              {{"checkin", housing}, 1}});

    // A second host process on a second desktop sharing the cloud, signed in as Ben.
    EmulatorProcess::Options options;
    options.user = L"Ben Okafor";
    options.cloudOf = emulator.get();
    options.current = false;
    const EmulatorProcess ben(options);
    const std::string bens = platform::os::WideToUtf8(ben.DataFolder());
    RunSteps(
        {{{"checkout", shaft}, 0},
         {{"--json", "--data", bens, "checkout", shaft}, 1, R"("outcome":"refused: held by Ada)"},
         {{"--data", bens, "checkin", shaft}, 1},
         {{"checkin", shaft}, 0},
         {{"--data", bens, "checkout", shaft}, 0, "Ben Okafor +checked out\n"}});
}

TEST_F(HostCli, IdentityQuestionsAnswerTrueWithZeroAndFalseWithOne) {
    const std::string outside = emulator->WorkspaceFolder() + "-elsewhere/x.par";
    RunSteps({{{"monitored", shaft, outside}, 0, "shaft\\.par +yes\n"},
              {{"monitored", shaft, outside}, 0, "x\\.par +no\n"},
              {{"valid", shaft}, 0},
              {{"valid", outside}, 1, "^IsValidCorvaneFile: false\n"},
              {{"synchronized", shaft}, 0},
              {{"new-revision", shaft}, 1},
              {{"newer", shaft}, 1}});
    // A new version saved in the cloud by another user is detected.
    EXPECT_NE(std::string::npos, AsOtherUser("save", shaft).find("\"Ok\":true"));
    RunSteps({{{"--json", "newer", shaft}, 0, R"("result":true)"}});

    const boost::json::object stamp = Host({"--json", "stamp", shaft}).Json();
    const std::string documentId = Text(stamp.at("items").at(0).at("documentId"));
    ASSERT_FALSE(documentId.empty());
    const HostRun path = Host({"path-of", documentId});
    EXPECT_EQ(0, path.status);
    EXPECT_NE(std::string::npos, path.out.find(shaft)) << path.out;
    RunSteps({{{"context", shaft}, 0, "\n  document id +" + documentId + "\n"},
              {{"--json", "context", shaft}, 0, R"("collaborationSpaceId":"CS-DRIVES")"}});
}

TEST_F(HostCli, ContainersNumberingPropertiesAndDataObjects) {
    using namespace vanto::protocol;
    const std::string gearbox = Doc("Gearbox");
    RunSteps(
        {{{"containers"}, 0, "\nGearbox +yes "},
         // A project not yet synchronised is listed with --all, with its URN, and without
         // once it is.
         {{"containers"}, 0, "\nPump ", NotInOutput},
         {{"containers", "--all"}, 0, "\nPump +no +- +PRJ-PUMP +urn:corvane:project:PRJ-PUMP "},
         {{"sync-project", "urn:corvane:project:PRJ-PUMP"}, 0, "\n  task +TASK-[0-9]+\n"},
         {{"--json", "containers"},
          0,
          R"("items":\[\{"containerName":"Gearbox"[^\]]*\},)"
          R"(\{"containerName":"Pump"[^\]]*\}\])"},
         {{"sync-project", "urn:no-such-project"}, 1},
         {{"sync-project", "PRJ-GEARBOX"},
          1,
          "",
          InOutput,
          "error 102 ContainerAlreadySynchronized"},
         {{"--json", "permissions", cover},
          0,
          R"("permission":)" + std::to_string(Permission::Read) + R"(,"permissionName":"read"\})"},
         {{"--json", "next-id", gearbox, "par", "--count", "2"},
          0,
          R"("items":\[\{[^\]{]*\},\{[^\]{]*\}\])"},
         // Refused by the component.
         {{"next-id", gearbox, ""}, 1},
         {{"--json", "next-revision", assembly}, 0, R"("result":"S_OK",.*"revision":"[^"])"},
         {{"properties", cover, "--name", "Title"},
          0,
          "component +Title +text +Inspection cover\n"},
         {{"properties", cover, "--name", "Title"}, 0, "Material", NotInOutput},
         {{"set-data", "key-1", "{\"a\":1}"}, 0},
         {{"revisions", "Gearbox"}, 0, "\nGearbox +B +\\S+ +gearbox\\.asm\n"},
         {{"download", cover}, 0},
         {{"attach", cover, "--revision", "A"}, 0},
         {{"--log", "error-text", std::to_string(ReturnCode::ObjectLocked)},
          0,
          "\\[error\\]",
          InErrors},
         {{"error-text", std::to_string(ReturnCode::UnsupportedFileType)},
          0,
          "\n  name +UnsupportedFileType\n"}});
}

TEST_F(HostCli, StructureAsListTreeWhereUsedAndGraph) {
    const std::string shaftAssembly = Doc("Gearbox/Shaft/shaft-assembly.asm");
    const std::string bearing = Doc("Gearbox/Shaft/bearing.par");
    RunSteps(
        {{{"children", "list", assembly}, 0, "shaft-assembly\\.asm +\\S+\n"},
         {{"children", "list", assembly}, 0, "cover\\.par +\\S+\n"},
         {{"tree", assembly},
          0,
          "\n(├|└)─ \\S*shaft-assembly\\.asm\n(│|  )  (├|└)─ \\S*bearing\\.par\n"},
         {{"tree", "--dot", assembly}, 0, "^digraph \"tree\" \\{\n"},
         {{"tree", "--dot", assembly}, 0, "gearbox\\.asm\" -> \"\\S*shaft-assembly\\.asm\";\n"},
         // A document met twice is marked, not walked again: the cover under the shaft assembly.
         {{"children", "add", shaftAssembly, cover}, 0},
         {{"tree", assembly}, 0, "cover\\.par  \\(again, see above\\)\n"},
         {{"--json", "tree", assembly},
          0,
          R"(^\{"operation":"[^"]*",.*"trees":\[\{"path":"[^"]*gearbox\.asm")"},
         {{"children", "remove", shaftAssembly, cover}, 0},
         {{"tree", assembly}, 0, "again", NotInOutput},
         {{"where-used", housing}, 0, "gearbox\\.asm +\\S+\n"},
         {{"where-used", "--drawings", housing}, 0, "housing\\.dft"},
         {{"where-used", "--drawings", housing}, 0, "gearbox\\.asm", NotInOutput},
         {{"where-used", "--tree", bearing}, 0, "shaft-assembly\\.asm\n +└─ \\S*gearbox\\.asm\n"},
         {{"where-used", "--dot", bearing},
          0,
          "shaft-assembly\\.asm\" -> \"\\S*bearing\\.par\";\n"}});
}

TEST_F(HostCli, TheConnectorsRefusalsAreToldWithTheirCodeAndHolder) {
    const std::string missing = Doc("Gearbox/missing.par");
    RunSteps({{{"lock-status", housing, missing},
               1,
               "housing\\.psm +unknown +unknown +unknown\n",
               InOutput,
               "error 8 ObjectNotFoundInModel: \\S*missing\\.par"},
              {{"checkout", cover}, 1, "cover\\.par .* refused: 12 AccessDenied\n"},
              // A success of the component's that passed over the connector's refusal.
              {{"status", missing}, 3, "", InOutput, "error 8 ObjectNotFoundInModel"},
              {{"checkout", shaft}, 0},
              {{"--json", "checkin", shaft, housing},
               3,
               R"("errors":\[\{"code":13,"name":"ObjectLocked","ids":\["[^"]*housing\.psm"\],)"
               R"("holder":"Ben Okafor"\}\],"connected":true,)"},
              {{"checkin", housing},
               1,
               "housing\\.psm +unknown +unknown\n",
               InOutput,
               "error 13 ObjectLocked: \\S*housing\\.psm \\(held by Ben Okafor\\)\n"}});
}

TEST_F(HostCli, WithoutAWorkingConnectionCommandsSayWhyAndExitWithFour) {
    const std::wstring endpoint = emulator->DataFolder() + L"/endpoint.json";
    std::string saved;
    ASSERT_TRUE(platform::os::ReadWholeFile(endpoint, saved));
    const Corvane::Endpoint reached = emulator->Endpoint();
    const std::string port = std::to_string(reached.port);
    // The connector's state (a control action, or the endpoint file's text), and what a command
    // says in it.
    const std::pair<std::string, Step> states[] = {
        {R"({"Action":"offline"})",
         {{"connect"},
          4,
          "^IsConnected: false\n$",
          InOutput,
          "the connector is offline \\(6 Offline\\)"}},
        {R"({"Action":"online"})", {{"connect"}, 0}},
        {R"({"Action":"signout"})",
         {{"--json", "session"},
          4,
          R"("authenticatedUserName":null,.*"connected":false,"cause":"no user is signed in)"}},
        {R"({"Action":"signin"})",
         {{"--no-connect", "session"}, 4, "", InOutput, "did not register"}},
        {R"({"Port":)" + port + R"(,"Secret":"wrong"})",
         {{"roots"}, 4, "", InOutput, "not connected: Corvane connector: handshake refused"}},
        {R"({"Port":1,"Secret":"s"})", {{"roots"}, 4, "", InOutput, "no endpoint \\(port 1: "}},
        {R"({"Port":)", {{"session"}, 4, "user +unknown\n", InOutput, "no readable file"}},
        {saved, {{"lock-status", shaft}, 0, "shaft\\.par +no +no +-\n"}}};
    for (const auto& [state, step] : states) {
        if (state.find("Action") != std::string::npos) {
            Control(state);
        } else {
            std::ofstream(std::filesystem::path(endpoint), std::ios::trunc) << state;
        }
        RunSteps({step});
    }
    // No answer within the call's time: what the lock call did is unknown; the same when the
    // connector is ended while the call waits.
    Control(R"({"Action":"fault","Command":"LOCKDESIGNREVISIONS","LatencyMs":1500,"Times":2})");
    RunSteps({{{"--call-timeout", "300", "checkout", shaft},
               4,
               "shaft\\.par +unknown +unknown +unknown +unknown\n",
               InOutput,
               "time-out[^]*whether it changed the locks is unknown; 'vanto_host lock-status"}});
    HostRun killed;
    std::thread waiting([&] { killed = Host({"checkout", cover}); });
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    emulator->Kill();
    waiting.join();
    EXPECT_EQ(4, killed.status) << killed.err;
    EXPECT_TRUE(killed.Shows("cover\\.par +unknown +unknown +unknown +unknown\n")) << killed.out;
    EXPECT_NE(std::string::npos, killed.err.find("lost connection")) << killed.err;
    RunSteps(
        {{{"checkout", cover}, 4, "^CheckOut: E_FAIL \\(0x80004005\\)\n", InOutput, "no endpoint"},
         // The mock needs no connector.
         {{"--mock", "connect"}, 0}});
}

} // namespace
