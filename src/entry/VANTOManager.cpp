#include "entry/VANTOManager.h"

#include "entry/ModuleState.h"
#include "session/SessionState.h"

#include <stdexcept>
#include <vector>

namespace {

// Proxy factories are never freed: the proxies they made must stay valid for the process.
void KeepForProcessLife(Corvane::CorvaneProxyFactory* factory) {
    static auto* kept = new std::vector<Corvane::CorvaneProxyFactory*>();
    kept->push_back(factory);
}

} // namespace

VANTOManager::VANTOManager(IUnknown* outer)
    : controllingUnknown(outer != nullptr ? outer : this), fileServices(*this),
      mockFileServices(*this), session(*this), mockSession(*this) {
    auto* factory = new Corvane::CorvaneProxyFactory();
    KeepForProcessLife(factory);
    proxy = factory->CreateCorvaneProxy();
}

Corvane::ICorvaneProxy& VANTOManager::RequireProxy() const {
    if (proxy == nullptr) {
        throw std::runtime_error("Corvane proxy is not available");
    }
    return *proxy;
}

VANTOManager::~VANTOManager() {
    if (vanto::Session().registered) {
        // Release must not throw: whatever the connector throws at shutdown ends here.
        try {
            session.DeRegisterFromCorvane();
        } catch (...) {
        }
    }
    --vanto::liveObjectCount;
}

HRESULT STDMETHODCALLTYPE VANTOManager::QueryInterface(REFIID riid, void** ppv) {
    if (ppv == nullptr) {
        return E_POINTER;
    }
    *ppv = nullptr;
    IUnknown* handedOut = nullptr;
    if (IsEqualIID(riid, IID_IUnknown)) {
        handedOut = this;
    } else if (IsEqualIID(riid, IID_IVANTOFileServices)) {
        handedOut = &fileServices;
    } else if (IsEqualIID(riid, IID_IVANTOMockFileServices)) {
        handedOut = &mockFileServices;
    } else if (IsEqualIID(riid, IID_IVANTOSession)) {
        handedOut = &session;
    } else if (IsEqualIID(riid, IID_IVANTOMockSession)) {
        handedOut = &mockSession;
    } else {
        return E_NOINTERFACE;
    }
    *ppv = handedOut;
    handedOut->AddRef();
    return S_OK;
}

ULONG STDMETHODCALLTYPE VANTOManager::AddRef() {
    return ++refCount;
}

ULONG STDMETHODCALLTYPE VANTOManager::Release() {
    const ULONG count = --refCount;
    if (count == 0) {
        delete this;
        --vanto::liveObjectCount;
    }
    return count;
}
