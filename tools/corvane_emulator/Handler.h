// The connector's side of the protocol: one request text in, one answer text out, with all state
// in the Store. Knows nothing of the transport.
//
// Operations: "execute" (a command of the catalogue), "register", "deregister", "ready" and
// "control" (what tests and demonstrations do to the emulator: other users, offline, faults,
// reset). Every request is checked before it is read: text that is not one JSON object of
// limited depth in valid UTF-8, or a key of the command's input with a value of the wrong kind,
// answers code 7; an unknown command code 4; an unknown session, or a signed-out user, code 3.
// Each command runs in one transaction: it is committed whole or, on any failure, not at all.
//
// Faults set through the control interface live as long as the emulator: a restart starts
// without any. Every operation but "ready" goes to the journal, when there is one.
#pragma once

#include "EventLog.h"
#include "Journal.h"
#include "RequestCheck.h"
#include "Store.h"

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace vanto::emulator {

struct Answer {
    std::string text;
    // The emulator stops once this answer is sent (the control action "stop").
    bool stopAfter = false;
};

// What a fault set through the control interface does to one request: the server waits
// `latencyMs` before the request runs (so that nothing is done for a client that gave up
// meanwhile), then it answers `failCode` instead, when one is set.
struct Fault {
    std::uint32_t latencyMs = 0;
    std::int32_t failCode = 0; // 0: none
};
inline constexpr std::int64_t MaxLatencyMs = 24 * 3600 * 1000;

inline constexpr std::string_view StopAnswer = R"({"Ok":true,"Stopping":true})";

// The emulator's log (EventLog) in its data folder: what GETSESSIONINFO names.
inline constexpr const char* LogFileName = "corvane.log";

struct HandlerOptions {
    std::string user = "Ada Byrne"; // the user signed in at this desktop
    Workspace workspace;
    std::string dataFolder; // shown in the session information and status
};

class Handler {
public:
    Handler(Store& store, HandlerOptions options, EventLog& log = EventLog::Nowhere());

    // The fault the request meets, counted as one of its times; none for anything but a command.
    Fault Draw(std::string_view operation, std::string_view request) noexcept;
    // Never throws: any failure inside a command answers code 1 and leaves the data as it was.
    Answer Handle(std::string_view operation, std::string_view request, Fault fault) noexcept;
    // Both at once, without the wait.
    Answer Handle(std::string_view operation, std::string_view request) noexcept {
        return Handle(operation, request, Draw(operation, request));
    }
    // Whether some fault answers with `code`.
    bool AnyFaultAnswers(std::int32_t code) const;

    const HandlerOptions& Options() const { return options_; }
    // Where every answered operation is recorded; none by default.
    void SetJournal(Journal* journal) { journal_ = journal; }
    // A control request answered without a journal entry (the dashboard's reads).
    std::string Control(std::string_view request);

    // What registered clients said of themselves, by session; kept while the emulator runs.
    struct Client {
        std::string product;
        std::string fullName;
    };
    const std::map<std::string, Client, std::less<>>& Clients() const { return clients_; }

    struct Command;
    using CommandTable = std::map<std::string, Command, std::less<>>;
    const CommandTable& Commands() const { return commands_; }
    // What a command knows of who sent it.
    struct Context {
        Store* store = nullptr;
        std::int64_t user = 0;
        const HandlerOptions* options = nullptr;
        const CommandTable* commands = nullptr;
    };
    using Runner = std::function<std::string(Context&, std::string_view request)>;
    struct Command {
        const vanto::protocol::Schema* inputSchema;
        bool needsCloud; // answers code 6 while offline
        Runner run;
    };

private:
    struct FaultSetting {
        Fault fault;
        std::int64_t times; // 0: until cleared
    };

    // What an operation learns of itself for its journal entry.
    struct Noted {
        std::string command;
        std::string session;
        std::string user;
    };
    Answer Dispatch(std::string_view operation, std::string_view request, Fault fault,
                    Noted& noted) noexcept;
    Answer Execute(std::string_view request, Fault fault, Noted& noted);
    std::string Register(std::string_view request, Noted& noted);
    std::string Deregister(std::string_view request, Noted& noted);
    std::string Control(std::string_view request, Noted& noted);
    std::string SetFault(const boost::json::object& request);

    Store& store_;
    HandlerOptions options_;
    std::int64_t user_ = 0;
    CommandTable commands_;
    std::map<std::string, FaultSetting, std::less<>> faults_;
    std::map<std::string, Client, std::less<>> clients_;
    EventLog& log_;
    Journal* journal_ = nullptr;
    std::string failed_; // made beforehand: the answer when even making an answer failed
};

// An answer with one error and nothing else.
std::string ErrorAnswer(std::int32_t code, std::string_view id = {});

} // namespace vanto::emulator
