// corvane_emulator: the connector emulator and its control commands.
//
//   corvane_emulator serve --workspace examples/workspace      serve, data in the user's folder
//   corvane_emulator status | documents | locks | ...          ask the running emulator
//   corvane_emulator dashboard --open                          open its page in the browser
//   corvane_emulator journal --export FILE                     its journal as JSON Lines
//
// `corvane_emulator --help` lists everything.
#include "Dashboard.h"
#include "Handler.h"
#include "Journal.h"
#include "Server.h"

#include "connector/ConnectorLink.h"
#include "connector/CorvaneClient.h"
#include "connector/EmulatorConnector.h"
#include "os/Browser.h"
#include "os/Console.h"
#include "os/FileLock.h"
#include "os/Os.h"
#include "os/Service.h"
#include "os/TextConversion.h"

#include <CLI/CLI.hpp>
#include <boost/json.hpp>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>

namespace {

namespace fs = std::filesystem;
namespace json = boost::json;
using namespace vanto::emulator;

// Where the component looks for it: VANTO_CORVANE_DATA, else the user's data folder.
std::string DefaultDataFolder() {
    const std::wstring folder = Corvane::EmulatorConnector::DataFolder();
    return folder.empty() ? "corvane-emulator" : platform::os::WideToUtf8(folder);
}

struct ServeOptions {
    std::string data;
    std::string endpointFile;
    std::string cloud;
    bool memory = false;
    std::uint16_t port = 0;
    std::uint16_t dashboardPort = 0;
    std::int64_t journalSize = DefaultJournalSize;
    std::string user;
    Workspace workspace;
};

// The workspace given on the command line is remembered in the database, so that a later start
// (and a reset) without one uses the same.
void RememberWorkspace(Store& store, Workspace& workspace) {
    const std::pair<const char*, std::string*> keys[] = {
        {"workspace.folder", &workspace.folder},
        {"workspace.import", &workspace.importFile},
        {"workspace.root", &workspace.clientRoot}};
    Transaction transaction = store.Begin();
    const bool given = !workspace.folder.empty() || !workspace.importFile.empty();
    for (const auto& [key, value] : keys) {
        if (given) {
            store.RememberSetting(key, *value);
        } else {
            *value = store.Setting(key);
        }
    }
    transaction.Commit();
}

// Returns the secret of the endpoint it wrote.
std::string ServeUntilStopped(ServeOptions& options, EventLog& log) {
    Workspace& workspace = options.workspace;
    // Two desktops (two emulators, each with its user and data folder) may share one cloud.
    Store store(options.memory          ? ":memory:"
                : options.cloud.empty() ? options.data + "/corvane.db"
                                        : fs::absolute(fs::u8path(options.cloud)).u8string());
    store.ReportLongWaits([&log](std::chrono::milliseconds waited) {
        log.Write("waited " + std::to_string(waited.count()) + " ms for a turn to write to " +
                  "the database");
    });
    RememberWorkspace(store, workspace);
    HandlerOptions handlerOptions;
    if (!options.user.empty()) {
        handlerOptions.user = options.user;
    }
    handlerOptions.workspace = workspace;
    handlerOptions.dataFolder = options.data;
    Handler handler(store, handlerOptions, log);

    boost::asio::io_context io(1);
    Server server(io, handler, log, options.port);
    // Each desktop keeps its own journal, beside its endpoint file.
    Journal journal(options.memory ? ":memory:" : options.data + "/" + JournalFileName,
                    options.journalSize, handlerOptions.user + " (" + options.data + ")", &io);
    journal.Hide(server.Secret());
    handler.SetJournal(&journal);
    Dashboard dashboard(
        io, handler, store, journal,
        {options.dashboardPort, handlerOptions.user + " (" + options.data + ")",
         options.cloud.empty() ? "" : fs::absolute(fs::u8path(options.cloud)).u8string()});
    const platform::os::StopRequests stopRequests(io, [&io] { io.stop(); });
    server.WriteEndpointFile(options.endpointFile, {{"DashboardPort", dashboard.Port()},
                                                    {"DashboardToken", dashboard.Token()}});
    const std::string serving = "serving " +
                                (workspace.folder.empty() ? "(no workspace)" : workspace.folder) +
                                " on 127.0.0.1:" + std::to_string(server.Port()) + " as \"" +
                                handlerOptions.user + "\"; data in " + options.data;
    // The address with its token goes to the console only, never to the log.
    std::printf("corvane_emulator: %s\ndashboard: %s\n", serving.c_str(), dashboard.Url().c_str());
    std::fflush(stdout);
    log.Write("start, process " + std::to_string(platform::os::CurrentProcessId()) + ", " +
              serving);
    io.run();
    return server.Secret();
}

int Serve(ServeOptions options) {
    fs::create_directories(fs::u8path(options.data));
    fs::permissions(fs::u8path(options.data), fs::perms::owner_all, fs::perm_options::replace);
    // Held while this process lives: one emulator per data folder.
    const platform::os::FileLock lock(platform::os::Utf8ToWide(options.data + "/emulator.lock"));
    if (!lock.Held()) {
        std::fprintf(stderr, "corvane_emulator: another emulator (process %lu) serves %s\n",
                     lock.HolderId(), options.data.c_str());
        return 1;
    }
    if (options.endpointFile.empty()) {
        options.endpointFile = options.data + "/endpoint.json";
    }
    Workspace& workspace = options.workspace;
    if (!workspace.folder.empty()) {
        workspace.folder = fs::absolute(fs::u8path(workspace.folder)).lexically_normal().u8string();
        while (workspace.folder.size() > 1 &&
               (workspace.folder.back() == '/' || workspace.folder.back() == '\\')) {
            workspace.folder.pop_back();
        }
        const std::string guess = workspace.folder + "/corvane-import.json";
        if (workspace.importFile.empty() && fs::exists(fs::u8path(guess))) {
            workspace.importFile = guess;
        }
    }
    if (!workspace.importFile.empty()) {
        workspace.importFile = fs::absolute(fs::u8path(workspace.importFile)).u8string();
    }

    EventLog log(options.data + "/" + LogFileName);
    try {
        const std::string secret = ServeUntilStopped(options, log);
        // Only now, with the database closed and its journal files gone, so that whoever waits
        // for this file to disappear finds the data folder settled.
        Server::RemoveEndpointFile(options.endpointFile, secret);
        log.Write("stop");
    } catch (const std::exception& error) {
        log.Write(std::string("cannot serve: ") + error.what());
        throw;
    }
    return 0;
}

// The running emulator's dashboard address, from its endpoint file; opened in the browser too
// when asked.
int ShowDashboard(const std::string& endpointFile, bool open) {
    std::ifstream file(fs::u8path(endpointFile), std::ios::binary);
    const std::string text((std::istreambuf_iterator<char>(file)),
                           std::istreambuf_iterator<char>());
    boost::system::error_code error;
    const json::value endpoint = json::parse(text, error);
    const json::object* object = error ? nullptr : endpoint.if_object();
    if (object == nullptr || !object->contains("DashboardPort") ||
        !object->contains("DashboardToken")) {
        std::fprintf(stderr,
                     "corvane_emulator: no emulator with a dashboard is running (no "
                     "endpoint in %s)\n",
                     endpointFile.c_str());
        return 2;
    }
    const std::string url = "http://127.0.0.1:" + json::serialize(object->at("DashboardPort")) +
                            "/?token=" + std::string(object->at("DashboardToken").as_string());
    std::printf("%s\n", url.c_str());
    if (open && !platform::os::OpenInBrowser(url)) {
        std::fprintf(stderr, "corvane_emulator: cannot open a browser; open the address above\n");
        return 1;
    }
    return 0;
}

int Control(const std::string& endpointFile, const json::object& request) {
    const auto endpoint = Corvane::ReadEndpointFile(platform::os::Utf8ToWide(endpointFile));
    if (!endpoint) {
        std::fprintf(stderr, "corvane_emulator: no emulator is running (no endpoint in %s)\n",
                     endpointFile.c_str());
        return 2;
    }
    try {
        Corvane::ConnectorLink link(std::chrono::seconds(30));
        const std::string answer = link.Call(*endpoint, "control", json::serialize(request));
        std::printf("%s\n", answer.c_str());
        boost::system::error_code error;
        const json::value value = json::parse(answer, error);
        const json::object* object = error ? nullptr : value.if_object();
        if (object != nullptr && object->contains("Ok") && object->at("Ok") == true) {
            return 0;
        }
        // A request wrong in itself is a usage error, as the command line's own are.
        return object != nullptr && object->contains("BadRequest") ? 2 : 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "corvane_emulator: %s\n", error.what());
        return 2;
    }
}

int ExportJournal(const std::string& data, const std::string& file) {
    try {
        Journal::ExportFolder(data, file);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "corvane_emulator: %s\n", error.what());
        return 2;
    }
}

} // namespace

int main(int argc, char** argv) {
    CLI::App app{"Corvane connector emulator: serves the connector's protocol on this machine, "
                 "with its state in SQLite",
                 "corvane_emulator"};
    app.require_subcommand(1);

    ServeOptions serve;
    serve.data = DefaultDataFolder();
    CLI::App* serveCommand =
        app.add_subcommand("serve", "Serve until stopped (Ctrl+C, SIGTERM, stop)");
    serveCommand->add_option("--data", serve.data, "Data folder (database and endpoint file)")
        ->capture_default_str();
    serveCommand->add_option("--workspace", serve.workspace.folder,
                             "Folder whose CAD files become documents at the first start");
    serveCommand->add_option("--import", serve.workspace.importFile,
                             "Import file (default: corvane-import.json in the workspace)");
    serveCommand->add_option("--client-root", serve.workspace.clientRoot,
                             "The workspace folder as clients name it (e.g. a Wine path)");
    serveCommand->add_option("--user", serve.user, "User signed in at this desktop");
    serveCommand->add_flag("--memory", serve.memory, "Keep the database in memory");
    serveCommand->add_option(
        "--cloud", serve.cloud,
        "Database file, shared with other desktops (default: DATA/corvane.db)");
    serveCommand->add_option("--port", serve.port, "Port (default: chosen by the system)");
    serveCommand->add_option("--endpoint-file", serve.endpointFile,
                             "Where to write port and secret (default: DATA/endpoint.json)");
    serveCommand->add_option("--dashboard-port", serve.dashboardPort,
                             "The dashboard's port (default: chosen by the system)");
    serveCommand
        ->add_option("--journal-size", serve.journalSize, "Journal entries kept (the newest)")
        ->check(CLI::Range(std::int64_t{1}, std::int64_t{100000000}))
        ->capture_default_str();

    std::string data = DefaultDataFolder();
    std::string endpointFile;
    json::object request;
    const auto control = [&](const char* name, const char* help) {
        CLI::App* command = app.add_subcommand(name, help);
        command->add_option("--data", data, "Data folder of the running emulator");
        command->add_option("--endpoint-file", endpointFile, "Endpoint file of the emulator");
        command->callback([&request, name] { request["Action"] = name; });
        return command;
    };
    control("status", "User, online state, counts of documents, locks and sessions");
    control("documents", "Every document with its version and lock");
    control("locks", "Locked documents");
    std::string user;
    std::string path;
    for (const char* action : {"lock", "unlock", "save"}) {
        CLI::App* command = control(action, "Act as another user on one document ("
                                            "save: a new version in the cloud)");
        command->add_option("--user", user, "The other user")->required();
        command->add_option("path", path, "The document's path as clients name it")->required();
        command->callback([&, action] {
            request["Action"] = action;
            request["User"] = user;
            request["Path"] = path;
        });
    }
    control("offline", "Lose the cloud: GETCONNECTIONSTATUS answers code 6");
    control("online", "Get the cloud back");
    control("signout", "Sign the user out: every command answers code 3");
    control("signin", "Sign the user in again");
    std::string command;
    std::int64_t latency = 0;
    std::int64_t failCode = 0;
    std::int64_t times = 0;
    CLI::App* fault = control("fault", "Delay or fail one command, until the emulator stops "
                                       "(a restart has no faults; status lists them)");
    fault->add_option("command", command, "The command, e.g. LOCKDESIGNREVISIONS")->required();
    fault->add_option("--latency", latency, "Milliseconds before the command runs and answers");
    fault->add_option("--fail", failCode, "Answer with this error code instead");
    fault->add_option("--times", times, "Only this many times (0: until cleared)");
    fault->callback([&] {
        request = {{"Action", "fault"},
                   {"Command", command},
                   {"LatencyMs", latency},
                   {"FailCode", failCode},
                   {"Times", times}};
    });
    control("clear-faults", "Remove every delay and failure");
    control("reset", "Empty the database and import the workspace again");
    control("stop", "Stop serving");

    bool open = false;
    CLI::App* dashboardCommand =
        app.add_subcommand("dashboard", "Print the address of the running emulator's dashboard");
    dashboardCommand->add_option("--data", data, "Data folder of the running emulator");
    dashboardCommand->add_option("--endpoint-file", endpointFile, "Endpoint file of the emulator");
    dashboardCommand->add_flag("--open", open, "Open it in the browser too");
    std::string exportFile;
    CLI::App* journalCommand = app.add_subcommand(
        "journal", "The journal of a data folder, whether or not its emulator runs");
    journalCommand->add_option("--data", data, "Data folder");
    journalCommand->add_option("--export", exportFile, "Write it here as JSON Lines, oldest first")
        ->required();

    std::vector<std::string> arguments = platform::os::Utf8Arguments(argc, argv);
    std::reverse(arguments.begin(), arguments.end());
    arguments.pop_back(); // the program's own name
    try {
        app.parse(arguments);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
            return app.exit(error);
        }
        // CLI11 takes a word that names no subcommand for a missing one; say which word.
        const std::vector<std::string> left = app.remaining();
        const std::string problem = app.get_subcommands().empty() && !left.empty()
                                        ? "unknown subcommand '" + left.front() + "'"
                                        : error.what();
        std::fprintf(stderr, "corvane_emulator: %s\nRun 'corvane_emulator --help' for more.\n",
                     problem.c_str());
        return 2;
    }
    try {
        if (serveCommand->parsed()) {
            return Serve(serve);
        }
        if (journalCommand->parsed()) {
            return ExportJournal(data, exportFile);
        }
        endpointFile = endpointFile.empty() ? data + "/endpoint.json" : endpointFile;
        if (dashboardCommand->parsed()) {
            return ShowDashboard(endpointFile, open);
        }
        return Control(endpointFile, request);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "corvane_emulator: %s\n", error.what());
        return 1;
    }
}
