#include "host/GUserFileName.h"

#include "os/Os.h"

bool GUserFileName::Exists() const {
    return !path_.IsEmpty() && platform::os::PathExists(path_.wstr());
}

GUserText GUserFileName::GetExtension() const {
    const std::wstring& path = path_.wstr();
    const std::size_t dot = path.find_last_of(L'.');
    const std::size_t separator = path.find_last_of(L"\\/");
    if (dot == std::wstring::npos || (separator != std::wstring::npos && dot < separator)) {
        return GUserText();
    }
    return GUserText(path.substr(dot + 1));
}
