// The component's two logging helpers: the method-scope record and the free-text message.
#pragma once

#include "host/GUserText.h"
#include "host/HostLog.h"

#include <initializer_list>
#include <string>
#include <string_view>
#include <type_traits>

class VANTOManager;

namespace vanto {

enum LogType : int { LogTypeScope = 0, LogTypeMessage = 1 };
enum Severity : int { SeverityError = 0, SeverityWarning = 1, SeverityInformation = 2 };

// Source tag of every record the component writes.
inline constexpr const wchar_t* LogSource = L"VANTO";

// Opens the method-scope record; keep the result alive until the method returns.
inline LogEntry OpenScope(const wchar_t* methodTag) {
    return LogEntry(LogTypeScope, GUserText(LogSource), GUserText(methodTag), SeverityInformation);
}

// printf-style formatting of wide texts with "%s" as the one conversion. It never reads past the
// arguments it was given: a "%s" without an argument stays in the text as it is, "%%" is one "%",
// and anything else after a "%" (including "%n" and a trailing "%") is copied literally.
std::wstring FormatLogText(std::wstring_view format, std::initializer_list<const wchar_t*> args);

// Writes `text` as it is (no formatting) to the developer log.
void WriteLogMessage(int severity, std::wstring text);

// Texts that the session and the file services share.
inline constexpr const wchar_t* NotAValidSessionText = L"Corvane session is not a valid session.";
inline constexpr const wchar_t* ExecuteExceptionPrefix =
    L"Corvane session is not a valid session - exception from Execute call : ";

// Text of a foreign exception, one that is no std::exception and carries no description.
inline constexpr const char* ForeignExceptionText = "unknown exception";

// Writes `prefix` followed by the exception's text (nothing when it is null) at severity 0. The
// text is appended, not formatted in, so the whole line is the format.
void LogExceptionText(const wchar_t* prefix, const char* what);

} // namespace vanto

namespace vanto::detail {

inline std::wstring_view FormatOf(const GUserText& format) noexcept {
    return format.wstr();
}
inline std::wstring_view FormatOf(const wchar_t* format) noexcept {
    return format != nullptr ? std::wstring_view(format) : std::wstring_view();
}

} // namespace vanto::detail

// Formats `format` (a GUserText or a wide literal) with the wide texts `args` and writes it to the
// developer log.
template <class Format, class... Args>
void LogMessage(const VANTOManager* /*owner*/, int severity, const Format& format,
                const Args&... args) {
    [[maybe_unused]] const auto wide = [](const auto& arg) -> const wchar_t* {
        using Arg = std::decay_t<decltype(arg)>;
        if constexpr (std::is_same_v<Arg, GUserText>) {
            return arg.c_str();
        } else if constexpr (std::is_same_v<Arg, std::wstring>) {
            return arg.c_str();
        } else {
            return arg;
        }
    };
    vanto::WriteLogMessage(severity,
                           vanto::FormatLogText(vanto::detail::FormatOf(format), {wide(args)...}));
}
