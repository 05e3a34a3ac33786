#include "host/HostLog.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

class DefaultSink : public LogSink {
public:
    DefaultSink() {
        const char* target = std::getenv("VANTO_HOST_LOG");
        toStderr_ = target != nullptr && std::strcmp(target, "stderr") == 0;
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
            std::fprintf(stderr, "[%s] HRESULT 0x%08X in %s (%s:%d)\n", "error",
                         static_cast<unsigned>(record.hr), record.function.c_str(),
                         record.file.c_str(), record.line);
            return;
        case LogRecord::Kind::Message:
            break;
        }
        static const char* const severities[] = {"error", "warning", "info"};
        const char* severity =
            (record.severity >= 0 && record.severity <= 2) ? severities[record.severity] : "?";
        std::fprintf(stderr, "[%s] %ls: %s%ls\n", severity, record.source.c_str(), kind,
                     record.message.c_str());
    }

    bool KeepsMessages() const override { return toStderr_; }

private:
    bool toStderr_ = false;
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

std::vector<std::wstring> CapturingLogSink::Messages() const {
    std::vector<std::wstring> texts;
    for (const LogRecord& record : records) {
        if (record.kind == LogRecord::Kind::Message) {
            texts.push_back(record.message);
        }
    }
    return texts;
}

std::vector<std::wstring> CapturingLogSink::Messages(int severity) const {
    std::vector<std::wstring> texts;
    for (const LogRecord& record : records) {
        if (record.kind == LogRecord::Kind::Message && record.severity == severity) {
            texts.push_back(record.message);
        }
    }
    return texts;
}

std::vector<std::wstring> CapturingLogSink::ScopesOpened() const {
    std::vector<std::wstring> tags;
    for (const LogRecord& record : records) {
        if (record.kind == LogRecord::Kind::ScopeOpen) {
            tags.push_back(record.message);
        }
    }
    return tags;
}
