#include "Journal.h"

#include "Text.h"

#include "protocol/NumberNames.h"
#include "protocol/RecordIO.h"

#include <boost/json.hpp>

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

// A text as JSON when it is some, else as a string.
json::value Parsed(std::string_view text) {
    boost::system::error_code error;
    json::parse_options options;
    options.max_depth = vanto::protocol::MaxJsonDepth;
    json::value value =
        json::parse(json::string_view(text.data(), text.size()), error, {}, options);
    return error ? json::value(json::string_view(text.data(), text.size())) : value;
}

// The codes of an answer's "Errors", each with its name.
json::array Errors(const json::value& answer) {
    json::array errors;
    const json::value* list =
        answer.is_object() ? answer.get_object().if_contains("Errors") : nullptr;
    if (list == nullptr || !list->is_array()) {
        return errors;
    }
    for (const json::value& error : list->get_array()) {
        const json::value* code =
            error.is_object() ? error.get_object().if_contains("ErrorCode") : nullptr;
        if (code != nullptr && code->is_int64()) {
            const char* name = vanto::protocol::NameOf(
                vanto::protocol::ReturnCodeNames, static_cast<std::int32_t>(code->get_int64()));
            errors.push_back({{"Code", code->get_int64()}, {"Name", name != nullptr ? name : ""}});
        }
    }
    return errors;
}

std::vector<JournalEntry> Rows(Statement& row) {
    std::vector<JournalEntry> entries;
    while (row.Step()) {
        entries.push_back({row.Int(0), row.Text(1)});
    }
    return entries;
}

} // namespace

Journal::Journal(const std::string& path, std::int64_t size, std::string desktop)
    : db_(path), size_(size < 1 ? 1 : size), desktop_(std::move(desktop)) {
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

void Journal::Record(const Exchange& exchange) noexcept {
    try {
        const std::int64_t seq = next_;
        std::size_t errors = 0;
        const std::string entry = Entry(seq, exchange, errors);
        {
            Transaction transaction(db_);
            db_.Run("INSERT INTO entries(seq, command, user, errors, entry) VALUES (?, ?, ?, ?, ?)",
                    seq, exchange.command, exchange.user, static_cast<std::int64_t>(errors), entry);
            db_.Run("INSERT OR REPLACE INTO last(id, seq) VALUES (1, ?)", seq);
            db_.Run("DELETE FROM entries WHERE seq <= ?", seq - size_);
            transaction.Commit();
        }
        next_ = seq + 1;
        for (const auto& listener : listeners_) {
            listener({seq, entry});
        }
    } catch (...) {
        // Lost; the answer goes out all the same.
    }
}

std::string Journal::Entry(std::int64_t seq, const Exchange& x, std::size_t& errorCount) const {
    json::value answer = Parsed(Hidden(x.answer));
    json::array errors = Errors(answer);
    errorCount = errors.size();
    json::value fault = nullptr;
    if (x.faulted) {
        fault = json::object{{"LatencyMs", x.latencyMs}, {"FailCode", x.failCode}};
    }
    return json::serialize(json::object{{"Seq", seq},
                                        {"Time", IsoTimeMilliseconds(x.startMs)},
                                        {"DurationMs", x.durationMs},
                                        {"Operation", x.operation},
                                        {"Command", x.command},
                                        {"Session", x.session},
                                        {"User", x.user},
                                        {"Desktop", desktop_},
                                        {"Request", Parsed(Hidden(x.request))},
                                        {"Answer", std::move(answer)},
                                        {"Errors", std::move(errors)},
                                        {"Fault", std::move(fault)}});
}

std::string Journal::Hidden(std::string_view text) const {
    std::string out(text);
    for (const std::string& hidden : hidden_) {
        for (std::size_t at = out.find(hidden); !hidden.empty() && at != std::string::npos;
             at = out.find(hidden, at)) {
            out.replace(at, hidden.size(), "(hidden)");
        }
    }
    return out;
}

std::vector<JournalEntry> Journal::Page(const JournalFilter& f) {
    Statement row = db_.Prepare(
        "SELECT seq, entry FROM entries WHERE (?1 = 0 OR seq < ?1) AND (?2 = '' OR command = ?2) "
        "AND (?3 = '' OR user = ?3) AND (?4 = 0 OR errors > 0) ORDER BY seq DESC LIMIT ?5");
    row.BindAll(f.before, f.command, f.user, std::int64_t{f.errorsOnly ? 1 : 0}, f.limit);
    return Rows(row);
}

std::vector<JournalEntry> Journal::After(std::int64_t seq, std::int64_t limit) {
    Statement row =
        db_.Prepare("SELECT seq, entry FROM entries WHERE seq > ? ORDER BY seq LIMIT ?");
    row.BindAll(seq, limit);
    return Rows(row);
}

void Journal::Export(std::ostream& out) {
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
