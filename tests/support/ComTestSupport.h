// Helpers for tests that use the component as a host does.
#pragma once

#include "VANTO.h"

#include <gtest/gtest.h>

#include <ostream>

// Host texts as text in failure messages. Defined here, where every test that compares them sees
// it, so that the printer gtest builds for the type is the same in each of them.
inline void PrintTo(const GUserText& text, std::ostream* out) {
    *out << '"' << text.Narrow() << '"';
}

namespace testsupport {

// The current reference count of an interface, read through AddRef/Release.
inline ULONG RefCount(IUnknown* unknown) {
    unknown->AddRef();
    return unknown->Release();
}

// The class factory as a host gets it, with one reference.
inline IClassFactory* NewClassFactory() {
    IClassFactory* factory = nullptr;
    EXPECT_EQ(S_OK, DllGetClassObject(CLSID_VANTOManager, IID_IClassFactory,
                                      reinterpret_cast<void**>(&factory)));
    return factory;
}

// The interface `iid` of `object`, with a reference of its own.
template <class Interface> Interface* Query(IUnknown* object, const IID& iid) {
    Interface* found = nullptr;
    EXPECT_EQ(S_OK, object->QueryInterface(iid, reinterpret_cast<void**>(&found)));
    return found;
}

// Reaches the four interfaces of a manager as a host does, each from the one before, and calls
// into the module's own code: without a connector nothing is installed, while the mock always
// says it is.
inline void CallEachInterface(IUnknown* manager) {
    IVANTOSession* session = Query<IVANTOSession>(manager, IID_IVANTOSession);
    ASSERT_NE(nullptr, session);
    IVANTOSession* mockSession = Query<IVANTOSession>(session, IID_IVANTOMockSession);
    ASSERT_NE(nullptr, mockSession);
    IUnknown* files = Query<IUnknown>(mockSession, IID_IVANTOFileServices);
    ASSERT_NE(nullptr, files);
    IUnknown* mockFiles = Query<IUnknown>(files, IID_IVANTOMockFileServices);
    ASSERT_NE(nullptr, mockFiles);
    EXPECT_FALSE(session->IsCorvaneInstalled());
    EXPECT_TRUE(mockSession->IsCorvaneInstalled());
    for (IUnknown* unknown :
         {static_cast<IUnknown*>(session), static_cast<IUnknown*>(mockSession), files, mockFiles}) {
        unknown->Release();
    }
}

// A manager made through DllGetClassObject and the class factory, released at scope end.
class ManagerHandle {
public:
    ManagerHandle() {
        IClassFactory* factory = NewClassFactory();
        EXPECT_EQ(S_OK, factory->CreateInstance(nullptr, IID_IUnknown,
                                                reinterpret_cast<void**>(&unknown_)));
        factory->Release();
    }
    ~ManagerHandle() { Reset(); }
    ManagerHandle(const ManagerHandle&) = delete;
    ManagerHandle& operator=(const ManagerHandle&) = delete;

    IUnknown* Unknown() const { return unknown_; }

    template <class Interface> Interface* Get(const IID& iid) const {
        Interface* found = Query<Interface>(unknown_, iid);
        if (found != nullptr) {
            found->Release(); // the handle keeps the object alive
        }
        return found;
    }
    IVANTOSession* Session() const { return Get<IVANTOSession>(IID_IVANTOSession); }
    IVANTOSession* MockSession() const { return Get<IVANTOSession>(IID_IVANTOMockSession); }
    using Files = IVANTOFileServices;
    Files* FileServices() const { return Get<Files>(IID_IVANTOFileServices); }
    Files* MockFileServices() const { return Get<Files>(IID_IVANTOMockFileServices); }

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
