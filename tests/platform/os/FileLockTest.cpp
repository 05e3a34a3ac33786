// The lock on a file: one holder at a time, in one process as between two, and whoever is refused
// reads the holder's id (on Windows past the locked range).
#include "os/FileLock.h"
#include "os/Os.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

using platform::os::FileLock;

TEST(OsFileLock, OneHolderAtATimeAndTheRefusedOneLearnsWho) {
    const auto path = std::filesystem::temp_directory_path() /
                      ("vanto-lock-" + std::to_string(platform::os::CurrentProcessId()));
    {
        const FileLock first(path.wstring());
        ASSERT_TRUE(first.Held());
        const FileLock second(path.wstring());
        EXPECT_FALSE(second.Held());
        EXPECT_EQ(platform::os::CurrentProcessId(), second.HolderId());
    }
    EXPECT_TRUE(FileLock(path.wstring()).Held()); // let go with its holder
    std::filesystem::remove(path);
}

} // namespace
