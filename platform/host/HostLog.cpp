#include "host/HostLog.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

// VANTO_HOST_LOG=stderr writes each record to standard error as it comes, one line: severity,
// source, text. "stderr:colour" adds ANSI colours to the severity (the host program asks for it
// when standard error is a terminal that shows them); any other value keeps nothing.
class DefaultSink : public LogSink {
public:
    DefaultSink() {
        const char* target = std::getenv("VANTO_HOST_LOG");
        if (target != nullptr) {
            colour_ = std::strcmp(target, "stderr:colour") == 0;
            toStderr_ = colour_ || std::strcmp(target, "stderr") == 0;
        }
    }

    void Write(const LogRecord& record) override {
        if (!toStderr_) {
            return;
        }
        const char* kind = "";
        switch (record.kind) {
        case LogRecord::Kind::ScopeOpen:
            kind = "enter ";
            break;
        case LogRecord::Kind::ScopeClose:
            kind = "leave ";
            break;
        case LogRecord::Kind::HResultError:
            std::fprintf(stderr, "%s HRESULT 0x%08X in %s (%s:%d)\n", Severity(0),
                         static_cast<unsigned>(record.hr), record.function.c_str(),
                         record.file.c_str(), record.line);
            return;
        case LogRecord::Kind::Message:
            break;
        }
        std::fprintf(stderr, "%s %ls: %s%ls\n", Severity(record.severity), record.source.c_str(),
                     kind, record.message.c_str());
    }

    bool KeepsMessages() const override { return toStderr_; }

private:
    const char* Severity(int severity) const {
        static const char* const plain[] = {"[error]", "[warning]", "[info]"};
        static const char* const coloured[] = {"\x1b[1;31m[error]\x1b[0m",
                                               "\x1b[33m[warning]\x1b[0m", "\x1b[2m[info]\x1b[0m"};
        if (severity < 0 || severity > 2) {
            return "[?]";
        }
        return colour_ ? coloured[severity] : plain[severity];
    }

    bool toStderr_ = false;
    bool colour_ = false;
};

LogSink*& CurrentSink() {
    static LogSink* sink = nullptr;
    return sink;
}

LogSink& Sink() {
    static DefaultSink defaultSink;
    LogSink* sink = CurrentSink();
    return sink != nullptr ? *sink : defaultSink;
}

} // namespace

LogSink* SetLogSink(LogSink* sink) {
    LogSink* previous = CurrentSink();
    CurrentSink() = sink;
    return previous;
}

void WriteLogRecord(const LogRecord& record) {
    Sink().Write(record);
}

LogEntry::LogEntry(int logType, const GUserText& source, const GUserText& message, int severity) {
    record_.kind = LogRecord::Kind::ScopeOpen;
    record_.logType = logType;
    record_.source = source.wstr();
    record_.message = message.wstr();
    record_.severity = severity;
    Sink().Write(record_);
}

LogEntry::~LogEntry() {
    record_.kind = LogRecord::Kind::ScopeClose;
    Sink().Write(record_);
}

void PDMWriteLog(int logType, const GUserText& source, const GUserText& text, int severity) {
    // A host without a developer log drops the text without copying it.
    if (!Sink().KeepsMessages()) {
        return;
    }
    LogRecord record;
    record.kind = LogRecord::Kind::Message;
    record.logType = logType;
    record.source = source.wstr();
    record.message = text.wstr();
    record.severity = severity;
    Sink().Write(record);
}

CapturingLogSink::CapturingLogSink() : previous_(SetLogSink(this)) {}

CapturingLogSink::~CapturingLogSink() {
    SetLogSink(previous_);
}

namespace {

// The message texts of the records that `keep` accepts, in order.
template <class Keep>
std::vector<std::wstring> TextsOf(const std::vector<LogRecord>& records, Keep keep) {
    std::vector<std::wstring> texts;
    for (const LogRecord& record : records) {
        if (keep(record)) {
            texts.push_back(record.message);
        }
    }
    return texts;
}

} // namespace

std::vector<std::pair<int, std::wstring>> CapturingLogSink::TakeMessages() {
    std::vector<std::pair<int, std::wstring>> messages;
    for (const LogRecord& record : records) {
        if (record.kind == LogRecord::Kind::Message) {
            messages.emplace_back(record.severity, record.message);
        }
    }
    records.clear();
    return messages;
}

std::vector<std::wstring> CapturingLogSink::Messages(int severity) const {
    return TextsOf(records, [severity](const LogRecord& r) {
        return r.kind == LogRecord::Kind::Message && r.severity == severity;
    });
}

std::vector<std::wstring> CapturingLogSink::ScopesOpened() const {
    return TextsOf(records,
                   [](const LogRecord& r) { return r.kind == LogRecord::Kind::ScopeOpen; });
}
