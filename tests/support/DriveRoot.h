// A drive Z: of the test's own. On POSIX it moves the drive mapping to a fresh temporary folder;
// on Windows the drives belong to the system, so it works on the real Z: and takes a lock folder
// there, because tests in parallel processes share the fixed paths.
#pragma once

#include "os/Os.h"
#include "os/Paths.h"
#include "os/TextConversion.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

namespace testsupport {

class ScopedDriveRoot {
public:
    ScopedDriveRoot() {
        if (const char* previous = std::getenv(platform::os::DriveRootVariable)) {
            previous_ = platform::os::Utf8ToWide(previous);
        }
        static int made = 0;
        folder_ = std::filesystem::temp_directory_path() /
                  ("vanto-drive-z-" + std::to_string(platform::os::CurrentProcessId()) + "-" +
                   std::to_string(++made));
        moved_ = platform::os::MoveDriveRoot(folder_.wstring());
        if (!moved_) {
            Lock();
        }
    }
    ~ScopedDriveRoot() {
        std::error_code ignored;
        if (moved_) {
            platform::os::MoveDriveRoot(previous_.value_or(L""));
            std::filesystem::remove_all(folder_, ignored);
            return;
        }
        for (auto made = madePaths_.rbegin(); made != madePaths_.rend(); ++made) {
            std::filesystem::remove_all(*made, ignored);
        }
        std::filesystem::remove(lock_, ignored);
    }
    ScopedDriveRoot(const ScopedDriveRoot&) = delete;
    ScopedDriveRoot& operator=(const ScopedDriveRoot&) = delete;

    static std::filesystem::path Native(const std::wstring& windowsPath) {
        return std::filesystem::path(platform::os::NativePath(windowsPath));
    }

    // Writes `contents` to the Windows path `file`, creating its folders.
    void Write(const std::wstring& file, const std::string& contents) {
        const std::filesystem::path native = Native(file);
        std::filesystem::create_directories(native.parent_path());
        std::ofstream(native, std::ios::binary | std::ios::trunc) << contents;
        RemoveAfterwards(file);
    }

    // On the real drive, what the test made there is removed when it ends.
    void RemoveAfterwards(const std::wstring& windowsPath) {
        madePaths_.push_back(Native(windowsPath));
    }

private:
    void Lock() {
        lock_ = Native(L"Z:\\PDM\\VANTO\\TestLock");
        std::error_code ignored;
        std::filesystem::create_directories(lock_.parent_path(), ignored);
        // A lock left by a crashed test gives way after a minute.
        const auto giveUp = std::chrono::steady_clock::now() + std::chrono::minutes(1);
        while (!std::filesystem::create_directory(lock_, ignored) &&
               std::chrono::steady_clock::now() < giveUp) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
    }

    std::optional<std::wstring> previous_;
    std::filesystem::path folder_;
    std::filesystem::path lock_;
    std::vector<std::filesystem::path> madePaths_;
    bool moved_ = false;
};

} // namespace testsupport
