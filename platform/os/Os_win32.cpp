#include "os/Os.h"

#include <utility>
#include <wchar.h>
#include <windows.h>

namespace platform::os {

namespace {
SleepHook& CurrentSleepHook() {
    static SleepHook hook;
    return hook;
}

DWORD Attributes(const std::wstring& path) {
    return ::GetFileAttributesW(path.c_str());
}
} // namespace

std::uint32_t CurrentProcessId() {
    return static_cast<std::uint32_t>(::GetProcessId(::GetCurrentProcess()));
}

void SleepMilliseconds(std::uint32_t milliseconds) {
    if (const SleepHook& hook = CurrentSleepHook()) {
        hook(milliseconds);
        return;
    }
    ::Sleep(milliseconds);
}

SleepHook SetSleepHook(SleepHook hook) {
    return std::exchange(CurrentSleepHook(), std::move(hook));
}

std::wstring LogonUserName() {
    wchar_t buffer[260] = {};
    DWORD size = 260;
    if (!::GetUserNameW(buffer, &size)) {
        return std::wstring();
    }
    return std::wstring(buffer);
}

bool MakeDirectory(const std::wstring& path) {
    return ::CreateDirectoryW(path.c_str(), nullptr) != FALSE;
}

bool DirectoryExists(const std::wstring& path) {
    const DWORD attributes = Attributes(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool PathExists(const std::wstring& path) {
    return Attributes(path) != INVALID_FILE_ATTRIBUTES;
}

int CompareNoCase(const wchar_t* a, const wchar_t* b) {
    // The runtime returns the difference of the first unequal values; callers on both platforms
    // see only its sign.
    const int difference = ::_wcsicmp(a, b);
    return (difference > 0) - (difference < 0);
}

} // namespace platform::os
