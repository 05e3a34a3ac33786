#include "DashboardViews.h"

#include "Text.h"

#include "protocol/NumberNames.h"

#include <boost/json.hpp>

#include <charconv>
#include <set>

namespace vanto::emulator::views {

namespace {

namespace json = boost::json;
using vanto::protocol::IdentifierType::DocumentId;
using vanto::protocol::IdentifierType::FilePath;

// Deeper levels of a structure are left out: no page draws them.
constexpr int MaxStructureDepth = 64;

int HexDigit(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

std::string Decoded(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const int high = text[i] == '%' && i + 2 < text.size() ? HexDigit(text[i + 1]) : -1;
        const int low = high >= 0 ? HexDigit(text[i + 2]) : -1;
        if (low >= 0) {
            out += static_cast<char>(high * 16 + low);
            i += 2;
        } else {
            out += text[i] == '+' ? ' ' : text[i];
        }
    }
    return out;
}

std::string Word(const Query& query, std::string_view key) {
    const auto found = query.find(key);
    return found == query.end() ? std::string() : found->second;
}

json::object Lock(const Document& d) {
    return {{"Path", d.path},
            {"DocumentId", d.documentId},
            {"LockedBy", d.lock.holder},
            {"LockedAt", d.lock.lockedAt},
            {"LockExpires", d.lock.expires}};
}

json::object Listing(Store& store, const Document& d) {
    json::object permissions;
    for (const auto& [user, level] : store.Permissions(d.key)) {
        const char* name = vanto::protocol::NameOf(vanto::protocol::PermissionNames,
                                                   static_cast<std::int32_t>(level));
        permissions[user] = name != nullptr ? name : "";
    }
    json::object listing = Lock(d);
    listing["Name"] = d.name;
    listing["Revision"] = d.revision;
    listing["Version"] = d.localVersion;
    listing["CloudVersion"] = d.cloudVersion;
    listing["Permissions"] = std::move(permissions);
    return listing;
}

// A document's tree one way: each document is opened once, met again it is marked.
class Tree {
public:
    Tree(Store& store, bool children) : store_(store), children_(children) {}

    json::object Node(const Document& d, const std::string& relation, int depth) {
        json::object node{{"DocumentId", d.documentId}, {"Path", d.path},    {"Name", d.name},
                          {"Relation", relation},       {"Repeated", false}, {"Cycle", false}};
        json::array below;
        if (ancestors_.count(d.key) != 0) {
            node["Cycle"] = true;
        } else if (!opened_.insert(d.key).second) {
            node["Repeated"] = true;
        } else if (depth < MaxStructureDepth) {
            ancestors_.insert(d.key);
            for (const Relation& r : store_.RelationsOf(d.key, children_)) {
                if (const auto next = store_.DocumentByKey(children_ ? r.child : r.parent)) {
                    below.push_back(Node(*next, r.type, depth + 1));
                }
            }
            ancestors_.erase(d.key);
        }
        node["Children"] = std::move(below);
        return node;
    }

private:
    Store& store_;
    bool children_;
    std::set<std::int64_t> opened_;
    std::set<std::int64_t> ancestors_;
};

} // namespace

Query ParseQuery(std::string_view query) {
    Query out;
    while (!query.empty()) {
        const std::size_t end = std::min(query.find('&'), query.size());
        const std::string_view pair = query.substr(0, end);
        const std::size_t equals = std::min(pair.find('='), pair.size());
        out[Decoded(pair.substr(0, equals))] =
            equals < pair.size() ? Decoded(pair.substr(equals + 1)) : "";
        query.remove_prefix(std::min(end + 1, query.size()));
    }
    return out;
}

std::int64_t Number(const Query& query, std::string_view key, std::int64_t fallback,
                    std::int64_t most) {
    const auto found = query.find(key);
    if (found == query.end() || found->second.empty()) {
        return fallback;
    }
    const std::string& text = found->second;
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || value < 0 || value > most) {
        throw Refusal(400,
                      std::string(key) + " is a whole number from 0 to " + std::to_string(most));
    }
    return value;
}

std::string Status(Handler& handler, const DashboardOptions& options) {
    json::object status = json::parse(handler.Control(R"({"Action":"status"})")).as_object();
    status["Desktop"] = options.desktop;
    status["Cloud"] = options.cloud.empty() ? json::value(nullptr) : json::value(options.cloud);
    return json::serialize(status);
}

std::string Documents(Store& store, const Query& query) {
    const std::int64_t offset = Number(query, "offset", 0, INT32_MAX);
    const std::int64_t limit = Number(query, "limit", 100, 500);
    const std::string wanted = PathKey(Word(query, "q"));
    json::array items;
    std::int64_t total = 0;
    for (const Document& d : store.AllDocuments()) {
        if (!wanted.empty() && PathKey(d.name).find(wanted) == std::string::npos &&
            PathKey(d.path).find(wanted) == std::string::npos) {
            continue;
        }
        if (total++ >= offset && static_cast<std::int64_t>(items.size()) < limit) {
            items.push_back(Listing(store, d));
        }
    }
    return json::serialize(json::object{{"Total", total}, {"Offset", offset}, {"Items", items}});
}

std::string Locks(Store& store) {
    json::array items;
    for (const Document& d : store.AllDocuments()) {
        if (d.lockUser != 0) {
            items.push_back(Lock(d));
        }
    }
    return json::serialize(json::object{{"Items", items}});
}

std::string Sessions(Store& store, const Handler& handler) {
    json::array items;
    for (const SessionListing& s : store.AllSessions()) {
        const auto client = handler.Clients().find(s.id);
        const bool known = client != handler.Clients().end();
        items.push_back({{"Session", s.id},
                         {"Pid", s.processId},
                         {"Product", known ? client->second.product : ""},
                         {"Version", known ? client->second.fullName : ""},
                         {"Since", s.since},
                         {"User", s.user}});
    }
    return json::serialize(json::object{{"Items", items}});
}

std::string Structure(Store& store, const Query& query) {
    const std::string direction = Word(query, "direction");
    const bool children = direction.empty() || direction == "children";
    if (!children && direction != "parents") {
        throw Refusal(400, "direction is children or parents");
    }
    const std::string wanted = Word(query, "document");
    auto d = store.FindDocument(wanted, DocumentId);
    if (!d) {
        d = store.FindDocument(wanted, FilePath);
    }
    if (!d) {
        throw Refusal(404, "no document \"" + wanted + "\"");
    }
    return json::serialize(json::object{{"Root", Tree(store, children).Node(*d, "", 0)}});
}

std::string JournalPage(Journal& journal, const Query& query) {
    JournalFilter filter;
    filter.before = Number(query, "before", 0, INT64_MAX);
    filter.limit = Number(query, "limit", 200, 500);
    filter.command = Word(query, "command");
    filter.user = Word(query, "user");
    filter.errorsOnly = Word(query, "errors") == "1";
    std::string out = R"({"Items":[)";
    for (const JournalEntry& entry : journal.Page(filter)) {
        out += entry.json;
        out += ',';
    }
    if (out.back() == ',') {
        out.pop_back();
    }
    return out + "]}";
}

} // namespace vanto::emulator::views
