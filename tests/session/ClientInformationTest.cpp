#include "session/ClientInformation.h"
#include "host/HostUtil.h"

#include <gtest/gtest.h>

#include <regex>

namespace {

using platform::os::LocalDateTime;
using vanto::FormatProcessStartTime;

TEST(ProcessStartTimeText, DatePlainTimePadded) {
    EXPECT_EQ("2024-3-7T09:05:02", FormatProcessStartTime({2024, 3, 7, 9, 5, 2}).str());
    EXPECT_EQ("2025-1-1T00:00:00", FormatProcessStartTime({2025, 1, 1, 0, 0, 0}).str());
    EXPECT_EQ("-1--1--1T-1:-1:-1", FormatProcessStartTime(LocalDateTime{}).str());
}

class ClientInformation : public ::testing::Test {
protected:
    void TearDown() override {
        HostTesting::SetMajorVersion(2024);
        HostTesting::UseDefaultProductPath();
    }
};

TEST_F(ClientInformation, DescribesThisProcessAndTheHost) {
    HostTesting::SetMajorVersion(2026);
    HostTesting::SetProductPath(GUserText(L"C:\\Program Files\\Arbo \u00c9dition"));
    const vanto::ClientInformation info = vanto::BuildClientInformation();

    EXPECT_TRUE(std::regex_match(info.processStartTime.str(),
                                 std::regex(R"(\d{4}-[1-9]\d?-[1-9]\d?T\d\d:\d\d:\d\d)")))
        << info.processStartTime.str();
    EXPECT_EQ("C:\\Program Files\\Arbo \xc3\x89"
              "dition",
              info.productPath.str());
    EXPECT_EQ("Arbo Lite V2026", info.fullName.str());

    HostTesting::SetProductPath(GUserText());
    EXPECT_TRUE(vanto::BuildClientInformation().productPath.empty());
}

} // namespace
