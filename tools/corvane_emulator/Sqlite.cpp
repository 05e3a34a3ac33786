#include "Sqlite.h"

#include "os/TextConversion.h"

#include <sqlite3.h>

namespace vanto::emulator {

namespace {

[[noreturn]] void Fail(sqlite3* db, const char* what) {
    throw SqliteError(std::string(what) + ": " + (db != nullptr ? sqlite3_errmsg(db) : "no db"));
}

} // namespace

Statement::~Statement() {
    if (statement_ != nullptr) {
        // Cached statements are kept for the next use, clean.
        sqlite3_reset(statement_);
        sqlite3_clear_bindings(statement_);
    }
}

Statement::Statement(Statement&& other) noexcept : db_(other.db_), statement_(other.statement_) {
    other.statement_ = nullptr;
}

Statement& Statement::Bind(int index, std::int64_t value) {
    if (sqlite3_bind_int64(statement_, index, value) != SQLITE_OK) {
        Fail(db_, "bind");
    }
    return *this;
}

Statement& Statement::Bind(int index, std::string_view value) {
    if (sqlite3_bind_text64(statement_, index, value.data(), value.size(), SQLITE_TRANSIENT,
                            SQLITE_UTF8) != SQLITE_OK) {
        Fail(db_, "bind");
    }
    return *this;
}

Statement& Statement::BindNull(int index) {
    if (sqlite3_bind_null(statement_, index) != SQLITE_OK) {
        Fail(db_, "bind");
    }
    return *this;
}

bool Statement::Step() {
    const int result = sqlite3_step(statement_);
    if (result == SQLITE_ROW) {
        return true;
    }
    if (result == SQLITE_DONE) {
        return false;
    }
    Fail(db_, "step");
}

void Statement::Run() {
    while (Step()) {
    }
}

std::int64_t Statement::Int(int column) const {
    return sqlite3_column_int64(statement_, column);
}

std::string Statement::Text(int column) const {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
    const int size = sqlite3_column_bytes(statement_, column);
    return text != nullptr ? std::string(text, static_cast<std::size_t>(size)) : std::string();
}

bool Statement::IsNull(int column) const {
    return sqlite3_column_type(statement_, column) == SQLITE_NULL;
}

Database::Database(const std::string& path) {
    if (path != ":memory:" && !path.empty()) {
        turns_.emplace(platform::os::Utf8ToWide(path + "-turn"));
    }
    const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX;
    if (sqlite3_open_v2(path.c_str(), &db_, flags, nullptr) != SQLITE_OK) {
        const std::string message = db_ != nullptr ? sqlite3_errmsg(db_) : "out of memory";
        sqlite3_close(db_);
        db_ = nullptr;
        throw SqliteError("cannot open " + path + ": " + message);
    }
    // Another emulator on the same database (a second user's desktop) may hold the write lock
    // for the length of one command; it waits its turn first, so this is rarely more than a
    // reader or a writer that does not take turns.
    sqlite3_busy_timeout(db_, 10000);
}

Database::~Database() {
    for (auto& [sql, statement] : cache_) {
        sqlite3_finalize(statement);
    }
    sqlite3_close(db_);
}

void Database::Execute(std::string_view sql) {
    const std::string text(sql);
    char* message = nullptr;
    if (sqlite3_exec(db_, text.c_str(), nullptr, nullptr, &message) != SQLITE_OK) {
        const std::string error = message != nullptr ? message : "unknown error";
        sqlite3_free(message);
        throw SqliteError(error + " in: " + text.substr(0, 80));
    }
}

Statement Database::Prepare(std::string_view sql) {
    auto found = cache_.find(std::string(sql));
    if (found == cache_.end()) {
        sqlite3_stmt* statement = nullptr;
        if (sqlite3_prepare_v3(db_, sql.data(), static_cast<int>(sql.size()),
                               SQLITE_PREPARE_PERSISTENT, &statement, nullptr) != SQLITE_OK) {
            Fail(db_, "prepare");
        }
        found = cache_.emplace(std::string(sql), statement).first;
    }
    return Statement(db_, found->second);
}

void Database::BeginWriting() {
    const auto start = std::chrono::steady_clock::now();
    if (turns_) {
        turns_->Lock();
    }
    try {
        Execute("BEGIN IMMEDIATE");
    } catch (...) {
        EndWriting();
        throw;
    }
    const auto waited = std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::steady_clock::now() - start);
    if (waited >= LongWait && report_) {
        try {
            report_(waited);
        } catch (...) {
            // The transaction stands; only its report is lost.
        }
    }
}

void Database::EndWriting() noexcept {
    if (turns_) {
        turns_->Unlock();
    }
}

std::int64_t Database::LastInsertId() const {
    return sqlite3_last_insert_rowid(db_);
}

std::int64_t Database::Changes() const {
    return sqlite3_changes64(db_);
}

Transaction::Transaction(Database& db) : db_(db) {
    db_.BeginWriting();
}

Transaction::~Transaction() {
    if (!done_) {
        try {
            db_.Execute("ROLLBACK");
        } catch (...) {
            // Nothing was begun or SQLite rolled back already.
        }
    }
    db_.EndWriting();
}

void Transaction::Commit() {
    db_.Execute("COMMIT");
    done_ = true;
}

} // namespace vanto::emulator
