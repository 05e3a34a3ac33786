#include "os/FileLock.h"

#include <windows.h>

#include <cstdlib>
#include <stdexcept>
#include <string>

namespace platform::os {

namespace {

// The lock covers a range past any id written, which stays readable to other handles.
constexpr DWORD LockedOffset = 0x7FFFFFFF;

} // namespace

FileLock::FileLock(const std::wstring& path) {
    const HANDLE file = ::CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                      nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        return;
    }
    handle_ = reinterpret_cast<std::intptr_t>(file);
    OVERLAPPED range{};
    range.Offset = LockedOffset;
    held_ = ::LockFileEx(file, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0,
                         &range) != FALSE;
    if (held_) {
        const std::string id = std::to_string(::GetCurrentProcessId());
        DWORD written = 0;
        held_ = ::SetFilePointer(file, 0, nullptr, FILE_BEGIN) == 0 && ::SetEndOfFile(file) &&
                ::WriteFile(file, id.data(), static_cast<DWORD>(id.size()), &written, nullptr) &&
                written == id.size();
        holder_ = held_ ? ::GetCurrentProcessId() : 0;
        return;
    }
    char text[24] = {};
    DWORD read = 0;
    if (::ReadFile(file, text, sizeof text - 1, &read, nullptr) && read > 0) {
        holder_ = std::strtoul(text, nullptr, 10);
    }
}

FileLock::~FileLock() {
    if (handle_ != -1) {
        ::CloseHandle(reinterpret_cast<HANDLE>(handle_)); // drops the lock
    }
}

TurnLock::TurnLock(const std::wstring& path)
    : handle_(reinterpret_cast<std::intptr_t>(
          ::CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE,
                        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                        OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr))) {
    if (reinterpret_cast<HANDLE>(handle_) == INVALID_HANDLE_VALUE) {
        throw std::runtime_error("cannot open a lock file");
    }
}

TurnLock::~TurnLock() {
    ::CloseHandle(reinterpret_cast<HANDLE>(handle_));
}

// Without LOCKFILE_FAIL_IMMEDIATELY, on a handle opened without FILE_FLAG_OVERLAPPED, the call
// returns once the range is ours.
void TurnLock::Lock() {
    OVERLAPPED range{};
    if (!::LockFileEx(reinterpret_cast<HANDLE>(handle_), LOCKFILE_EXCLUSIVE_LOCK, 0, 1, 0,
                      &range)) {
        throw std::runtime_error("cannot take a lock");
    }
}

void TurnLock::Unlock() noexcept {
    OVERLAPPED range{};
    ::UnlockFileEx(reinterpret_cast<HANDLE>(handle_), 0, 1, 0, &range);
}

} // namespace platform::os
