#include "Component.h"

#include "mock/MockInput.h"
#include "os/Paths.h"
#include "os/TextConversion.h"

#include <boost/property_tree/ptree.hpp>
#include <boost/property_tree/xml_parser.hpp>

#include <filesystem>
#include <sstream>

namespace vanto::host {

namespace {

template <class Interface> Interface* Query(IUnknown* manager, const IID& iid, HRESULT* hr) {
    Interface* found = nullptr;
    *hr = manager->QueryInterface(iid, reinterpret_cast<void**>(&found));
    return SUCCEEDED(*hr) ? found : nullptr;
}

template <class Interface> void Release(Interface*& object) {
    if (object != nullptr) {
        object->Release();
        object = nullptr;
    }
}

} // namespace

std::string DefaultModulePath(const std::string& program) {
    const std::size_t slash = program.find_last_of("/\\");
    const std::string folder = slash == std::string::npos ? "." : program.substr(0, slash);
    const std::string beside = folder + "/" + VANTO_MODULE_FILE;
    std::error_code error;
    return std::filesystem::exists(beside, error) ? beside : folder + "/" + VANTO_INSTALLED_MODULE;
}

std::string MockInputProblem() {
    const std::string file =
        "mock input " + platform::os::WideToUtf8(platform::os::NativePath(mock::InputFilePath));
    std::string xml;
    if (!platform::os::ReadWholeFile(mock::InputFilePath, xml)) {
        return file + " cannot be read: the mock answers as if it were empty";
    }
    if (mock::DeepestNesting(xml) > mock::MaxInputNesting) {
        return file + " nests elements more than " + std::to_string(mock::MaxInputNesting) +
               " deep: the mock answers as if it were empty";
    }
    try {
        std::istringstream stream{xml};
        boost::property_tree::ptree document;
        boost::property_tree::read_xml(stream, document,
                                       boost::property_tree::xml_parser::no_comments);
    } catch (const boost::property_tree::xml_parser_error& error) {
        return file + " is malformed (line " + std::to_string(error.line()) + ": " +
               error.message() + "): the mock answers as if it were empty";
    }
    return std::string();
}

Component::Component(const std::string& modulePath, bool mock)
    : module_(modulePath), path_(modulePath) {
    if (!module_.IsLoaded()) {
        error_ = "cannot load " + modulePath + ": " + module_.Error();
        return;
    }
    getClassObject_ = module_.Get<PFN_DllGetClassObject>("DllGetClassObject");
    canUnloadNow_ = module_.Get<PFN_DllCanUnloadNow>("DllCanUnloadNow");
    if (getClassObject_ == nullptr || canUnloadNow_ == nullptr) {
        error_ = modulePath + " does not export DllGetClassObject and DllCanUnloadNow";
        return;
    }
    IClassFactory* factory = nullptr;
    factoryResult_ =
        getClassObject_(CLSID_VANTOManager, IID_IClassFactory, reinterpret_cast<void**>(&factory));
    if (FAILED(factoryResult_)) {
        error_ = "DllGetClassObject: " + HResultText(factoryResult_);
        return;
    }
    managerResult_ =
        factory->CreateInstance(nullptr, IID_IUnknown, reinterpret_cast<void**>(&manager_));
    factory->Release();
    if (FAILED(managerResult_)) {
        error_ = "CreateInstance: " + HResultText(managerResult_);
        return;
    }
    HRESULT hr = S_OK;
    session_ =
        Query<IVANTOSession>(manager_, mock ? IID_IVANTOMockSession : IID_IVANTOSession, &hr);
    if (session_ != nullptr) {
        files_ = Query<IVANTOFileServices>(
            manager_, mock ? IID_IVANTOMockFileServices : IID_IVANTOFileServices, &hr);
    }
    if (!Ready()) {
        error_ = std::string("QueryInterface (") + (mock ? "mock " : "") +
                 "interfaces): " + HResultText(hr);
    }
}

Component::~Component() {
    Release(files_);
    Release(session_);
    Release(manager_);
}

Report Component::LoadReport() const {
    Report report("load");
    report.Field("module", "module", path_.c_str());
    report.Columns({{"step", "step"}, {"result", "result"}});
    auto step = [&report](const char* name, const std::string& result) {
        report.Row({{"step", name}, {"result", result}});
    };
    step("DllGetClassObject", getClassObject_ != nullptr ? "found" : "missing");
    step("DllCanUnloadNow", canUnloadNow_ != nullptr ? "found" : "missing");
    if (getClassObject_ != nullptr) {
        step("class factory", HResultText(factoryResult_));
    }
    bool complete = manager_ != nullptr && canUnloadNow_ != nullptr;
    if (manager_ != nullptr) {
        step("manager", HResultText(managerResult_));
        const std::pair<const char*, const IID*> interfaces[] = {
            {"session", &IID_IVANTOSession},
            {"file services", &IID_IVANTOFileServices},
            {"mock session", &IID_IVANTOMockSession},
            {"mock file services", &IID_IVANTOMockFileServices}};
        for (const auto& [name, iid] : interfaces) {
            HRESULT hr = S_OK;
            IUnknown* found = Query<IUnknown>(manager_, *iid, &hr);
            step(name, HResultText(hr));
            complete = complete && found != nullptr;
            Release(found);
        }
    }
    report.Result(complete ? S_OK : E_FAIL);
    return report;
}

} // namespace vanto::host
