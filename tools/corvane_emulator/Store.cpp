#include "Store.h"

#include <string>

namespace vanto::emulator {

namespace {

constexpr const char* Schema = R"sql(
CREATE TABLE meta(key TEXT PRIMARY KEY, value TEXT NOT NULL);
CREATE TABLE counters(name TEXT PRIMARY KEY, value INTEGER NOT NULL);
CREATE TABLE users(
  id INTEGER PRIMARY KEY, name TEXT NOT NULL UNIQUE COLLATE NOCASE, email TEXT NOT NULL,
  urn TEXT NOT NULL, signed_in INTEGER NOT NULL DEFAULT 1, online INTEGER NOT NULL DEFAULT 1);
CREATE TABLE sessions(
  id TEXT PRIMARY KEY, user_id INTEGER NOT NULL REFERENCES users(id), process_id INTEGER,
  process_start TEXT, created TEXT NOT NULL);
CREATE TABLE root_folders(path TEXT PRIMARY KEY);
CREATE TABLE containers(
  id INTEGER PRIMARY KEY, container_id TEXT NOT NULL UNIQUE, name TEXT NOT NULL,
  urn TEXT NOT NULL UNIQUE, type INTEGER NOT NULL, ownership INTEGER NOT NULL,
  collaboration_space TEXT NOT NULL, synchronised INTEGER NOT NULL, local_path TEXT NOT NULL);
CREATE TABLE documents(
  id INTEGER PRIMARY KEY, path TEXT NOT NULL, path_key TEXT NOT NULL UNIQUE,
  document_id TEXT NOT NULL UNIQUE, component_id TEXT NOT NULL,
  component_revision_id TEXT NOT NULL, document_urn TEXT NOT NULL UNIQUE,
  component_urn TEXT NOT NULL, component_revision_urn TEXT NOT NULL UNIQUE,
  name TEXT NOT NULL, revision TEXT NOT NULL, item_number TEXT NOT NULL,
  local_version TEXT NOT NULL, cloud_version TEXT NOT NULL,
  container INTEGER REFERENCES containers(id),
  lock_user INTEGER REFERENCES users(id), locked_at INTEGER, lock_until INTEGER);
CREATE INDEX documents_component ON documents(component_id);
CREATE TABLE permissions(
  document INTEGER NOT NULL REFERENCES documents(id), user_id INTEGER NOT NULL REFERENCES users(id),
  level INTEGER NOT NULL, PRIMARY KEY(document, user_id));
CREATE TABLE properties(
  document INTEGER NOT NULL REFERENCES documents(id), name TEXT NOT NULL, type INTEGER NOT NULL,
  value TEXT NOT NULL, PRIMARY KEY(document, name));
CREATE TABLE revisions(
  document INTEGER NOT NULL REFERENCES documents(id), revid TEXT NOT NULL, created TEXT NOT NULL,
  PRIMARY KEY(document, revid));
CREATE TABLE relations(
  id INTEGER PRIMARY KEY, relation_id TEXT NOT NULL UNIQUE, urn TEXT NOT NULL UNIQUE,
  parent INTEGER NOT NULL REFERENCES documents(id), child INTEGER NOT NULL REFERENCES documents(id),
  type TEXT NOT NULL, version INTEGER NOT NULL, UNIQUE(parent, child, type));
CREATE INDEX relations_child ON relations(child);
CREATE TABLE data_objects(
  primary_key TEXT NOT NULL, secondary_key TEXT NOT NULL, data TEXT NOT NULL,
  PRIMARY KEY(primary_key, secondary_key));
)sql";

void Refuse(const std::string& version) {
    throw SqliteError("the database has schema version " + version + ", this emulator " +
                      std::to_string(SchemaVersion));
}

} // namespace

Store::Store(const std::string& path) : db_(path) {
    // Before anything writes: even the change of journal below would touch the file.
    RefuseIfDamaged(path);
    db_.Execute("PRAGMA foreign_keys = ON");
    if (path != ":memory:") {
        // Written-ahead log: a reader never waits for the writer, and a command's transaction
        // is in the log file once COMMIT returns, so it survives a kill of any process. Not
        // flushed to the disk each time: only a crash of the whole system could lose the last
        // ones, and desktops sharing a cloud would otherwise queue behind every flush.
        db_.Execute("PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL");
    }
    OpenSchema();
}

void Store::RefuseIfDamaged(const std::string& path) {
    std::string problems;
    try {
        Statement check = db_.Prepare("PRAGMA quick_check(3)");
        while (check.Step()) {
            if (check.Text(0) == "ok") {
                return;
            }
            problems += "\n  " + check.Text(0);
        }
    } catch (const SqliteError& error) {
        problems = "\n  " + std::string(error.what());
    }
    throw SqliteError("the database " + path + " is damaged; left as it is:" + problems);
}

void Store::OpenSchema() {
    Transaction transaction(db_);
    const std::int64_t version = db_.QueryInt("PRAGMA user_version").value_or(0);
    const bool hasTables =
        db_.QueryInt("SELECT 1 FROM sqlite_master WHERE type = 'table' AND name = 'meta'")
            .has_value();
    if (version == 0 && !hasTables) {
        db_.Execute(Schema);
    } else if (version == 0) {
        // The first emulator kept its version as a row of its settings.
        const std::string recorded =
            db_.QueryText("SELECT value FROM meta WHERE key = 'schema_version'").value_or("?");
        if (recorded != "1") {
            Refuse(recorded);
        }
        db_.Run("DELETE FROM meta WHERE key = 'schema_version'");
        RekeyDocuments();
    } else if (version == 1) {
        RekeyDocuments();
    } else if (version != SchemaVersion) {
        Refuse(std::to_string(version));
    }
    // Faults were once kept here; they now last as long as the emulator.
    db_.Execute("DROP TABLE IF EXISTS faults");
    db_.Execute("PRAGMA user_version = " + std::to_string(SchemaVersion));
    transaction.Commit();
}

void Store::RekeyDocuments() {
    std::vector<std::pair<std::int64_t, std::string>> documents;
    for (Statement row = db_.Prepare("SELECT id, path FROM documents"); row.Step();) {
        documents.emplace_back(row.Int(0), row.Text(1));
    }
    for (const auto& [id, path] : documents) {
        db_.Run("UPDATE documents SET path_key = ? WHERE id = ?", PathKey(path), id);
    }
}

void Store::RememberSetting(const std::string& key, const std::string& value) {
    db_.Run("INSERT OR REPLACE INTO meta(key, value) VALUES (?, ?)", key, value);
}

std::string Store::Setting(const std::string& key) {
    return db_.QueryText("SELECT value FROM meta WHERE key = ?", key).value_or("");
}

std::int64_t Store::Next(const std::string& counter) {
    db_.Run("INSERT INTO counters(name, value) VALUES (?1, 1) "
            "ON CONFLICT(name) DO UPDATE SET value = value + 1",
            counter);
    return *db_.QueryInt("SELECT value FROM counters WHERE name = ?", counter);
}

Tally Store::Count() {
    Tally tally;
    tally.documents = *db_.QueryInt("SELECT COUNT(*) FROM documents");
    tally.locks = *db_.QueryInt("SELECT COUNT(*) FROM documents WHERE lock_user IS NOT NULL AND "
                                "(lock_until IS NULL OR lock_until > ?)",
                                NowSeconds());
    tally.sessions = *db_.QueryInt("SELECT COUNT(*) FROM sessions");
    return tally;
}

std::string Store::IntegrityCheck() {
    return db_.QueryText("PRAGMA integrity_check").value_or("");
}

std::int64_t Store::EnsureUser(const std::string& name, const std::string& email) {
    if (auto found = FindUser(name)) {
        return found->key;
    }
    std::string address = email;
    if (address.empty()) {
        for (char c : name) {
            address +=
                c == ' ' ? '.' : static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        }
        address += "@example.com";
    }
    const std::int64_t number = Next("user");
    db_.Run("INSERT INTO users(name, email, urn) VALUES (?, ?, ?)", name, address,
            Padded("urn:corvane:user:USR-", number));
    return db_.LastInsertId();
}

std::optional<User> Store::FindUser(const std::string& name) {
    const auto key = db_.QueryInt("SELECT id FROM users WHERE name = ?", name);
    return key ? UserByKey(*key) : std::nullopt;
}

std::optional<User> Store::UserByKey(std::int64_t key) {
    Statement row =
        db_.Prepare("SELECT id, name, email, urn, signed_in, online FROM users WHERE id = ?");
    row.Bind(1, key);
    if (!row.Step()) {
        return std::nullopt;
    }
    return User{row.Int(0),  row.Text(1),     row.Text(2),
                row.Text(3), row.Int(4) != 0, row.Int(5) != 0};
}

void Store::SetOnline(std::int64_t user, bool online) {
    db_.Run("UPDATE users SET online = ? WHERE id = ?", std::int64_t{online ? 1 : 0}, user);
}

void Store::SetSignedIn(std::int64_t user, bool signedIn) {
    db_.Run("UPDATE users SET signed_in = ? WHERE id = ?", std::int64_t{signedIn ? 1 : 0}, user);
}

void Store::OpenSession(const Session& session) {
    db_.Run("INSERT INTO sessions(id, user_id, process_id, process_start, created) "
            "VALUES (?, ?, ?, ?, ?)",
            session.id, session.user, session.processId, session.processStart,
            IsoTime(NowSeconds()));
}

bool Store::CloseSession(const std::string& id) {
    db_.Run("DELETE FROM sessions WHERE id = ?", id);
    return db_.Changes() > 0;
}

void Store::CloseSessionsOf(std::int64_t user) {
    db_.Run("DELETE FROM sessions WHERE user_id = ?", user);
}

std::optional<std::int64_t> Store::SessionUser(std::string_view id) {
    return db_.QueryInt("SELECT user_id FROM sessions WHERE id = ?", id);
}

std::vector<SessionListing> Store::AllSessions() {
    Statement row = db_.Prepare("SELECT s.id, u.name, s.process_id, s.created FROM sessions s "
                                "JOIN users u ON u.id = s.user_id ORDER BY s.created, s.id");
    std::vector<SessionListing> sessions;
    while (row.Step()) {
        sessions.push_back({row.Text(0), row.Text(1), row.Int(2), row.Text(3)});
    }
    return sessions;
}

void Store::SaveSnapshot() {
    std::vector<std::string> tables;
    {
        Statement names = db_.Prepare("SELECT name FROM main.sqlite_master WHERE type = 'table' "
                                      "AND name NOT LIKE 'sqlite_%'");
        while (names.Step()) {
            tables.push_back(names.Text(0));
        }
    }
    db_.Execute("ATTACH DATABASE ':memory:' AS saved");
    for (const std::string& table : tables) {
        db_.Execute("CREATE TABLE saved." + table + " AS SELECT * FROM main." + table);
        restore_.push_back("DELETE FROM main." + table);
        restore_.push_back("INSERT INTO main." + table + " SELECT * FROM saved." + table);
    }
}

void Store::RestoreSnapshot() {
    db_.Execute("PRAGMA foreign_keys = OFF; BEGIN");
    for (const std::string& sql : restore_) {
        db_.Prepare(sql).Run(); // prepared once, kept by the database
    }
    db_.Execute("COMMIT; PRAGMA foreign_keys = ON");
}

} // namespace vanto::emulator
