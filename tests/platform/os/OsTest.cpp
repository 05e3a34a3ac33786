// The operating-system calls behave the same on both platforms; on Windows they are the system's
// own (under Wine in this build), elsewhere our POSIX versions.
#include "os/Os.h"

#include <chrono>
#include <string>
#include <tuple>

#include <gtest/gtest.h>

#ifdef _WIN32
#include "com/ComBase.h"
#else
#include <unistd.h>
#endif

namespace {

using platform::os::CompareNoCase;

TEST(OsCompareNoCase, FoldsAsciiLettersToLowerCaseThenComparesUnsigned) {
    // Each pair is compared both ways. Letters beyond ASCII keep their case (U+00C9 and U+00E9
    // differ by their code values), and
    // characters next to the letter ranges are no letters. Folding goes to lower case: '_' (0x5F)
    // sorts before 'a' (0x61) even against 'A' (0x41). Values compare unsigned, so U+FFFF sorts
    // after ASCII.
    const std::tuple<const wchar_t*, const wchar_t*, int> cases[] = {
        {L"", L"", 0},
        {L"C:\\Work\\Part.PRT", L"c:\\wORK\\part.prt", 0},
        {L"AZ az", L"az AZ", 0},
        {L"\u00C9", L"\u00E9", -1},
        {L"@", L"`", -1},
        {L"[", L"{", -1},
        {L"_", L"A", -1},
        {L"abc", L"ABCD", -1},
        {L"Part1", L"part2", -1},
        {L"\uFFFF", L"z", 1}};
    for (const auto& [a, b, expected] : cases) {
        EXPECT_EQ(expected, CompareNoCase(a, b)) << a << " against " << b;
        EXPECT_EQ(-expected, CompareNoCase(b, a)) << b << " against " << a;
    }
}

TEST(OsSleep, WaitsAboutAsLongAsAsked) {
    const auto before = std::chrono::steady_clock::now();
    platform::os::SleepMilliseconds(30);
    // The system's timer may round, but not by a whole tick below the request.
    EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(20));
}

TEST(OsProcess, IdIsTheOneTheSystemReports) {
#ifdef _WIN32
    EXPECT_EQ(static_cast<std::uint32_t>(::GetCurrentProcessId()),
              platform::os::CurrentProcessId());
#else
    EXPECT_EQ(static_cast<std::uint32_t>(::getpid()), platform::os::CurrentProcessId());
#endif
}

TEST(OsUser, LogonNameIsPlainText) {
    const std::wstring name = platform::os::LogonUserName();
    ASSERT_FALSE(name.empty());
    // No terminator or separator leaks into the name.
    EXPECT_EQ(std::wstring::npos, name.find(L'\0'));
    EXPECT_EQ(std::wstring::npos, name.find_first_of(L"\\/:"));
}

} // namespace
