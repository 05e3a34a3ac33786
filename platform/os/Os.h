// The handful of operating-system calls the component makes, with one implementation per platform.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace platform::os {

// Id of the calling process (GetCurrentProcess + GetProcessId on Windows).
std::uint32_t CurrentProcessId();

// Blocks the calling thread. Tests replace the wait through SetSleepHook and count the calls.
void SleepMilliseconds(std::uint32_t milliseconds);
using SleepHook = std::function<void(std::uint32_t milliseconds)>;
// Installs a replacement for the real wait (empty restores it); returns the previous hook.
SleepHook SetSleepHook(SleepHook hook);

// Name of the logged-on user (GetUserNameW); empty when it cannot be read.
std::wstring LogonUserName();

// Creates one directory with default security (CreateDirectoryW); false when it was not created.
// These three take Windows paths: on POSIX systems they go through NativePath (os/Paths.h).
bool MakeDirectory(const std::wstring& path);
bool DirectoryExists(const std::wstring& path);
bool PathExists(const std::wstring& path);

// _wcsicmp as the C runtime does it in the "C" locale: only A-Z fold to a-z, then the values are
// compared as unsigned code units. Returns -1, 0 or 1.
int CompareNoCase(const wchar_t* a, const wchar_t* b);

} // namespace platform::os
