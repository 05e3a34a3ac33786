// A thin owner of SQLite handles: a connection, prepared statements with bound values, and a
// transaction that rolls back unless committed. Failures throw SqliteError.
#pragma once

#include "os/FileLock.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>

struct sqlite3;
struct sqlite3_stmt;

namespace vanto::emulator {

class SqliteError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

class Statement {
public:
    Statement(sqlite3* db, sqlite3_stmt* statement) noexcept : db_(db), statement_(statement) {}
    ~Statement();
    Statement(Statement&& other) noexcept;
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;
    Statement& operator=(Statement&&) = delete;

    Statement& Bind(int index, std::int64_t value);
    Statement& Bind(int index, std::string_view value);
    Statement& Bind(int index, const char* value) { return Bind(index, std::string_view(value)); }
    Statement& Bind(int index, const std::string& value) {
        return Bind(index, std::string_view(value));
    }
    Statement& BindNull(int index);
    template <class... Values> Statement& BindAll(const Values&... values) {
        int index = 0;
        (Bind(++index, values), ...);
        return *this;
    }

    // Advances to the next row; false when there is none (the statement is then done).
    bool Step();
    // Runs a statement that returns no rows.
    void Run();

    std::int64_t Int(int column) const;
    std::string Text(int column) const;
    bool IsNull(int column) const;

private:
    sqlite3* db_;
    sqlite3_stmt* statement_;
};

class Database {
public:
    // ":memory:" keeps everything in memory.
    explicit Database(const std::string& path);
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    // Runs one or more statements without results.
    void Execute(std::string_view sql);
    // A prepared statement; the same SQL text is prepared once and reset for each use.
    Statement Prepare(std::string_view sql);
    std::int64_t LastInsertId() const;
    std::int64_t Changes() const;

    // A wait for a turn to write of at least LongWait is told to `report`, with its length.
    static constexpr std::chrono::milliseconds LongWait{50};
    void ReportLongWaits(std::function<void(std::chrono::milliseconds)> report) {
        report_ = std::move(report);
    }

    // One value of a query that yields one row and one column; empty when there is no row.
    template <class... Values>
    std::optional<std::int64_t> QueryInt(std::string_view sql, const Values&... values) {
        Statement statement = Prepare(sql);
        statement.BindAll(values...);
        if (!statement.Step() || statement.IsNull(0)) {
            return std::nullopt;
        }
        return statement.Int(0);
    }
    template <class... Values>
    std::optional<std::string> QueryText(std::string_view sql, const Values&... values) {
        Statement statement = Prepare(sql);
        statement.BindAll(values...);
        if (!statement.Step() || statement.IsNull(0)) {
            return std::nullopt;
        }
        return statement.Text(0);
    }
    template <class... Values> void Run(std::string_view sql, const Values&... values) {
        Statement statement = Prepare(sql);
        statement.BindAll(values...);
        statement.Run();
    }

private:
    friend class Transaction;
    // Waits for this process's turn at the write lock, then begins a transaction that holds it.
    void BeginWriting();
    void EndWriting() noexcept;

    sqlite3* db_ = nullptr;
    std::unordered_map<std::string, sqlite3_stmt*> cache_;
    // Several processes (desktops) may write to one file. SQLite's own wait for its write lock
    // sleeps ever longer between tries, up to 100 ms, and a waiter can lose to newcomers again
    // and again; so writers queue at the system's lock on a file beside the database first.
    // None for a database in memory.
    std::optional<platform::os::TurnLock> turns_;
    std::function<void(std::chrono::milliseconds)> report_;
};

// BEGIN IMMEDIATE on construction, in turn (the write lock is taken before anything is read, so
// two processes on one database never deadlock on an upgrade); ROLLBACK unless Commit() was
// called; the turn ends with the object.
class Transaction {
public:
    explicit Transaction(Database& db);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    void Commit();

private:
    Database& db_;
    bool done_ = false;
};

} // namespace vanto::emulator
