// A minimal host of the VANTO component, built against the installed package alone. It loads the
// module, creates the manager through the module's class factory and checks out a document through
// the mock file services, which answer from Z:\PDM\VANTO\Dev\VANTOInput.xml.
//   vanto_example_host [MODULE]      MODULE: the installed module unless given
#include "Module.h"

#include <cstdio>
#include <string>

namespace {

// A document of the sample input (examples/VANTOInput.xml), checked out by the mock's user.
const wchar_t* const Document = L"Z:\\PDM\\Root\\bracket.par";

int Fail(const char* step, HRESULT hr) {
    std::fprintf(stderr, "%s failed: 0x%08X\n", step, static_cast<unsigned>(hr));
    return 1;
}

} // namespace

int main(int argc, char** argv) {
    const std::string path = argc > 1 ? argv[1] : VANTO_MODULE;
    // The module stays loaded until the process ends: a host may free it only after every object
    // is released and DllCanUnloadNow answers S_OK (checkout.cpp shows that).
    const VantoModule module(path);
    if (!module.Loaded()) {
        std::fprintf(stderr, "cannot load DllGetClassObject from %s\n", path.c_str());
        return 1;
    }
    std::printf("loaded %s\n", path.c_str());

    IUnknown* manager = nullptr;
    HRESULT hr = module.CreateManager(&manager);
    if (FAILED(hr)) {
        return Fail("creating the manager", hr);
    }
    IVANTOFileServices* files = nullptr;
    hr = manager->QueryInterface(IID_IVANTOMockFileServices, reinterpret_cast<void**>(&files));
    if (FAILED(hr)) {
        manager->Release();
        return Fail("QueryInterface(IID_IVANTOMockFileServices)", hr);
    }

    // Who holds the document, then the check-out itself.
    FileStatusInformation status;
    hr = files->GetStatusInformation(Document, &status);
    std::printf("status: 0x%08X, checked out by: %s%s\n", static_cast<unsigned>(hr),
                status.checkedOutBy.Narrow().c_str(), status.isCheckedOutByMe ? " (me)" : "");
    FileLockStatusMap items;
    FileLockStatus& item = items[Document];
    item.isCheckedOut = !status.checkedOutBy.IsEmpty();
    item.isCheckedOutByCurrentUser = status.isCheckedOutByMe;
    item.checkedOutBy = status.checkedOutBy;
    const HRESULT checkOut = files->CheckOut(&items);
    std::printf("CheckOut %s: 0x%08X\n", GUserText(Document).Narrow().c_str(),
                static_cast<unsigned>(checkOut));

    files->Release();
    manager->Release();
    return SUCCEEDED(hr) && SUCCEEDED(checkOut) ? 0 : 1;
}
