#include "os/ProcessInfo.h"
#include "host/HostUtil.h"
#include "os/Os.h"

#include <gtest/gtest.h>

#include <ctime>

namespace {

TEST(ProcessInfo, StartTimeIsThisProcesssLocalStart) {
    const auto started = platform::os::ProcessStartLocalTime();
    ASSERT_TRUE(started.has_value());
    std::tm fields{};
    fields.tm_year = started->year - 1900;
    fields.tm_mon = started->month - 1;
    fields.tm_mday = started->day;
    fields.tm_hour = started->hour;
    fields.tm_min = started->minute;
    fields.tm_sec = started->second;
    fields.tm_isdst = -1;
    const std::time_t start = std::mktime(&fields);
    const std::time_t now = std::time(nullptr);
    ASSERT_NE(static_cast<std::time_t>(-1), start);
    // Read as local time it is a moment in the last hour (a test process is young), not later
    // than now and not off by a time-zone offset.
    EXPECT_LE(start, now + 1);
    EXPECT_GT(start, now - 3600);
}

TEST(ProcessInfo, ProductPathDefaultsToTheExecutablesFolder) {
    const std::wstring folder = platform::os::ExecutableDirectory();
    ASSERT_FALSE(folder.empty());
    EXPECT_TRUE(platform::os::DirectoryExists(folder));

    HostTesting::SetProductPath(GUserText(L"/opt/arbo"));
    GUserText path;
    HostTesting::UseDefaultProductPath();
    GetHostProductPath(0, path);
    EXPECT_EQ(folder, path.wstr());
}

} // namespace
