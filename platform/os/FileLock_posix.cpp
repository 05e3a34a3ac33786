#include "os/FileLock.h"

#include "os/TextConversion.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <stdexcept>
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

TurnLock::TurnLock(const std::wstring& path)
    : handle_(::open(WideToUtf8(path).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)) {
    if (handle_ < 0) {
        throw std::runtime_error("cannot open the lock file " + WideToUtf8(path));
    }
}

TurnLock::~TurnLock() {
    ::close(static_cast<int>(handle_));
}

void TurnLock::Lock() {
    while (::flock(static_cast<int>(handle_), LOCK_EX) != 0) {
        if (errno != EINTR) {
            throw std::runtime_error("cannot take a lock");
        }
    }
}

void TurnLock::Unlock() noexcept {
    ::flock(static_cast<int>(handle_), LOCK_UN);
}

} // namespace platform::os
