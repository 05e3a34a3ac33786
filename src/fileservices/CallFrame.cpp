#include "fileservices/CallFrame.h"

#include "os/TextConversion.h"
#include "session/SessionState.h"

#include <string_view>

namespace vanto::fileservices {

Core::TevString ToUtf8(const GUserText& text) {
    return Core::TevString(platform::os::WideToUtf8(text.wstr()));
}

GUserText FromUtf8(const Core::TevString& text) {
    return GUserText(platform::os::Utf8ToWide(text));
}

Core::TevString ToNarrow(const GUserText& text) {
    return Core::TevString(text.Narrow());
}

GUserText FromNarrow(const Core::TevString& text) {
    return GUserText(std::string_view(text));
}

void AppendUtf8(Core::DynamicArray<Core::TevString>& texts, const PathList& paths) {
    texts.reserve(texts.size() + paths.size());
    for (const GUserText& path : paths) {
        texts.push_back(ToUtf8(path));
    }
}

void AppendNarrow(Core::DynamicArray<Core::TevString>& texts, const PathList& paths) {
    texts.reserve(texts.size() + paths.size());
    for (const GUserText& path : paths) {
        texts.push_back(ToNarrow(path));
    }
}

CallFrame::CallFrame(VANTOManager::VANTOFileServices& self, const wchar_t* methodTag)
    : self_(self) {
    if (methodTag != nullptr) {
        scope_.emplace(LogTypeScope, GUserText(LogSource), GUserText(methodTag),
                       SeverityInformation);
    }
}

bool CallFrame::SessionIsValid() const {
    if (IsValidSession(self_.Manager())) {
        return true;
    }
    Error(NotAValidSessionText);
    return false;
}

void CallFrame::SetSessionId(Core::CommandIO::CommandInputBase& input) {
    input.SessionId = vanto::Session().sessionId;
}

Core::TevString CallFrame::Exchange(const Core::TevString& request, const wchar_t* logName) const {
    Core::TevString answer = self_.Manager().RequireProxy().Execute(request);
    if (logName != nullptr) {
        LogExchanged(logName, L" Input: ", request);
        LogExchanged(logName, L" Output: ", answer);
    }
    return answer;
}

// "<logName><label><text>", the line that the format "<logName><label>%s" gives. The texts are
// whole requests and answers, megabytes for a large call, so the line is put together in UTF-8
// and widened once, straight into the text that goes to the log: formatting the widened text
// would copy it three more times. A name with a conversion in it goes the general way.
void CallFrame::LogExchanged(const wchar_t* logName, const wchar_t* label,
                             const Core::TevString& text) const {
    const std::wstring head = std::wstring(logName) + label;
    if (head.find(L'%') != std::wstring::npos) {
        Info((head + L"%s").c_str(), FromUtf8(text));
        return;
    }
    std::string line = platform::os::WideToUtf8(head);
    line.reserve(line.size() + text.size());
    line += std::string_view(text);
    WriteLogMessage(SeverityInformation, platform::os::Utf8ToWide(line));
}

bool CallFrame::Failed(const CommandOutputBase& output, const wchar_t* failureMessage,
                       ErrorCodes codes) const {
    if (output.Errors.empty()) {
        return false;
    }
    if (failureMessage != nullptr) {
        Error(failureMessage);
    }
    if (codes == ErrorCodes::Reported) {
        ReportErrorCodes(output);
    }
    return true;
}

void CallFrame::ReportErrorCodes(const CommandOutputBase& output) const {
    IVANTOFileServices& table = Interface();
    for (const auto& error : output.Errors) {
        auto code = static_cast<std::uint32_t>(error->ErrorCode);
        table.LogErrors(&code);
    }
}

void CallFrame::Info(const wchar_t* text) const {
    LogMessage(&self_.Manager(), SeverityInformation, GUserText(text));
}

void CallFrame::Warning(const wchar_t* text) const {
    LogMessage(&self_.Manager(), SeverityWarning, GUserText(text));
}

void CallFrame::Error(const wchar_t* text) const {
    LogMessage(&self_.Manager(), SeverityError, GUserText(text));
}

} // namespace vanto::fileservices
