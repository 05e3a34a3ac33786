// A second host process for the emulator tests: signs in through the component's default backend
// (wherever the environment points it), checks one document out or in, and writes the outcome
// to a file, as one line.
//   vanto_second_host checkout|checkin PATH RESULT-FILE
#include "VANTO.h"

#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>

namespace {

template <class Interface> Interface* Get(IUnknown* manager, const IID& iid) {
    Interface* found = nullptr;
    manager->QueryInterface(iid, reinterpret_cast<void**>(&found));
    return found;
}

std::string Act(IVANTOSession* session, IVANTOFileServices* files, const std::string& action,
                const GUserText& path) {
    if (!session->IsConnected(true)) {
        return "not connected";
    }
    if (action == "checkout") {
        FileLockStatusMap map{{path, {}}};
        files->CheckOut(&map);
        const FileLockStatus& status = map[path];
        if (!status.isCheckedOut) {
            return "not checked out";
        }
        return status.isCheckedOutByCurrentUser ? "checked out by me"
                                                : "checked out by " + status.checkedOutBy.Narrow();
    }
    FileCheckInList list{{path, 0, {}}};
    files->CheckIn(&list);
    return "checked in, code " + std::to_string(list[0].errorCode);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 4 || (std::strcmp(argv[1], "checkout") != 0 && std::strcmp(argv[1], "checkin"))) {
        std::fprintf(stderr, "usage: vanto_second_host checkout|checkin PATH RESULT-FILE\n");
        return 2;
    }
    IClassFactory* factory = nullptr;
    IUnknown* manager = nullptr;
    if (DllGetClassObject(CLSID_VANTOManager, IID_IClassFactory,
                          reinterpret_cast<void**>(&factory)) != S_OK ||
        factory->CreateInstance(nullptr, IID_IUnknown, reinterpret_cast<void**>(&manager)) !=
            S_OK) {
        return 1;
    }
    factory->Release();
    auto* session = Get<IVANTOSession>(manager, IID_IVANTOSession);
    auto* files = Get<IVANTOFileServices>(manager, IID_IVANTOFileServices);
    const std::string outcome = Act(session, files, argv[1], GUserText(argv[2]));
    session->DeRegisterFromCorvane();
    std::ofstream(argv[3]) << outcome << "\n";
    files->Release();
    session->Release();
    manager->Release();
    return 0;
}
