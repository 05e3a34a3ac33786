#include "os/UserValues.h"
#include "host/HostUtil.h"

#include <gtest/gtest.h>

#include <iterator>
#include <string>

namespace {

using platform::os::ReadUserValue;
using platform::os::WriteUserValue;

// Runs on the binary's scratch store and leaves it empty.
class UserValues : public ::testing::Test {
protected:
    void SetUp() override { platform::os::ClearUserValueStore(); }
    void TearDown() override { platform::os::ClearUserValueStore(); }
};

TEST_F(UserValues, TextsComeBackPerScopeAndName) {
    const std::wstring texts[] = {
        L"C:\\Users\\ann\\Corvane",    L"a=b=c", L"two\nlines\r", L"trailing\\",
        L"\u00e9t\u00e9 \u6587\u4ef6", L""};
    const auto name = [](std::size_t index) { return L"Value=" + std::to_wstring(index); };
    for (std::size_t i = 0; i < std::size(texts); ++i) {
        ASSERT_TRUE(WriteUserValue(1, name(i), texts[i]));
    }
    ASSERT_TRUE(WriteUserValue(2, name(0), L"other scope"));
    ASSERT_TRUE(WriteUserValue(1, name(0), L"rewritten"));
    for (std::size_t i = 0; i < std::size(texts); ++i) {
        std::wstring read = L"untouched";
        EXPECT_TRUE(ReadUserValue(1, name(i), read));
        EXPECT_EQ(i == 0 ? L"rewritten" : texts[i], read);
    }
    std::wstring read;
    EXPECT_TRUE(ReadUserValue(2, name(0), read));
    EXPECT_EQ(L"other scope", read);
    EXPECT_FALSE(ReadUserValue(3, name(0), read));
    EXPECT_EQ(L"other scope", read); // untouched
}

TEST_F(UserValues, HostBufferIsCutAndTerminated) {
    wchar_t buffer[HostUserValueLength];
    buffer[0] = L'x';
    EXPECT_FALSE(GetHostCommonUserValue(L"Missing", buffer, 1));
    EXPECT_EQ(L'\0', buffer[0]);
    EXPECT_FALSE(GetHostCommonUserValue(nullptr, buffer, 1));
    EXPECT_FALSE(SetHostCommonUserValue(nullptr, L"x", 1));

    const std::wstring exact(HostUserValueLength - 1, L'a');
    ASSERT_TRUE(SetHostCommonUserValue(L"Exact", exact.c_str(), 1));
    ASSERT_TRUE(GetHostCommonUserValue(L"Exact", buffer, 1));
    EXPECT_EQ(exact, std::wstring(buffer));

    ASSERT_TRUE(SetHostCommonUserValue(L"Long", (exact + L"bc").c_str(), 1));
    ASSERT_TRUE(GetHostCommonUserValue(L"Long", buffer, 1));
    EXPECT_EQ(exact, std::wstring(buffer));

    // The scope separates the host's values too.
    EXPECT_FALSE(GetHostCommonUserValue(L"Long", buffer, 0));
}

} // namespace
