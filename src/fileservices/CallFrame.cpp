#include "fileservices/CallFrame.h"

#include "os/TextConversion.h"
#include "session/SessionState.h"

#include <string_view>
#include <utility>

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

Core::TevString CallFrame::Exchange(const Core::TevString& request,
                                    const RequestLog* requestLog) const {
    Core::TevString answer = self_.Manager().RequireProxy().Execute(request);
    if (requestLog != nullptr) {
        LogExchanged(requestLog->inputHead, request);
        LogExchanged(requestLog->outputHead, answer);
    }
    return answer;
}

// The texts are whole requests and answers, megabytes for a large call: each is widened once,
// straight onto its head in the line that goes to the log. Like the log's formatter, the line
// ends at the text's first null character.
void CallFrame::LogExchanged(std::wstring_view head, const Core::TevString& text) const {
    std::string_view body(text);
    body = body.substr(0, body.find('\0'));
    std::wstring line;
    line.reserve(head.size() + body.size());
    line.append(head);
    platform::os::AppendUtf8ToWide(line, body);
    WriteLogMessage(SeverityInformation, std::move(line));
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
    LogMessage(&self_.Manager(), SeverityInformation, text);
}

void CallFrame::Warning(const wchar_t* text) const {
    LogMessage(&self_.Manager(), SeverityWarning, text);
}

void CallFrame::Error(const wchar_t* text) const {
    LogMessage(&self_.Manager(), SeverityError, text);
}

} // namespace vanto::fileservices
