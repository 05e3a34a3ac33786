// Loads the built module as a host does and reaches the component through its exports alone.
#include "VANTO.h"
#include "os/DynamicLibrary.h"
#include "support/ComTestSupport.h"

#include <gtest/gtest.h>

namespace {

TEST(ModuleLoad, ExportsOnlyTheEntryPointsAndReachesAllFourInterfaces) {
    platform::os::DynamicLibrary module(VANTO_MODULE_PATH);
    ASSERT_TRUE(module.IsLoaded()) << module.Error();
    // Names of the component's own code must stay inside the module.
    for (const char* hidden : {"LogMessage", "HRerrEx", "PDMWriteLog", "SetLogSink",
                               "_ZN5vanto7SessionEv", "_Z7HRerrExiPKciS0_"}) {
        EXPECT_EQ(nullptr, module.Symbol(hidden)) << hidden;
    }
    const auto getClassObject = module.Get<PFN_DllGetClassObject>("DllGetClassObject");
    const auto canUnloadNow = module.Get<PFN_DllCanUnloadNow>("DllCanUnloadNow");
    ASSERT_NE(nullptr, getClassObject);
    ASSERT_NE(nullptr, canUnloadNow);

    IClassFactory* factory = nullptr;
    ASSERT_EQ(S_OK, getClassObject(CLSID_VANTOManager, IID_IClassFactory,
                                   reinterpret_cast<void**>(&factory)));
    // The module may go while nothing holds it, not while it is locked ...
    EXPECT_EQ(S_OK, canUnloadNow());
    EXPECT_EQ(S_OK, factory->LockServer(TRUE));
    EXPECT_EQ(S_FALSE, canUnloadNow());
    EXPECT_EQ(S_OK, factory->LockServer(FALSE));
    EXPECT_EQ(S_OK, canUnloadNow());
    IUnknown* manager = nullptr;
    ASSERT_EQ(S_OK,
              factory->CreateInstance(nullptr, IID_IUnknown, reinterpret_cast<void**>(&manager)));
    EXPECT_EQ(0u, factory->Release());

    testsupport::CallEachInterface(manager);
    EXPECT_EQ(0u, manager->Release());
    // ... and never once a manager has gone.
    EXPECT_EQ(S_FALSE, canUnloadNow());
}

} // namespace
