#include "Store.h"

#include "protocol/Numbers.h"

#include <filesystem>

namespace vanto::emulator {

namespace {

namespace fs = std::filesystem;
namespace IdentifierType = vanto::protocol::IdentifierType;

constexpr const char* DocumentColumns =
    "d.id, d.path, d.document_id, d.component_id, d.component_revision_id, d.document_urn, "
    "d.component_urn, d.component_revision_urn, d.name, d.revision, d.item_number, "
    "d.local_version, d.cloud_version, IFNULL(d.container, 0), "
    "CASE WHEN d.lock_until IS NULL OR d.lock_until > ?1 THEN IFNULL(d.lock_user, 0) ELSE 0 END, "
    "IFNULL(u.name, ''), IFNULL(u.urn, ''), IFNULL(d.locked_at, 0), d.lock_until "
    "FROM documents d LEFT JOIN users u ON u.id = d.lock_user ";

constexpr const char* RelationColumns =
    "SELECT id, relation_id, urn, parent, child, type, version FROM relations ";

Relation ReadRelation(Statement& row) {
    return Relation{row.Int(0), row.Text(1), row.Text(2), row.Int(3),
                    row.Int(4), row.Text(5), row.Int(6)};
}

} // namespace

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
    case IdentifierType::FilePath:
        where = "WHERE d.path_key = ?2";
        value = PathKey(identifier);
        break;
    case IdentifierType::DocumentId:
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
    std::string name = fs::u8path(path).stem().u8string();
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

std::optional<std::string> Store::PropertyValue(std::int64_t document, const std::string& name) {
    return db_.QueryText(
        "SELECT value FROM properties WHERE document = ? AND name = ? COLLATE NOCASE", document,
        name);
}

std::vector<std::pair<std::string, std::string>> Store::Properties(std::int64_t document) {
    Statement row =
        db_.Prepare("SELECT name, value FROM properties WHERE document = ? ORDER BY name");
    row.Bind(1, document);
    std::vector<std::pair<std::string, std::string>> properties;
    while (row.Step()) {
        properties.emplace_back(row.Text(0), row.Text(1));
    }
    return properties;
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

void Store::SynchroniseContainer(std::int64_t container, const std::string& localPath) {
    db_.Run("UPDATE containers SET synchronised = 1, local_path = ? WHERE id = ?", localPath,
            container);
}

std::vector<Relation> Store::RelationsOf(std::int64_t document, bool asParent) {
    Statement row =
        db_.Prepare(std::string(RelationColumns) +
                    (asParent ? "WHERE parent = ? ORDER BY id" : "WHERE child = ? ORDER BY id"));
    row.Bind(1, document);
    std::vector<Relation> relations;
    while (row.Step()) {
        relations.push_back(ReadRelation(row));
    }
    return relations;
}

std::optional<Relation> Store::FindRelation(std::string_view urn) {
    Statement row =
        db_.Prepare(std::string(RelationColumns) + "WHERE urn = ?1 OR relation_id = ?1");
    row.Bind(1, urn);
    if (!row.Step()) {
        return std::nullopt;
    }
    return ReadRelation(row);
}

bool Store::HasRelation(std::int64_t parent, std::int64_t child, const std::string& type) {
    return db_
        .QueryInt("SELECT 1 FROM relations WHERE parent = ? AND child = ? AND type = ?", parent,
                  child, type)
        .has_value();
}

std::int64_t Store::AddRelation(std::int64_t parent, std::int64_t child, const std::string& type) {
    const std::string id = Padded("REL-", Next("relation"));
    db_.Run("INSERT INTO relations(relation_id, urn, parent, child, type, version) "
            "VALUES (?1, 'urn:corvane:relation:' || ?1, ?2, ?3, ?4, 1)",
            id, parent, child, type);
    return db_.LastInsertId();
}

void Store::RemoveRelation(std::int64_t relation) {
    db_.Run("DELETE FROM relations WHERE id = ?", relation);
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

std::string Store::SaveNewVersion(std::int64_t document) {
    const std::string version = Padded("VER-", Next("version"));
    db_.Run("UPDATE documents SET cloud_version = ? WHERE id = ?", version, document);
    return version;
}

std::int64_t Store::Permission(std::int64_t document, std::int64_t user) {
    return db_
        .QueryInt("SELECT level FROM permissions WHERE document = ? AND user_id = ?", document,
                  user)
        .value_or(vanto::protocol::Permission::Write);
}

std::vector<std::pair<std::string, std::int64_t>> Store::Permissions(std::int64_t document) {
    Statement row =
        db_.Prepare("SELECT u.name, COALESCE(p.level, ?) FROM users u LEFT JOIN permissions p "
                    "ON p.document = ? AND p.user_id = u.id ORDER BY u.name");
    row.BindAll(std::int64_t{vanto::protocol::Permission::Write}, document);
    std::vector<std::pair<std::string, std::int64_t>> levels;
    while (row.Step()) {
        levels.emplace_back(row.Text(0), row.Int(1));
    }
    return levels;
}

void Store::SetDataObject(const std::string& primaryKey, const std::string& secondaryKey,
                          const std::string& data) {
    db_.Run("INSERT OR REPLACE INTO data_objects(primary_key, secondary_key, data) "
            "VALUES (?, ?, ?)",
            primaryKey, secondaryKey, data);
}

} // namespace vanto::emulator
