#include "os/UserValues.h"

#include <windows.h>

#include <vector>

namespace platform::os {

namespace {

std::wstring& ScratchKey() {
    static std::wstring key;
    return key;
}

std::wstring StoreKey() {
    return ScratchKey().empty() ? std::wstring(L"Software\\VANTO\\HostUserValues") : ScratchKey();
}

std::wstring ScopeKey(int scope) {
    return StoreKey() + L"\\" + std::to_wstring(scope);
}

} // namespace

bool ReadUserValue(int scope, const std::wstring& name, std::wstring& value) {
    HKEY key = nullptr;
    if (::RegOpenKeyExW(HKEY_CURRENT_USER, ScopeKey(scope).c_str(), 0, KEY_QUERY_VALUE, &key) !=
        ERROR_SUCCESS) {
        return false;
    }
    DWORD type = 0;
    DWORD size = 0;
    LONG status = ::RegQueryValueExW(key, name.c_str(), nullptr, &type, nullptr, &size);
    std::vector<wchar_t> buffer(size / sizeof(wchar_t) + 1, L'\0');
    if (status == ERROR_SUCCESS && type == REG_SZ) {
        size = static_cast<DWORD>(buffer.size() * sizeof(wchar_t));
        status = ::RegQueryValueExW(key, name.c_str(), nullptr, &type,
                                    reinterpret_cast<BYTE*>(buffer.data()), &size);
    }
    ::RegCloseKey(key);
    if (status != ERROR_SUCCESS || type != REG_SZ) {
        return false;
    }
    // A stored text need not end in a terminator; the buffer has room for one.
    buffer.back() = L'\0';
    value.assign(buffer.data());
    return true;
}

bool WriteUserValue(int scope, const std::wstring& name, const std::wstring& value) {
    HKEY key = nullptr;
    if (::RegCreateKeyExW(HKEY_CURRENT_USER, ScopeKey(scope).c_str(), 0, nullptr, 0, KEY_SET_VALUE,
                          nullptr, &key, nullptr) != ERROR_SUCCESS) {
        return false;
    }
    const auto bytes = static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t));
    const LONG status = ::RegSetValueExW(key, name.c_str(), 0, REG_SZ,
                                         reinterpret_cast<const BYTE*>(value.c_str()), bytes);
    ::RegCloseKey(key);
    return status == ERROR_SUCCESS;
}

void UseScratchUserValueStore(const std::wstring& tag) {
    ScratchKey() = tag.empty() ? std::wstring() : L"Software\\VANTO\\Scratch\\" + tag;
}

void ClearUserValueStore() {
    if (!ScratchKey().empty()) {
        ::RegDeleteTreeW(HKEY_CURRENT_USER, ScratchKey().c_str());
        // The parents go only when empty: RegDeleteKeyW refuses a key that has subkeys.
        ::RegDeleteKeyW(HKEY_CURRENT_USER, L"Software\\VANTO\\Scratch");
        ::RegDeleteKeyW(HKEY_CURRENT_USER, L"Software\\VANTO");
    }
}

} // namespace platform::os
