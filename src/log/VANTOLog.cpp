#include "log/VANTOLog.h"

namespace vanto {

std::wstring FormatLogText(const std::wstring& format, std::initializer_list<const wchar_t*> args) {
    std::wstring text;
    text.reserve(format.size());
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

void WriteLogMessage(int severity, const std::wstring& text) {
    PDMWriteLog(LogTypeMessage, GUserText(LogSource), GUserText(text), severity);
}

} // namespace vanto
