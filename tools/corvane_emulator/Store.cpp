#include "Store.h"

#include <boost/json.hpp>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace corvane::emulator {

namespace {

namespace fs = std::filesystem;
namespace json = boost::json;

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
CREATE TABLE faults(
  command TEXT PRIMARY KEY, latency_ms INTEGER NOT NULL, fail_code INTEGER NOT NULL,
  remaining INTEGER NOT NULL);
)sql";

constexpr const char* Tables[] = {"sessions",  "permissions",  "properties", "revisions",
                                  "relations", "documents",    "containers", "root_folders",
                                  "users",     "data_objects", "faults",     "counters"};

constexpr const char* DocumentColumns =
    "d.id, d.path, d.document_id, d.component_id, d.component_revision_id, d.document_urn, "
    "d.component_urn, d.component_revision_urn, d.name, d.revision, d.item_number, "
    "d.local_version, d.cloud_version, IFNULL(d.container, 0), "
    "CASE WHEN d.lock_until IS NULL OR d.lock_until > ?1 THEN IFNULL(d.lock_user, 0) ELSE 0 END, "
    "IFNULL(u.name, ''), IFNULL(u.urn, ''), IFNULL(d.locked_at, 0), d.lock_until "
    "FROM documents d LEFT JOIN users u ON u.id = d.lock_user ";

bool IsCadFile(const fs::path& file) {
    std::string extension = file.extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    // Parts, sheet-metal parts, drawings and assemblies, and drawings saved as .dft.
    return extension == ".par" || extension == ".psm" || extension == ".pwd" ||
           extension == ".asm" || extension == ".dft";
}

bool LooksLikeWindowsPath(std::string_view path) {
    return path.find('\\') != std::string_view::npos || (path.size() >= 2 && path[1] == ':');
}

std::string Join(const std::string& root, const std::string& relative) {
    const char separator = LooksLikeWindowsPath(root) ? '\\' : '/';
    std::string joined = root;
    if (!joined.empty() && joined.back() != separator) {
        joined += separator;
    }
    for (char c : relative) {
        joined += (c == '/' || c == '\\') ? separator : c;
    }
    return joined;
}

std::string Padded(const char* prefix, std::int64_t number) {
    char text[32];
    std::snprintf(text, sizeof text, "%s%06lld", prefix, static_cast<long long>(number));
    return text;
}

std::string Text(const json::object& object, std::string_view key, std::string fallback = "") {
    const json::value* value = object.if_contains(key);
    return value != nullptr && value->is_string() ? std::string(value->get_string()) : fallback;
}

std::int64_t Integer(const json::object& object, std::string_view key, std::int64_t fallback) {
    const json::value* value = object.if_contains(key);
    return value != nullptr && value->is_int64() ? value->get_int64() : fallback;
}

const json::array& Array(const json::object& object, std::string_view key) {
    static const json::array empty;
    const json::value* value = object.if_contains(key);
    return value != nullptr && value->is_array() ? value->get_array() : empty;
}

} // namespace

std::string PathKey(std::string_view path) {
    std::string key;
    key.reserve(path.size());
    for (char c : path) {
        if (c == '\\') {
            c = '/';
        } else if (c >= 'A' && c <= 'Z') {
            c = static_cast<char>(c - 'A' + 'a');
        }
        key += c;
    }
    while (key.size() > 1 && key.back() == '/') {
        key.pop_back();
    }
    return key;
}

bool IsUnder(std::string_view path, std::string_view folder) {
    const std::string p = PathKey(path);
    const std::string f = PathKey(folder);
    if (f.empty() || p.size() < f.size() || p.compare(0, f.size(), f) != 0) {
        return false;
    }
    return p.size() == f.size() || f.back() == '/' || p[f.size()] == '/';
}

std::int64_t NowSeconds() {
    return std::chrono::duration_cast<std::chrono::seconds>(
               std::chrono::system_clock::now().time_since_epoch())
        .count();
}

std::string IsoTime(std::int64_t seconds) {
    const std::time_t time = static_cast<std::time_t>(seconds);
    std::tm fields{};
    gmtime_r(&time, &fields);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &fields);
    return text;
}

Store::Store(const std::string& path) : db_(path) {
    db_.Execute("PRAGMA foreign_keys = ON");
    if (path != ":memory:") {
        // Written-ahead log: a reader never waits for the writer, and a command's transaction
        // is on disk once COMMIT returns.
        db_.Execute("PRAGMA journal_mode = WAL; PRAGMA synchronous = FULL");
    }
    CreateSchema();
}

void Store::CreateSchema() {
    Transaction transaction(db_);
    const bool fresh =
        !db_.QueryInt("SELECT 1 FROM sqlite_master WHERE type = 'table' AND name = 'meta'");
    if (fresh) {
        db_.Execute(Schema);
        db_.Run("INSERT INTO meta(key, value) VALUES ('schema_version', ?)",
                std::to_string(SchemaVersion));
    } else {
        const auto version =
            db_.QueryText("SELECT value FROM meta WHERE key = 'schema_version'").value_or("?");
        if (version != std::to_string(SchemaVersion)) {
            throw SqliteError("the database has schema version " + version + ", this emulator " +
                              std::to_string(SchemaVersion));
        }
    }
    transaction.Commit();
}

void Store::ImportIfEmpty(const Workspace& workspace, const std::string& defaultUser) {
    Transaction transaction(db_);
    if (!db_.QueryInt("SELECT 1 FROM users LIMIT 1")) {
        Import(workspace, defaultUser);
    }
    transaction.Commit();
}

void Store::Reset(const Workspace& workspace, const std::string& defaultUser) {
    Transaction transaction(db_);
    for (const char* table : Tables) {
        db_.Execute(std::string("DELETE FROM ") + table);
    }
    Import(workspace, defaultUser);
    transaction.Commit();
}

std::int64_t Store::Next(const std::string& counter) {
    db_.Run("INSERT INTO counters(name, value) VALUES (?1, 1) "
            "ON CONFLICT(name) DO UPDATE SET value = value + 1",
            counter);
    return *db_.QueryInt("SELECT value FROM counters WHERE name = ?", counter);
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

Document Store::ReadDocument(Statement& row) {
    Document d;
    d.key = row.Int(0);
    d.path = row.Text(1);
    d.documentId = row.Text(2);
    d.componentId = row.Text(3);
    d.componentRevisionId = row.Text(4);
    d.documentUrn = row.Text(5);
    d.componentUrn = row.Text(6);
    d.componentRevisionUrn = row.Text(7);
    d.name = row.Text(8);
    d.revision = row.Text(9);
    d.itemNumber = row.Text(10);
    d.localVersion = row.Text(11);
    d.cloudVersion = row.Text(12);
    d.container = row.Int(13);
    d.lockUser = row.Int(14);
    if (d.lockUser != 0) {
        d.lock.holder = row.Text(15);
        d.lock.holderUrn = row.Text(16);
        d.lock.lockedAt = IsoTime(row.Int(17));
        d.lock.expires = row.IsNull(18) ? std::string() : IsoTime(row.Int(18));
    }
    return d;
}

std::optional<Document> Store::FindDocument(std::string_view identifier, std::int32_t type) {
    std::string where;
    std::string value(identifier);
    switch (type) {
    case 0:
        where = "WHERE d.path_key = ?2";
        value = PathKey(identifier);
        break;
    case 1:
        where = "WHERE d.document_id = ?2";
        break;
    default:
        where = "WHERE d.document_urn = ?2 OR d.component_revision_urn = ?2 OR "
                "d.component_revision_id = ?2";
        break;
    }
    Statement row = db_.Prepare(std::string("SELECT ") + DocumentColumns + where);
    row.Bind(1, NowSeconds()).Bind(2, value);
    if (!row.Step()) {
        return std::nullopt;
    }
    return ReadDocument(row);
}

std::optional<Document> Store::DocumentByKey(std::int64_t key) {
    Statement row = db_.Prepare(std::string("SELECT ") + DocumentColumns + "WHERE d.id = ?2");
    row.Bind(1, NowSeconds()).Bind(2, key);
    if (!row.Step()) {
        return std::nullopt;
    }
    return ReadDocument(row);
}

std::vector<Document> Store::AllDocuments() {
    Statement row = db_.Prepare(std::string("SELECT ") + DocumentColumns + "ORDER BY d.path_key");
    row.Bind(1, NowSeconds());
    std::vector<Document> documents;
    while (row.Step()) {
        documents.push_back(ReadDocument(row));
    }
    return documents;
}

std::int64_t Store::AddDocument(const std::string& path, std::int64_t container) {
    const std::int64_t number = Next("document");
    const std::string documentId = Padded("DOC-", number);
    const std::string componentId = Padded("CMP-", number);
    const std::string componentRevisionId = Padded("CRV-", Next("component-revision"));
    const std::string version = Padded("VER-", Next("version"));
    std::string name = fs::path(path).stem().string();
    if (name.find('\\') != std::string::npos) {
        name = name.substr(name.rfind('\\') + 1);
    }
    db_.Run("INSERT INTO documents(path, path_key, document_id, component_id, "
            "component_revision_id, document_urn, component_urn, component_revision_urn, name, "
            "revision, item_number, local_version, cloud_version, container) VALUES (?1, ?2, ?3, "
            "?4, ?5, 'urn:corvane:document:' || ?3, 'urn:corvane:component:' || ?4, "
            "'urn:corvane:component-revision:' || ?5, ?6, 'A', ?7, ?8, ?8, NULLIF(?9, 0))",
            path, PathKey(path), documentId, componentId, componentRevisionId, name,
            Padded("", 1000 + Next("item")), version, container);
    const std::int64_t key = db_.LastInsertId();
    db_.Run("INSERT INTO revisions(document, revid, created) VALUES (?, 'A', ?)", key,
            IsoTime(NowSeconds()));
    // The first revision id is taken.
    db_.Run("INSERT INTO counters(name, value) VALUES (?, 1)", "revision:" + std::to_string(key));
    return key;
}

std::optional<Container> Store::FindContainer(std::string_view urnOrId) {
    const auto key = db_.QueryInt("SELECT id FROM containers WHERE urn = ?1 OR container_id = ?1",
                                  std::string(urnOrId));
    return key ? ContainerByKey(*key) : std::nullopt;
}

std::optional<Container> Store::ContainerByKey(std::int64_t key) {
    Statement row = db_.Prepare("SELECT id, container_id, name, urn, type, ownership, "
                                "collaboration_space, synchronised, local_path FROM containers "
                                "WHERE id = ?");
    row.Bind(1, key);
    if (!row.Step()) {
        return std::nullopt;
    }
    return Container{row.Int(0), row.Text(1), row.Text(2),     row.Text(3), row.Int(4),
                     row.Int(5), row.Text(6), row.Int(7) != 0, row.Text(8)};
}

std::vector<Container> Store::AllContainers() {
    std::vector<std::int64_t> keys;
    Statement row = db_.Prepare("SELECT id FROM containers ORDER BY id");
    while (row.Step()) {
        keys.push_back(row.Int(0));
    }
    std::vector<Container> containers;
    for (std::int64_t key : keys) {
        containers.push_back(*ContainerByKey(key));
    }
    return containers;
}

std::vector<Relation> Store::RelationsOf(std::int64_t document, bool asParent) {
    Statement row = db_.Prepare(
        asParent ? "SELECT id, relation_id, urn, parent, child, type, version FROM relations "
                   "WHERE parent = ? ORDER BY id"
                 : "SELECT id, relation_id, urn, parent, child, type, version FROM relations "
                   "WHERE child = ? ORDER BY id");
    row.Bind(1, document);
    std::vector<Relation> relations;
    while (row.Step()) {
        relations.push_back(Relation{row.Int(0), row.Text(1), row.Text(2), row.Int(3), row.Int(4),
                                     row.Text(5), row.Int(6)});
    }
    return relations;
}

std::optional<Relation> Store::FindRelation(std::string_view urn) {
    Statement row = db_.Prepare("SELECT id, relation_id, urn, parent, child, type, version FROM "
                                "relations WHERE urn = ?1 OR relation_id = ?1");
    row.Bind(1, urn);
    if (!row.Step()) {
        return std::nullopt;
    }
    return Relation{row.Int(0), row.Text(1), row.Text(2), row.Int(3),
                    row.Int(4), row.Text(5), row.Int(6)};
}

std::int64_t Store::AddRelation(std::int64_t parent, std::int64_t child, const std::string& type) {
    const std::string id = Padded("REL-", Next("relation"));
    db_.Run("INSERT INTO relations(relation_id, urn, parent, child, type, version) "
            "VALUES (?1, 'urn:corvane:relation:' || ?1, ?2, ?3, ?4, 1)",
            id, parent, child, type);
    return db_.LastInsertId();
}

std::vector<std::string> Store::RootFolders() {
    std::vector<std::string> folders;
    Statement row = db_.Prepare("SELECT path FROM root_folders ORDER BY path");
    while (row.Step()) {
        folders.push_back(row.Text(0));
    }
    return folders;
}

void Store::SetLock(std::int64_t document, std::int64_t user, std::int64_t ttl) {
    const std::int64_t now = NowSeconds();
    Statement statement = db_.Prepare(
        "UPDATE documents SET lock_user = ?1, locked_at = ?2, lock_until = ?3 WHERE id = ?4");
    statement.Bind(1, user).Bind(2, now);
    if (ttl < 0) {
        statement.BindNull(3);
    } else {
        statement.Bind(3, now + ttl);
    }
    statement.Bind(4, document).Run();
}

void Store::ClearLock(std::int64_t document) {
    db_.Run("UPDATE documents SET lock_user = NULL, locked_at = NULL, lock_until = NULL "
            "WHERE id = ?",
            document);
}

std::string Store::SaveNewVersion(std::int64_t document, std::int64_t user) {
    (void)user;
    const std::string version = Padded("VER-", Next("version"));
    db_.Run("UPDATE documents SET cloud_version = ? WHERE id = ?", version, document);
    return version;
}

std::int64_t Store::Permission(std::int64_t document, std::int64_t user) {
    return db_
        .QueryInt("SELECT level FROM permissions WHERE document = ? AND user_id = ?", document,
                  user)
        .value_or(2);
}

void Store::Import(const Workspace& workspace, const std::string& defaultUser) {
    json::object data;
    if (!workspace.importFile.empty()) {
        std::ifstream file(workspace.importFile, std::ios::binary);
        if (!file) {
            throw std::runtime_error("cannot read the import file " + workspace.importFile);
        }
        std::stringstream text;
        text << file.rdbuf();
        boost::system::error_code error;
        json::value parsed = json::parse(text.str(), error);
        if (error || !parsed.is_object()) {
            throw std::runtime_error("the import file " + workspace.importFile +
                                     " is not a JSON object");
        }
        data = std::move(parsed.get_object());
    }

    for (const json::value& user : Array(data, "users")) {
        if (user.is_object()) {
            EnsureUser(Text(user.get_object(), "name"), Text(user.get_object(), "email"));
        }
    }
    if (!defaultUser.empty()) {
        EnsureUser(defaultUser);
    }
    const std::string root = workspace.RootAsClientSeesIt();
    if (!root.empty()) {
        db_.Run("INSERT INTO root_folders(path) VALUES (?)", root);
    }

    // Projects own the files below their folder; files outside every project folder belong
    // to the first project.
    std::vector<std::pair<std::string, std::int64_t>> projectFolders;
    for (const json::value& entry : Array(data, "projects")) {
        if (!entry.is_object()) {
            continue;
        }
        const json::object& project = entry.get_object();
        const std::int64_t number = Next("container");
        const std::string id = Text(project, "id", Padded("PRJ-", number));
        const std::string folder = Text(project, "folder");
        const json::value* synced = project.if_contains("synchronised");
        const bool isSynced = synced == nullptr || (synced->is_bool() && synced->get_bool());
        db_.Run("INSERT INTO containers(container_id, name, urn, type, ownership, "
                "collaboration_space, synchronised, local_path) VALUES (?1, ?2, "
                "'urn:corvane:project:' || ?1, ?3, ?4, ?5, ?6, ?7)",
                id, Text(project, "name", id), Integer(project, "type", 0),
                Integer(project, "ownership", 0), Text(project, "collaborationSpace", "CS-000001"),
                std::int64_t{isSynced ? 1 : 0},
                isSynced && !root.empty() ? Join(root, folder) : std::string());
        projectFolders.emplace_back(folder, db_.LastInsertId());
    }
    const auto containerFor = [&](const std::string& relative) -> std::int64_t {
        for (const auto& [folder, key] : projectFolders) {
            if (!folder.empty() && IsUnder(relative, folder)) {
                return key;
            }
        }
        return projectFolders.empty() ? 0 : projectFolders.front().second;
    };

    std::vector<std::string> files;
    if (!workspace.folder.empty()) {
        std::error_code error;
        for (fs::recursive_directory_iterator it(workspace.folder, error), end; !error && it != end;
             it.increment(error)) {
            if (it->is_regular_file(error) && IsCadFile(it->path())) {
                files.push_back(it->path().lexically_relative(workspace.folder).generic_string());
            }
        }
        if (error) {
            throw std::runtime_error("cannot scan " + workspace.folder + ": " + error.message());
        }
    }
    for (const json::value& entry : Array(data, "documents")) {
        if (entry.is_object()) {
            files.push_back(Text(entry.get_object(), "file"));
        }
    }
    std::sort(files.begin(), files.end());
    files.erase(std::unique(files.begin(), files.end()), files.end());
    for (const std::string& relative : files) {
        if (!relative.empty()) {
            AddDocument(Join(root, relative), containerFor(relative));
        }
    }

    const auto document = [&](const json::object& object, std::string_view key) {
        const auto found = FindDocument(Join(root, Text(object, key)), 0);
        if (!found) {
            throw std::runtime_error("the import file names a document that is not there: " +
                                     Text(object, key));
        }
        return found->key;
    };
    for (const json::value& entry : Array(data, "documents")) {
        if (!entry.is_object()) {
            continue;
        }
        const json::object& object = entry.get_object();
        const std::int64_t key = document(object, "file");
        db_.Run("UPDATE documents SET name = IFNULL(NULLIF(?1, ''), name), "
                "item_number = IFNULL(NULLIF(?2, ''), item_number) WHERE id = ?3",
                Text(object, "name"), Text(object, "number"), key);
        if (const json::value* properties = object.if_contains("properties");
            properties != nullptr && properties->is_object()) {
            for (const auto& [name, value] : properties->get_object()) {
                if (value.is_string()) {
                    db_.Run("INSERT OR REPLACE INTO properties(document, name, type, value) "
                            "VALUES (?, ?, 0, ?)",
                            key, std::string(name), std::string(value.get_string()));
                }
            }
        }
        for (const json::value& revision : Array(object, "revisions")) {
            if (revision.is_string()) {
                db_.Run(
                    "INSERT OR IGNORE INTO revisions(document, revid, created) VALUES (?, ?, ?)",
                    key, std::string(revision.get_string()), IsoTime(NowSeconds()));
                db_.Run("UPDATE documents SET revision = ? WHERE id = ?",
                        std::string(revision.get_string()), key);
                db_.Run("UPDATE counters SET value = (SELECT COUNT(*) FROM revisions WHERE "
                        "document = ?1) WHERE name = ?2",
                        key, "revision:" + std::to_string(key));
            }
        }
        if (const json::value* permissions = object.if_contains("permissions");
            permissions != nullptr && permissions->is_object()) {
            for (const auto& [user, level] : permissions->get_object()) {
                db_.Run("INSERT OR REPLACE INTO permissions(document, user_id, level) "
                        "VALUES (?, ?, ?)",
                        key, EnsureUser(std::string(user)),
                        level.is_int64() ? level.get_int64() : 0);
            }
        }
    }
    for (const json::value& entry : Array(data, "relations")) {
        if (entry.is_object()) {
            const json::object& object = entry.get_object();
            AddRelation(document(object, "parent"), document(object, "child"),
                        Text(object, "type", DesignChildRelation));
        }
    }
    for (const json::value& entry : Array(data, "locks")) {
        if (entry.is_object()) {
            const json::object& object = entry.get_object();
            SetLock(document(object, "file"), EnsureUser(Text(object, "user")), -1);
        }
    }
}

} // namespace corvane::emulator
