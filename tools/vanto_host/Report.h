// What one call of the component answered, printed as an aligned table (for people) or as one
// JSON document (for scripts), and the exit status it gives.
#pragma once

#include "com/ComBase.h"

#include <boost/json.hpp>

#include <cstdio>
#include <optional>
#include <string>
#include <vector>

namespace vanto::host {

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
    // A named value of the call (JSON member `key`, table line `label`).
    Report& Field(std::string key, std::string label, boost::json::value value);
    // The call's list; JSON member "items".
    Report& Columns(std::vector<Column> columns, Layout layout = Layout::Lines);
    Report& Row(boost::json::object row);
    // Extra JSON member with no table line (the table shows `text` instead, when given).
    Report& Member(std::string key, boost::json::value value);
    Report& Text(std::string text);

    // 0 for S_OK, true or a call without a result; 1 otherwise.
    int ExitStatus() const;
    void PrintTable(std::FILE* out) const;
    void PrintJson(std::FILE* out) const;

private:
    std::string operation_;
    std::optional<HRESULT> hr_;
    std::optional<bool> answer_;
    std::vector<Column> fields_;
    boost::json::object values_;
    std::vector<Column> columns_;
    Layout layout_ = Layout::Lines;
    boost::json::array rows_;
    std::string text_;
};

// One cell as a table shows it: texts as they are ("-" when empty), yes/no, numbers, lists joined.
std::string CellText(const boost::json::value& value);

} // namespace vanto::host
