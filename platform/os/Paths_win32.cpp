#include "os/Paths.h"

#include <cstdio>

namespace platform::os {

std::wstring NativePath(const std::wstring& path) {
    return path;
}

std::FILE* OpenFileForReading(const std::wstring& path) {
    return path.empty() ? nullptr : ::_wfopen(path.c_str(), L"rb");
}

bool MoveDriveRoot(const std::wstring& /*folder*/) {
    return false;
}

} // namespace platform::os
