// Dispatch, registration and faults: which command a request names, who sent it, and what a
// fault set for the command does to its answer.
#include "Commands.h"

#include "protocol/registration/Registration.h"

#include <boost/json.hpp>

#include <algorithm>
#include <chrono>

namespace vanto::emulator {

namespace {

namespace json = boost::json;
using namespace command;
using vanto::protocol::SchemaOf;

// The envelope's "Version": the only one there is.
constexpr std::int64_t EnvelopeVersion = 1;

// The answer of a registration: the session, and errors when there is none.
class RegisterAnswer : public Core::AllocatableObject {
public:
    Core::TevString SessionId;
    Core::DynamicArray<Core::UniquePtr<Corvane::Error::ErrorInfo>> Errors;
    VANTO_JSON_FIELDS(RegisterAnswer, (), (SessionId, Errors))
};

} // namespace

Handler::Handler(Store& store, HandlerOptions options, EventLog& log)
    : store_(store), options_(std::move(options)), log_(log),
      failed_(ErrorAnswer(ReturnCode::Fail)) {
    store_.ImportIfEmpty(options_.workspace, options_.user);
    {
        Transaction transaction = store_.Begin();
        user_ = store_.EnsureUser(options_.user);
        transaction.Commit();
    }
    const std::pair<const char*, Command> table[] = {
        Entry<CorvaneLockDesignRevisionsInput>(NeedsCloud, &LockDesignRevisions),
        Entry<CorvaneUnLockDesignRevisionsInput>(NeedsCloud, &UnlockDesignRevisions),
        Entry<CorvaneQueryDesignRevisionsInput>(NeedsCloud, &QueryDesignRevisions),
        Entry<CorvaneQueryPrimaryObjectsInput>(Local, &QueryPrimaryObjects),
        Entry<CorvaneGetNextIdInput>(NeedsCloud, &GetNextId),
        Entry<CorvaneGetNextRevisionIdInput>(NeedsCloud, &GetNextRevisionId),
        Entry<CorvaneAddChildrenInput>(NeedsCloud, &AddChildren),
        Entry<CorvaneGetChildrenInput>(Local, &GetChildren),
        Entry<CorvaneRemoveChildrenInput>(NeedsCloud, &RemoveChildren),
        Entry<CorvaneGetFileContextInformationInput>(Local, &GetFileContextInfo),
        Entry<CorvaneGetFilePathByUidInput>(Local, &GetFilePathByUid),
        Entry<CorvaneCheckNewerVersionOnCloudInput>(NeedsCloud, &CheckForNewerVersion),
        Entry<CorvaneGetPropertiesInput>(Local, &GetProperties),
        Entry<CorvaneGetAvailableContainersInput>(NeedsCloud, &GetAvailableContainers),
        Entry<CorvaneAddProjectToSyncInput>(NeedsCloud, &AddProjectToSync),
        Entry<CorvaneGetAccessPermissionsInput>(Local, &GetAccessPermissions),
        Entry<CorvaneIsPathMonitoredInput>(Local, &IsPathMonitored),
        Entry<CorvaneSetDataObjectInput>(Local, &SetDataObject),
        Entry<protocol::GetConnectionStatusCommand>(NeedsCloud, &GetConnectionStatus),
        Entry<protocol::GetSessionInfoCommand>(Local, &GetSessionInfo),
        Entry<protocol::GetRootFoldersCommand>(Local, &GetRootFolders),
    };
    for (const auto& [name, command] : table) {
        commands_.emplace(name, command);
    }
}

Fault Handler::Draw(std::string_view operation, std::string_view request) noexcept {
    try {
        if (operation != "execute" || faults_.empty()) {
            return {};
        }
        json::monotonic_resource memory;
        const auto value = ParseRequest(request, &memory);
        const json::value* name = value ? value->get_object().if_contains("Command") : nullptr;
        const auto found =
            name != nullptr && name->is_string() ? faults_.find(name->get_string()) : faults_.end();
        if (found == faults_.end()) {
            return {};
        }
        const auto [fault, times] = found->second;
        log_.Write("fault on " + found->first + ": latency " + std::to_string(fault.latencyMs) +
                   " ms, code " + std::to_string(fault.failCode) +
                   (times == 1 ? ", the last time" : ""));
        if (times == 1) {
            faults_.erase(found);
        } else if (times > 1) {
            --found->second.times;
        }
        return fault;
    } catch (...) {
        return {};
    }
}

Answer Handler::Handle(std::string_view operation, std::string_view request, Fault fault) noexcept {
    const auto started = std::chrono::steady_clock::now();
    const std::int64_t startMs = NowMilliseconds();
    Noted noted;
    Answer answer = Dispatch(operation, request, fault, noted);
    if (journal_ != nullptr && operation != "ready") {
        const std::chrono::duration<double, std::milli> took =
            std::chrono::steady_clock::now() - started;
        journal_->Record({std::string(operation), std::move(noted.command),
                          std::move(noted.session), std::move(noted.user), std::string(request),
                          answer.text, startMs, took.count(), fault.latencyMs, fault.failCode,
                          fault.latencyMs != 0 || fault.failCode != 0});
    }
    return answer;
}

Answer Handler::Dispatch(std::string_view operation, std::string_view request, Fault fault,
                         Noted& noted) noexcept {
    try {
        if (operation == "execute") {
            return Execute(request, fault, noted);
        }
        if (operation == "register") {
            return {Register(request, noted)};
        }
        if (operation == "deregister") {
            return {Deregister(request, noted)};
        }
        if (operation == "ready") {
            return {R"({"Ready":true})"};
        }
        if (operation == "control") {
            Answer answer{Control(request, noted)};
            answer.stopAfter = answer.text == StopAnswer;
            return answer;
        }
        return {ErrorAnswer(ReturnCode::CommandNotSupported)};
    } catch (const std::exception& error) {
        // The transaction rolled back on the way out; the data is as it was.
        log_.Write(std::string(operation) + " failed: " + error.what());
        try {
            return {ErrorAnswer(ReturnCode::Fail)};
        } catch (...) {
            return {failed_};
        }
    } catch (...) {
        return {failed_};
    }
}

bool Handler::AnyFaultAnswers(std::int32_t code) const {
    return std::any_of(faults_.begin(), faults_.end(),
                       [code](const auto& entry) { return entry.second.fault.failCode == code; });
}

Answer Handler::Execute(std::string_view request, Fault fault, Noted& noted) {
    json::monotonic_resource memory;
    const auto value = ParseRequest(request, &memory);
    if (!value) {
        return {ErrorAnswer(ReturnCode::InvalidInput)};
    }
    const json::object& object = value->get_object();
    const json::value* name = object.if_contains("Command");
    if (name == nullptr || !name->is_string()) {
        return {ErrorAnswer(ReturnCode::InvalidInput)};
    }
    const std::string_view commandName = name->get_string();
    noted.command = commandName;
    const json::value* session = object.if_contains("SessionId");
    if (session != nullptr && session->is_string()) {
        noted.session = session->get_string();
    }
    const auto found = commands_.find(commandName);
    if (found == commands_.end()) {
        return {ErrorAnswer(ReturnCode::CommandNotSupported, commandName)};
    }
    const Command& command = found->second;
    const json::value* version = object.if_contains("Version");
    if (!MatchesSchema(*value, *command.inputSchema) ||
        (version != nullptr && !(version->is_int64() && version->get_int64() == EnvelopeVersion))) {
        return {ErrorAnswer(ReturnCode::InvalidInput)};
    }

    Transaction transaction = store_.Begin();
    const auto sessionUser =
        session == nullptr ? std::nullopt : store_.SessionUser(session->get_string());
    const auto user = sessionUser ? store_.UserByKey(*sessionUser) : std::nullopt;
    noted.user = user ? user->name : "";
    Answer answer;
    if (fault.failCode != 0) {
        // A fault set for the command answers whoever asks.
        answer.text = ErrorAnswer(fault.failCode);
    } else if (!user || !user->signedIn) {
        answer.text = ErrorAnswer(ReturnCode::UserNotSignedIn);
    } else if (command.needsCloud && !user->online) {
        answer.text = ErrorAnswer(ReturnCode::Offline);
    } else {
        Context context{&store_, user->key, &options_, &commands_};
        answer.text = command.run(context, request);
    }
    transaction.Commit();
    return answer;
}

std::string Handler::Register(std::string_view request, Noted& noted) {
    using Core::Registration::RegisterClientInput;
    noted.user = options_.user;
    RegisterAnswer answer;
    ErrorList errors;
    if (!IsAcceptableRequest(request, &SchemaOf<RegisterClientInput>())) {
        errors.AddWithoutId(ReturnCode::InvalidInput);
    } else {
        RegisterClientInput in;
        vanto::protocol::ReadRecord(&in, SchemaOf<RegisterClientInput>(), request);
        Transaction transaction = store_.Begin();
        const auto user = store_.UserByKey(user_);
        if (!user || !user->signedIn) {
            errors.AddWithoutId(ReturnCode::UserNotSignedIn);
        } else {
            answer.SessionId = T(RandomHex(16));
            noted.session = answer.SessionId.str();
            store_.OpenSession({noted.session, user_, in.ProcessId, in.ProcessStartTime.str()});
            if (in.ClientInfo) {
                clients_[noted.session] = {in.ClientInfo->Product.str(),
                                           in.ClientInfo->FullName.str()};
            }
        }
        transaction.Commit();
    }
    errors.WriteTo(answer);
    return vanto::protocol::WriteRecord(&answer, SchemaOf<RegisterAnswer>()).str();
}

std::string Handler::Deregister(std::string_view request, Noted& noted) {
    using Core::Registration::DeRegisterClientInput;
    if (!IsAcceptableRequest(request, &SchemaOf<DeRegisterClientInput>())) {
        return ErrorAnswer(ReturnCode::InvalidInput);
    }
    DeRegisterClientInput in;
    vanto::protocol::ReadRecord(&in, SchemaOf<DeRegisterClientInput>(), request);
    noted.session = in.SessionId.str();
    noted.user = options_.user;
    clients_.erase(noted.session);
    Transaction transaction = store_.Begin();
    const bool known = store_.CloseSession(in.SessionId.str());
    transaction.Commit();
    return known ? std::string(R"({"Errors":[]})") : ErrorAnswer(ReturnCode::UserNotSignedIn);
}

} // namespace vanto::emulator
