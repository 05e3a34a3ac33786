// Loads the built module as a host does and reaches the component through its exports alone.
#include "VANTO.h"
#include "os/DynamicLibrary.h"

#include <gtest/gtest.h>

namespace {

TEST(ModuleLoad, ReachesAllFourInterfacesThroughDllGetClassObject) {
    platform::os::DynamicLibrary module(VANTO_MODULE_PATH);
    ASSERT_TRUE(module.IsLoaded()) << module.Error();
    const auto getClassObject = module.Get<PFN_DllGetClassObject>("DllGetClassObject");
    const auto canUnloadNow = module.Get<PFN_DllCanUnloadNow>("DllCanUnloadNow");
    ASSERT_NE(nullptr, getClassObject);
    ASSERT_NE(nullptr, canUnloadNow);

    IClassFactory* factory = nullptr;
    ASSERT_EQ(S_OK, getClassObject(CLSID_VANTOManager, IID_IClassFactory,
                                   reinterpret_cast<void**>(&factory)));
    IUnknown* manager = nullptr;
    ASSERT_EQ(S_OK,
              factory->CreateInstance(nullptr, IID_IUnknown, reinterpret_cast<void**>(&manager)));
    EXPECT_EQ(0u, factory->Release());

    IVANTOSession* session = nullptr;
    IVANTOSession* mockSession = nullptr;
    IVANTOFileServices* files = nullptr;
    IVANTOFileServices* mockFiles = nullptr;
    ASSERT_EQ(S_OK, manager->QueryInterface(IID_IVANTOSession, reinterpret_cast<void**>(&session)));
    ASSERT_EQ(S_OK, manager->QueryInterface(IID_IVANTOMockSession,
                                            reinterpret_cast<void**>(&mockSession)));
    ASSERT_EQ(S_OK,
              manager->QueryInterface(IID_IVANTOFileServices, reinterpret_cast<void**>(&files)));
    ASSERT_EQ(S_OK, manager->QueryInterface(IID_IVANTOMockFileServices,
                                            reinterpret_cast<void**>(&mockFiles)));

    // Calls reach the module's own code: without a connector nothing is installed, while the
    // mock always says it is.
    EXPECT_FALSE(session->IsCorvaneInstalled());
    EXPECT_TRUE(mockSession->IsCorvaneInstalled());

    for (IUnknown* unknown : {static_cast<IUnknown*>(session), static_cast<IUnknown*>(mockSession),
                              static_cast<IUnknown*>(files), static_cast<IUnknown*>(mockFiles)}) {
        unknown->Release();
    }
    EXPECT_EQ(0u, manager->Release());
    EXPECT_EQ(S_FALSE, canUnloadNow());
}

TEST(ModuleLoad, ExportsOnlyTheTwoEntryPoints) {
    platform::os::DynamicLibrary module(VANTO_MODULE_PATH);
    ASSERT_TRUE(module.IsLoaded()) << module.Error();
    // Names of the component's own code must stay inside the module.
    for (const char* hidden : {"LogMessage", "HRerrEx", "PDMWriteLog", "SetLogSink",
                               "_ZN5vanto7SessionEv", "_Z7HRerrExiPKciS0_"}) {
        EXPECT_EQ(nullptr, module.Symbol(hidden)) << hidden;
    }
}

} // namespace
