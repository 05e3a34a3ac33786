// Windows paths on this system: unchanged on Windows, mapped the Wine way elsewhere.
#include "host/GUserFileName.h"
#include "support/DriveRoot.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using platform::os::DirectoryExists;
using platform::os::MakeDirectory;
using platform::os::NativePath;
using platform::os::PathExists;

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

} // namespace
