// The one frame every file-service method runs in: the scope record, the session test, the guard
// that turns exceptions into the method's failure result, sending one command and reading its
// answer, and the report of an answer's errors. Each method adds only its own steps.
#pragma once

#include "entry/VANTOManager.h"
#include "log/Guard.h"
#include "log/VANTOLog.h"
#include "protocol/Catalogue.h"
#include "protocol/Envelope.h"

#include <boost/describe/members.hpp>

#include <optional>
#include <string_view>
#include <type_traits>
#include <utility>

namespace vanto::fileservices {

using Corvane::CommandIO::CommandOutputBase;

// Whether a failed answer hands each of its error codes to LogErrors.
enum class ErrorCodes : bool { NotReported = false, Reported = true };

// Texts cross the interface wide and travel in the records as UTF-8 (code page 65001). Where a
// method hands a text over with the host text class's own narrow form instead, it says so by
// calling the Narrow variant; here the two agree, as the host's narrow form is UTF-8.
Core::TevString ToUtf8(const GUserText& text);
GUserText FromUtf8(const Core::TevString& text);
Core::TevString ToNarrow(const GUserText& text);
GUserText FromNarrow(const Core::TevString& text);

// Lists of texts as a record carries them.
void AppendUtf8(Core::DynamicArray<Core::TevString>& texts, const PathList& paths);
void AppendNarrow(Core::DynamicArray<Core::TevString>& texts, const PathList& paths);

// The keys of a caller's map, in its order.
template <class Map> PathList KeysOf(const Map& map) {
    PathList keys;
    keys.reserve(map.size());
    for (const auto& entry : map) {
        keys.push_back(entry.first);
    }
    return keys;
}

// The caller's container, or a scratch one when the host passed none: a method never writes
// through a null pointer.
template <class T> class Target {
public:
    explicit Target(T* given) : target_(given != nullptr ? *given : scratch_) {}
    Target(const Target&) = delete;
    Target& operator=(const Target&) = delete;
    T& operator*() const noexcept { return target_; }
    T* operator->() const noexcept { return &target_; }

private:
    T scratch_{};
    T& target_;
};

// The heads of the lines a method logs its request and the answer with; each line is its head
// followed by the JSON text.
struct RequestLog {
    std::wstring_view inputHead;
    std::wstring_view outputHead;
};

class CallFrame {
public:
    // Opens the method's scope record; `methodTag` null opens none.
    CallFrame(VANTOManager::VANTOFileServices& self, const wchar_t* methodTag);
    CallFrame(const CallFrame&) = delete;
    CallFrame& operator=(const CallFrame&) = delete;

    // The session test: false (with the invalid-session line written) when no session id has been
    // granted or the manager has no proxy.
    bool SessionIsValid() const;

    // Runs `body` inside the guard: any exception writes the Execute exception line and gives
    // `onException`; what `body` already did to the caller's data stays.
    template <class Result, class Body>
    Result Guard(Result onException, Body&& body) const noexcept {
        return vanto::Guard(onException, ExecuteExceptionPrefix, std::forward<Body>(body));
    }

    // Sends `input` with the current session id through the proxy and reads the answer into the
    // output its command pairs it with.
    template <class Input> typename Input::Output Execute(Input& input) const {
        return typename Input::Output(Send(input, nullptr));
    }
    // The same, writing the request and the answer under these two heads, in that order.
    template <class Input>
    typename Input::Output Execute(Input& input, const RequestLog& requestLog) const {
        return typename Input::Output(Send(input, &requestLog));
    }

    // True when the answer carries errors; then writes `failureMessage` (when given) at severity 0
    // and, when asked, calls LogErrors through the interface table once per error, in order.
    bool Failed(const CommandOutputBase& output, const wchar_t* failureMessage,
                ErrorCodes codes) const;
    // LogErrors through the interface table for every error of the answer, in order.
    void ReportErrorCodes(const CommandOutputBase& output) const;

    void Info(const wchar_t* text) const;
    void Error(const wchar_t* text) const;
    void Warning(const wchar_t* text) const;
    // "%s" formats with wide texts.
    template <class... Args> void Info(const wchar_t* format, const Args&... args) const {
        LogMessage(&self_.Manager(), SeverityInformation, format, args...);
    }

    // The interface the method belongs to, reached through its table, as the host reaches it.
    IVANTOFileServices& Interface() const noexcept { return self_; }
    IVANTOSession& SessionService() const noexcept { return self_.Manager().Session(); }

private:
    template <class Input> Core::TevString Send(Input& input, const RequestLog* requestLog) const {
        // The input is written through its own writer: one that forgot to declare it would
        // otherwise inherit the envelope's and send nothing but "Command", "SessionId", "Version".
        static_assert(std::is_same_v<decltype(&Input::ToJson), Core::TevString (Input::*)() const>,
                      "a command input declares its own writer (VANTO_JSON_WRITER)");
        static_assert(boost::describe::has_describe_members<Input>::value,
                      "a command input declares its fields (VANTO_JSON_FIELDS)");
        static_assert(std::is_base_of_v<CommandOutputBase, typename Input::Output>,
                      "a command input names the output its answer is read into");
        static_assert(protocol::IsCatalogued<Input>::value,
                      "a command the component sends is listed in protocol/Catalogue.h");
        SetSessionId(input);
        return Exchange(input.ToJson(), requestLog);
    }
    static void SetSessionId(Core::CommandIO::CommandInputBase& input);
    Core::TevString Exchange(const Core::TevString& request, const RequestLog* requestLog) const;
    void LogExchanged(std::wstring_view head, const Core::TevString& text) const;

    VANTOManager::VANTOFileServices& self_;
    std::optional<LogEntry> scope_;
};

} // namespace vanto::fileservices
