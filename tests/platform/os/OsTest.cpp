// The operating-system calls behave the same on both platforms; on Windows they are the system's
// own (under Wine in this build), elsewhere our POSIX versions.
#include "os/Os.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#ifdef _WIN32
#include "com/ComBase.h"
#else
#include <unistd.h>
#endif

namespace {

namespace fs = std::filesystem;
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

TEST_F(OsDirectoryTest, MakesOneDirectoryOnlyWhereItsParentExistsAndTellsFilesFromIt) {
    const std::wstring folder = Path(L"Root");
    EXPECT_FALSE(platform::os::DirectoryExists(folder) || platform::os::PathExists(folder));
    EXPECT_TRUE(platform::os::MakeDirectory(folder));
    EXPECT_TRUE(fs::is_directory(fs::path(folder)));
    EXPECT_TRUE(platform::os::DirectoryExists(folder) && platform::os::PathExists(folder));
    // Already there: not made again.
    EXPECT_FALSE(platform::os::MakeDirectory(folder));
    // Missing parents are not made.
    const std::wstring nested = Path(L"Missing") + L"/Child";
    EXPECT_FALSE(platform::os::MakeDirectory(nested));
    EXPECT_FALSE(fs::exists(fs::path(nested)));

    const std::wstring file = Path(L"Input.xml");
    std::ofstream(fs::path(file)) << "<xml/>";
    EXPECT_TRUE(platform::os::PathExists(file));
    EXPECT_FALSE(platform::os::DirectoryExists(file) || platform::os::MakeDirectory(file));
    EXPECT_FALSE(platform::os::MakeDirectory(L"") || platform::os::PathExists(L"") ||
                 platform::os::DirectoryExists(L""));
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
