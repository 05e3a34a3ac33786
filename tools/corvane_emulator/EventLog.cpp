#include "EventLog.h"

#include <chrono>
#include <ctime>
#include <stdexcept>

namespace vanto::emulator {

namespace {

// ISO 8601 in UTC, to the millisecond.
std::string UtcNow() {
    const auto now = std::chrono::system_clock::now();
    const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
    const auto millis =
        std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count() %
        1000;
    std::tm fields{};
    gmtime_r(&seconds, &fields);
    char text[40];
    const std::size_t length = std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &fields);
    std::snprintf(text + length, sizeof text - length, ".%03dZ", static_cast<int>(millis));
    return text;
}

} // namespace

EventLog::EventLog(const std::string& path) {
    if (!path.empty()) {
        file_ = std::fopen(path.c_str(), "ae");
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
