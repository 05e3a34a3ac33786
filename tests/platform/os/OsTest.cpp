// The operating-system calls behave the same on both platforms; on Windows they are the system's
// own (under Wine in this build), elsewhere our POSIX versions.
#include "os/Os.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>
#include <vector>

#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;
using platform::os::CompareNoCase;

TEST(OsCompareNoCase, FoldsAsciiLettersOnly) {
    EXPECT_EQ(0, CompareNoCase(L"", L""));
    EXPECT_EQ(0, CompareNoCase(L"C:\\Work\\Part.PRT", L"c:\\wORK\\part.prt"));
    EXPECT_EQ(0, CompareNoCase(L"AZ az", L"az AZ"));
    // Letters beyond ASCII keep their case: U+00C9 and U+00E9 differ, by their code values.
    EXPECT_EQ(-1, CompareNoCase(L"\u00C9", L"\u00E9"));
    EXPECT_EQ(1, CompareNoCase(L"\u00E9", L"\u00C9"));
    // Characters next to the letter ranges are not letters.
    EXPECT_NE(0, CompareNoCase(L"@", L"`"));
    EXPECT_NE(0, CompareNoCase(L"[", L"{"));
}

TEST(OsCompareNoCase, OrdersByLowerCaseThenLength) {
    // Folding goes to lower case: '_' (0x5F) sorts before 'a' (0x61) even against 'A' (0x41).
    EXPECT_EQ(-1, CompareNoCase(L"_", L"A"));
    EXPECT_EQ(1, CompareNoCase(L"A", L"_"));
    EXPECT_EQ(-1, CompareNoCase(L"abc", L"ABCD"));
    EXPECT_EQ(1, CompareNoCase(L"ABCD", L"abc"));
    EXPECT_EQ(-1, CompareNoCase(L"Part1", L"part2"));
    // Values compare unsigned, so U+FFFF sorts after ASCII.
    EXPECT_EQ(1, CompareNoCase(L"\uFFFF", L"z"));
}

TEST(OsSleep, HookReplacesTheWaitUntilRemoved) {
    std::vector<std::uint32_t> waits;
    const platform::os::SleepHook previous =
        platform::os::SetSleepHook([&waits](std::uint32_t ms) { waits.push_back(ms); });
    const auto start = std::chrono::steady_clock::now();
    platform::os::SleepMilliseconds(60000);
    platform::os::SleepMilliseconds(0);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
    EXPECT_EQ((std::vector<std::uint32_t>{60000, 0}), waits);

    platform::os::SetSleepHook(previous);
    const auto before = std::chrono::steady_clock::now();
    platform::os::SleepMilliseconds(30);
    // The system's timer may round, but not by a whole tick below the request.
    EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(20));
    EXPECT_EQ(2u, waits.size());
}

TEST(OsProcess, IdIsStableAndNotZero) {
    const std::uint32_t id = platform::os::CurrentProcessId();
    EXPECT_NE(0u, id);
    EXPECT_EQ(id, platform::os::CurrentProcessId());
}

TEST(OsUser, LogonNameIsPlainText) {
    const std::wstring name = platform::os::LogonUserName();
    ASSERT_FALSE(name.empty());
    // No terminator or separator leaks into the name.
    EXPECT_EQ(std::wstring::npos, name.find(L'\0'));
    EXPECT_EQ(std::wstring::npos, name.find_first_of(L"\\/:"));
}

// A folder of its own under the system's temporary folder, removed with everything in it.
class OsDirectoryTest : public ::testing::Test {
protected:
    void SetUp() override {
        root_ = fs::temp_directory_path() /
                fs::path(L"vanto-os-" + std::to_wstring(platform::os::CurrentProcessId()));
        fs::remove_all(root_);
        ASSERT_TRUE(fs::create_directory(root_));
    }
    void TearDown() override {
        std::error_code ignored;
        fs::remove_all(root_, ignored);
    }
    // Joined as text: the library's own conversion of wide names is not what is under test.
    std::wstring Path(const std::wstring& name) const { return root_.wstring() + L"/" + name; }

    fs::path root_;
};

TEST_F(OsDirectoryTest, MakesOneDirectoryOnceAndOnlyWhereItsParentExists) {
    const std::wstring folder = Path(L"Root");
    EXPECT_FALSE(platform::os::DirectoryExists(folder));
    EXPECT_FALSE(platform::os::PathExists(folder));

    EXPECT_TRUE(platform::os::MakeDirectory(folder));
    EXPECT_TRUE(fs::is_directory(fs::path(folder)));
    EXPECT_TRUE(platform::os::DirectoryExists(folder));
    EXPECT_TRUE(platform::os::PathExists(folder));
    // Already there: not made again.
    EXPECT_FALSE(platform::os::MakeDirectory(folder));
    // Missing parents are not made.
    const std::wstring nested = Path(L"Missing") + L"/Child";
    EXPECT_FALSE(platform::os::MakeDirectory(nested));
    EXPECT_FALSE(fs::exists(fs::path(nested)));
    EXPECT_FALSE(platform::os::MakeDirectory(L""));
}

TEST_F(OsDirectoryTest, TellsFilesFromDirectories) {
    const std::wstring file = Path(L"Input.xml");
    std::ofstream(fs::path(file)) << "<xml/>";
    EXPECT_TRUE(platform::os::PathExists(file));
    EXPECT_FALSE(platform::os::DirectoryExists(file));
    EXPECT_FALSE(platform::os::MakeDirectory(file));
    EXPECT_FALSE(platform::os::PathExists(L""));
    EXPECT_FALSE(platform::os::DirectoryExists(L""));
}

TEST_F(OsDirectoryTest, NamesOutsideAsciiReachTheFileSystemUnchanged) {
    // A supplementary character is a surrogate pair in Windows' wide text, one value elsewhere;
    // the file system must hold the same characters either way.
    ASSERT_TRUE(platform::os::MakeDirectory(Path(L"Teil-\u00E9\u20AC-\U0001F600")));
    EXPECT_TRUE(platform::os::DirectoryExists(Path(L"Teil-\u00E9\u20AC-\U0001F600")));

    std::vector<std::string> found;
    for (const fs::directory_entry& entry : fs::directory_iterator(root_)) {
        found.push_back(entry.path().filename().u8string());
    }
    EXPECT_EQ(std::vector<std::string>{u8"Teil-\u00E9\u20AC-\U0001F600"}, found);
}

} // namespace
