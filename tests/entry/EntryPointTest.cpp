// The entry points, the class factory and the manager's interface table, as a host meets them.
#include "support/ComTestSupport.h"

#include "host/HostLog.h"
#include "os/DynamicLibrary.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

constexpr IID IID_Unrelated = {
    0x12345678, 0x1234, 0x1234, {0x12, 0x34, 0x12, 0x34, 0x56, 0x78, 0x9a, 0xbc}};

// The failures reported to the host's log, each from DllGetClassObject.
std::vector<HRESULT> Reports(const CapturingLogSink& log) {
    std::vector<HRESULT> reports;
    for (const LogRecord& record : log.records) {
        EXPECT_EQ("VANTO DllGetClassObject", record.file + " " + record.function);
        reports.push_back(record.hr);
    }
    return reports;
}

TEST(DllGetClassObject, ChecksPointerThenInterfaceThenClass) {
    CapturingLogSink log;
    EXPECT_EQ(E_INVALIDARG, DllGetClassObject(IID_Unrelated, IID_Unrelated, nullptr));

    void* out = &log;
    // Both identifiers wrong: the interface is looked at first.
    EXPECT_EQ(E_NOINTERFACE, DllGetClassObject(IID_Unrelated, IID_Unrelated, &out));
    EXPECT_EQ(nullptr, out);

    out = &log;
    EXPECT_EQ(CLASS_E_CLASSNOTAVAILABLE, DllGetClassObject(IID_Unrelated, IID_IClassFactory, &out));
    EXPECT_EQ(nullptr, out);
    EXPECT_EQ((std::vector<HRESULT>{E_INVALIDARG, E_NOINTERFACE, CLASS_E_CLASSNOTAVAILABLE}),
              Reports(log));
}

TEST(ClassFactory, CreatesManagersForEachInterfaceAndIsNoneOfThem) {
    IClassFactory* factory = testsupport::NewClassFactory();
    for (const IID* iid : {&IID_IUnknown, &IID_IVANTOSession, &IID_IVANTOFileServices,
                           &IID_IVANTOMockSession, &IID_IVANTOMockFileServices}) {
        IUnknown* object = nullptr;
        ASSERT_EQ(S_OK, factory->CreateInstance(nullptr, *iid, reinterpret_cast<void**>(&object)));
        EXPECT_EQ(1u, testsupport::RefCount(object));
        EXPECT_EQ(0u, object->Release());
    }
    void* out = &factory;
    EXPECT_EQ(E_NOINTERFACE, factory->CreateInstance(nullptr, IID_IClassFactory, &out));
    EXPECT_EQ(nullptr, out);

    // Its own QueryInterface leaves the output alone for other interfaces.
    out = &factory;
    EXPECT_EQ(E_NOINTERFACE, factory->QueryInterface(IID_IVANTOSession, &out));
    EXPECT_EQ(static_cast<void*>(&factory), out);
    EXPECT_EQ(0u, factory->Release());
}

// An outer object that counts what the aggregated manager forwards to it.
class Outer : public IUnknown {
public:
    // Asked only for IUnknown, through the manager's nested interfaces.
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** ppv) override {
        *ppv = this;
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++count; }
    ULONG STDMETHODCALLTYPE Release() override { return --count; }
    virtual ~Outer() = default;

    IUnknown* inner = nullptr;
    ULONG count = 1;
};

TEST(ClassFactory, AggregationAsksForTheInnerUnknownOnly) {
    IClassFactory* factory = testsupport::NewClassFactory();
    Outer outer;
    void* out = &outer;
    EXPECT_EQ(E_NOINTERFACE, factory->CreateInstance(&outer, IID_IVANTOSession, &out));
    EXPECT_EQ(nullptr, out);

    ASSERT_EQ(S_OK, factory->CreateInstance(&outer, IID_IUnknown,
                                            reinterpret_cast<void**>(&outer.inner)));
    factory->Release();
    EXPECT_EQ(1u, testsupport::RefCount(outer.inner));

    // Every nested interface forwards IUnknown to the outer object.
    for (const IID* iid : {&IID_IVANTOSession, &IID_IVANTOFileServices, &IID_IVANTOMockSession,
                           &IID_IVANTOMockFileServices}) {
        IUnknown* nested = nullptr;
        ASSERT_EQ(S_OK, outer.inner->QueryInterface(*iid, reinterpret_cast<void**>(&nested)));
        EXPECT_EQ(2u, outer.count);
        IUnknown* viaNested = nullptr;
        EXPECT_EQ(S_OK, nested->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&viaNested)));
        EXPECT_EQ(static_cast<IUnknown*>(&outer), viaNested);
        EXPECT_EQ(3u, outer.count);
        viaNested->Release();
        EXPECT_EQ(1u, nested->Release());
        EXPECT_EQ(1u, testsupport::RefCount(outer.inner));
    }
    EXPECT_EQ(0u, outer.inner->Release());
}

// The built module loaded as a host loads it, reached through its exports alone.
TEST(ModuleLoad, ExportsOnlyTheEntryPoints) {
    platform::os::DynamicLibrary module(VANTO_MODULE_PATH);
    ASSERT_TRUE(module.IsLoaded()) << module.Error();
    // Names of the component's own code must stay inside the module.
    for (const char* hidden : {"LogMessage", "HRerrEx", "PDMWriteLog", "SetLogSink",
                               "_ZN5vanto7SessionEv", "_Z7HRerrExiPKciS0_"}) {
        EXPECT_EQ(nullptr, module.Symbol(hidden)) << hidden;
    }
    // What they lead to is walked through the class factory above, and (locks, unloading) by the
    // Windows runtime in tests/platform/windows.
    EXPECT_NE(nullptr, module.Get<PFN_DllCanUnloadNow>("DllCanUnloadNow"));
    EXPECT_NE(nullptr, module.Get<PFN_DllGetClassObject>("DllGetClassObject"));
}

} // namespace
