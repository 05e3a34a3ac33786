#include "session/ClientInformation.h"
#include "host/HostUtil.h"

#include <gtest/gtest.h>

namespace {

using platform::os::LocalDateTime;
using vanto::FormatProcessStartTime;

TEST(ProcessStartTimeText, DatePlainTimePadded) {
    EXPECT_EQ("2024-3-7T09:05:02", FormatProcessStartTime({2024, 3, 7, 9, 5, 2}).str());
    EXPECT_EQ("2025-1-1T00:00:00", FormatProcessStartTime({2025, 1, 1, 0, 0, 0}).str());
    EXPECT_EQ("-1--1--1T-1:-1:-1", FormatProcessStartTime(LocalDateTime{}).str());
}

// The rest of the client information is read from the registration request (session tests).
TEST(ClientInformation, AnEmptyProductPathStaysEmpty) {
    HostTesting::SetProductPath(GUserText());
    EXPECT_TRUE(vanto::BuildClientInformation().productPath.empty());
    HostTesting::UseDefaultProductPath();
}

} // namespace
