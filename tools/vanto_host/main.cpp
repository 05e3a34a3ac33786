// vanto_host: the component driven from the command line, loaded exactly as a host loads it. One
// subcommand per operation of the session and file-services interfaces; `vanto_host --help` lists
// them and the exit statuses (Report.h, ExitCode).
#include "Component.h"
#include "Host.h"

#include "os/Console.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <limits>
#include <string>
#include <vector>

namespace {

constexpr const char* ExitCodesText =
    "Exit status:\n"
    "  0  done as asked (S_OK, true)\n"
    "  1  failed, none of it done, or false\n"
    "  2  usage error: nothing was sent\n"
    "  3  done, but refused in part (the errors are on standard error)\n"
    "  4  not connected to the connector (not reached, offline, signed out) or it did not\n"
    "     answer: what a lock or unlock changed is then unknown";

struct Options {
    bool mock = false;
    bool json = false;
    bool log = false;
    bool noConnect = false;
    int callTimeout = 0;
    std::string module;
    std::string data;
};

void AddLoadCommand(CLI::App& app, vanto::host::Runner& chosen) {
    vanto::host::AddCommand(
        app, "load", "load the module and report each step and interface (no operation)",
        vanto::host::Needs::Nothing, chosen, [](vanto::host::Host&) { return 0; });
}

// The subcommands given so far, as typed: " children add".
std::string CommandPath(const CLI::App& app) {
    std::string path;
    for (const CLI::App* command = &app;;) {
        const auto given = command->get_subcommands();
        if (given.empty()) {
            return path;
        }
        command = given.front();
        path += " " + command->get_name();
    }
}

// CLI11 reports a word that names no subcommand as a missing subcommand; say what it was.
std::string UsageProblem(const CLI::App& app, const CLI::ParseError& error) {
    const CLI::App* command = &app;
    while (!command->get_subcommands().empty()) {
        command = command->get_subcommands().front();
    }
    // The word may be left over on the command or, when the command takes no positionals, on
    // the program.
    std::vector<std::string> left = command->remaining();
    if (left.empty()) {
        left = app.remaining();
    }
    if (command->get_require_subcommand_min() > 0 && command->get_subcommands().empty() &&
        !left.empty()) {
        return "unknown subcommand '" + left.front() + "'";
    }
    return error.what();
}

} // namespace

int main(int argc, char** argv) {
    using namespace vanto::host;
    const std::vector<std::string> arguments = platform::os::Utf8Arguments(argc, argv);

    CLI::App app{"Drives the VANTO component as a host does: one subcommand per operation.\n"
                 "Paths are the host's (for example Z:\\PDM\\Root\\bracket.par).",
                 "vanto_host"};
    app.set_version_flag("--version", std::string("vanto_host ") + VANTO_VERSION);
    app.require_subcommand(1, 1);
    app.fallthrough();
    Options options;
    app.add_flag("--mock", options.mock, "use the mock interfaces (answers from the XML input)");
    app.add_option("--module", options.module,
                   "the component to load (default: beside this program)")
        ->check(PathCheck());
    app.add_flag("--json", options.json, "print one JSON document per call instead of a table");
    app.add_flag("--log", options.log, "show the component's log records on standard error");
    app.add_option("--data", options.data,
                   "data folder of the connector emulator to reach (sets VANTO_CORVANE_DATA)")
        ->check(PathCheck());
    app.add_flag("--no-connect", options.noConnect,
                 "do not register with the connector before a command that needs the session");
    app.add_option("--call-timeout", options.callTimeout,
                   "milliseconds each call to the connector may take (default 10000; sets "
                   "VANTO_CORVANE_TIMEOUT_MS)")
        ->check(CLI::Range(1, std::numeric_limits<int>::max()));
    app.footer(ExitCodesText);

    Runner chosen;
    AddLoadCommand(app, chosen);
    AddSessionCommands(app, chosen);
    AddFileCommands(app, chosen);
    AddStructureCommands(app, chosen);

    try {
        std::vector<std::string> reversed(
            arguments.size() > 0 ? arguments.begin() + 1 : arguments.end(), arguments.end());
        std::reverse(reversed.begin(), reversed.end());
        app.parse(reversed);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
            return app.exit(error);
        }
        std::fprintf(stderr, "vanto_host: %s\nRun 'vanto_host%s --help' for more information.\n",
                     UsageProblem(app, error).c_str(), CommandPath(app).c_str());
        return ExitCode::Usage;
    }

    if (options.log) {
        const bool colour = platform::os::PrepareTerminal(platform::os::StandardStream::Error);
        platform::os::SetRuntimeEnvironmentValue("VANTO_HOST_LOG",
                                                 colour ? "stderr:colour" : "stderr");
    }
    if (!options.data.empty()) {
        platform::os::SetRuntimeEnvironmentValue("VANTO_CORVANE_DATA", options.data);
    }
    if (options.callTimeout > 0) {
        platform::os::SetRuntimeEnvironmentValue("VANTO_CORVANE_TIMEOUT_MS",
                                                 std::to_string(options.callTimeout));
    }
    platform::os::PrepareTerminal(platform::os::StandardStream::Output);
    if (options.module.empty()) {
        options.module = DefaultModulePath(arguments.empty() ? std::string() : arguments[0]);
    }

    ConnectorTrace trace;
    Component component(options.module, options.mock);
    Host host(component, trace, options.mock, options.json ? Output::Json : Output::Table);
    if (app.got_subcommand("load")) {
        return host.Print(component.LoadReport());
    }
    if (!component.Ready()) {
        std::fprintf(stderr, "vanto_host: %s\n", component.Error().c_str());
        return ExitCode::Failed;
    }
    if (options.mock) {
        if (const std::string problem = MockInputProblem(); !problem.empty()) {
            std::fprintf(stderr, "vanto_host: %s\n", problem.c_str());
        }
    }
    if (options.noConnect) {
        host.SkipRegistration();
    }
    try {
        return chosen(host);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "vanto_host: %s\n", error.what());
        return ExitCode::Failed;
    }
}
