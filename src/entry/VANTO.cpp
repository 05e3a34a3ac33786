// The component's exported entry points.
#include "VANTO.h"

#include "entry/ModuleState.h"
#include "entry/VANTOManagerClassFactory.h"
#include "host/HostUtil.h"

#include <new>

#ifdef _WIN32
#define VANTO_EXPORT
#else
#define VANTO_EXPORT __attribute__((visibility("default")))
#endif

namespace vanto {
std::int32_t moduleLockCount = 0;
std::int32_t liveObjectCount = 0;
} // namespace vanto

namespace {
// Reports carry the module's main source name and fixed line numbers: both are part of the
// diagnostic contract with the host's support staff, so they do not follow this file's layout.
constexpr const char* ModuleName = "VANTO";
constexpr const char* FunctionName = "DllGetClassObject";

HRESULT Report(HRESULT hr, int line) {
    HRerrEx(hr, ModuleName, line, FunctionName);
    return hr;
}
} // namespace

extern "C" VANTO_EXPORT HRESULT STDAPICALLTYPE DllGetClassObject(REFCLSID rclsid, REFIID riid,
                                                                 LPVOID* ppv) {
    if (ppv == nullptr) {
        return Report(E_INVALIDARG, 93);
    }
    *ppv = nullptr;
    if (!IsEqualIID(riid, IID_IUnknown) && !IsEqualIID(riid, IID_IClassFactory)) {
        return Report(E_NOINTERFACE, 99);
    }
    if (!IsEqualCLSID(rclsid, CLSID_VANTOManager)) {
        return Report(CLASS_E_CLASSNOTAVAILABLE, 105);
    }
    auto* factory = new (std::nothrow) VANTOManagerClassFactory();
    if (factory == nullptr) {
        return Report(E_OUTOFMEMORY, 108);
    }
    factory->AddRef();
    const HRESULT hr = factory->QueryInterface(riid, ppv);
    if (FAILED(hr)) {
        Report(hr, 113);
    }
    factory->Release();
    return hr;
}

extern "C" VANTO_EXPORT HRESULT STDAPICALLTYPE DllCanUnloadNow() {
    if (vanto::liveObjectCount != 0) {
        return S_FALSE;
    }
    if (vanto::moduleLockCount != 0) {
        return S_FALSE;
    }
    return S_OK;
}
