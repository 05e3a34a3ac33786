// Stand-in for the host's developer-log library. Where the log goes is the sink's business: by
// default nothing is kept, VANTO_HOST_LOG=stderr (or stderr:colour) prints it, and tests capture
// it.
#pragma once

#include "com/ComBase.h"
#include "host/GUserText.h"

#include <string>
#include <utility>
#include <vector>

struct LogRecord {
    enum class Kind { ScopeOpen, ScopeClose, Message, HResultError };
    Kind kind = Kind::Message;
    int logType = 0;
    std::wstring source;
    std::wstring message;
    int severity = 0;
    // HResultError only.
    HRESULT hr = 0;
    std::string file;
    int line = 0;
    std::string function;
};

class LogSink {
public:
    virtual ~LogSink() = default;
    virtual void Write(const LogRecord& record) = 0;
    // False when every message would be dropped: then none is put together for it.
    virtual bool KeepsMessages() const { return true; }
};

// Installs a sink (nullptr restores the default); returns the previous one.
LogSink* SetLogSink(LogSink* sink);

// Hands one record to the current sink.
void WriteLogRecord(const LogRecord& record);

// Method-scope record: written when constructed and again when destroyed.
class LogEntry {
public:
    LogEntry(int logType, const GUserText& source, const GUserText& message, int severity);
    ~LogEntry();
    LogEntry(const LogEntry&) = delete;
    LogEntry& operator=(const LogEntry&) = delete;

private:
    LogRecord record_;
};

void PDMWriteLog(int logType, const GUserText& source, const GUserText& text, int severity);

// Everything written while it lives; restores the previous sink when destroyed.
class CapturingLogSink : public LogSink {
public:
    CapturingLogSink();
    ~CapturingLogSink() override;
    CapturingLogSink(const CapturingLogSink&) = delete;
    CapturingLogSink& operator=(const CapturingLogSink&) = delete;

    void Write(const LogRecord& record) override { records.push_back(record); }
    void Clear() { records.clear(); }
    // Messages written through PDMWriteLog as (severity, text), in order; the records are cleared.
    std::vector<std::pair<int, std::wstring>> TakeMessages();
    // Messages of one severity, in order.
    std::vector<std::wstring> Messages(int severity) const;
    // Tags of the scope records opened, in order.
    std::vector<std::wstring> ScopesOpened() const;

    std::vector<LogRecord> records;

private:
    LogSink* previous_;
};
