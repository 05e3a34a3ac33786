#include "os/ProcessInfo.h"
#include "os/TextConversion.h"

#include <climits>
#include <ctime>
#include <fstream>
#include <sstream>
#include <string>
#include <unistd.h>

namespace platform::os {

namespace {

// Clock ticks since boot at which this process started: field 22 of /proc/self/stat.
std::optional<unsigned long long> StartTicksSinceBoot() {
    std::ifstream file("/proc/self/stat");
    std::string line;
    if (!std::getline(file, line)) {
        return std::nullopt;
    }
    // The command name (field 2) is in parentheses and may itself hold spaces and parentheses.
    const std::size_t nameEnd = line.rfind(')');
    if (nameEnd == std::string::npos) {
        return std::nullopt;
    }
    std::istringstream fields(line.substr(nameEnd + 1));
    std::string skipped;
    for (int field = 3; field < 22; ++field) {
        if (!(fields >> skipped)) {
            return std::nullopt;
        }
    }
    unsigned long long ticks = 0;
    if (!(fields >> ticks)) {
        return std::nullopt;
    }
    return ticks;
}

// Boot time in seconds since the epoch: the "btime" line of /proc/stat.
std::optional<long long> BootTime() {
    std::ifstream file("/proc/stat");
    std::string line;
    while (std::getline(file, line)) {
        std::istringstream words(line);
        std::string key;
        long long seconds = 0;
        if (words >> key && key == "btime" && words >> seconds) {
            return seconds;
        }
    }
    return std::nullopt;
}

} // namespace

std::optional<LocalDateTime> ProcessStartLocalTime() {
    const std::optional<unsigned long long> ticks = StartTicksSinceBoot();
    const std::optional<long long> boot = BootTime();
    const long ticksPerSecond = ::sysconf(_SC_CLK_TCK);
    if (!ticks || !boot || ticksPerSecond <= 0) {
        return std::nullopt;
    }
    const auto start =
        static_cast<std::time_t>(*boot + static_cast<long long>(*ticks / ticksPerSecond));
    std::tm local{};
    if (::localtime_r(&start, &local) == nullptr) {
        return LocalDateTime{};
    }
    return LocalDateTime{local.tm_year + 1900, local.tm_mon + 1, local.tm_mday,
                         local.tm_hour,        local.tm_min,     local.tm_sec};
}

std::wstring ExecutableDirectory() {
    std::string buffer(PATH_MAX, '\0');
    const ssize_t length = ::readlink("/proc/self/exe", buffer.data(), buffer.size());
    if (length <= 0 || static_cast<std::size_t>(length) >= buffer.size()) {
        return std::wstring();
    }
    buffer.resize(static_cast<std::size_t>(length));
    const std::size_t slash = buffer.rfind('/');
    if (slash == std::string::npos) {
        return std::wstring();
    }
    return Utf8ToWide(slash == 0 ? std::string("/") : buffer.substr(0, slash));
}

} // namespace platform::os
