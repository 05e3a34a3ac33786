// The module as the Windows tests find it: its file lies next to the test program.
#pragma once

#include <windows.h>

#include <string>

namespace testsupport {

// The module's file name.
inline constexpr const wchar_t* ModuleFile = L"" VANTO_MODULE_PATH;

inline std::wstring ModuleNextToProgram() {
    std::wstring path(MAX_PATH, L'\0');
    const DWORD length =
        ::GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    path.resize(length);
    path.erase(path.find_last_of(L"\\/") + 1);
    return path + ModuleFile;
}

} // namespace testsupport
