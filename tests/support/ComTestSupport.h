// Helpers for tests that use the component as a host does.
#pragma once

#include "VANTO.h"

#include <gtest/gtest.h>

namespace testsupport {

// The current reference count of an interface, read through AddRef/Release.
inline ULONG RefCount(IUnknown* unknown) {
    unknown->AddRef();
    return unknown->Release();
}

// A manager made through DllGetClassObject and the class factory, released at scope end.
class ManagerHandle {
public:
    ManagerHandle() {
        IClassFactory* factory = nullptr;
        EXPECT_EQ(S_OK, DllGetClassObject(CLSID_VANTOManager, IID_IClassFactory,
                                          reinterpret_cast<void**>(&factory)));
        EXPECT_EQ(S_OK, factory->CreateInstance(nullptr, IID_IUnknown,
                                                reinterpret_cast<void**>(&unknown_)));
        factory->Release();
    }
    ~ManagerHandle() {
        if (unknown_ != nullptr) {
            unknown_->Release();
        }
    }
    ManagerHandle(const ManagerHandle&) = delete;
    ManagerHandle& operator=(const ManagerHandle&) = delete;

    IUnknown* Unknown() const { return unknown_; }

    template <class Interface> Interface* Get(const IID& iid) const {
        Interface* found = nullptr;
        EXPECT_EQ(S_OK, unknown_->QueryInterface(iid, reinterpret_cast<void**>(&found)));
        if (found != nullptr) {
            found->Release(); // the handle keeps the object alive
        }
        return found;
    }
    IVANTOSession* Session() const { return Get<IVANTOSession>(IID_IVANTOSession); }
    IVANTOSession* MockSession() const { return Get<IVANTOSession>(IID_IVANTOMockSession); }
    IVANTOFileServices* FileServices() const {
        return Get<IVANTOFileServices>(IID_IVANTOFileServices);
    }
    IVANTOFileServices* MockFileServices() const {
        return Get<IVANTOFileServices>(IID_IVANTOMockFileServices);
    }

    // Releases the manager now.
    void Reset() {
        if (unknown_ != nullptr) {
            unknown_->Release();
            unknown_ = nullptr;
        }
    }

private:
    IUnknown* unknown_ = nullptr;
};

} // namespace testsupport
