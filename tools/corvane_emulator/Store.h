// The cloud side as the emulator keeps it, in one SQLite database: users and their sessions, the
// monitored root folders, documents with their identities, versions, locks, properties and
// permissions, design revisions, relations between documents, projects, counters and stored
// data objects. The schema's version is the database's user_version; a database of another
// version is refused rather than guessed at, except the first one's, which recorded its version
// in a table and is moved over. Every SQL text of the emulator is in the store's files.
#pragma once

#include "Sqlite.h"
#include "Text.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vanto::emulator {

// 2: path keys fold case over all of Unicode (1 folded ASCII letters only).
inline constexpr int SchemaVersion = 2;

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

struct Session {
    std::string id;
    std::int64_t user = 0;
    std::int64_t processId = 0;
    std::string processStart;
};

// A session as the dashboard lists it.
struct SessionListing {
    std::string id;
    std::string user;
    std::int64_t processId = 0;
    std::string since;
};

struct Tally {
    std::int64_t documents = 0;
    std::int64_t locks = 0; // locks that have not expired
    std::int64_t sessions = 0;
};

class Store {
public:
    // Opens (creating or moving over when needed) the database at `path`; ":memory:" keeps it in
    // memory. A database that fails SQLite's quick check is refused, untouched.
    explicit Store(const std::string& path);

    // Everything done between this and Commit() is kept whole or not at all.
    Transaction Begin() { return Transaction(db_); }
    // Told of every long wait for a turn to write (Database::LongWait), with its length.
    void ReportLongWaits(std::function<void(std::chrono::milliseconds)> report) {
        db_.ReportLongWaits(std::move(report));
    }

    // Fills an empty database from the workspace; does nothing when documents exist already.
    void ImportIfEmpty(const Workspace& workspace, const std::string& defaultUser);
    // Empties every table and imports again.
    void Reset(const Workspace& workspace, const std::string& defaultUser);

    // A setting kept with the data; empty when never set.
    void RememberSetting(const std::string& key, const std::string& value);
    std::string Setting(const std::string& key);

    // The next value of a named counter (1, 2, ...); never the same twice.
    std::int64_t Next(const std::string& counter);
    Tally Count();
    // SQLite's own check of the file: "ok" when it is sound.
    std::string IntegrityCheck();

    std::int64_t EnsureUser(const std::string& name, const std::string& email = "");
    std::optional<User> FindUser(const std::string& name);
    std::optional<User> UserByKey(std::int64_t key);
    void SetOnline(std::int64_t user, bool online);
    void SetSignedIn(std::int64_t user, bool signedIn);

    void OpenSession(const Session& session);
    // False when there was no such session.
    bool CloseSession(const std::string& id);
    void CloseSessionsOf(std::int64_t user);
    std::optional<std::int64_t> SessionUser(std::string_view id);
    std::vector<SessionListing> AllSessions();

    // By identifier type (protocol::IdentifierType).
    std::optional<Document> FindDocument(std::string_view identifier, std::int32_t type = 0);
    std::optional<Document> DocumentByKey(std::int64_t key);
    std::int64_t AddDocument(const std::string& path, std::int64_t container);
    std::vector<Document> AllDocuments();
    // A property by name, ignoring case; and all of a document's properties by name.
    std::optional<std::string> PropertyValue(std::int64_t document, const std::string& name);
    std::vector<std::pair<std::string, std::string>> Properties(std::int64_t document);

    std::optional<Container> FindContainer(std::string_view urnOrId);
    std::optional<Container> ContainerByKey(std::int64_t key);
    std::vector<Container> AllContainers();
    void SynchroniseContainer(std::int64_t container, const std::string& localPath);

    std::vector<Relation> RelationsOf(std::int64_t document, bool asParent);
    std::optional<Relation> FindRelation(std::string_view urn);
    bool HasRelation(std::int64_t parent, std::int64_t child, const std::string& type);
    std::int64_t AddRelation(std::int64_t parent, std::int64_t child, const std::string& type);
    void RemoveRelation(std::int64_t relation);

    std::vector<std::string> RootFolders();

    // Takes or renews the lock; ttl < 0 never expires, otherwise seconds.
    void SetLock(std::int64_t document, std::int64_t user, std::int64_t ttl);
    void ClearLock(std::int64_t document);
    // Another user saves in the cloud: the cloud version moves on.
    std::string SaveNewVersion(std::int64_t document);

    // protocol::Permission; a document without an entry gives everybody write.
    std::int64_t Permission(std::int64_t document, std::int64_t user);
    // Every user's permission on a document, by user name.
    std::vector<std::pair<std::string, std::int64_t>> Permissions(std::int64_t document);

    void SetDataObject(const std::string& primaryKey, const std::string& secondaryKey,
                       const std::string& data);

    // Keeps a copy of every table, and puts it back: a fuzzer starts each input from the same
    // data far quicker than by importing again.
    void SaveSnapshot();
    void RestoreSnapshot();

private:
    void RefuseIfDamaged(const std::string& path);
    void OpenSchema();
    // Makes every document's path key again from its path (a database of schema version 1).
    void RekeyDocuments();
    void Import(const Workspace& workspace, const std::string& defaultUser);
    Document ReadDocument(Statement& row);

    Database db_;
    std::vector<std::string> restore_;
};

} // namespace vanto::emulator
