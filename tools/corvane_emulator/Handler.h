// The connector's side of the protocol: one request text in, one answer text out, with all state
// in the Store. Knows nothing of the transport.
//
// Operations: "execute" (a command of the catalogue), "register", "deregister", "ready" and
// "control" (what tests and demonstrations do to the emulator: other users, offline, faults,
// reset). Every request is checked before it is read: text that is not one JSON object of
// limited depth in valid UTF-8, or a key of the command's input with a value of the wrong kind,
// answers code 7; an unknown command code 4; an unknown session, or a signed-out user, code 3.
// Each command runs in one transaction: it is committed whole or, on any failure, not at all.
#pragma once

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
    // Added by a fault set through the control interface; the server waits this long before it
    // answers, without holding up other clients.
    std::uint32_t delayMs = 0;
    // The emulator stops once this answer is sent (the control action "stop").
    bool stopAfter = false;
};

inline constexpr std::string_view StopAnswer = R"({"Ok":true,"Stopping":true})";

struct HandlerOptions {
    std::string user = "Ada Byrne"; // the user signed in at this desktop
    Workspace workspace;
    std::string dataFolder; // shown in the session information and status
};

class Handler {
public:
    Handler(Store& store, HandlerOptions options);

    // Never throws: any failure inside a command answers code 1 and leaves the data as it was.
    Answer Handle(std::string_view operation, std::string_view request) noexcept;

    const HandlerOptions& Options() const { return options_; }

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
    Answer Execute(std::string_view request);
    std::string Register(std::string_view request);
    std::string Deregister(std::string_view request);
    std::string Control(std::string_view request);

    Store& store_;
    HandlerOptions options_;
    std::int64_t user_ = 0;
    CommandTable commands_;
    std::string failed_; // made beforehand: the answer when even making an answer failed
};

// An answer with one error and nothing else.
std::string ErrorAnswer(std::int32_t code, std::string_view id = {});

} // namespace vanto::emulator
