#include "Store.h"

#include <boost/json.hpp>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace vanto::emulator {

namespace {

namespace fs = std::filesystem;
namespace json = boost::json;

constexpr const char* Tables[] = {"sessions",  "permissions",  "properties", "revisions",
                                  "relations", "documents",    "containers", "root_folders",
                                  "users",     "data_objects", "counters"};

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

void Store::Import(const Workspace& workspace, const std::string& defaultUser) {
    json::object data;
    if (!workspace.importFile.empty()) {
        std::ifstream file(fs::u8path(workspace.importFile), std::ios::binary);
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
        const fs::path folder = fs::u8path(workspace.folder);
        for (fs::recursive_directory_iterator it(folder, error), end; !error && it != end;
             it.increment(error)) {
            if (it->is_regular_file(error) && IsCadExtension(it->path().extension().u8string())) {
                files.push_back(it->path().lexically_relative(folder).generic_u8string());
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

} // namespace vanto::emulator
