#include "os/ProcessInfo.h"

#include <windows.h>
// oleauto.h needs windows.h first.
#include <oleauto.h>

#include <vector>

namespace platform::os {

std::optional<LocalDateTime> ProcessStartLocalTime() {
    FILETIME creation{};
    FILETIME exited{};
    FILETIME kernel{};
    FILETIME user{};
    if (!::GetProcessTimes(::GetCurrentProcess(), &creation, &exited, &kernel, &user)) {
        return std::nullopt;
    }
    const LocalDateTime invalid;
    FILETIME local{};
    SYSTEMTIME fields{};
    if (!::FileTimeToLocalFileTime(&creation, &local) || !::FileTimeToSystemTime(&local, &fields)) {
        return invalid;
    }
    // The trip through a date value is how the host has always checked the fields.
    DOUBLE date = 0;
    SYSTEMTIME back{};
    if (!::SystemTimeToVariantTime(&fields, &date) || !::VariantTimeToSystemTime(date, &back)) {
        return invalid;
    }
    if (back.wYear != fields.wYear || back.wMonth != fields.wMonth || back.wDay != fields.wDay ||
        back.wHour != fields.wHour || back.wMinute != fields.wMinute ||
        back.wSecond != fields.wSecond) {
        return invalid;
    }
    return LocalDateTime{back.wYear, back.wMonth,  back.wDay,
                         back.wHour, back.wMinute, back.wSecond};
}

std::wstring ExecutableDirectory() {
    std::vector<wchar_t> buffer(MAX_PATH);
    for (;;) {
        const DWORD length =
            ::GetModuleFileNameW(nullptr, buffer.data(), static_cast<DWORD>(buffer.size()));
        if (length == 0) {
            return std::wstring();
        }
        if (length < buffer.size()) {
            const std::wstring path(buffer.data(), length);
            const std::size_t separator = path.find_last_of(L"\\/");
            return separator == std::wstring::npos ? std::wstring() : path.substr(0, separator);
        }
        buffer.resize(buffer.size() * 2);
    }
}

} // namespace platform::os
