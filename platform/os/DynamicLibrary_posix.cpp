#include "os/DynamicLibrary.h"

#include <dlfcn.h>

namespace platform::os {

DynamicLibrary::DynamicLibrary(const std::string& path) {
    // The module's process-lifetime objects must outlive dlclose, as they do for a COM host that
    // keeps an in-process server loaded once it has answered DllCanUnloadNow with S_FALSE.
    handle_ = ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    if (handle_ == nullptr) {
        const char* error = ::dlerror();
        error_ = error != nullptr ? error : "dlopen failed";
    }
}

DynamicLibrary::~DynamicLibrary() {
    if (handle_ != nullptr) {
        ::dlclose(handle_);
    }
}

void* DynamicLibrary::Symbol(const char* name) const {
    return handle_ != nullptr ? ::dlsym(handle_, name) : nullptr;
}

} // namespace platform::os
