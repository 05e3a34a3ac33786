#include "os/Browser.h"

#include "os/TextConversion.h"

#include <windows.h>

#include <shellapi.h>

namespace platform::os {

bool OpenInBrowser(const std::string& url) {
    const std::wstring address = Utf8ToWide(url);
    // Values above 32 mean success.
    const auto result = reinterpret_cast<INT_PTR>(
        ShellExecuteW(nullptr, L"open", address.c_str(), nullptr, nullptr, SW_SHOWNORMAL));
    return result > 32;
}

} // namespace platform::os
