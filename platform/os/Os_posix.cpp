#include "os/Os.h"
#include "os/Paths.h"
#include "os/TextConversion.h"

#include <chrono>
#include <pwd.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace platform::os {

namespace {
SleepHook& CurrentSleepHook() {
    static SleepHook hook;
    return hook;
}

// Drive-letter paths go through the drive mapping of Paths.h.
bool StatPath(const std::wstring& path, struct stat& info) {
    const std::string narrow = WideToUtf8(NativePath(path));
    return !narrow.empty() && ::stat(narrow.c_str(), &info) == 0;
}
} // namespace

std::uint32_t CurrentProcessId() {
    return static_cast<std::uint32_t>(::getpid());
}

void SleepMilliseconds(std::uint32_t milliseconds) {
    if (const SleepHook& hook = CurrentSleepHook()) {
        hook(milliseconds);
        return;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

SleepHook SetSleepHook(SleepHook hook) {
    return std::exchange(CurrentSleepHook(), std::move(hook));
}

std::wstring LogonUserName() {
    struct passwd entry {};
    struct passwd* found = nullptr;
    char buffer[4096];
    if (::getpwuid_r(::geteuid(), &entry, buffer, sizeof buffer, &found) == 0 && found != nullptr &&
        found->pw_name != nullptr) {
        return Utf8ToWide(found->pw_name);
    }
    return std::wstring();
}

bool MakeDirectory(const std::wstring& path) {
    const std::string narrow = WideToUtf8(NativePath(path));
    return !narrow.empty() && ::mkdir(narrow.c_str(), 0777) == 0;
}

bool DirectoryExists(const std::wstring& path) {
    struct stat info {};
    return StatPath(path, info) && S_ISDIR(info.st_mode);
}

bool PathExists(const std::wstring& path) {
    struct stat info {};
    return StatPath(path, info);
}

int CompareNoCase(const wchar_t* a, const wchar_t* b) {
    const auto fold = [](wchar_t c) -> std::uint32_t {
        const auto value = static_cast<std::uint32_t>(c);
        return (value >= L'A' && value <= L'Z') ? value + (L'a' - L'A') : value;
    };
    for (;; ++a, ++b) {
        const std::uint32_t ca = fold(*a);
        const std::uint32_t cb = fold(*b);
        if (ca != cb || ca == 0) {
            return ca < cb ? -1 : (ca > cb ? 1 : 0);
        }
    }
}

} // namespace platform::os
