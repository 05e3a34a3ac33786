#include "os/FileLock.h"

#include "os/TextConversion.h"

#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <sys/file.h>
#include <unistd.h>

namespace platform::os {

FileLock::FileLock(const std::wstring& path) {
    const int file = ::open(WideToUtf8(path).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (file < 0) {
        return;
    }
    handle_ = file;
    held_ = ::flock(file, LOCK_EX | LOCK_NB) == 0;
    if (held_) {
        const std::string id = std::to_string(::getpid());
        held_ = ::ftruncate(file, 0) == 0 &&
                ::pwrite(file, id.data(), id.size(), 0) == static_cast<ssize_t>(id.size());
        holder_ = held_ ? static_cast<unsigned long>(::getpid()) : 0;
        return;
    }
    char text[24] = {};
    if (::pread(file, text, sizeof text - 1, 0) > 0) {
        holder_ = std::strtoul(text, nullptr, 10);
    }
}

FileLock::~FileLock() {
    if (handle_ >= 0) {
        ::close(static_cast<int>(handle_)); // drops the lock
    }
}

} // namespace platform::os
