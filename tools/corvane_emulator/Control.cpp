// The control interface: what tests and demonstrations do to the emulator. Requests and answers
// are small JSON objects: {"Action": ..., ...} in, {"Ok": true, ...} or {"Ok": false, "Error": ...}
// out; a request that is wrong in itself (not the state it meets) also says "BadRequest": true.
#include "Handler.h"

#include <boost/json.hpp>

#include <limits>
#include <optional>

namespace vanto::emulator {

namespace {

namespace json = boost::json;

std::string Failure(const std::string& message) {
    return json::serialize(json::object{{"Ok", false}, {"Error", message}});
}

std::string BadRequest(const std::string& message) {
    return json::serialize(json::object{{"Ok", false}, {"Error", message}, {"BadRequest", true}});
}

std::string Field(const json::object& request, std::string_view key) {
    const json::value* value = request.if_contains(key);
    return value != nullptr && value->is_string() ? std::string(value->get_string()) : "";
}

// A whole number from 0 to `most`, 0 when absent; none when it is anything else.
std::optional<std::int64_t> Number(const json::object& request, std::string_view key,
                                   std::int64_t most) {
    const json::value* value = request.if_contains(key);
    if (value == nullptr) {
        return 0;
    }
    const bool fits = value->is_int64() && value->get_int64() >= 0 && value->get_int64() <= most;
    return fits ? std::optional<std::int64_t>(value->get_int64()) : std::nullopt;
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
    Noted unrecorded;
    return Control(request, unrecorded);
}

std::string Handler::Control(std::string_view request, Noted& noted) {
    boost::system::error_code error;
    json::parse_options options;
    options.max_depth = vanto::protocol::MaxJsonDepth;
    json::value parsed = json::parse(json::string_view(request.data(), request.size()), error,
                                     json::storage_ptr(), options);
    if (error || !parsed.is_object()) {
        return BadRequest("the request is not a JSON object");
    }
    const json::object& in = parsed.get_object();
    const std::string action = Field(in, "Action");
    noted.command = action;
    noted.user = in.contains("User") ? Field(in, "User") : options_.user;
    json::object out{{"Ok", true}};

    Transaction transaction = store_.Begin();
    // The document and the other user a request acts on, or an error text.
    const auto target = [&](std::optional<Document>& d, std::int64_t& user) -> std::string {
        const std::string name = Field(in, "User");
        const auto found = store_.FindUser(name);
        if (!found) {
            return "no user \"" + name + "\" (users come from the import or another desktop)";
        }
        user = found->key;
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
        json::array faults;
        for (const auto& [command, setting] : faults_) {
            faults.push_back({{"Command", command},
                              {"LatencyMs", setting.fault.latencyMs},
                              {"FailCode", setting.fault.failCode},
                              {"Times", setting.times}});
        }
        out["Faults"] = std::move(faults);
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
            return BadRequest(problem);
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
            clients_.clear();
        }
    } else if (action == "fault") {
        return SetFault(in);
    } else if (action == "clear-faults") {
        faults_.clear();
    } else if (action == "stop") {
        return std::string(StopAnswer);
    } else if (action == "reset") {
        transaction.Commit();
        store_.Reset(options_.workspace, options_.user);
        clients_.clear();
        Transaction again = store_.Begin();
        user_ = store_.EnsureUser(options_.user);
        again.Commit();
        return json::serialize(out);
    } else {
        return BadRequest("unknown action \"" + action + "\"");
    }
    transaction.Commit();
    return json::serialize(out);
}

std::string Handler::SetFault(const json::object& in) {
    const std::string command = Field(in, "Command");
    if (commands_.count(command) == 0) {
        return BadRequest("no command \"" + command + "\" (GETSESSIONINFO lists them)");
    }
    const auto latency = Number(in, "LatencyMs", MaxLatencyMs);
    const auto failCode = Number(in, "FailCode", std::numeric_limits<std::int32_t>::max());
    const auto times = Number(in, "Times", std::numeric_limits<std::int64_t>::max());
    if (!latency || !failCode || !times) {
        return BadRequest("LatencyMs (at most " + std::to_string(MaxLatencyMs) +
                          "), FailCode and Times are whole numbers, 0 or more");
    }
    if (*latency == 0 && *failCode == 0) {
        return BadRequest("a fault needs LatencyMs or FailCode");
    }
    faults_[command] = {
        {static_cast<std::uint32_t>(*latency), static_cast<std::int32_t>(*failCode)}, *times};
    return json::serialize(json::object{{"Ok", true}});
}

} // namespace vanto::emulator
