// A small host: loads the component as the CAD host does, reports what it got and, asked for the
// demo, runs the host's PDM workflows on the mock interfaces.
//   vanto_host [load] [--module PATH]
//   vanto_host demo [--module PATH] [DOCUMENT...]
//   vanto_host --version
#include "VANTO.h"
#include "host/GUserFileName.h"
#include "os/DynamicLibrary.h"
#include "os/Os.h"
#include "os/Paths.h"

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

namespace {

// Where the mock reads its input, and the documents the demo works on when none are given: those
// of examples/VANTOInput.xml, one in other letter case, one the file does not name and one
// outside the root folder.
const wchar_t* const MockInputFile = L"Z:\\PDM\\VANTO\\Dev\\VANTOInput.xml";
const wchar_t* const DemoDocuments[] = {L"Z:\\PDM\\Root\\bracket.par",
                                        L"Z:\\PDM\\Root\\housing.asm", L"z:\\pdm\\root\\COVER.PSM",
                                        L"Z:\\PDM\\Root\\new-part.par", L"C:\\Temp\\outside.par"};

struct Options {
    bool demo = false;
    std::string module;
    std::vector<GUserText> documents;
};

// Beside the program (the build tree), else where the install puts the module.
std::string DefaultModulePath(const char* argv0) {
    std::string self = argv0 != nullptr ? argv0 : "";
    const std::size_t slash = self.find_last_of("/\\");
    const std::string folder = slash == std::string::npos ? "." : self.substr(0, slash);
    const std::string beside = folder + "/" + VANTO_MODULE_FILE;
    std::error_code error;
    return std::filesystem::exists(beside, error) ? beside : folder + "/" + VANTO_INSTALLED_MODULE;
}

bool ParseOptions(int argc, char** argv, Options& options) {
    int next = 1;
    if (next < argc &&
        (std::strcmp(argv[next], "demo") == 0 || std::strcmp(argv[next], "load") == 0)) {
        options.demo = std::strcmp(argv[next], "demo") == 0;
        ++next;
    }
    for (; next < argc; ++next) {
        const std::string arg = argv[next];
        if (arg == "--module" && next + 1 < argc) {
            options.module = argv[++next];
        } else if (arg.rfind("--", 0) == 0) {
            return false;
        } else if (options.demo) {
            options.documents.emplace_back(arg);
        } else if (options.module.empty()) {
            options.module = arg; // the module path alone, as earlier versions took it
        } else {
            return false;
        }
    }
    if (options.module.empty()) {
        options.module = DefaultModulePath(argc > 0 ? argv[0] : nullptr);
    }
    if (options.documents.empty()) {
        options.documents.assign(std::begin(DemoDocuments), std::end(DemoDocuments));
    }
    return true;
}

std::string Text(const GUserText& text) {
    return text.IsEmpty() ? std::string("-") : text.Narrow();
}

const char* YesNo(bool value) {
    return value ? "yes" : "no";
}

std::string Result(HRESULT hr) {
    char code[16];
    std::snprintf(code, sizeof code, "0x%08X", static_cast<unsigned>(hr));
    switch (static_cast<std::uint32_t>(hr)) {
    case 0x00000000u:
        return "S_OK";
    case 0x00000001u:
        return "S_FALSE";
    case 0x80004005u:
        return std::string(code) + " (E_FAIL)";
    case 0x8007000Eu:
        return std::string(code) + " (E_OUTOFMEMORY)";
    case 0x80070490u:
        return std::string(code) + " (element not found)";
    case 0x8004B001u:
        return std::string(code) + " (checked out to other user)";
    default:
        return code;
    }
}

// Where a path of the host lands on this system, when that is somewhere else.
std::string Located(const GUserText& path) {
    const std::wstring native = platform::os::NativePath(path.wstr());
    if (native == path.wstr()) {
        return std::string();
    }
    return native.empty() ? " (no such drive here)" : " (here: " + GUserText(native).Narrow() + ")";
}

void Section(const char* title) {
    std::printf("\n== %s\n", title);
}

// ---- load report ------------------------------------------------------------------------------

int ReportInterfaces(IUnknown* manager) {
    struct Wanted {
        const char* name;
        const IID* iid;
    };
    const Wanted interfaces[] = {{"session", &IID_IVANTOSession},
                                 {"file services", &IID_IVANTOFileServices},
                                 {"mock session", &IID_IVANTOMockSession},
                                 {"mock file services", &IID_IVANTOMockFileServices}};
    int missing = 0;
    for (const Wanted& wanted : interfaces) {
        IUnknown* found = nullptr;
        const HRESULT hr = manager->QueryInterface(*wanted.iid, reinterpret_cast<void**>(&found));
        std::printf("  %-19s %s\n", wanted.name, SUCCEEDED(hr) ? "ok" : Result(hr).c_str());
        if (SUCCEEDED(hr)) {
            found->Release();
        } else {
            ++missing;
        }
    }
    IVANTOSession* session = nullptr;
    if (SUCCEEDED(manager->QueryInterface(IID_IVANTOSession, reinterpret_cast<void**>(&session)))) {
        std::printf("connector installed: %s\n", YesNo(session->IsCorvaneInstalled()));
        session->Release();
    }
    return missing;
}

// ---- demo workflows on the mock ---------------------------------------------------------------

void ShowSession(IVANTOSession& session) {
    Section("mock session");
    std::printf("connected: %s, installed: %s, running: %s, offline: %s\n",
                YesNo(session.IsConnected(false)), YesNo(session.IsCorvaneInstalled()),
                YesNo(session.IsCorvaneRunning()), YesNo(session.IsCorvaneInOffLineMode()));
    bool timedOut = true;
    const bool ready = session.StartCorvaneAndWaitForReadyState(30000, &timedOut, nullptr);
    std::printf("start and wait: %s, timed out: %s\n", ready ? "ready" : "not ready",
                YesNo(timedOut));
}

void ShowRootFolders(IVANTOSession& session) {
    Section("root folders");
    RootFolderSet roots;
    const HRESULT hr = session.GetRootFolders(&roots);
    std::printf("GetRootFolders: %s\n", Result(hr).c_str());
    for (const GUserText& root : roots) {
        std::printf("  %s%s, folder exists: %s\n", Text(root).c_str(), Located(root).c_str(),
                    YesNo(platform::os::DirectoryExists(root.wstr())));
    }
}

void ShowUser(IVANTOSession& session) {
    Section("user");
    LoggedInUserInfo user;
    const HRESULT hr = session.GetCurrentLoggedInUserInfo(&user);
    std::printf("GetCurrentLoggedInUserInfo: %s\n  login name: %s, display name: %s\n",
                Result(hr).c_str(), Text(user.loginName).c_str(), Text(user.displayName).c_str());
}

void ShowValidity(IVANTOFileServices& files, const PathList& documents) {
    Section("validity of paths (inside the mock root folder)");
    PathMonitoredMap monitored;
    const HRESULT hr = files.IsValidCorvaneFile(documents, &monitored);
    std::printf("IsValidCorvaneFile: %s\n", Result(hr).c_str());
    for (const GUserText& document : documents) {
        const auto found = monitored.find(document);
        const bool valid = found != monitored.end() && found->second;
        std::printf("  %-32s %s\n", Text(document).c_str(), valid ? "valid" : "not valid");
    }
}

// The host learns who holds each document and builds its lock map from that.
FileLockStatusMap ShowStatus(IVANTOFileServices& files, const PathList& documents) {
    Section("status");
    FileLockStatusMap locks;
    for (const GUserText& document : documents) {
        FileStatusInformation status;
        const HRESULT hr = files.GetStatusInformation(document, &status);
        std::printf("  %-32s %s, checked out by: %s%s\n", Text(document).c_str(),
                    Result(hr).c_str(), Text(status.checkedOutBy).c_str(),
                    status.isCheckedOutByMe ? " (me)" : "");
        FileLockStatus& lock = locks[document];
        lock.isCheckedOut = !status.checkedOutBy.IsEmpty();
        lock.isCheckedOutByCurrentUser = status.isCheckedOutByMe;
        lock.checkedOutBy = status.checkedOutBy;
    }
    return locks;
}

void PrintLocks(const char* when, const FileLockStatusMap& locks) {
    std::printf("  %s:\n", when);
    for (const auto& [name, lock] : locks) {
        std::printf("    %-30s checked out: %-3s by me: %-3s by: %s\n", Text(name).c_str(),
                    YesNo(lock.isCheckedOut), YesNo(lock.isCheckedOutByCurrentUser),
                    Text(lock.checkedOutBy).c_str());
    }
}

bool SameLocks(const FileLockStatusMap& a, const FileLockStatusMap& b) {
    if (a.size() != b.size()) {
        return false;
    }
    for (auto i = a.begin(), j = b.begin(); i != a.end(); ++i, ++j) {
        if (i->first != j->first || i->second.isCheckedOut != j->second.isCheckedOut ||
            i->second.isCheckedOutByCurrentUser != j->second.isCheckedOutByCurrentUser ||
            i->second.isNewVersionAvailable != j->second.isNewVersionAvailable ||
            i->second.checkedOutBy != j->second.checkedOutBy) {
            return false;
        }
    }
    return true;
}

void ShowCheckOut(IVANTOFileServices& files, const FileLockStatusMap& fromStatus) {
    Section("check-out (the mock answers, and leaves the items as they came)");
    FileLockStatusMap locks = fromStatus;
    PrintLocks("before", locks);
    const HRESULT hr = files.CheckOut(&locks);
    std::printf("  CheckOut: %s\n", Result(hr).c_str());
    PrintLocks("after", locks);
    std::printf("  items %s\n", SameLocks(fromStatus, locks) ? "unchanged" : "changed");
}

void PrintCheckIns(const char* when, const FileCheckInList& items) {
    std::printf("  %s:\n", when);
    for (const FileCheckInEntry& item : items) {
        std::printf("    %-30s error code: 0x%08X  locked by: %s\n", Text(item.fileName).c_str(),
                    static_cast<unsigned>(item.errorCode), Text(item.lockedBy).c_str());
    }
}

void ShowCheckIn(IVANTOFileServices& files, const PathList& documents) {
    Section("check-in (the mock answers, and leaves the items as they came)");
    FileCheckInList items;
    for (const GUserText& document : documents) {
        items.push_back(FileCheckInEntry{document, 0, GUserText()});
    }
    const FileCheckInList before = items;
    PrintCheckIns("before", items);
    const HRESULT hr = files.CheckIn(&items);
    std::printf("  CheckIn: %s\n", Result(hr).c_str());
    PrintCheckIns("after", items);
    bool same = before.size() == items.size();
    for (std::size_t i = 0; same && i < items.size(); ++i) {
        same = before[i].fileName == items[i].fileName &&
               before[i].errorCode == items[i].errorCode && before[i].lockedBy == items[i].lockedBy;
    }
    std::printf("  items %s\n", same ? "unchanged" : "changed");
}

int RunDemo(IUnknown* manager, const PathList& documents) {
    IVANTOSession* session = nullptr;
    IVANTOFileServices* files = nullptr;
    if (FAILED(
            manager->QueryInterface(IID_IVANTOMockSession, reinterpret_cast<void**>(&session))) ||
        FAILED(manager->QueryInterface(IID_IVANTOMockFileServices,
                                       reinterpret_cast<void**>(&files)))) {
        std::fprintf(stderr, "the mock interfaces are missing\n");
        if (session != nullptr) {
            session->Release();
        }
        return 1;
    }
    const GUserText input(MockInputFile);
    std::printf("\nmock input file: %s%s, found: %s\n", Text(input).c_str(), Located(input).c_str(),
                YesNo(GUserFileName(input).Exists()));

    ShowSession(*session);
    ShowRootFolders(*session);
    ShowUser(*session);
    ShowValidity(*files, documents);
    const FileLockStatusMap locks = ShowStatus(*files, documents);
    ShowCheckOut(*files, locks);
    ShowCheckIn(*files, documents);

    files->Release();
    session->Release();
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    if (argc == 2 && std::strcmp(argv[1], "--version") == 0) {
        std::printf("vanto_host %s\n", VANTO_VERSION);
        return 0;
    }
    Options options;
    if (!ParseOptions(argc, argv, options)) {
        std::fprintf(stderr, "usage: vanto_host [load] [--module PATH]\n"
                             "       vanto_host demo [--module PATH] [DOCUMENT...]\n"
                             "       vanto_host --version\n");
        return 2;
    }
    platform::os::DynamicLibrary module(options.module);
    if (!module.IsLoaded()) {
        std::fprintf(stderr, "cannot load %s: %s\n", options.module.c_str(),
                     module.Error().c_str());
        return 1;
    }
    std::printf("loaded %s\n", options.module.c_str());

    const auto getClassObject = module.Get<PFN_DllGetClassObject>("DllGetClassObject");
    const auto canUnloadNow = module.Get<PFN_DllCanUnloadNow>("DllCanUnloadNow");
    std::printf("DllGetClassObject: %s\nDllCanUnloadNow: %s\n",
                getClassObject ? "found" : "missing", canUnloadNow ? "found" : "missing");
    if (getClassObject == nullptr || canUnloadNow == nullptr) {
        return 1;
    }

    IClassFactory* factory = nullptr;
    HRESULT hr =
        getClassObject(CLSID_VANTOManager, IID_IClassFactory, reinterpret_cast<void**>(&factory));
    std::printf("class factory: %s\n", Result(hr).c_str());
    if (FAILED(hr)) {
        return 1;
    }
    IUnknown* manager = nullptr;
    hr = factory->CreateInstance(nullptr, IID_IUnknown, reinterpret_cast<void**>(&manager));
    factory->Release();
    std::printf("manager: %s\n", Result(hr).c_str());
    if (FAILED(hr)) {
        return 1;
    }

    int failures = ReportInterfaces(manager);
    if (options.demo && failures == 0) {
        failures += RunDemo(manager, options.documents);
    }

    const ULONG left = manager->Release();
    std::printf("\nmanager released (%u references left)\n", static_cast<unsigned>(left));
    std::printf("DllCanUnloadNow: %s\n", Result(canUnloadNow()).c_str());
    return failures == 0 ? 0 : 1;
}
