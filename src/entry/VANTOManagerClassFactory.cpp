#include "entry/VANTOManagerClassFactory.h"

#include "entry/ModuleState.h"
#include "entry/VANTOManager.h"

#include <new>

HRESULT STDMETHODCALLTYPE VANTOManagerClassFactory::QueryInterface(REFIID riid, void** ppv) {
    if (ppv == nullptr) {
        return E_POINTER;
    }
    if (IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, IID_IClassFactory)) {
        *ppv = static_cast<IClassFactory*>(this);
        AddRef();
        return S_OK;
    }
    return E_NOINTERFACE;
}

ULONG STDMETHODCALLTYPE VANTOManagerClassFactory::AddRef() {
    return ++refCount;
}

ULONG STDMETHODCALLTYPE VANTOManagerClassFactory::Release() {
    const ULONG count = --refCount;
    if (count == 0) {
        delete this;
    }
    return count;
}

HRESULT STDMETHODCALLTYPE VANTOManagerClassFactory::CreateInstance(IUnknown* pUnkOuter, REFIID riid,
                                                                   void** ppv) {
    if (ppv == nullptr) {
        return E_POINTER;
    }
    *ppv = nullptr;
    // An aggregating object may only ask for the inner object's own IUnknown.
    if (pUnkOuter != nullptr && !IsEqualIID(riid, IID_IUnknown)) {
        return E_NOINTERFACE;
    }
    VANTOManager* manager = nullptr;
    try {
        manager = new (std::nothrow) VANTOManager(pUnkOuter);
    } catch (...) {
        manager = nullptr;
    }
    if (manager == nullptr) {
        return E_OUTOFMEMORY;
    }
    const HRESULT hr = manager->QueryInterface(riid, ppv);
    if (FAILED(hr)) {
        delete manager;
    }
    return hr;
}

HRESULT STDMETHODCALLTYPE VANTOManagerClassFactory::LockServer(BOOL fLock) {
    if (fLock) {
        ++vanto::moduleLockCount;
    } else {
        --vanto::moduleLockCount;
    }
    return S_OK;
}
