// Windows paths on this system: unchanged on Windows, mapped the Wine way elsewhere.
#include "host/GUserFileName.h"
#include "support/DriveRoot.h"

#include <gtest/gtest.h>

namespace {

using platform::os::NativePath;

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

TEST(Paths, FileSystemCallsGoThroughTheMapping) {
    testsupport::ScopedDriveRoot drive;
    drive.Write(L"Z:\\PDM\\Data\\input.bin", std::string("a\0b\r\n", 5));
    drive.RemoveAfterwards(L"Z:\\PDM\\Data");
    std::string contents = "stale";
    ASSERT_TRUE(platform::os::ReadWholeFile(L"Z:\\PDM\\Data\\input.bin", contents));
    EXPECT_EQ(std::string("a\0b\r\n", 5), contents);
    EXPECT_FALSE(platform::os::ReadWholeFile(L"Z:\\PDM\\Data\\missing.bin", contents));
    EXPECT_TRUE(contents.empty());

    EXPECT_TRUE(GUserFileName(GUserText(L"Z:\\PDM\\Data\\input.bin")).Exists());
    EXPECT_FALSE(platform::os::DirectoryExists(L"Z:\\PDM\\Data\\input.bin"));
    ASSERT_TRUE(platform::os::MakeDirectory(L"Z:\\PDM\\Data\\New"));
    EXPECT_TRUE(std::filesystem::is_directory(drive.Native(L"Z:\\PDM\\Data\\New")));
    EXPECT_FALSE(platform::os::MakeDirectory(L"Z:\\PDM\\Data\\No\\Parent"));
}

} // namespace
