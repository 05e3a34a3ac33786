// What a subcommand runs against: the loaded component's two interfaces, the output settings,
// the implicit registration with the connector, and progress on standard error.
#pragma once

#include "Component.h"
#include "Exchanges.h"
#include "Report.h"

#include "host/GUserText.h"
#include "protocol/NumberNames.h"

#include <CLI/CLI.hpp>

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace vanto::host {

enum class Output { Table, Json };

class Host {
public:
    // The trace outlives the component, whose release still calls the connector.
    Host(Component& component, ConnectorTrace& trace, bool mock, Output output)
        : component_(component), trace_(trace), mock_(mock), output_(output) {}

    IVANTOSession& Session() { return component_.Session(); }
    IVANTOFileServices& Files() { return component_.Files(); }
    bool Mock() const noexcept { return mock_; }

    // A host registers with the connector before its first command (IsConnected(false)); each run
    // of this program is a new process, so a command that needs the session does it first. Not
    // done on the mock, which needs no session, nor with --no-connect.
    void Register();
    void SkipRegistration() { skipRegistration_ = true; }

    // What the connector was asked and answered so far in this run.
    const Exchanges& Sent();

    // Prints the report as asked, with whether the connector was reached and its errors (on
    // standard error too), and gives its exit status.
    int Print(Report report);
    // The same with the report's own output left out (its problems and exit status only).
    int Conclude(Report report);

private:
    // Whether the connector was reached, and its errors.
    void Diagnose(Report& report);

    Component& component_;
    ConnectorTrace& trace_;
    bool mock_;
    Output output_;
    bool skipRegistration_ = false;
    bool sessionNeeded_ = false;
    Exchanges sent_;
};

// "where-used 120/3000" on standard error while work that sends many commands goes on, when
// standard error is a terminal; nothing otherwise. The line is cleared when it is destroyed.
class Progress {
public:
    Progress(std::string what, std::size_t total);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    void Step();

private:
    std::string what_;
    std::size_t total_;
    std::size_t done_ = 0;
    bool shown_;
};

// Texts between the command line (UTF-8), the interfaces and JSON.
inline GUserText Wide(const std::string& text) {
    return GUserText(std::string_view(text));
}
PathList WideList(const std::vector<std::string>& texts);
inline boost::json::value Json(const GUserText& text) {
    return boost::json::value(text.Narrow());
}
inline boost::json::value Json(const std::string& text) {
    return boost::json::value(boost::json::string_view(text));
}

// A protocol number by its name in `names`, or as the number when it has none.
template <std::size_t N>
boost::json::value NumberText(const protocol::NumberName (&names)[N], std::int32_t number) {
    const char* name = protocol::NameOf(names, number);
    return Json(name != nullptr ? std::string(name) : std::to_string(number));
}
// A protocol number in a row: the number under `key`, its name under `key` + "Name" (the member
// a table column shows).
template <std::size_t N>
void PutNamed(boost::json::object& row, const std::string& key, std::int32_t number,
              const protocol::NumberName (&names)[N]) {
    row[key] = number;
    row[key + "Name"] = NumberText(names, number);
}

// ---- subcommands -------------------------------------------------------------------------------

using Runner = std::function<int(Host&)>;

// Whether a subcommand needs the connector session (registers first) or not.
enum class Needs { Nothing, Session };

// Adds a subcommand that, when it is the one given, sets `chosen` to `run`.
CLI::App* AddCommand(CLI::App& parent, const std::string& name, const std::string& help,
                     Needs needs, Runner& chosen, Runner run);

// Checks of arguments: any text must be UTF-8; a path must also be non-empty and free of control
// characters.
const CLI::Validator& TextCheck();
const CLI::Validator& PathCheck();

// Adds a required positional argument taking one or more paths.
CLI::Option* AddPaths(CLI::App& command, std::vector<std::string>& paths,
                      const std::string& name = "PATH", const std::string& help = "file path");

void AddSessionCommands(CLI::App& app, Runner& chosen);
void AddFileCommands(CLI::App& app, Runner& chosen);
void AddStructureCommands(CLI::App& app, Runner& chosen);

} // namespace vanto::host
