// The component loaded exactly as a host loads it: the module, DllGetClassObject, the class
// factory, the manager, and the session and file-services interfaces (real or mock) through
// QueryInterface. Everything is released, and the module unloaded, in reverse order.
#pragma once

#include "VANTO.h"
#include "os/DynamicLibrary.h"

#include "Report.h"

#include <string>

namespace vanto::host {

class Component {
public:
    Component(const std::string& modulePath, bool mock);
    ~Component();
    Component(const Component&) = delete;
    Component& operator=(const Component&) = delete;

    // Whether both interfaces were obtained; otherwise Error() says which step failed.
    bool Ready() const noexcept { return session_ != nullptr && files_ != nullptr; }
    const std::string& Error() const noexcept { return error_; }

    IVANTOSession& Session() { return *session_; }
    IVANTOFileServices& Files() { return *files_; }

    // Each step of the loading and each of the manager's four interfaces, found or not.
    Report LoadReport() const;

private:
    platform::os::DynamicLibrary module_;
    std::string path_;
    PFN_DllGetClassObject getClassObject_ = nullptr;
    PFN_DllCanUnloadNow canUnloadNow_ = nullptr;
    HRESULT factoryResult_ = E_FAIL;
    HRESULT managerResult_ = E_FAIL;
    IUnknown* manager_ = nullptr;
    IVANTOSession* session_ = nullptr;
    IVANTOFileServices* files_ = nullptr;
    std::string error_;
};

// Why the mock answers from an empty store (its input file is missing, malformed or nested too
// deep), or empty text when the file is fine.
std::string MockInputProblem();

// The module beside the program (the build tree), else where the install puts it.
std::string DefaultModulePath(const std::string& program);

} // namespace vanto::host
