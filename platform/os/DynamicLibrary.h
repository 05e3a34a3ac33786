// Loading a module the way a host does (dlopen / LoadLibraryW). Used by hosts and tests only.
#pragma once

#include <string>

namespace platform::os {

class DynamicLibrary {
public:
    explicit DynamicLibrary(const std::string& path);
    ~DynamicLibrary();
    DynamicLibrary(const DynamicLibrary&) = delete;
    DynamicLibrary& operator=(const DynamicLibrary&) = delete;

    bool IsLoaded() const noexcept { return handle_ != nullptr; }
    // Why loading failed; empty when it did not.
    const std::string& Error() const noexcept { return error_; }
    void* Symbol(const char* name) const;

    template <class Function> Function Get(const char* name) const {
        return reinterpret_cast<Function>(Symbol(name));
    }

private:
    void* handle_ = nullptr;
    std::string error_;
};

} // namespace platform::os
