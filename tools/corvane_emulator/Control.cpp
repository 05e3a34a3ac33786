// The control interface: what tests and demonstrations do to the emulator. Requests and answers
// are small JSON objects: {"Action": ..., ...} in, {"Ok": true, ...} or {"Ok": false, "Error": ...}
// out.
#include "Handler.h"

#include <boost/json.hpp>

namespace vanto::emulator {

namespace {

namespace json = boost::json;

std::string Failure(const std::string& message) {
    return json::serialize(json::object{{"Ok", false}, {"Error", message}});
}

std::string Field(const json::object& request, std::string_view key) {
    const json::value* value = request.if_contains(key);
    return value != nullptr && value->is_string() ? std::string(value->get_string()) : "";
}

std::int64_t Number(const json::object& request, std::string_view key) {
    const json::value* value = request.if_contains(key);
    return value != nullptr && value->is_int64() ? value->get_int64() : 0;
}

json::object Listing(const Document& d) {
    return {{"Path", d.path},
            {"DocumentId", d.documentId},
            {"Name", d.name},
            {"Revision", d.revision},
            {"Version", d.localVersion},
            {"CloudVersion", d.cloudVersion},
            {"LockedBy", d.lock.holder},
            {"LockedAt", d.lock.lockedAt},
            {"LockExpires", d.lock.expires}};
}

} // namespace

std::string Handler::Control(std::string_view request) {
    boost::system::error_code error;
    json::parse_options options;
    options.max_depth = vanto::protocol::MaxJsonDepth;
    json::value parsed = json::parse(json::string_view(request.data(), request.size()), error,
                                     json::storage_ptr(), options);
    if (error || !parsed.is_object()) {
        return Failure("the request is not a JSON object");
    }
    const json::object& in = parsed.get_object();
    const std::string action = Field(in, "Action");
    json::object out{{"Ok", true}};

    Transaction transaction = store_.Begin();
    // The document and the other user a request acts on, or an error text.
    const auto target = [&](std::optional<Document>& d, std::int64_t& user) -> std::string {
        const std::string name = Field(in, "User");
        if (name.empty()) {
            return "no \"User\" given";
        }
        user = store_.EnsureUser(name);
        d = store_.FindDocument(Field(in, "Path"), 0);
        return d ? "" : "no document at \"" + Field(in, "Path") + "\"";
    };
    std::optional<Document> d;
    std::int64_t other = 0;

    if (action == "status") {
        const auto user = store_.UserByKey(user_);
        out["User"] = user->name;
        out["Online"] = user->online;
        out["SignedIn"] = user->signedIn;
        const Tally tally = store_.Count();
        out["Documents"] = tally.documents;
        out["Locks"] = tally.locks;
        out["Sessions"] = tally.sessions;
        out["SchemaVersion"] = SchemaVersion;
        out["DataFolder"] = options_.dataFolder;
    } else if (action == "documents" || action == "locks") {
        json::array list;
        for (const Document& document : store_.AllDocuments()) {
            if (action == "documents" || document.lockUser != 0) {
                list.push_back(Listing(document));
            }
        }
        out[action == "documents" ? "Documents" : "Locks"] = std::move(list);
    } else if (action == "lock" || action == "unlock" || action == "save") {
        if (std::string problem = target(d, other); !problem.empty()) {
            return Failure(problem);
        }
        if (d->lockUser != 0 && d->lockUser != other) {
            return Failure("locked by " + d->lock.holder);
        }
        if (action == "lock") {
            store_.SetLock(d->key, other, -1);
        } else if (action == "unlock") {
            store_.ClearLock(d->key);
        } else {
            out["CloudVersion"] = store_.SaveNewVersion(d->key);
        }
        out["Document"] = Listing(*store_.DocumentByKey(d->key));
    } else if (action == "offline" || action == "online") {
        store_.SetOnline(user_, action == "online");
    } else if (action == "signout" || action == "signin") {
        store_.SetSignedIn(user_, action == "signin");
        if (action == "signout") {
            store_.CloseSessionsOf(user_);
        }
    } else if (action == "fault") {
        const std::string command = Field(in, "Command");
        if (command.empty()) {
            return Failure("no \"Command\" given");
        }
        store_.SetFault(command, std::max<std::int64_t>(0, Number(in, "LatencyMs")),
                        Number(in, "FailCode"), std::max<std::int64_t>(0, Number(in, "Times")));
    } else if (action == "clear-faults") {
        store_.ClearFaults();
    } else if (action == "stop") {
        return std::string(StopAnswer);
    } else if (action == "reset") {
        transaction.Commit();
        store_.Reset(options_.workspace, options_.user);
        Transaction again = store_.Begin();
        user_ = store_.EnsureUser(options_.user);
        again.Commit();
        return json::serialize(out);
    } else {
        return Failure("unknown action \"" + action + "\"");
    }
    transaction.Commit();
    return json::serialize(out);
}

} // namespace vanto::emulator
