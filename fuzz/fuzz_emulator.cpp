// The emulator's request handling, as any local client reaches it. Each line of the input is one
// request: the operation ("execute", "register", "deregister", "ready", "control" or any other
// word), one space, and the request text. Every input starts from the same data: the example
// workspace as a Windows client sees it below C:\Corvane, in a database in memory, with one
// session of the signed-in user (TheSession). Whatever the requests, every answer is one JSON
// object and no command fails inside.
#include "Handler.h"
#include "Require.h"

#include "protocol/Numbers.h"

#include <boost/json.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace vanto::emulator;
using vanto::fuzz::Require;

// The session every input may use; the starting corpus names it.
constexpr const char* TheSession = "5f3c9a0e7b21d4c68e0f1a2b3c4d5e6f";
constexpr std::size_t MaxRequests = 32;

HandlerOptions Options() {
    HandlerOptions options;
    options.workspace.folder = VANTO_EXAMPLES_DIR "/workspace";
    options.workspace.importFile = VANTO_EXAMPLES_DIR "/workspace/corvane-import.json";
    options.workspace.clientRoot = "C:\\Corvane";
    options.dataFolder = "C:\\Users\\ada\\AppData\\Local\\Corvane";
    return options;
}

// The starting data, imported once and kept in an attached database; each input gets a copy of it
// (copying a dozen small tables is far quicker than importing the workspace again).
class Emulator {
public:
    Emulator() : store_(":memory:") {
        const Handler handler(store_, Options());
        Transaction transaction = store_.Begin();
        store_.OpenSession(
            {TheSession, store_.FindUser(Options().user)->key, 4242, "2024-3-7T09:05:02"});
        transaction.Commit();
        store_.SaveSnapshot();
    }

    Store& Fresh() {
        store_.RestoreSnapshot();
        return store_;
    }

private:
    Store store_;
};

// An answer is one JSON object, and without error code 1 (what the handler answers when a command
// threw) unless a fault set through the control interface asks for that code.
void CheckAnswer(const std::string& text, bool failureAskedFor) {
    boost::system::error_code error;
    const boost::json::value value = boost::json::parse(text, error);
    Require(!error && value.is_object(), "every answer is one JSON object");
    const boost::json::value* errors = value.get_object().if_contains("Errors");
    if (errors == nullptr || !errors->is_array()) {
        return;
    }
    for (const boost::json::value& entry : errors->get_array()) {
        const boost::json::value* code =
            entry.is_object() ? entry.get_object().if_contains("ErrorCode") : nullptr;
        Require(failureAskedFor || code == nullptr || !code->is_int64() ||
                    code->get_int64() != vanto::protocol::ReturnCode::Fail,
                "no command fails inside");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Emulator emulator;
    Store& store = emulator.Fresh();
    Handler handler(store, Options());
    std::string_view rest(reinterpret_cast<const char*>(data), size);
    for (std::size_t count = 0; !rest.empty() && count < MaxRequests; ++count) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        const std::string_view line = rest.substr(0, end);
        rest.remove_prefix(std::min(end + 1, rest.size()));
        const std::size_t space = std::min(line.find(' '), line.size());
        const std::string_view operation = line.substr(0, space);
        const std::string_view request = line.substr(std::min(space + 1, line.size()));

        const bool failureAskedFor = handler.AnyFaultAnswers(vanto::protocol::ReturnCode::Fail);
        CheckAnswer(handler.Handle(operation, request).text, failureAskedFor);
    }
    return 0;
}
