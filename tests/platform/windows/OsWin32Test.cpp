// Windows-only checks of platform/os against other system calls that answer the same question.
#ifdef _WIN32

#include "com/ComBase.h"
#include "os/Os.h"

#include <cwctype>
#include <string>

#include <gtest/gtest.h>

namespace {

TEST(OsWin32, ProcessIdIsTheOneTheSystemReports) {
    EXPECT_EQ(static_cast<std::uint32_t>(::GetCurrentProcessId()),
              platform::os::CurrentProcessId());
}

TEST(OsWin32, DirectoriesAreFoundByEitherSeparatorAndAnyLetterCase) {
    wchar_t temp[MAX_PATH + 1] = {};
    ASSERT_NE(0u, ::GetTempPathW(MAX_PATH + 1, temp));
    const std::wstring folder =
        std::wstring(temp) + L"VantoCase" + std::to_wstring(::GetCurrentProcessId());
    ASSERT_TRUE(platform::os::MakeDirectory(folder));
    std::wstring other = folder;
    for (wchar_t& c : other) {
        c = c == L'\\' ? L'/' : static_cast<wchar_t>(::towupper(c));
    }
    EXPECT_TRUE(platform::os::DirectoryExists(other));
    EXPECT_FALSE(platform::os::MakeDirectory(other));
    EXPECT_TRUE(::RemoveDirectoryW(folder.c_str()));
    EXPECT_FALSE(platform::os::PathExists(other));
}

} // namespace

#endif
