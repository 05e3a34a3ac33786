#include "os/Paths.h"

#include <memory>

namespace platform::os {

bool ReadWholeFile(const std::wstring& path, std::string& contents) {
    contents.clear();
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(OpenFileForReading(path),
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

} // namespace platform::os
