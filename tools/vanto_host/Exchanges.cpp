#include "Exchanges.h"

#include "os/Console.h"
#include "protocol/NumberNames.h"

#include <filesystem>
#include <fstream>
#include <random>
#include <unordered_map>

namespace vanto::host {

namespace {

using namespace vanto::protocol;

// The JSON text of a trace member, parsed; an empty object for anything else.
boost::json::object Parsed(const boost::json::object& line, const char* key) {
    const boost::json::value* text = line.if_contains(key);
    if (text == nullptr || !text->is_string()) {
        return {};
    }
    boost::system::error_code error;
    boost::json::value value = boost::json::parse(text->get_string(), error);
    return !error && value.is_object() ? std::move(value.get_object()) : boost::json::object();
}

bool Names(const std::vector<ConnectorError>& errors, std::int32_t code) {
    for (const ConnectorError& error : errors) {
        if (error.code == code) {
            return true;
        }
    }
    return false;
}

} // namespace

std::string TextOf(const boost::json::object& record, std::string_view key) {
    const boost::json::value* value = record.if_contains(key);
    return value != nullptr && value->is_string() ? std::string(value->get_string())
                                                  : std::string();
}

const boost::json::array& ArrayOf(const boost::json::object& record, std::string_view key) {
    static const boost::json::array none;
    const boost::json::value* value = record.if_contains(key);
    return value != nullptr && value->is_array() ? value->get_array() : none;
}

const boost::json::array& ArrayOf(const boost::json::value& record, std::string_view key) {
    static const boost::json::object none;
    return ArrayOf(record.is_object() ? record.get_object() : none, key);
}

std::string ReturnCodeText(std::int32_t code) {
    const char* name = NameOf(ReturnCodeNames, code);
    return std::to_string(code) + (name != nullptr ? std::string(" ") + name : std::string());
}

void Exchanges::Add(const boost::json::object& line) {
    ++calls_;
    const std::string call = TextOf(line, "Call");
    const std::string failure = TextOf(line, "Failure");
    if (call == "register") {
        registerTried_ = true;
    }
    if (!failure.empty()) {
        failure_ = failure;
        // Sent, perhaps carried out, but not answered.
        answerMissing_ = answerMissing_ || (call == "execute" &&
                                            (failure.find("time-out") != std::string::npos ||
                                             failure.find("lost connection") != std::string::npos));
        return;
    }
    // A later answer shows the connection working again (a start waits for it).
    failure_.clear();
    boost::json::object answer = Parsed(line, "Answer");
    if (call == "register" && !TextOf(answer, "SessionId").empty()) {
        registered_ = true;
        sessionId_ = TextOf(answer, "SessionId");
    }
    AddErrors(answer);
    answers_.emplace_back(TextOf(Parsed(line, "Request"), "Command"), std::move(answer));
}

void Exchanges::AddErrors(const boost::json::object& answer) {
    const boost::json::array& errors = ArrayOf(answer, "Errors");
    if (errors.empty()) {
        return;
    }
    std::unordered_map<std::string, std::string> holders;
    for (const boost::json::value& status : ArrayOf(answer, "Status")) {
        if (status.is_object()) {
            holders.emplace(TextOf(status.get_object(), "DesignIdentifier"),
                            TextOf(status.get_object(), "LockedBy"));
        }
    }
    for (const boost::json::value& entry : errors) {
        if (!entry.is_object()) {
            continue;
        }
        ConnectorError error;
        const boost::json::value* code = entry.get_object().if_contains("ErrorCode");
        error.code =
            code != nullptr && code->is_int64() ? static_cast<std::int32_t>(code->get_int64()) : 0;
        for (const boost::json::value& id : ArrayOf(entry.get_object(), "Ids")) {
            error.ids.push_back(id.is_string() ? std::string(id.get_string()) : std::string());
        }
        if (error.code == ReturnCode::ObjectLocked && error.ids.size() == 1) {
            const auto holder = holders.find(error.ids.front());
            error.holder = holder != holders.end() ? holder->second : std::string();
        }
        // The same error comes back from each call a method makes; it is told once.
        if (seen_.insert(boost::json::serialize(entry) + error.holder).second) {
            errors_.push_back(std::move(error));
        }
    }
}

std::string Exchanges::NotConnectedCause(bool sessionNeeded) const {
    if (!failure_.empty()) {
        return failure_;
    }
    if (Names(errors_, ReturnCode::Offline)) {
        return "the connector is offline (" + ReturnCodeText(ReturnCode::Offline) + ")";
    }
    if (Names(errors_, ReturnCode::UserNotSignedIn)) {
        return "no user is signed in to the connector (" +
               ReturnCodeText(ReturnCode::UserNotSignedIn) + ")";
    }
    if (registerTried_ && !registered_) {
        return "the connector granted this process no session";
    }
    if (sessionNeeded && !registered_) {
        return "this process did not register with the connector";
    }
    return std::string();
}

const boost::json::object* Exchanges::AnswerTo(std::string_view command) const {
    for (auto answer = answers_.rbegin(); answer != answers_.rend(); ++answer) {
        if (answer->first == command) {
            return &answer->second;
        }
    }
    return nullptr;
}

ConnectorTrace::ConnectorTrace() {
    std::error_code error;
    const std::filesystem::path folder = std::filesystem::temp_directory_path(error);
    if (error) {
        return;
    }
    std::random_device random;
    path_ = (folder / ("vanto_host-" + std::to_string(random()) + ".trace")).u8string();
    platform::os::SetRuntimeEnvironmentValue("VANTO_CORVANE_TRACE", path_);
}

ConnectorTrace::~ConnectorTrace() {
    std::error_code ignored;
    if (!path_.empty()) {
        std::filesystem::remove(std::filesystem::u8path(path_), ignored);
    }
}

void ConnectorTrace::ReadInto(Exchanges& exchanges) {
    std::ifstream in(std::filesystem::u8path(path_), std::ios::binary);
    if (path_.empty() || !in.seekg(read_)) {
        return;
    }
    for (std::string line; std::getline(in, line);) {
        read_ += static_cast<std::streamoff>(line.size() + 1);
        boost::system::error_code error;
        const boost::json::value value = boost::json::parse(line, error);
        if (!error && value.is_object()) {
            exchanges.Add(value.get_object());
        }
    }
}

} // namespace vanto::host
