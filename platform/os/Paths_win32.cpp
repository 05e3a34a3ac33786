#ifdef _WIN32

#include "os/Paths.h"

#include <cstdio>
#include <memory>

namespace platform::os {

std::wstring NativePath(const std::wstring& path) {
    return path;
}

bool ReadWholeFile(const std::wstring& path, std::string& contents) {
    contents.clear();
    if (path.empty()) {
        return false;
    }
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(::_wfopen(path.c_str(), L"rb"),
                                                               &std::fclose);
    if (!file) {
        return false;
    }
    char buffer[16 * 1024];
    std::size_t count = 0;
    while ((count = std::fread(buffer, 1, sizeof buffer, file.get())) > 0) {
        contents.append(buffer, count);
    }
    if (std::ferror(file.get()) != 0) {
        contents.clear();
        return false;
    }
    return true;
}

bool MoveDriveRoot(const std::wstring& /*folder*/) {
    return false;
}

} // namespace platform::os

#endif
