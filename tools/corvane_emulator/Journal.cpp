#include "Journal.h"

#include "Text.h"

#include "protocol/NumberNames.h"
#include "protocol/RecordIO.h"

#include <boost/json.hpp>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace vanto::emulator {

namespace {

namespace fs = std::filesystem;
namespace json = boost::json;

constexpr const char* Schema = R"sql(
CREATE TABLE IF NOT EXISTS entries(
  seq INTEGER PRIMARY KEY, command TEXT NOT NULL, user TEXT NOT NULL, errors INTEGER NOT NULL,
  entry TEXT NOT NULL);
CREATE TABLE IF NOT EXISTS last(id INTEGER PRIMARY KEY CHECK (id = 1), seq INTEGER NOT NULL);
)sql";

// `text` as a JSON string, its plain runs appended whole.
void AppendQuoted(std::string& out, std::string_view text) {
    out += '"';
    while (!text.empty()) {
        const auto plain = std::find_if(text.begin(), text.end(), [](char c) {
            return c == '"' || c == '\\' || static_cast<unsigned char>(c) < 0x20;
        });
        const auto length = static_cast<std::size_t>(plain - text.begin());
        out.append(text.data(), length);
        if (length == text.size()) {
            break;
        }
        char escaped[8];
        const char c = text[length];
        std::snprintf(escaped, sizeof escaped, c == '"' || c == '\\' ? "\\%c" : "\\u%04x",
                      static_cast<unsigned>(c));
        out += escaped;
        text.remove_prefix(length + 1);
    }
    out += '"';
}

// The text read as JSON into `memory`; null when it is none.
json::value Parsed(std::string_view text, const json::storage_ptr& memory) {
    boost::system::error_code error;
    json::parse_options options;
    options.max_depth = vanto::protocol::MaxJsonDepth;
    json::value value =
        json::parse(json::string_view(text.data(), text.size()), error, memory, options);
    return error ? json::value(nullptr, memory) : std::move(value);
}

// A text as a value of the entry: itself, on one line, when it is JSON (which has line breaks
// only between its tokens); else as a string.
void AppendEmbedded(std::string& out, std::string_view text, const json::value& parsed) {
    if (parsed.is_null() && text != "null") {
        return AppendQuoted(out, text);
    }
    const std::size_t start = out.size();
    out += text;
    std::replace_if(
        out.begin() + static_cast<std::ptrdiff_t>(start), out.end(),
        [](char c) { return c == '\n' || c == '\r'; }, ' ');
}

// The codes of an answer's "Errors", each with its name, as a JSON array; how many.
std::size_t AppendErrors(std::string& out, const json::value& answer) {
    const json::value* list =
        answer.is_object() ? answer.get_object().if_contains("Errors") : nullptr;
    std::size_t count = 0;
    out += '[';
    for (const json::value& error :
         list != nullptr && list->is_array() ? list->get_array() : json::array()) {
        const json::value* code =
            error.is_object() ? error.get_object().if_contains("ErrorCode") : nullptr;
        if (code != nullptr && code->is_int64()) {
            const char* name = vanto::protocol::NameOf(
                vanto::protocol::ReturnCodeNames, static_cast<std::int32_t>(code->get_int64()));
            out += count++ == 0 ? R"({"Code":)" : R"(,{"Code":)";
            out += std::to_string(code->get_int64());
            out += R"(,"Name":)";
            AppendQuoted(out, name != nullptr ? name : "");
            out += '}';
        }
    }
    out += ']';
    return count;
}

std::vector<JournalEntry> Rows(Statement& row) {
    std::vector<JournalEntry> entries;
    while (row.Step()) {
        entries.push_back({row.Int(0), row.Text(1)});
    }
    return entries;
}

} // namespace

Journal::Journal(const std::string& path, std::int64_t size, std::string desktop,
                 boost::asio::io_context* io)
    : db_(path), size_(size < 1 ? 1 : size), desktop_(std::move(desktop)) {
    if (io != nullptr) {
        batch_.emplace(*io);
    }
    if (path != ":memory:") {
        db_.Execute("PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL");
    }
    db_.Execute(Schema);
    // The last number given, kept apart from the entries: a journal trimmed to nothing still
    // goes on from there.
    next_ = db_.QueryInt("SELECT seq FROM last").value_or(0) + 1;
}

void Journal::Listen(std::function<void(const JournalEntry&)> listener) {
    listeners_.push_back(std::move(listener));
}

Journal::~Journal() {
    Flush();
}

void Journal::Record(Exchange exchange) noexcept {
    try {
        waiting_.push_back(std::move(exchange));
        if (!batch_) {
            Flush();
        } else if (waiting_.size() == 1) {
            batch_->expires_after(std::chrono::milliseconds(BatchMs));
            batch_->async_wait([this](boost::system::error_code error) {
                if (!error) {
                    Flush();
                }
            });
        }
    } catch (...) {
        // Lost; the answer goes out all the same.
    }
}

void Journal::Flush() noexcept {
    if (waiting_.empty()) {
        return;
    }
    try {
        std::vector<JournalEntry> written;
        {
            Transaction transaction(db_);
            for (const Exchange& exchange : waiting_) {
                std::size_t errors = 0;
                written.push_back({next_, Entry(next_, exchange, errors)});
                db_.Run("INSERT INTO entries(seq, command, user, errors, entry) "
                        "VALUES (?, ?, ?, ?, ?)",
                        next_, exchange.command, exchange.user, static_cast<std::int64_t>(errors),
                        written.back().json);
                ++next_;
            }
            db_.Run("INSERT OR REPLACE INTO last(id, seq) VALUES (1, ?)", next_ - 1);
            db_.Run("DELETE FROM entries WHERE seq <= ?", next_ - 1 - size_);
            transaction.Commit();
        }
        waiting_.clear();
        for (const JournalEntry& entry : written) {
            for (const auto& listener : listeners_) {
                listener(entry);
            }
        }
    } catch (...) {
        // Lost, and never shown to anyone.
        waiting_.clear();
    }
}

// Written out directly rather than built as a JSON value: this runs for every operation.
std::string Journal::Entry(std::int64_t seq, const Exchange& x, std::size_t& errorCount) const {
    unsigned char buffer[8192];
    json::monotonic_resource memory(buffer, sizeof buffer);
    const json::storage_ptr storage(&memory);
    std::string requestHolder;
    std::string answerHolder;
    const std::string_view requestText = Hidden(x.request, requestHolder);
    const std::string_view answerText = Hidden(x.answer, answerHolder);
    const json::value answer = Parsed(answerText, storage);
    const std::int64_t micros = std::llround(x.durationMs * 1000);
    std::string out;
    out.reserve(requestText.size() + answerText.size() + 512);
    out += R"({"Seq":)" + std::to_string(seq);
    const auto key = [&out](const char* name) {
        out += ",\"";
        out += name;
        out += "\":";
    };
    const std::pair<const char*, std::string_view> texts[] = {{"Operation", x.operation},
                                                              {"Command", x.command},
                                                              {"Session", x.session},
                                                              {"User", x.user},
                                                              {"Desktop", desktop_}};
    key("Time");
    AppendQuoted(out, Time(x.startMs));
    key("DurationMs");
    out += std::to_string(micros / 1000) + "." + std::to_string(1000 + micros % 1000).substr(1);
    for (const auto& [name, text] : texts) {
        key(name);
        AppendQuoted(out, text);
    }
    key("Request");
    AppendEmbedded(out, requestText, Parsed(requestText, storage));
    key("Answer");
    AppendEmbedded(out, answerText, answer);
    key("Errors");
    errorCount = AppendErrors(out, answer);
    key("Fault");
    out += x.faulted ? R"({"LatencyMs":)" + std::to_string(x.latencyMs) + R"(,"FailCode":)" +
                           std::to_string(x.failCode) + "}"
                     : "null";
    return out + "}";
}

std::string_view Journal::Hidden(std::string_view text, std::string& holder) const {
    for (const std::string& hidden : hidden_) {
        for (std::size_t at = text.find(hidden); !hidden.empty() && at != std::string::npos;
             at = text.find(hidden, at)) {
            holder = std::string(text.substr(0, at)) + "(hidden)" +
                     std::string(text.substr(at + hidden.size()));
            text = holder;
        }
    }
    return text;
}

std::string Journal::Time(std::int64_t milliseconds) const {
    // Made once a second: most entries share theirs with the one before.
    if (milliseconds / 1000 != second_.first) {
        second_ = {milliseconds / 1000, IsoTimeMilliseconds(milliseconds / 1000 * 1000)};
    }
    std::string text = second_.second;
    const auto fraction = static_cast<int>(milliseconds % 1000);
    text[text.size() - 4] = static_cast<char>('0' + fraction / 100);
    text[text.size() - 3] = static_cast<char>('0' + fraction / 10 % 10);
    text[text.size() - 2] = static_cast<char>('0' + fraction % 10);
    return text;
}

std::vector<JournalEntry> Journal::Page(const JournalFilter& f) {
    Flush();
    Statement row = db_.Prepare(
        "SELECT seq, entry FROM entries WHERE (?1 = 0 OR seq < ?1) AND (?2 = '' OR command = ?2) "
        "AND (?3 = '' OR user = ?3) AND (?4 = 0 OR errors > 0) ORDER BY seq DESC LIMIT ?5");
    row.BindAll(f.before, f.command, f.user, std::int64_t{f.errorsOnly ? 1 : 0}, f.limit);
    return Rows(row);
}

std::vector<JournalEntry> Journal::After(std::int64_t seq, std::int64_t limit) {
    Flush();
    Statement row =
        db_.Prepare("SELECT seq, entry FROM entries WHERE seq > ? ORDER BY seq LIMIT ?");
    row.BindAll(seq, limit);
    return Rows(row);
}

void Journal::Export(std::ostream& out) {
    Flush();
    Statement row = db_.Prepare("SELECT seq, entry FROM entries ORDER BY seq");
    while (row.Step()) {
        out << row.Text(1) << '\n';
    }
}

void Journal::ExportFolder(const std::string& data, const std::string& file) {
    const fs::path source = fs::u8path(data) / JournalFileName;
    if (!fs::is_regular_file(source)) {
        throw std::runtime_error("no journal in " + data + " (no " + JournalFileName + ")");
    }
    Journal journal(source.u8string(), DefaultJournalSize, "");
    const fs::path target = fs::u8path(file);
    const fs::path partial = fs::u8path(file + ".partial");
    {
        std::ofstream out(partial, std::ios::binary | std::ios::trunc);
        if (out) {
            journal.Export(out);
        }
        if (!out.flush()) {
            std::error_code ignored;
            fs::remove(partial, ignored);
            throw std::runtime_error("cannot write " + file);
        }
    }
    std::error_code error;
    fs::rename(partial, target, error);
    if (error) {
        fs::remove(partial, error);
        throw std::runtime_error("cannot write " + file);
    }
}

} // namespace vanto::emulator
