#include "os/Paths.h"

#include "os/TextConversion.h"

#include <cstdio>
#include <cstdlib>

namespace platform::os {

namespace {

bool IsDriveLetter(wchar_t c) {
    return (c >= L'A' && c <= L'Z') || (c >= L'a' && c <= L'z');
}

std::wstring DriveZRoot() {
    const char* value = std::getenv(DriveRootVariable);
    std::wstring root = value != nullptr ? Utf8ToWide(value) : std::wstring();
    while (!root.empty() && root.back() == L'/') {
        root.pop_back();
    }
    return root; // empty stands for "/"
}

} // namespace

std::wstring NativePath(const std::wstring& path) {
    if (path.size() < 2 || path[1] != L':' || !IsDriveLetter(path[0])) {
        return path;
    }
    if (path[0] != L'Z' && path[0] != L'z') {
        return std::wstring();
    }
    std::wstring mapped = DriveZRoot();
    std::wstring rest = path.substr(2);
    for (wchar_t& c : rest) {
        if (c == L'\\') {
            c = L'/';
        }
    }
    // "Z:" and "Z:\" are the root itself; "Z:name" is relative to it.
    if (rest.empty() || rest.front() != L'/') {
        rest.insert(rest.begin(), L'/');
    }
    mapped += rest;
    return mapped;
}

std::FILE* OpenFileForReading(const std::wstring& path) {
    const std::string narrow = WideToUtf8(NativePath(path));
    return narrow.empty() ? nullptr : std::fopen(narrow.c_str(), "rb");
}

bool MoveDriveRoot(const std::wstring& folder) {
    if (folder.empty()) {
        return ::unsetenv(DriveRootVariable) == 0;
    }
    return ::setenv(DriveRootVariable, WideToUtf8(folder).c_str(), 1) == 0;
}

} // namespace platform::os
