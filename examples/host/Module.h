// Loading the VANTO module by path and finding its two entry points, on Windows and on Linux.
#pragma once

#include "VANTO.h"

#ifndef _WIN32
#include <dlfcn.h>
#endif

#include <string>

class VantoModule {
public:
    // Loads the module; Loaded() tells whether both entry points were found.
    explicit VantoModule(const std::string& path) {
#ifdef _WIN32
        const int length = ::MultiByteToWideChar(CP_UTF8, 0, path.c_str(), -1, nullptr, 0);
        std::wstring wide(static_cast<std::size_t>(length > 0 ? length : 1), L'\0');
        ::MultiByteToWideChar(CP_UTF8, 0, path.c_str(), -1, wide.data(), length);
        handle_ = ::LoadLibraryW(wide.c_str());
#else
        handle_ = ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
#endif
        if (handle_ != nullptr) {
            getClassObject_ = reinterpret_cast<PFN_DllGetClassObject>(Symbol("DllGetClassObject"));
            canUnloadNow_ = reinterpret_cast<PFN_DllCanUnloadNow>(Symbol("DllCanUnloadNow"));
        }
    }
    VantoModule(const VantoModule&) = delete;
    VantoModule& operator=(const VantoModule&) = delete;
    // The module is never freed behind the host's back: Unload() does it when the module agrees.
    ~VantoModule() = default;

    bool Loaded() const {
        return getClassObject_ != nullptr && canUnloadNow_ != nullptr;
    }

    // A new manager object, made by the module's class factory; the caller releases it.
    HRESULT CreateManager(IUnknown** manager) const {
        *manager = nullptr;
        IClassFactory* factory = nullptr;
        const HRESULT hr = getClassObject_(CLSID_VANTOManager, IID_IClassFactory,
                                           reinterpret_cast<void**>(&factory));
        if (FAILED(hr)) {
            return hr;
        }
        const HRESULT created =
            factory->CreateInstance(nullptr, IID_IUnknown, reinterpret_cast<void**>(manager));
        factory->Release();
        return created;
    }

    // Frees the module when DllCanUnloadNow answers S_OK; gives that answer. Call it only after
    // every object of the module has been released.
    HRESULT Unload() {
        const HRESULT answer = canUnloadNow_();
        if (answer == S_OK) {
#ifdef _WIN32
            ::FreeLibrary(handle_);
#else
            ::dlclose(handle_);
#endif
            handle_ = nullptr;
            getClassObject_ = nullptr;
            canUnloadNow_ = nullptr;
        }
        return answer;
    }

private:
    void* Symbol(const char* name) const {
#ifdef _WIN32
        return reinterpret_cast<void*>(::GetProcAddress(handle_, name));
#else
        return ::dlsym(handle_, name);
#endif
    }

#ifdef _WIN32
    HMODULE handle_ = nullptr;
#else
    void* handle_ = nullptr;
#endif
    PFN_DllGetClassObject getClassObject_ = nullptr;
    PFN_DllCanUnloadNow canUnloadNow_ = nullptr;
};
