// The component as Windows' own COM runtime uses it: registered for the current user, created with
// CoCreateInstance, and unloaded by CoFreeUnusedLibraries only when DllCanUnloadNow allows it.
#include "VANTO.h"
#include "support/ComTestSupport.h"
#include "support/WindowsModule.h"

#include <sddl.h>

#include <string>

#include <gtest/gtest.h>

namespace {

using testsupport::ModuleFile;
using testsupport::ModuleNextToProgram;

std::wstring ClassKey() {
    wchar_t clsid[39] = {};
    ::StringFromGUID2(CLSID_VANTOManager, clsid, 39);
    return std::wstring(L"Software\\Classes\\CLSID\\") + clsid;
}

bool ModuleLoaded() {
    return ::GetModuleHandleW(ModuleFile) != nullptr;
}

LSTATUS SetText(HKEY key, const wchar_t* name, const std::wstring& text) {
    return ::RegSetValueExW(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                            static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
}

// Wine's COM runtime reads classes from the machine's part of the registry only: unlike Windows it
// does not merge the current user's Software\Classes into HKEY_CLASSES_ROOT.
bool RunsUnderWine() {
    const HMODULE ntdll = ::GetModuleHandleW(L"ntdll.dll");
    return ntdll != nullptr && ::GetProcAddress(ntdll, "wine_get_version") != nullptr;
}

// The registry path of the current user's hive, for a link that points into it.
std::wstring UserHive() {
    HANDLE token = nullptr;
    if (!::OpenProcessToken(::GetCurrentProcess(), TOKEN_QUERY, &token)) {
        return std::wstring();
    }
    alignas(TOKEN_USER) BYTE buffer[SECURITY_MAX_SID_SIZE + sizeof(TOKEN_USER)] = {};
    DWORD size = 0;
    const BOOL known = ::GetTokenInformation(token, TokenUser, buffer, sizeof buffer, &size);
    ::CloseHandle(token);
    wchar_t* sid = nullptr;
    if (!known ||
        !::ConvertSidToStringSidW(reinterpret_cast<TOKEN_USER*>(buffer)->User.Sid, &sid)) {
        return std::wstring();
    }
    std::wstring hive = std::wstring(L"\\Registry\\User\\") + sid;
    ::LocalFree(sid);
    return hive;
}

// The class registered as an in-process server of the current user while this lives, as a
// per-user installation does it. Under Wine the machine's class key becomes a volatile link to the
// user's one, so that its runtime reads this registration and no other.
class UserRegistration {
public:
    explicit UserRegistration(const std::wstring& modulePath) {
        HKEY server = nullptr;
        status_ = ::RegCreateKeyExW(HKEY_CURRENT_USER, (ClassKey() + L"\\InprocServer32").c_str(),
                                    0, nullptr, 0, KEY_WRITE, nullptr, &server, nullptr);
        if (status_ != ERROR_SUCCESS) {
            return;
        }
        status_ = SetText(server, nullptr, modulePath);
        if (status_ == ERROR_SUCCESS) {
            // The host's thread is a single-threaded apartment.
            status_ = SetText(server, L"ThreadingModel", L"Apartment");
        }
        ::RegCloseKey(server);
        if (status_ == ERROR_SUCCESS && RunsUnderWine()) {
            status_ = LinkMachineClassToUser();
        }
    }
    ~UserRegistration() {
        ::RegDeleteTreeW(HKEY_CURRENT_USER, ClassKey().c_str());
        HKEY link = nullptr;
        if (::RegOpenKeyExW(HKEY_LOCAL_MACHINE, ClassKey().c_str(), REG_OPTION_OPEN_LINK,
                            DELETE | KEY_QUERY_VALUE, &link) == ERROR_SUCCESS) {
            ::RegDeleteKeyW(link, L"");
            ::RegCloseKey(link);
        }
    }
    UserRegistration(const UserRegistration&) = delete;
    UserRegistration& operator=(const UserRegistration&) = delete;

    LSTATUS Status() const { return status_; }

private:
    static LSTATUS LinkMachineClassToUser() {
        const std::wstring hive = UserHive();
        if (hive.empty()) {
            return ERROR_INVALID_SID;
        }
        const std::wstring target = hive + L"\\" + ClassKey();
        HKEY link = nullptr;
        LSTATUS status = ::RegCreateKeyExW(HKEY_LOCAL_MACHINE, ClassKey().c_str(), 0, nullptr,
                                           REG_OPTION_VOLATILE | REG_OPTION_CREATE_LINK,
                                           KEY_ALL_ACCESS, nullptr, &link, nullptr);
        if (status == ERROR_SUCCESS) {
            // A link's target is a registry path without a terminating null.
            status = ::RegSetValueExW(link, L"SymbolicLinkValue", 0, REG_LINK,
                                      reinterpret_cast<const BYTE*>(target.data()),
                                      static_cast<DWORD>(target.size() * sizeof(wchar_t)));
            ::RegCloseKey(link);
        }
        return status;
    }

    LSTATUS status_ = ERROR_SUCCESS;
};

// COM on this thread as a single-threaded apartment, as on the host's user-interface thread.
struct Apartment {
    const HRESULT hr = ::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    ~Apartment() {
        if (SUCCEEDED(hr)) {
            ::CoUninitialize();
        }
    }
};

IClassFactory* ClassObject() {
    IClassFactory* factory = nullptr;
    EXPECT_EQ(S_OK, ::CoGetClassObject(CLSID_VANTOManager, CLSCTX_INPROC_SERVER, nullptr,
                                       IID_IClassFactory, reinterpret_cast<void**>(&factory)));
    return factory;
}

// One test, because the module's unload answer depends on its history: it may be unloaded until a
// manager has existed and gone, and never after.
TEST(ComRuntime, LoadsCreatesAndUnloadsTheRegisteredComponent) {
    ASSERT_FALSE(ModuleLoaded()) << "the module must start unloaded in this process";
    const Apartment apartment;
    ASSERT_EQ(S_OK, apartment.hr);
    {
        const UserRegistration registration(ModuleNextToProgram());
        ASSERT_EQ(ERROR_SUCCESS, registration.Status());

        // A lock taken through the class object keeps the module loaded; once it is given back
        // the runtime learns from DllCanUnloadNow that the module may go, and unloads it.
        IClassFactory* factory = ClassObject();
        ASSERT_NE(nullptr, factory);
        EXPECT_TRUE(ModuleLoaded());
        EXPECT_EQ(S_OK, factory->LockServer(TRUE));
        EXPECT_EQ(0u, factory->Release());
        ::CoFreeUnusedLibraries();
        EXPECT_TRUE(ModuleLoaded());

        factory = ClassObject();
        ASSERT_NE(nullptr, factory);
        EXPECT_EQ(S_OK, factory->LockServer(FALSE));
        EXPECT_EQ(0u, factory->Release());
        ::CoFreeUnusedLibraries();
        EXPECT_FALSE(ModuleLoaded());

        IUnknown* manager = nullptr;
        ASSERT_EQ(S_OK, ::CoCreateInstance(CLSID_VANTOManager, nullptr, CLSCTX_INPROC_SERVER,
                                           IID_IUnknown, reinterpret_cast<void**>(&manager)));
        EXPECT_TRUE(ModuleLoaded());
        testsupport::CallEachInterface(manager);
        EXPECT_EQ(0u, manager->Release());

        // A manager has gone: from now on the module answers that it is busy, and stays.
        ::CoFreeUnusedLibraries();
        EXPECT_TRUE(ModuleLoaded());
    }

    // Without its registration the runtime no longer knows the class.
    IUnknown* unknown = nullptr;
    EXPECT_EQ(REGDB_E_CLASSNOTREG,
              ::CoCreateInstance(CLSID_VANTOManager, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown,
                                 reinterpret_cast<void**>(&unknown)));
    EXPECT_EQ(nullptr, unknown);
}

} // namespace
