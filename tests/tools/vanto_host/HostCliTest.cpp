// vanto_host run as a person or a script runs it: a separate process, against the component's
// real path and a running emulator (example workspace: Ada Byrne signed in, Ben Okafor holds
// housing.psm). What it prints, as a table and as JSON, and its exit status.
#include "os/ChildProcess.h"
#include "os/Process.h"
#include "os/TextConversion.h"
#include "support/EmulatorProcess.h"

#include <boost/json.hpp>
#include <gtest/gtest.h>

#include <memory>
#include <regex>
#include <string>
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
std::string Lines(std::string text) {
    std::string lines;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\r' || i + 1 >= text.size() || text[i + 1] != '\n') {
            lines += text[i];
        }
    }
    return lines;
}

HostRun Host(const std::vector<std::string>& arguments) {
    const platform::os::ProgramRun run = platform::os::RunProgram(HostProgram(), arguments, 60000);
    EXPECT_TRUE(run.started && run.finished);
    return HostRun{run.exitCode, Lines(run.out), Lines(run.err)};
}

std::string Text(const boost::json::value& value) {
    return value.is_string() ? std::string(value.get_string()) : boost::json::serialize(value);
}

// ---- usage errors: no component needed ---------------------------------------------------------

struct BadInvocation {
    std::vector<std::string> arguments;
    const char* says;
};

TEST(HostCliUsage, EveryKindOfBadInvocationIsAUsageErrorNamingTheProblem) {
    // A path that is no text: bytes that are not UTF-8 here, an unpaired surrogate on Windows.
    const std::string notText = "\xED\xA0\x80";
    const BadInvocation cases[] = {{{}, "A subcommand is required"},
                                   {{"chekout", "a.par"}, "unknown subcommand 'chekout'"},
                                   {{"checkout"}, "PATH is required"},
                                   {{"children", "bogus"}, "unknown subcommand 'bogus'"},
                                   {{"children", "add", "parent.asm"}, "CHILD is required"},
                                   {{"next-id", "folder"}, "EXTENSION is required"},
                                   {{"status", "a.par", "b.par"}, "not expected"},
                                   {{"--colour", "roots"}, "not expected"},
                                   {{"status", notText}, "PATH: not UTF-8 text"},
                                   {{"where-used", "ok.par", notText}, "not UTF-8 text"},
                                   {{"status", ""}, "a path cannot be empty"},
                                   {{"next-id", "folder", "par", "--count", "many"}, "count"}};
    for (const BadInvocation& bad : cases) {
        const HostRun run = Host(bad.arguments);
        EXPECT_EQ(2, run.status) << run.err;
        EXPECT_NE(std::string::npos, run.err.find(bad.says)) << run.err;
        EXPECT_TRUE(run.out.empty()) << run.out;
    }
}

TEST(HostCliUsage, HelpListsEveryOperationAndVersionIsPrinted) {
    const HostRun help = Host({"--help"});
    EXPECT_EQ(0, help.status);
    for (const char* name :
         {"connect",      "start",       "session",      "roots",         "user",
          "running",      "installed",   "offline",      "deregister",    "checkout",
          "checkin",      "lock-status", "status",       "monitored",     "valid",
          "synchronized", "newer",       "new-revision", "stamp",         "path-of",
          "context",      "download",    "attach",       "revisions",     "containers",
          "sync-project", "permissions", "next-id",      "next-revision", "properties",
          "set-data",     "error-text",  "children",     "where-used",    "tree",
          "load"}) {
        EXPECT_TRUE(help.Shows(std::string("\n  ") + name + " ")) << name;
    }
    const HostRun children = Host({"children", "--help"});
    EXPECT_EQ(0, children.status);
    for (const char* name : {"list", "add", "remove"}) {
        EXPECT_TRUE(children.Shows(std::string("\n  ") + name + " ")) << name;
    }
}

TEST(HostCliUsage, AModuleThatCannotBeLoadedIsAFailureNotAUsageError) {
    const HostRun run = Host({"--module", "no-such-module.bin", "roots"});
    EXPECT_EQ(1, run.status);
    EXPECT_NE(std::string::npos, run.err.find("cannot load no-such-module.bin")) << run.err;
    const HostRun load = Host({"--json", "--module", "no-such-module.bin", "load"});
    EXPECT_EQ(1, load.status);
}

// ---- against the emulator ---------------------------------------------------------------------

class HostCli : public ::testing::Test {
protected:
    void SetUp() override {
        if (!EmulatorProcess::Available()) {
            GTEST_SKIP() << "this build has no emulator program to start";
        }
        emulator = std::make_unique<EmulatorProcess>();
    }
    void TearDown() override { emulator.reset(); }

    std::string Doc(const char* relative) const {
        return platform::os::WideToUtf8(emulator->Document(relative));
    }
    // One document as the emulator's control names it.
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
};

TEST_F(HostCli, LoadReportsEveryStepAndInterface) {
    const HostRun table = Host({"load"});
    EXPECT_EQ(0, table.status);
    EXPECT_TRUE(table.Shows("DllGetClassObject +found\n"));
    EXPECT_TRUE(table.Shows("mock file services +S_OK\n"));
    const boost::json::object json = Host({"--json", "load"}).Json();
    EXPECT_EQ("S_OK", Text(json.at("result")));
    EXPECT_EQ(8u, json.at("items").as_array().size());
}

TEST_F(HostCli, SessionOperationsAnswerFromTheSignedInDesktop) {
    const HostRun connect = Host({"connect"});
    EXPECT_EQ(0, connect.status) << connect.err;
    EXPECT_EQ("IsConnected: true\n", connect.out);
    EXPECT_EQ(0, Host({"start", "--timeout", "2000"}).status);
    EXPECT_EQ(0, Host({"running"}).status);
    EXPECT_EQ(0, Host({"installed"}).status);
    const HostRun offline = Host({"offline"});
    EXPECT_EQ(1, offline.status);
    EXPECT_EQ("IsCorvaneInOffLineMode: false\n", offline.out);

    const HostRun session = Host({"session"});
    EXPECT_EQ(0, session.status);
    EXPECT_TRUE(session.Shows("\n  user +Ada Byrne\n"));
    EXPECT_TRUE(session.Shows("\n  e-mail +ada\\.byrne@example\\.com\n"));
    const boost::json::object info = Host({"--json", "session"}).Json();
    EXPECT_EQ("GetSessionInfo", Text(info.at("operation")));
    EXPECT_EQ("Ada Byrne", Text(info.at("authenticatedUserName")));

    const boost::json::object roots = Host({"--json", "roots"}).Json();
    ASSERT_EQ(1u, roots.at("items").as_array().size());
    EXPECT_EQ(emulator->WorkspaceFolder(), Text(roots.at("items").at(0).at("folder")));
    const HostRun user = Host({"user"});
    EXPECT_EQ(0, user.status);
    EXPECT_TRUE(user.Shows("e-mail +ada\\.byrne@example\\.com"));
    EXPECT_EQ(0, Host({"deregister"}).status);

    // The log, asked for, goes to standard error with severity and source; the table is unchanged.
    const HostRun logged = Host({"--log", "connect"});
    EXPECT_EQ(connect.out, logged.out);
    EXPECT_NE(std::string::npos, logged.err.find("[info] VANTO: Corvane Session Id is : "));

    // Signed out: not connected, and every command that needs the session says so.
    Control(R"({"Action":"signout"})");
    const HostRun refused = Host({"connect"});
    EXPECT_EQ(1, refused.status);
    EXPECT_EQ("IsConnected: false\n", refused.out);
}

TEST_F(HostCli, CheckOutNamesTheHolderOfALockedPartAndCheckInReleasesIt) {
    const std::string shaft = Doc("Gearbox/Shaft/shaft.par");
    const std::string housing = Doc("Gearbox/housing.psm");
    const HostRun out = Host({"checkout", shaft, housing});
    EXPECT_EQ(0, out.status) << out.err;
    EXPECT_TRUE(out.Shows("shaft\\.par +yes +yes +Ada Byrne +checked out\n")) << out.out;
    EXPECT_TRUE(out.Shows("housing\\.psm +yes +no +Ben Okafor +refused: held by Ben Okafor\n"))
        << out.out;

    // Ada's lock, seen by another user, and by the lock and status queries.
    EXPECT_NE(std::string::npos, AsOtherUser("lock", shaft).find("locked by Ada Byrne"));
    const boost::json::object locks =
        Host({"--json", "lock-status", "--new-version", shaft}).Json();
    EXPECT_EQ("S_OK", Text(locks.at("result")));
    const boost::json::value& row = locks.at("items").at(0);
    EXPECT_EQ(true, row.at("checkedOut"));
    EXPECT_EQ(true, row.at("checkedOutByMe"));
    EXPECT_EQ("Ada Byrne", Text(row.at("checkedOutBy")));
    EXPECT_EQ(false, row.at("newVersionAvailable"));
    const HostRun status = Host({"status", shaft});
    EXPECT_EQ(0, status.status);
    EXPECT_TRUE(status.Shows("newer version +no\n"));

    const HostRun in = Host({"--json", "checkin", shaft});
    EXPECT_EQ(0, in.status) << in.err;
    EXPECT_EQ("CheckIn", Text(in.Json().at("operation")));
    const boost::json::object after = Host({"--json", "lock-status", shaft}).Json();
    EXPECT_EQ(false, after.at("items").at(0).at("checkedOut"));
    // Another user's lock cannot be released by Ada.
    EXPECT_EQ(1, Host({"checkin", housing}).status);
}

// Two host processes on two desktops sharing the cloud, each signed in as its own user.
using EmulatorHosts = HostCli;

TEST_F(EmulatorHosts, TheSecondUsersCheckOutNamesTheHolderUntilTheFirstChecksIn) {
    EmulatorProcess::Options options;
    options.user = L"Ben Okafor";
    options.cloudOf = emulator.get();
    options.current = false;
    EmulatorProcess ben(options);
    const std::string bens = platform::os::WideToUtf8(ben.DataFolder());
    const std::string shaft = Doc("Gearbox/Shaft/shaft.par");

    EXPECT_EQ(0, Host({"checkout", shaft}).status);
    const HostRun refused = Host({"--data", bens, "checkout", shaft});
    EXPECT_EQ(0, refused.status) << refused.err; // a lock held elsewhere is no failure
    EXPECT_TRUE(refused.Shows("shaft\\.par +yes +no +Ada Byrne +refused: held by Ada Byrne\n"))
        << refused.out;
    const boost::json::object json = Host({"--json", "--data", bens, "checkout", shaft}).Json();
    EXPECT_EQ("refused: held by Ada Byrne", Text(json.at("items").at(0).at("outcome")));
    EXPECT_EQ(1, Host({"--data", bens, "checkin", shaft}).status);
    EXPECT_EQ(0, Host({"checkin", shaft}).status);
    EXPECT_TRUE(Host({"--data", bens, "checkout", shaft}).Shows("Ben Okafor +checked out\n"));
}

TEST_F(HostCli, IdentityQuestionsAnswerTrueWithZeroAndFalseWithOne) {
    const std::string shaft = Doc("Gearbox/Shaft/shaft.par");
    const std::string outside = emulator->WorkspaceFolder() + "-elsewhere/x.par";
    const HostRun monitored = Host({"monitored", shaft, outside});
    EXPECT_EQ(0, monitored.status);
    EXPECT_TRUE(monitored.Shows("shaft\\.par +yes\n"));
    EXPECT_TRUE(monitored.Shows("x\\.par +no\n"));
    EXPECT_EQ(0, Host({"valid", shaft}).status);
    const HostRun invalid = Host({"valid", outside});
    EXPECT_EQ(1, invalid.status);
    EXPECT_TRUE(invalid.Shows("^IsValidCorvaneFile: false\n"));
    EXPECT_EQ(0, Host({"synchronized", shaft}).status);
    EXPECT_EQ(1, Host({"new-revision", shaft}).status);

    // A new version saved in the cloud by another user is detected.
    EXPECT_EQ(1, Host({"newer", shaft}).status);
    EXPECT_NE(std::string::npos, AsOtherUser("save", shaft).find("\"Ok\":true"));
    const HostRun newer = Host({"--json", "newer", shaft});
    EXPECT_EQ(0, newer.status);
    EXPECT_EQ(true, newer.Json().at("result"));

    const boost::json::object stamp = Host({"--json", "stamp", shaft}).Json();
    const std::string documentId = Text(stamp.at("items").at(0).at("documentId"));
    EXPECT_FALSE(documentId.empty());
    const HostRun path = Host({"path-of", documentId});
    EXPECT_EQ(0, path.status);
    EXPECT_NE(std::string::npos, path.out.find(shaft)) << path.out;

    const HostRun context = Host({"context", shaft});
    EXPECT_EQ(0, context.status);
    EXPECT_TRUE(context.Shows("\n  document id +" + documentId + "\n")) << context.out;
    const boost::json::object contextJson = Host({"--json", "context", shaft}).Json();
    EXPECT_EQ("CS-DRIVES", Text(contextJson.at("items").at(0).at("collaborationSpaceId")));
}

TEST_F(HostCli, ContainersNumberingPropertiesAndDataObjects) {
    const std::string cover = Doc("Gearbox/cover.par");
    const HostRun containers = Host({"containers"});
    EXPECT_EQ(0, containers.status);
    EXPECT_TRUE(containers.Shows("\nGearbox ")) << containers.out;
    EXPECT_FALSE(containers.Shows("\nPump "));
    // A project not yet synchronised is listed once it is.
    EXPECT_EQ(0, Host({"sync-project", "PRJ-PUMP"}).status);
    const boost::json::object list = Host({"--json", "containers"}).Json();
    ASSERT_EQ(2u, list.at("items").as_array().size());
    EXPECT_EQ("Pump", Text(list.at("items").at(1).at("containerName")));
    EXPECT_EQ(1, Host({"sync-project", "urn:no-such-project"}).status);

    const boost::json::object permissions = Host({"--json", "permissions", cover}).Json();
    EXPECT_EQ(1, permissions.at("items").at(0).at("permission").to_number<int>());

    const HostRun ids = Host({"next-id", Doc("Gearbox"), "par", "--count", "2"});
    EXPECT_EQ(0, ids.status) << ids.err;
    EXPECT_EQ(2u, Host({"--json", "next-id", Doc("Gearbox"), "par", "--count", "2"})
                      .Json()
                      .at("items")
                      .as_array()
                      .size());
    EXPECT_EQ(1, Host({"next-id", Doc("Gearbox"), ""}).status); // refused by the component
    const boost::json::object next =
        Host({"--json", "next-revision", Doc("Gearbox/gearbox.asm")}).Json();
    EXPECT_EQ("S_OK", Text(next.at("result")));
    EXPECT_FALSE(Text(next.at("revision")).empty());

    const HostRun properties = Host({"properties", cover, "--name", "Title"});
    EXPECT_EQ(0, properties.status);
    EXPECT_TRUE(properties.Shows("Title +[0-9]+ +Inspection cover\n")) << properties.out;
    EXPECT_FALSE(properties.Shows("Material"));

    EXPECT_EQ(0, Host({"set-data", "key-1", "{\"a\":1}"}).status);
    const boost::json::object revisions = Host({"--json", "revisions", "Gearbox"}).Json();
    EXPECT_EQ("S_OK", Text(revisions.at("result")));
    EXPECT_EQ(0, Host({"download", cover}).status);
    EXPECT_EQ(0, Host({"attach", cover, "--revision", "A"}).status);
    const HostRun code = Host({"--log", "error-text", "13"});
    EXPECT_EQ(0, code.status);
    EXPECT_NE(std::string::npos, code.err.find("[error]")) << code.err;
}

TEST_F(HostCli, StructureAsListTreeWhereUsedAndGraph) {
    const std::string gearbox = Doc("Gearbox/gearbox.asm");
    const HostRun children = Host({"children", "list", gearbox});
    EXPECT_EQ(0, children.status);
    EXPECT_TRUE(children.Shows("shaft-assembly\\.asm +\\S+\n"));
    EXPECT_TRUE(children.Shows("cover\\.par +\\S+\n"));

    const HostRun tree = Host({"tree", gearbox});
    EXPECT_EQ(0, tree.status);
    EXPECT_TRUE(tree.Shows("\n(├|└)─ \\S*shaft-assembly\\.asm\n(│|  )  (├|└)─ \\S*bearing\\.par\n"))
        << tree.out;
    const HostRun dot = Host({"tree", "--dot", gearbox});
    EXPECT_EQ(0, dot.status);
    EXPECT_TRUE(dot.Shows("^digraph \"tree\" \\{\n"));
    EXPECT_TRUE(dot.Shows("gearbox\\.asm\" -> \"\\S*shaft-assembly\\.asm\";\n"));

    // A document met twice is marked, not walked again: the cover put under the shaft assembly.
    const std::string shaftAssembly = Doc("Gearbox/Shaft/shaft-assembly.asm");
    const std::string cover = Doc("Gearbox/cover.par");
    EXPECT_EQ(0, Host({"children", "add", shaftAssembly, cover}).status);
    const HostRun twice = Host({"tree", gearbox});
    EXPECT_TRUE(twice.Shows("cover\\.par  \\(again, see above\\)\n")) << twice.out;
    const boost::json::object json = Host({"--json", "tree", gearbox}).Json();
    EXPECT_EQ("gearbox.asm", Text(json.at("trees").at(0).at("path")).substr(gearbox.size() - 11));
    EXPECT_EQ(0, Host({"children", "remove", shaftAssembly, cover}).status);
    EXPECT_FALSE(Host({"tree", gearbox}).Shows("again"));

    const HostRun used = Host({"where-used", Doc("Gearbox/housing.psm")});
    EXPECT_EQ(0, used.status);
    EXPECT_TRUE(used.Shows("gearbox\\.asm +\\S+\n")) << used.out;
    const HostRun drawings = Host({"where-used", "--drawings", Doc("Gearbox/housing.psm")});
    EXPECT_FALSE(drawings.Shows("gearbox\\.asm"));
    EXPECT_TRUE(drawings.Shows("housing\\.dft"));
    const HostRun upward = Host({"where-used", "--tree", Doc("Gearbox/Shaft/bearing.par")});
    EXPECT_TRUE(upward.Shows("shaft-assembly\\.asm\n +└─ \\S*gearbox\\.asm\n")) << upward.out;
    const HostRun graph = Host({"where-used", "--dot", Doc("Gearbox/Shaft/bearing.par")});
    EXPECT_TRUE(graph.Shows("shaft-assembly\\.asm\" -> \"\\S*bearing\\.par\";\n")) << graph.out;
}

TEST_F(HostCli, WithoutAConnectorSessionCommandsGiveTheirNotConnectedResult) {
    Control(R"({"Action":"stop"})");
    const HostRun connect = Host({"connect"});
    EXPECT_EQ(1, connect.status);
    const HostRun checkout = Host({"checkout", Doc("Gearbox/cover.par")});
    EXPECT_EQ(1, checkout.status);
    EXPECT_TRUE(checkout.Shows("^CheckOut: E_FAIL \\(0x80004005\\)\n"));
    EXPECT_NE(std::string::npos, checkout.err.find("not connected")) << checkout.err;
    // The mock needs no connector.
    EXPECT_EQ(0, Host({"--mock", "connect"}).status);
}

} // namespace
