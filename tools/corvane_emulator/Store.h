// The cloud side as the emulator keeps it, in one SQLite database: users and their sessions, the
// monitored root folders, documents with their identities, versions, locks, properties and
// permissions, design revisions, relations between documents, projects, counters and stored
// data objects. The schema carries a version; a database of another version is refused rather
// than guessed at.
#pragma once

#include "Sqlite.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace corvane::emulator {

inline constexpr int SchemaVersion = 1;

// Where the starting data comes from: a folder whose CAD files become documents, an import file
// that adds users, projects, properties, revisions, relations and locks, and the root folder as
// the client names it (a Windows client under Wine names the same folder differently).
struct Workspace {
    std::string folder;     // scanned; empty: no documents from files
    std::string importFile; // empty: none
    std::string clientRoot; // empty: the folder itself
    std::string RootAsClientSeesIt() const { return clientRoot.empty() ? folder : clientRoot; }
};

struct Lock {
    std::string holder;
    std::string holderUrn;
    std::string lockedAt;
    std::string expires; // empty: no expiry
};

struct Document {
    std::int64_t key = 0;
    std::string path;
    std::string documentId;
    std::string componentId;
    std::string componentRevisionId;
    std::string documentUrn;
    std::string componentUrn;
    std::string componentRevisionUrn;
    std::string name;
    std::string revision;
    std::string itemNumber;
    std::string localVersion;
    std::string cloudVersion;
    std::int64_t container = 0; // 0: none
    std::int64_t lockUser = 0;  // 0: not locked (or the lock has expired)
    Lock lock;
};

struct Container {
    std::int64_t key = 0;
    std::string containerId;
    std::string name;
    std::string urn;
    std::int64_t type = 0;
    std::int64_t ownership = 0;
    std::string collaborationSpace;
    bool synchronised = false;
    std::string localPath;
};

struct Relation {
    std::int64_t key = 0;
    std::string relationId;
    std::string urn;
    std::int64_t parent = 0;
    std::int64_t child = 0;
    std::string type;
    std::int64_t version = 1;
};

struct User {
    std::int64_t key = 0;
    std::string name;
    std::string email;
    std::string urn;
    bool signedIn = true;
    bool online = true;
};

inline constexpr const char* DesignChildRelation = "DesignChildRelation";
inline constexpr const char* DrawingOf = "DrawingOf";

// How paths are compared: separators unified, ASCII letters folded, no trailing separator.
std::string PathKey(std::string_view path);
// Whether `path` is `folder` or lies below it (both compared as PathKey).
bool IsUnder(std::string_view path, std::string_view folder);
// The current time as an ISO 8601 UTC text, and seconds since the epoch.
std::string IsoTime(std::int64_t seconds);
std::int64_t NowSeconds();

class Store {
public:
    // Opens (creating when needed) the database at `path`; ":memory:" keeps it in memory.
    explicit Store(const std::string& path);

    Database& Db() { return db_; }

    // Fills an empty database from the workspace; does nothing when documents exist already.
    void ImportIfEmpty(const Workspace& workspace, const std::string& defaultUser);
    // Empties every table and imports again.
    void Reset(const Workspace& workspace, const std::string& defaultUser);

    // The next value of a named counter (1, 2, ...); never the same twice.
    std::int64_t Next(const std::string& counter);

    std::int64_t EnsureUser(const std::string& name, const std::string& email = "");
    std::optional<User> FindUser(const std::string& name);
    std::optional<User> UserByKey(std::int64_t key);

    // By identifier type: 0 local path, 1 document id, 2 any of the document's URNs or ids.
    std::optional<Document> FindDocument(std::string_view identifier, std::int32_t type = 0);
    std::optional<Document> DocumentByKey(std::int64_t key);
    std::int64_t AddDocument(const std::string& path, std::int64_t container);
    std::vector<Document> AllDocuments();

    std::optional<Container> FindContainer(std::string_view urnOrId);
    std::optional<Container> ContainerByKey(std::int64_t key);
    std::vector<Container> AllContainers();

    std::vector<Relation> RelationsOf(std::int64_t document, bool asParent);
    std::optional<Relation> FindRelation(std::string_view urn);
    std::int64_t AddRelation(std::int64_t parent, std::int64_t child, const std::string& type);

    std::vector<std::string> RootFolders();

    // Takes or renews the lock; ttl < 0 never expires, otherwise seconds.
    void SetLock(std::int64_t document, std::int64_t user, std::int64_t ttl);
    void ClearLock(std::int64_t document);
    // Another user saves in the cloud: the cloud version moves on.
    std::string SaveNewVersion(std::int64_t document, std::int64_t user);

    // 0 none, 1 read, 2 write; a document without an entry gives everybody write.
    std::int64_t Permission(std::int64_t document, std::int64_t user);

private:
    void CreateSchema();
    void Import(const Workspace& workspace, const std::string& defaultUser);
    Document ReadDocument(Statement& row);

    Database db_;
};

} // namespace corvane::emulator
