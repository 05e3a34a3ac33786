#pragma once

#include "com/ComBase.h"

class VANTOManagerClassFactory final : public IClassFactory {
public:
    VANTOManagerClassFactory() = default;
    virtual ~VANTOManagerClassFactory() = default;
    VANTOManagerClassFactory(const VANTOManagerClassFactory&) = delete;
    VANTOManagerClassFactory& operator=(const VANTOManagerClassFactory&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** ppv) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* pUnkOuter, REFIID riid, void** ppv) override;
    HRESULT STDMETHODCALLTYPE LockServer(BOOL fLock) override;

private:
    ULONG refCount = 0;
};
