#include "os/DynamicLibrary.h"
#include "os/TextConversion.h"

#include <windows.h>

namespace platform::os {

DynamicLibrary::DynamicLibrary(const std::string& path) {
    handle_ = ::LoadLibraryW(Utf8ToWide(path).c_str());
    if (handle_ == nullptr) {
        error_ = "LoadLibraryW failed with error " + std::to_string(::GetLastError());
    }
}

DynamicLibrary::~DynamicLibrary() {
    if (handle_ != nullptr) {
        ::FreeLibrary(static_cast<HMODULE>(handle_));
    }
}

void* DynamicLibrary::Symbol(const char* name) const {
    if (handle_ == nullptr) {
        return nullptr;
    }
    return reinterpret_cast<void*>(::GetProcAddress(static_cast<HMODULE>(handle_), name));
}

} // namespace platform::os
