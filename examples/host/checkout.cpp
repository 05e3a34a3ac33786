// A host's check-out round trip, as a CAD application makes it when its user opens documents to
// edit them: connect to the Corvane connector (starting it when it is not running), check the
// documents out, act on each document's outcome, check the edited ones back in, and release
// everything so that the module may be unloaded.
//   vanto_example_checkout [--mock] [--module PATH] FILE...
// FILE: full paths of documents. --mock uses the mock interfaces, which answer from
// Z:\PDM\VANTO\Dev\VANTOInput.xml instead of the connector. Exit status: 0 when the round trip
// ran (whatever each document's outcome), 1 when the component or the connector cannot be used,
// 2 for a usage error.
#include "Module.h"

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace {

// How long to wait for a connector that has just been started.
constexpr int StartTimeoutMs = 30000;

struct Options {
    bool mock = false;
    std::string module = VANTO_MODULE;
    std::vector<std::string> documents;
};

// Holds one reference to an interface and gives it back when it goes.
template <class Interface> class Held {
public:
    Held() = default;
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;
    ~Held() {
        if (pointer_ != nullptr) {
            pointer_->Release();
        }
    }
    Interface* operator->() const { return pointer_; }
    Interface& operator*() const { return *pointer_; }
    Interface** Put() { return &pointer_; }
    void** Out() { return reinterpret_cast<void**>(&pointer_); }

private:
    Interface* pointer_ = nullptr;
};

bool ParseOptions(int argc, char** argv, Options& options) {
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--mock") == 0) {
            options.mock = true;
        } else if (std::strcmp(argv[i], "--module") == 0 && i + 1 < argc) {
            options.module = argv[++i];
        } else if (argv[i][0] == '-') {
            return false;
        } else {
            options.documents.emplace_back(argv[i]);
        }
    }
    return !options.documents.empty();
}

// Connected and registered: the connector is asked first, started only when that fails. A
// connector that was just started reports itself offline until it is asked again.
bool Connect(IVANTOSession& session) {
    if (!session.IsConnected(false)) {
        if (!session.IsCorvaneInstalled()) {
            std::printf("the Corvane connector is not installed\n");
            return false;
        }
        std::printf("starting the Corvane connector\n");
        bool timedOut = false;
        if (!session.StartCorvaneAndWaitForReadyState(StartTimeoutMs, &timedOut, nullptr)) {
            std::printf(timedOut ? "the connector did not become ready in time\n"
                                 : "the connector could not be reached (see the developer log)\n");
            return false;
        }
        session.IsConnected(true);
    }
    if (session.IsCorvaneInOffLineMode()) {
        std::printf("the connector is offline: documents cannot be checked out\n");
        return false;
    }
    SessionInfo info;
    session.GetSessionInfo(&info);
    if (info.authenticatedUserName.IsEmpty()) {
        std::printf("connected\n");
    } else {
        std::printf("connected as %s\n", info.authenticatedUserName.Narrow().c_str());
    }
    return true;
}

// Checks the documents out and says what the user may do with each. A document that somebody
// already holds is not asked for again: GetCheckOutStatus tells who holds what.
FileLockStatusMap CheckOut(IVANTOFileServices& files, const std::vector<std::string>& documents) {
    FileLockStatusMap locks;
    for (const std::string& document : documents) {
        locks[GUserText(document.c_str())];
    }
    const HRESULT status = files.GetCheckOutStatus(&locks, false);
    if (FAILED(status)) {
        std::printf("lock status unknown (0x%08X): asking for every document\n",
                    static_cast<unsigned>(status));
    }
    const HRESULT hr = files.CheckOut(&locks);
    if (SUCCEEDED(hr)) {
        std::printf("CheckOut: S_OK\n");
    } else {
        // The outcome of each document is in the map all the same.
        std::printf("CheckOut: 0x%08X: the connector refused some documents; the developer log "
                    "holds its answer\n",
                    static_cast<unsigned>(hr));
    }
    for (const auto& [path, lock] : locks) {
        const std::string name = path.Narrow();
        if (lock.isCheckedOut && lock.isCheckedOutByCurrentUser) {
            std::printf("  %s: checked out, open for editing\n", name.c_str());
        } else if (lock.isCheckedOut) {
            std::printf("  %s: held by %s, open read-only\n", name.c_str(),
                        lock.checkedOutBy.Narrow().c_str());
        } else {
            std::printf("  %s: not checked out, open read-only\n", name.c_str());
        }
    }
    return locks;
}

// Checks in what this user holds. A document the connector kept gets its return code written to
// the log in words.
void CheckIn(IVANTOFileServices& files, const FileLockStatusMap& locks) {
    FileCheckInList edited;
    for (const auto& [path, lock] : locks) {
        if (lock.isCheckedOut && lock.isCheckedOutByCurrentUser) {
            edited.push_back({path, 0, GUserText()});
        }
    }
    if (edited.empty()) {
        std::printf("nothing to check in\n");
        return;
    }
    const HRESULT hr = files.CheckIn(&edited);
    if (FAILED(hr)) {
        std::printf("CheckIn: 0x%08X: the documents stay checked out; the developer log holds the "
                    "connector's answer\n",
                    static_cast<unsigned>(hr));
        return;
    }
    std::printf("CheckIn: S_OK\n");
    for (const FileCheckInEntry& entry : edited) {
        const std::string name = entry.fileName.Narrow();
        if (entry.errorCode == 0) {
            std::printf("  %s: checked in\n", name.c_str());
            continue;
        }
        auto code = static_cast<std::uint32_t>(entry.errorCode);
        files.LogErrors(&code);
        std::printf("  %s: not checked in, return code %d (its meaning is in the developer log)\n",
                    name.c_str(), static_cast<int>(entry.errorCode));
    }
}

// Everything between connecting and releasing; the interfaces go when it returns.
int RoundTrip(const VantoModule& module, const Options& options) {
    Held<IUnknown> manager;
    const HRESULT created = module.CreateManager(manager.Put());
    if (FAILED(created)) {
        std::printf("the manager could not be created: 0x%08X\n", static_cast<unsigned>(created));
        return 1;
    }
    Held<IVANTOSession> session;
    Held<IVANTOFileServices> files;
    const IID& sessionId = options.mock ? IID_IVANTOMockSession : IID_IVANTOSession;
    const IID& filesId = options.mock ? IID_IVANTOMockFileServices : IID_IVANTOFileServices;
    if (FAILED(manager->QueryInterface(sessionId, session.Out())) ||
        FAILED(manager->QueryInterface(filesId, files.Out()))) {
        std::printf("the manager lacks an interface\n");
        return 1;
    }
    if (!Connect(*session)) {
        return 1;
    }
    const FileLockStatusMap locks = CheckOut(*files, options.documents);
    // Here the user edits and saves the documents checked out.
    CheckIn(*files, locks);
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    Options options;
    if (!ParseOptions(argc, argv, options)) {
        std::fprintf(stderr, "usage: vanto_example_checkout [--mock] [--module PATH] FILE...\n");
        return 2;
    }
    VantoModule module(options.module);
    if (!module.Loaded()) {
        std::printf("cannot load the VANTO module %s\n", options.module.c_str());
        return 1;
    }
    const int result = RoundTrip(module, options);
    // Every interface is released (the last release deregisters from the connector): the module
    // may go if it agrees.
    const HRESULT unload = module.Unload();
    std::printf(unload == S_OK ? "module unloaded\n"
                               : "DllCanUnloadNow: S_FALSE, the module stays loaded\n");
    return result;
}
