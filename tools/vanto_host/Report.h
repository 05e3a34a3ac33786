// What one call of the component answered, printed as an aligned table (for people) or as one
// JSON document (for scripts), and the exit status it gives.
#pragma once

#include "Exchanges.h"

#include "com/ComBase.h"

#include <boost/json.hpp>

#include <cstdio>
#include <optional>
#include <string>
#include <vector>

namespace vanto::host {

// The program's exit status.
namespace ExitCode {
enum : int {
    Done = 0,         // the operation did what was asked
    Failed = 1,       // it failed, did none of it, or answered false
    Usage = 2,        // the command line was wrong; nothing was sent
    Partly = 3,       // done, but refused in part (the connector answered errors)
    NotConnected = 4, // no working connection to the connector: what was sent may be unknown
};
} // namespace ExitCode

// "S_OK", "E_FAIL (0x80004005)", ... or the code in hexadecimal.
std::string HResultText(HRESULT hr);

struct Column {
    std::string key;    // the JSON member
    std::string header; // the table's heading
};

class Report {
public:
    // How the rows appear in a table: one line each, or (for many wide columns) one block each,
    // headed by the first column's value.
    enum class Layout { Lines, Blocks };

    explicit Report(std::string operation) : operation_(std::move(operation)) {}

    Report& Result(HRESULT hr);
    Report& Answer(bool value);
    // A named value the call answered (JSON member `key`, table line `label`); unknown when the
    // call failed.
    Report& Field(std::string key, std::string label, boost::json::value value);
    // A named value the caller gave, shown as it is.
    Report& Given(std::string key, std::string label, boost::json::value value);
    // A protocol number the caller gave (or the call set on failure too): its name in the table,
    // the number under `key` and the name under `key` + "Name" in JSON.
    Report& Named(std::string key, std::string label, std::int32_t number, boost::json::value name);
    // The call's list; JSON member "items".
    Report& Columns(std::vector<Column> columns, Layout layout = Layout::Lines);
    Report& Row(boost::json::object row);
    // Extra JSON member with no table line (the table shows `text` instead, when given).
    Report& Member(std::string key, boost::json::value value);
    Report& Text(std::string text);

    // The rows are not the component's: every cell but the first is unknown.
    Report& Unfilled();
    // Of `asked` items, `done` were done as asked (the exit status tells all, some or none).
    Report& Done(std::size_t done, std::size_t asked);
    // Whether the connector was reached (`cause` empty) or why not: JSON "connected" and "cause".
    Report& Connection(std::string cause);
    // The connector's errors: JSON "errors", and one line each on standard error.
    Report& Errors(const std::vector<ConnectorError>& errors);
    // A line for standard error.
    Report& Note(std::string text);

    // See ExitCode.
    int ExitStatus() const;
    void PrintTable(std::FILE* out) const;
    void PrintJson(std::FILE* out) const;
    // The cause, the errors and the notes, one line each.
    void PrintProblems(std::FILE* out) const;

private:
    bool Succeeded() const;
    // The members as printed: what the call did not fill is null.
    boost::json::object Values() const;
    boost::json::array Rows() const;

    std::string operation_;
    std::optional<HRESULT> hr_;
    std::optional<bool> answer_;
    std::vector<Column> fields_;
    boost::json::object values_;
    std::vector<Column> columns_;
    Layout layout_ = Layout::Lines;
    boost::json::array rows_;
    std::string text_;
    std::vector<std::string> given_;
    bool unfilled_ = false;
    std::optional<std::pair<std::size_t, std::size_t>> done_;
    std::optional<std::string> cause_;
    std::vector<std::string> problems_;
    std::size_t refusals_ = 0;
};

// One cell as a table shows it: texts as they are ("-" when empty), yes/no, numbers, lists joined,
// "unknown" for null.
std::string CellText(const boost::json::value& value);

} // namespace vanto::host
