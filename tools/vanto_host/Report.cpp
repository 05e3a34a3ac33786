#include "Report.h"

#include "protocol/NumberNames.h"

#include <algorithm>
#include <cstdint>

namespace vanto::host {

namespace {

// Columns are measured in code points: UTF-8 continuation bytes take no room.
std::size_t DisplayWidth(const std::string& text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
        return (static_cast<unsigned char>(c) & 0xC0u) != 0x80u;
    }));
}

std::string Padded(const std::string& text, std::size_t width) {
    const std::size_t used = DisplayWidth(text);
    return used >= width ? text : text + std::string(width - used, ' ');
}

void PrintLine(std::FILE* out, const std::vector<std::string>& cells,
               const std::vector<std::size_t>& widths) {
    std::string line;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        line += i + 1 < cells.size() ? Padded(cells[i], widths[i]) + "  " : cells[i];
    }
    std::fprintf(out, "%s\n", line.c_str());
}

} // namespace

std::string HResultText(HRESULT hr) {
    char code[16];
    std::snprintf(code, sizeof code, "0x%08X", static_cast<unsigned>(hr));
    switch (static_cast<std::uint32_t>(hr)) {
    case 0x00000000u:
        return "S_OK";
    case 0x00000001u:
        return "S_FALSE";
    case 0x80004005u:
        return std::string("E_FAIL (") + code + ")";
    case 0x8007000Eu:
        return std::string("E_OUTOFMEMORY (") + code + ")";
    case 0x80070490u:
        return std::string("element not found (") + code + ")";
    case 0x8004B001u:
        return std::string("checked out to other user (") + code + ")";
    default:
        return code;
    }
}

std::string CellText(const boost::json::value& value) {
    switch (value.kind()) {
    case boost::json::kind::string: {
        const boost::json::string& text = value.get_string();
        return text.empty() ? std::string("-") : std::string(text.c_str(), text.size());
    }
    case boost::json::kind::bool_:
        return value.get_bool() ? "yes" : "no";
    case boost::json::kind::null:
        return "unknown";
    case boost::json::kind::array: {
        std::string joined;
        for (const boost::json::value& item : value.get_array()) {
            joined += (joined.empty() ? "" : ", ") + CellText(item);
        }
        return joined.empty() ? std::string("-") : joined;
    }
    default:
        return boost::json::serialize(value);
    }
}

Report& Report::Result(HRESULT hr) {
    hr_ = hr;
    return *this;
}

Report& Report::Answer(bool value) {
    answer_ = value;
    return *this;
}

Report& Report::Field(std::string key, std::string label, boost::json::value value) {
    values_[key] = std::move(value);
    fields_.push_back(Column{std::move(key), std::move(label)});
    return *this;
}

Report& Report::Given(std::string key, std::string label, boost::json::value value) {
    given_.push_back(key);
    return Field(std::move(key), std::move(label), std::move(value));
}

Report& Report::Named(std::string key, std::string label, std::int32_t number,
                      boost::json::value name) {
    Member(key, number);
    return Given(key + "Name", std::move(label), std::move(name));
}

Report& Report::Columns(std::vector<Column> columns, Layout layout) {
    columns_ = std::move(columns);
    layout_ = layout;
    return *this;
}

Report& Report::Row(boost::json::object row) {
    rows_.push_back(std::move(row));
    return *this;
}

Report& Report::Member(std::string key, boost::json::value value) {
    values_[key] = std::move(value);
    return *this;
}

Report& Report::Text(std::string text) {
    text_ = std::move(text);
    return *this;
}

Report& Report::Unfilled() {
    unfilled_ = true;
    return *this;
}

Report& Report::Done(std::size_t done, std::size_t asked) {
    done_.emplace(done, asked);
    return *this;
}

Report& Report::Connection(std::string cause) {
    cause_ = std::move(cause);
    return *this;
}

Report& Report::Errors(const std::vector<ConnectorError>& errors) {
    boost::json::array list;
    for (const ConnectorError& error : errors) {
        const char* name = protocol::NameOf(protocol::ReturnCodeNames, error.code);
        boost::json::object entry{{"code", error.code},
                                  {"name", name != nullptr ? name : ""},
                                  {"ids", boost::json::value_from(error.ids)}};
        std::string line = "error " + ReturnCodeText(error.code);
        for (std::size_t i = 0; i < error.ids.size(); ++i) {
            line += (i == 0 ? ": " : ", ") + error.ids[i];
        }
        if (!error.holder.empty()) {
            entry["holder"] = error.holder;
            line += " (held by " + error.holder + ")";
        }
        list.push_back(std::move(entry));
        problems_.push_back(std::move(line));
        ++refusals_;
    }
    return Member("errors", std::move(list));
}

Report& Report::Note(std::string text) {
    problems_.push_back(std::move(text));
    return *this;
}

bool Report::Succeeded() const {
    return (!hr_ || *hr_ == S_OK) && (!answer_ || *answer_) && (!cause_ || cause_->empty());
}

int Report::ExitStatus() const {
    if (cause_ && !cause_->empty()) {
        return ExitCode::NotConnected;
    }
    if (done_) {
        const auto [done, asked] = *done_;
        if (done == 0 && asked > 0) {
            return ExitCode::Failed;
        }
        if (done < asked) {
            return ExitCode::Partly;
        }
    }
    // A success the connector refused something in: the component passed over its errors.
    if (Succeeded() && refusals_ > 0) {
        return ExitCode::Partly;
    }
    return Succeeded() ? ExitCode::Done : ExitCode::Failed;
}

boost::json::object Report::Values() const {
    boost::json::object values = values_;
    const bool filled = (!hr_ || *hr_ == S_OK) && (!cause_ || cause_->empty());
    for (const Column& field : fields_) {
        if (!filled && std::find(given_.begin(), given_.end(), field.key) == given_.end()) {
            values[field.key] = nullptr;
        }
    }
    if (cause_) {
        values["connected"] = cause_->empty();
        if (!cause_->empty()) {
            values["cause"] = *cause_;
        }
    }
    return values;
}

boost::json::array Report::Rows() const {
    if (!unfilled_ && (!cause_ || cause_->empty())) {
        return rows_;
    }
    boost::json::array rows = rows_;
    for (boost::json::value& row : rows) {
        for (auto& cell : row.get_object()) {
            if (columns_.empty() || cell.key() != columns_.front().key) {
                cell.value() = nullptr;
            }
        }
    }
    return rows;
}

void Report::PrintProblems(std::FILE* out) const {
    if (cause_ && !cause_->empty()) {
        std::fprintf(out, "vanto_host: not connected: %s\n", cause_->c_str());
    }
    for (const std::string& problem : problems_) {
        std::fprintf(out, "vanto_host: %s\n", problem.c_str());
    }
}

void Report::PrintTable(std::FILE* out) const {
    std::string result = "done";
    if (hr_) {
        result = HResultText(*hr_);
    } else if (answer_) {
        result = *answer_ ? "true" : "false";
    }
    std::fprintf(out, "%s: %s\n", operation_.c_str(), result.c_str());

    const boost::json::object values = Values();
    const boost::json::array rows = Rows();
    std::size_t labelWidth = 0;
    for (const Column& field : fields_) {
        labelWidth = std::max(labelWidth, DisplayWidth(field.header));
    }
    for (const Column& field : fields_) {
        std::fprintf(out, "  %s  %s\n", Padded(field.header, labelWidth).c_str(),
                     CellText(values.at(field.key)).c_str());
    }

    if (!columns_.empty() && !rows.empty()) {
        std::vector<std::vector<std::string>> cells;
        for (const boost::json::value& row : rows) {
            std::vector<std::string> line;
            for (const Column& column : columns_) {
                const boost::json::value* cell = row.get_object().if_contains(column.key);
                line.push_back(cell != nullptr ? CellText(*cell) : std::string("-"));
            }
            cells.push_back(std::move(line));
        }
        if (layout_ == Layout::Lines) {
            std::vector<std::string> headers;
            std::vector<std::size_t> widths;
            for (const Column& column : columns_) {
                headers.push_back(column.header);
                widths.push_back(DisplayWidth(column.header));
            }
            for (const std::vector<std::string>& line : cells) {
                for (std::size_t i = 0; i < line.size(); ++i) {
                    widths[i] = std::max(widths[i], DisplayWidth(line[i]));
                }
            }
            PrintLine(out, headers, widths);
            for (const std::vector<std::string>& line : cells) {
                PrintLine(out, line, widths);
            }
        } else {
            std::size_t width = 0;
            for (std::size_t i = 1; i < columns_.size(); ++i) {
                width = std::max(width, DisplayWidth(columns_[i].header));
            }
            for (const std::vector<std::string>& line : cells) {
                std::fprintf(out, "%s\n", line[0].c_str());
                for (std::size_t i = 1; i < line.size(); ++i) {
                    std::fprintf(out, "  %s  %s\n", Padded(columns_[i].header, width).c_str(),
                                 line[i].c_str());
                }
            }
        }
    }
    if (!text_.empty()) {
        std::fprintf(out, "%s", text_.c_str());
    }
}

void Report::PrintJson(std::FILE* out) const {
    boost::json::object document;
    document["operation"] = operation_;
    if (hr_) {
        document["result"] = HResultText(*hr_);
        document["hresult"] = static_cast<std::uint32_t>(*hr_);
    } else if (answer_) {
        document["result"] = *answer_;
    }
    for (const auto& member : Values()) {
        document[member.key()] = member.value();
    }
    if (!columns_.empty()) {
        document["items"] = Rows();
    }
    std::fprintf(out, "%s\n", boost::json::serialize(document).c_str());
}

} // namespace vanto::host
