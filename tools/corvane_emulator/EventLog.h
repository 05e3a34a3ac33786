// The emulator's own log: one line per event (start, stop, handshakes refused, faults fired,
// store errors), each after its UTC time, appended to one file and flushed at once, so that a
// kill loses nothing already written. Any thread may write.
#pragma once

#include <cstdio>
#include <mutex>
#include <string>
#include <string_view>

namespace vanto::emulator {

class EventLog {
public:
    // Appends to `path`; an empty path writes nowhere.
    explicit EventLog(const std::string& path = {});
    ~EventLog();
    EventLog(const EventLog&) = delete;
    EventLog& operator=(const EventLog&) = delete;

    void Write(std::string_view event);

    // The log of an emulator without a data folder (tests in process, the fuzzer).
    static EventLog& Nowhere();

private:
    std::mutex mutex_;
    std::FILE* file_ = nullptr;
};

} // namespace vanto::emulator
