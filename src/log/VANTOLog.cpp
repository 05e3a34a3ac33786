#include "log/VANTOLog.h"

#include <utility>

namespace vanto {

std::wstring FormatLogText(std::wstring_view format, std::initializer_list<const wchar_t*> args) {
    // Room for the format and every argument, so that the text grows once.
    std::size_t length = format.size();
    for (const wchar_t* arg : args) {
        length += arg != nullptr ? std::char_traits<wchar_t>::length(arg) : 0;
    }
    std::wstring text;
    text.reserve(length);
    auto next = args.begin();
    for (std::size_t i = 0; i < format.size(); ++i) {
        const wchar_t c = format[i];
        if (c != L'%' || i + 1 == format.size()) {
            text += c;
            continue;
        }
        const wchar_t conversion = format[i + 1];
        if (conversion == L'%') {
            text += L'%';
            ++i;
        } else if (conversion == L's' && next != args.end()) {
            if (*next != nullptr) {
                text += *next;
            } else {
                text += L"(null)";
            }
            ++next;
            ++i;
        } else {
            text += c;
        }
    }
    return text;
}

void LogExceptionText(const wchar_t* prefix, const char* what) {
    std::wstring text(prefix);
    if (what != nullptr) {
        text += GUserText(what).wstr();
    }
    WriteLogMessage(SeverityError, FormatLogText(text, {}));
}

void WriteLogMessage(int severity, std::wstring text) {
    static const GUserText source(LogSource);
    PDMWriteLog(LogTypeMessage, source, GUserText(std::move(text)), severity);
}

} // namespace vanto
