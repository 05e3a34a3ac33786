// A small host: loads the component as the CAD host does and reports what it got.
//   vanto_host [path-to-module]
#include "VANTO.h"
#include "os/DynamicLibrary.h"

#include <cstdio>
#include <string>

namespace {

std::string DefaultModulePath(const char* argv0) {
    std::string self = argv0 != nullptr ? argv0 : "";
    const std::size_t slash = self.find_last_of("/\\");
    const std::string folder = slash == std::string::npos ? "." : self.substr(0, slash);
    return folder + "/" + VANTO_MODULE_FILE;
}

const char* Outcome(HRESULT hr) {
    return SUCCEEDED(hr) ? "ok" : "failed";
}

} // namespace

int main(int argc, char** argv) {
    const std::string path = argc > 1 ? argv[1] : DefaultModulePath(argv[0]);
    platform::os::DynamicLibrary module(path);
    if (!module.IsLoaded()) {
        std::fprintf(stderr, "cannot load %s: %s\n", path.c_str(), module.Error().c_str());
        return 1;
    }
    std::printf("loaded %s\n", path.c_str());

    const auto getClassObject = module.Get<PFN_DllGetClassObject>("DllGetClassObject");
    const auto canUnloadNow = module.Get<PFN_DllCanUnloadNow>("DllCanUnloadNow");
    std::printf("DllGetClassObject: %s\nDllCanUnloadNow: %s\n",
                getClassObject ? "found" : "missing", canUnloadNow ? "found" : "missing");
    if (getClassObject == nullptr || canUnloadNow == nullptr) {
        return 1;
    }

    IClassFactory* factory = nullptr;
    HRESULT hr =
        getClassObject(CLSID_VANTOManager, IID_IClassFactory, reinterpret_cast<void**>(&factory));
    std::printf("class factory: %s (0x%08X)\n", Outcome(hr), static_cast<unsigned>(hr));
    if (FAILED(hr)) {
        return 1;
    }
    IUnknown* manager = nullptr;
    hr = factory->CreateInstance(nullptr, IID_IUnknown, reinterpret_cast<void**>(&manager));
    factory->Release();
    std::printf("manager: %s (0x%08X)\n", Outcome(hr), static_cast<unsigned>(hr));
    if (FAILED(hr)) {
        return 1;
    }

    struct Wanted {
        const char* name;
        const IID* iid;
    };
    const Wanted interfaces[] = {{"session", &IID_IVANTOSession},
                                 {"file services", &IID_IVANTOFileServices},
                                 {"mock session", &IID_IVANTOMockSession},
                                 {"mock file services", &IID_IVANTOMockFileServices}};
    int missing = 0;
    for (const Wanted& wanted : interfaces) {
        IUnknown* found = nullptr;
        hr = manager->QueryInterface(*wanted.iid, reinterpret_cast<void**>(&found));
        std::printf("  %-19s %s (0x%08X)\n", wanted.name, Outcome(hr), static_cast<unsigned>(hr));
        if (SUCCEEDED(hr)) {
            found->Release();
        } else {
            ++missing;
        }
    }

    IVANTOSession* session = nullptr;
    if (SUCCEEDED(manager->QueryInterface(IID_IVANTOSession, reinterpret_cast<void**>(&session)))) {
        std::printf("connector installed: %s\n", session->IsCorvaneInstalled() ? "yes" : "no");
        session->Release();
    }

    const ULONG left = manager->Release();
    std::printf("manager released (%u references left)\n", static_cast<unsigned>(left));
    std::printf("DllCanUnloadNow: 0x%08X\n", static_cast<unsigned>(canUnloadNow()));
    return missing == 0 ? 0 : 1;
}
