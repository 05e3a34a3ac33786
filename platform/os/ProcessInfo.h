// What the component asks the system about its own process.
#pragma once

#include <optional>
#include <string>

namespace platform::os {

// Calendar fields of a local time. A time that could not be converted has every field -1.
struct LocalDateTime {
    int year = -1;
    int month = -1;
    int day = -1;
    int hour = -1;
    int minute = -1;
    int second = -1;
};

// Creation time of the calling process, in local time. Empty when the creation time cannot be
// read; every field -1 when it was read but could not be turned into calendar fields.
std::optional<LocalDateTime> ProcessStartLocalTime();

// Folder of the running executable, without a trailing separator; empty when it is unknown.
std::wstring ExecutableDirectory();

} // namespace platform::os
