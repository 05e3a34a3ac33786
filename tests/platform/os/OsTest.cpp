// The operating-system calls behave the same on both platforms; on Windows they are the system's
// own (under Wine in this build), elsewhere our POSIX versions. Windows paths are unchanged on
// Windows and mapped the Wine way elsewhere.
#include "os/Os.h"
#include "host/GUserFileName.h"
#include "host/HostUtil.h"
#include "os/ProcessInfo.h"
#include "os/UserValues.h"
#include "support/DriveRoot.h"

#include <ctime>
#include <iterator>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

namespace {

using platform::os::CompareNoCase;
using platform::os::DirectoryExists;
using platform::os::MakeDirectory;
using platform::os::NativePath;
using platform::os::PathExists;
using platform::os::ReadUserValue;
using platform::os::WriteUserValue;

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

TEST(Paths, DriveZMapsUnderItsRootWithSlashes) {
    const testsupport::ScopedDriveRoot restored;
    if (!platform::os::MoveDriveRoot(L"/srv/drive-z//")) {
        EXPECT_EQ(L"Z:\\PDM\\Root", NativePath(L"Z:\\PDM\\Root"));
        GTEST_SKIP() << "the system owns its drives";
    }
    EXPECT_EQ(L"/srv/drive-z/PDM/a b/x.par", NativePath(L"Z:\\PDM\\a b/x.par"));
    EXPECT_EQ(L"/srv/drive-z/pdm", NativePath(L"z:pdm"));
    EXPECT_EQ(L"/srv/drive-z/", NativePath(L"Z:"));
    // Other drives are not there; paths without a drive stay as they are.
    EXPECT_EQ(L"", NativePath(L"C:\\Windows"));
    EXPECT_EQ(L"/tmp/a\\b", NativePath(L"/tmp/a\\b"));
    ASSERT_TRUE(platform::os::MoveDriveRoot(L""));
    EXPECT_EQ(L"/PDM/Root", NativePath(L"Z:\\PDM\\Root"));
}

TEST(Paths, FileSystemCallsGoThroughTheMappingAndKeepNamesWhole) {
    testsupport::ScopedDriveRoot drive;
    drive.Write(L"Z:\\PDM\\Data\\input.bin", std::string("a\0b\r\n", 5));
    drive.RemoveAfterwards(L"Z:\\PDM\\Data");
    std::string contents = "stale";
    ASSERT_TRUE(platform::os::ReadWholeFile(L"Z:\\PDM\\Data\\input.bin", contents));
    EXPECT_EQ(std::string("a\0b\r\n", 5), contents);
    EXPECT_FALSE(platform::os::ReadWholeFile(L"Z:\\PDM\\Data\\missing.bin", contents));
    EXPECT_TRUE(contents.empty());

    // A file is a path but no directory, and none is made in its place.
    const std::wstring file = L"Z:\\PDM\\Data\\input.bin";
    EXPECT_TRUE(GUserFileName(GUserText(file)).Exists() && PathExists(file));
    EXPECT_FALSE(DirectoryExists(file) || MakeDirectory(file));
    // One directory is made, once, and only where its parent exists.
    const std::wstring folder = L"Z:\\PDM\\Data\\New";
    EXPECT_FALSE(DirectoryExists(folder) || PathExists(folder));
    ASSERT_TRUE(MakeDirectory(folder));
    EXPECT_TRUE(std::filesystem::is_directory(drive.Native(folder)));
    EXPECT_TRUE(DirectoryExists(folder) && PathExists(folder));
    EXPECT_FALSE(MakeDirectory(folder));
    EXPECT_FALSE(MakeDirectory(L"Z:\\PDM\\Data\\No\\Parent"));
    EXPECT_FALSE(std::filesystem::exists(drive.Native(L"Z:\\PDM\\Data\\No")));
    EXPECT_FALSE(MakeDirectory(L"") || PathExists(L"") || DirectoryExists(L""));

    // A supplementary character is a surrogate pair in Windows' wide text, one value elsewhere;
    // the file system must hold the same characters either way.
    const std::wstring name = L"Teil-\u00E9\u20AC-\U0001F600";
    ASSERT_TRUE(MakeDirectory(folder + L"\\" + name));
    EXPECT_TRUE(DirectoryExists(folder + L"\\" + name));
    std::vector<std::string> found;
    for (const auto& entry : std::filesystem::directory_iterator(drive.Native(folder))) {
        found.push_back(entry.path().filename().u8string());
    }
    EXPECT_EQ(std::vector<std::string>{u8"Teil-\u00E9\u20AC-\U0001F600"}, found);
}

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
    // Read as local time (mktime fails as -1) it is a moment in the last hour (a test process is
    // young), not later than now and not off by a time-zone offset.
    EXPECT_LE(start, now + 1);
    EXPECT_GT(start, now - 3600);
}

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
