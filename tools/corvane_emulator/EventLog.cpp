#include "EventLog.h"

#include "Text.h"

#include "os/Service.h"

#include <chrono>
#include <cstdio>
#include <stdexcept>

namespace vanto::emulator {

namespace {

// ISO 8601 in UTC, to the millisecond.
std::string UtcNow() {
    const auto millis = std::chrono::duration_cast<std::chrono::milliseconds>(
                            std::chrono::system_clock::now().time_since_epoch())
                            .count();
    std::string text = IsoTime(millis / 1000);
    char fraction[8];
    std::snprintf(fraction, sizeof fraction, ".%03d", static_cast<int>(millis % 1000));
    return text.insert(text.size() - 1, fraction);
}

} // namespace

EventLog::EventLog(const std::string& path) {
    if (!path.empty()) {
        file_ = platform::os::OpenForAppending(path);
        if (file_ == nullptr) {
            throw std::runtime_error("cannot write the log " + path);
        }
    }
}

EventLog::~EventLog() {
    if (file_ != nullptr) {
        std::fclose(file_);
    }
}

void EventLog::Write(std::string_view event) {
    if (file_ == nullptr) {
        return;
    }
    const std::string line = UtcNow() + " " + std::string(event) + "\n";
    const std::lock_guard<std::mutex> lock(mutex_);
    std::fwrite(line.data(), 1, line.size(), file_);
    std::fflush(file_);
}

EventLog& EventLog::Nowhere() {
    static EventLog nowhere;
    return nowhere;
}

} // namespace vanto::emulator
