// Every file-service method with a large answer, called through the real interface as a host
// calls it: the request built and written, the answer read and mapped onto the caller's
// containers, the log lines formatted (the default sink keeps none of them, as in a host without
// logging). The connector behind the proxy hands back answer texts made before timing starts.
//
// Each call is set against boost::json::parse of its answer text alone ("overhead"), and its time
// with the large input against its time with the small one ("scaling"). A method that sends one
// command per path is set against the sum of the parse times of all its answers.
#include "FileServicesBench.h"

#include "VANTO.h"
#include "connector/ConnectorBackend.h"
#include "session/SessionState.h"

#include <benchmark/benchmark.h>
#include <boost/json.hpp>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace bench {

namespace {

// ---- Answer texts, each of the shape the connector gives ---------------------------------------

std::string Number(int n) {
    char digits[16];
    std::snprintf(digits, sizeof digits, "%06d", n);
    return digits;
}

// Local paths as a Windows host names them, in UTF-8.
const std::string ProjectFolder = R"(C:\Users\ann\Corvane\Bracket Project\)";

std::string PartPath(int n) {
    return ProjectFolder + "parts\\part-" + Number(n) + ".par";
}
std::string DrawingPath(int n) {
    return ProjectFolder + "drawings\\part-" + Number(n) + ".dft";
}
std::string AssemblyPath(int n) {
    return ProjectFolder + "assemblies\\unit-" + Number(n) + ".asm";
}

// A JSON string of `text`; the texts here need no escapes but for backslashes and quotes.
std::string Quoted(std::string_view text) {
    std::string out = "\"";
    for (const char c : text) {
        if (c == '\\' || c == '"') {
            out += '\\';
        }
        out += c;
    }
    out += '"';
    return out;
}

GUserText Wide(const std::string& utf8) {
    return GUserText(std::string_view(utf8));
}

constexpr const char* UserName = "Ann Example";

// "LOCKDESIGNREVISIONS" granted for every file (`locked`), or "UNLOCKDESIGNREVISIONS" done.
std::string LockAnswer(int files, bool locked) {
    std::string out = R"({"Errors":[],"Status":[)";
    for (int n = 0; n < files; ++n) {
        out += n > 0 ? "," : "";
        out += R"({"DesignIdentifier":)" + Quoted(PartPath(n));
        if (locked) {
            out += std::string(R"(,"LockedBy":")") + UserName +
                   R"(","LockedAt":"2024-06-02T08:00:00Z","LockExpires":"",)"
                   R"("LockedByUrn":"urn:corvane:user:17","ErrorCode":0})";
        } else {
            out +=
                R"(,"LockedBy":"","LockedAt":"","LockExpires":"","LockedByUrn":"","ErrorCode":0})";
        }
    }
    out += "]}";
    return out;
}

void AppendProperty(std::string& out, const char* name, int type, const std::string& value,
                    bool first = false) {
    out += first ? R"({"Name":")" : R"(,{"Name":")";
    out += name;
    out += R"(","PropertyType":)" + std::to_string(type) + R"(,"PropertyValues":[)" +
           Quoted(value) + "]}";
}

// "GETPROPERTIES": three object types per file (component, document version, lock), each with
// five properties; every file is locked by the user.
std::string PropertiesAnswer(int files) {
    std::string out = R"({"Errors":[],"FilePropertiesArray":[)";
    for (int n = 0; n < files; ++n) {
        const std::string id = Number(n);
        out += n > 0 ? "," : "";
        out += R"({"FilePath":)" + Quoted(PartPath(n)) + R"(,"ObjectTypeToPropertiesArray":[)";
        out += R"({"ObjectType":0,"Properties":[)";
        AppendProperty(out, "PartNumber", 0, "P-" + id, true);
        AppendProperty(out, "Description", 0, "Bracket part " + id);
        AppendProperty(out, "Revision", 0, "A");
        AppendProperty(out, "Material", 0, "Steel");
        AppendProperty(out, "Owner", 0, UserName);
        out += R"(]},{"ObjectType":2,"Properties":[)";
        AppendProperty(out, "consistencyStamp", 0, "stamp-" + id + "-7", true);
        AppendProperty(out, "DocumentId", 0, "doc-" + id);
        AppendProperty(out, "VersionId", 0, "7");
        AppendProperty(out, "FileSize", 1, std::to_string(100000 + n));
        AppendProperty(out, "LastModifiedDate", 3, "2024-06-01T11:22:33Z");
        out += R"(]},{"ObjectType":1,"Properties":[)";
        AppendProperty(out, "LockedBy", 0, UserName, true);
        AppendProperty(out, "LockedAt", 3, "2024-06-02T08:00:00Z");
        AppendProperty(out, "LockExpires", 3, "");
        AppendProperty(out, "LockedByUrn", 0, "urn:corvane:user:17");
        AppendProperty(out, "IsLocked", 2, "true");
        out += "]}]}";
    }
    out += "]}";
    return out;
}

// The file-information object of a document.
std::string FileInformation(const std::string& path, const std::string& id) {
    return R"({"FilePaths":[)" + Quoted(path) + R"(],"ComponentId":"cmp-)" + id +
           R"(","ComponentRevisionId":"cmprev-)" + id + R"(","DocumentId":"doc-)" + id +
           R"(","ComponentUrn":"urn:corvane:component:)" + id +
           R"(","ComponentRevisionUrn":"urn:corvane:component-revision:)" + id +
           R"(","DocumentUrn":"urn:corvane:document:)" + id + R"("})";
}

constexpr int FilesPerProject = 100;

// "GETFILECONTEXTINFO": the files grouped by project, a hundred to a project.
std::string ContextsAnswer(int files) {
    std::string out = R"({"Errors":[],"FileContextInformation":[)";
    for (int project = 0; project * FilesPerProject < files; ++project) {
        out += project > 0 ? "," : "";
        out += R"({"FileInformation":[)";
        for (int n = project * FilesPerProject; n < files && n < (project + 1) * FilesPerProject;
             ++n) {
            out += n > project * FilesPerProject ? "," : "";
            out += FileInformation(PartPath(n), Number(n));
        }
        const std::string p = std::to_string(project);
        out += R"(],"ContextInformation":{"CollaborationSpaceId":"cs-1","ContainerType":"project",)"
               R"("ContainerId":"project-)" +
               p + R"(","ContainerURN":"urn:corvane:project:)" + p + R"("}})";
    }
    out += "]}";
    return out;
}

constexpr int ParentNumber = 999999;

// "GETCHILDREN" of one assembly with `children` parts, each used once.
std::string ChildrenAnswer(int children) {
    std::string out = R"({"Errors":[],"ParentChildRelationInfo":[{"ParentDocumentInfo":)" +
                      FileInformation(AssemblyPath(ParentNumber), Number(ParentNumber)) +
                      R"(,"ChildRelationInfos":[)";
    for (int n = 0; n < children; ++n) {
        const std::string id = Number(n);
        out += n > 0 ? "," : "";
        out += R"({"ChildDocumentInfo":)" + FileInformation(PartPath(n), id) +
               R"(,"RelationId":"rel-)" + id + R"(","RelationUrn":"urn:corvane:relation:)" + id +
               R"(","RelationType":"DesignChildRelation","RelationVersionId":"3",)"
               R"("RelationProperties":[)";
        AppendProperty(out, "Quantity", 1, "1", true);
        out += "]}";
    }
    out += "]}]}";
    return out;
}

constexpr int PartsPerAssembly = 10;

std::string Relation(const std::string& related, const std::string& id, const char* type) {
    std::string out =
        R"({"RelatedDocument":)" + FileInformation(related, id) + R"(,"RelationId":"rel-)" + id +
        R"(","RelationUrn":"urn:corvane:relation:)" + type + ":" + id + R"(","RelationType":")" +
        type + R"(","RelationConsistencyStamp":"stamp-)" + id + R"(","RelationProperties":[]})";
    return out;
}

// "QUERYPRIMARYOBJECTS" of one part: its own drawing, and the assembly it is used in (ten parts
// share one assembly).
std::string WhereUsedAnswer(int n) {
    const std::string id = Number(n);
    return R"({"Errors":[],"QueryRelationInfos":[{"InputDocument":)" +
           FileInformation(PartPath(n), id) + R"(,"Relations":[)" +
           Relation(DrawingPath(n), id, "DrawingOf") + "," +
           Relation(AssemblyPath(n / PartsPerAssembly), Number(n / PartsPerAssembly),
                    "DesignChildRelation") +
           "]}]}";
}

// ---- Answers made once per kind and size --------------------------------------------------------

enum class Answer { Lock, Unlock, Properties, Contexts, Children, WhereUsed };

struct Prepared {
    Answer kind;
    int size;
    std::vector<Core::TevString> answers; // in the order the method sends its commands
    PathList paths;                       // the caller's files, in the order of the answers
};

// The answers of one kind and size. Only the last ones made are kept: the benchmarks that share
// them run one after the other, and the largest are over a hundred megabytes.
const Prepared& Prepare(Answer kind, int size) {
    static std::unique_ptr<Prepared> current;
    if (current && current->kind == kind && current->size == size) {
        return *current;
    }
    current.reset();
    auto made = std::make_unique<Prepared>();
    made->kind = kind;
    made->size = size;
    switch (kind) {
    case Answer::Lock:
        made->answers.emplace_back(LockAnswer(size, true));
        break;
    case Answer::Unlock:
        made->answers.emplace_back(LockAnswer(size, false));
        break;
    case Answer::Properties:
        made->answers.emplace_back(PropertiesAnswer(size));
        break;
    case Answer::Contexts:
        made->answers.emplace_back(ContextsAnswer(size));
        break;
    case Answer::Children:
        made->answers.emplace_back(ChildrenAnswer(size));
        break;
    case Answer::WhereUsed:
        made->answers.reserve(size);
        for (int n = 0; n < size; ++n) {
            made->answers.emplace_back(WhereUsedAnswer(n));
        }
        break;
    }
    made->paths.reserve(size);
    for (int n = 0; n < size; ++n) {
        made->paths.push_back(Wide(PartPath(n)));
    }
    current = std::move(made);
    return *current;
}

// ---- The host side: the connector behind the proxy and the interface ---------------------------

// Answers "GETSESSIONINFO" with a small fixed text and every other command with the next of the
// prepared answers, in turn. Looks at nothing of a request but its first bytes.
class ScriptedConnector final : public Corvane::ConnectorBackend {
public:
    Core::TevString Execute(const Core::TevString& input) override {
        static constexpr std::string_view SessionInfoRequest = R"({"Command":"GETSESSIONINFO")";
        if (std::string_view(input).substr(0, SessionInfoRequest.size()) == SessionInfoRequest) {
            return sessionInfo_;
        }
        const Core::TevString& answer = (*answers_)[next_];
        next_ = (next_ + 1) % answers_->size();
        ++sent;
        return answer;
    }
    Core::TevString RegisterClient(const Core::TevString&) override {
        return R"({"SessionId":"bench-session"})";
    }
    void DeRegisterClient(const Core::TevString&) override {}
    bool IsInstalled() override { return true; }
    bool IsRunning() override { return true; }
    bool IsReady() override { return true; }
    void LaunchApplication(const Core::TevString&) override {}

    // Answers from the first of `answers` on.
    void Use(const Prepared& prepared) {
        answers_ = &prepared.answers;
        next_ = 0;
        sent = 0;
    }

    std::size_t sent = 0; // commands answered from the prepared answers

private:
    const Core::TevString sessionInfo_ = std::string(R"({"Errors":[],"AuthenticatedUserName":")") +
                                         UserName +
                                         R"(","CorvaneLogPath":"C:\\Logs\\Corvane",)"
                                         R"("CloudGatewayLogPath":"C:\\Logs\\Gateway",)"
                                         R"("UserEmail":"ann@example.com","IsLoggedIn":true})";
    const std::vector<Core::TevString>* answers_ = nullptr;
    std::size_t next_ = 0;
};

// A manager made as a host makes one, with a session id granted and the scripted connector
// installed. Kept for the life of the process.
struct Host {
    Host() {
        Corvane::SetConnectorBackend(&connector);
        vanto::Session().sessionId = "bench-session-0123456789";
        IClassFactory* factory = nullptr;
        if (DllGetClassObject(CLSID_VANTOManager, IID_IClassFactory,
                              reinterpret_cast<void**>(&factory)) != S_OK) {
            return;
        }
        IUnknown* manager = nullptr;
        factory->CreateInstance(nullptr, IID_IUnknown, reinterpret_cast<void**>(&manager));
        factory->Release();
        if (manager != nullptr) {
            manager->QueryInterface(IID_IVANTOFileServices, reinterpret_cast<void**>(&files));
            manager->Release(); // the interface keeps the manager alive
        }
    }

    ScriptedConnector connector;
    IVANTOFileServices* files = nullptr;
};

Host& TheHost() {
    static Host* host = new Host();
    return *host;
}

// The host with the answers of `kind` and `size` ready, or null (the benchmark then skipped).
Host* Ready(benchmark::State& state, const Prepared& prepared) {
    Host& host = TheHost();
    if (host.files == nullptr) {
        state.SkipWithError("no file-services interface");
        return nullptr;
    }
    host.connector.Use(prepared);
    return &host;
}

// ---- The benchmarks -----------------------------------------------------------------------------

// The reference: Boost.JSON parsing each answer text once, and nothing else.
void ParseAnswers(benchmark::State& state, Answer kind, int size) {
    const Prepared& prepared = Prepare(kind, size);
    for (auto _ : state) {
        for (const Core::TevString& text : prepared.answers) {
            boost::json::value tree = boost::json::parse(std::string_view(text));
            benchmark::DoNotOptimize(tree);
        }
    }
}

// Has the C library finish with the blocks just freed. glibc keeps small freed blocks aside and
// merges them only when a large block is next asked for; after `settle` has emptied a caller's
// list of 100,000 entries that is about a million blocks, and without this their merging would be
// timed in the next call, as part of the method, at the first large block the call asks for.
void SettleHeap() {
    constexpr std::size_t Large = std::size_t{1} << 20;
    void* block = std::malloc(Large);
    benchmark::DoNotOptimize(block);
    std::free(block);
}

// Times `call` (which returns the method's HRESULT) over the benchmark's iterations. Between two
// calls, untimed, `settle` checks what the call did to the caller's data and puts it back as it
// was, the heap settles and the connector starts its answers again. Any wrong result marks the
// benchmark as failed.
template <class Call, class Settle>
void TimeCalls(benchmark::State& state, const Prepared& prepared, std::size_t sends,
               const char* failure, Call call, Settle settle) {
    Host* host = Ready(state, prepared);
    if (host == nullptr) {
        return;
    }
    bool done = true;
    for (auto _ : state) {
        const HRESULT result = call(*host->files);
        state.PauseTiming();
        done = settle() && result == S_OK && host->connector.sent == sends && done;
        SettleHeap();
        host->connector.Use(prepared);
        state.ResumeTiming();
    }
    if (!done) {
        state.SkipWithError(failure);
    }
}

// Every entry checked out to the user, set back to not checked out.
bool TakeAllCheckedOut(FileLockStatusMap& files) {
    bool all = true;
    for (auto& [path, status] : files) {
        all = all && status.isCheckedOut && status.isCheckedOutByCurrentUser;
        status = FileLockStatus();
    }
    return all;
}

FileLockStatusMap LockStatusOf(const PathList& paths) {
    FileLockStatusMap files;
    for (const GUserText& path : paths) {
        files.emplace(path, FileLockStatus());
    }
    return files;
}

// Nothing checked out yet: every file goes into the request and comes back locked.
void CheckOutCall(benchmark::State& state, int size) {
    const Prepared& prepared = Prepare(Answer::Lock, size);
    FileLockStatusMap files = LockStatusOf(prepared.paths);
    TimeCalls(
        state, prepared, 1, "CheckOut did not lock every file",
        [&](IVANTOFileServices& service) { return service.CheckOut(&files); },
        [&] { return TakeAllCheckedOut(files); });
}

void CheckInCall(benchmark::State& state, int size) {
    const Prepared& prepared = Prepare(Answer::Unlock, size);
    constexpr std::int32_t Untouched = -1;
    FileCheckInList files(prepared.paths.size());
    for (std::size_t i = 0; i < files.size(); ++i) {
        files[i].fileName = prepared.paths[i];
        files[i].errorCode = Untouched;
    }
    TimeCalls(
        state, prepared, 1, "CheckIn did not set every entry",
        [&](IVANTOFileServices& service) { return service.CheckIn(&files); },
        [&] {
            bool all = true;
            for (FileCheckInEntry& entry : files) {
                all = all && entry.errorCode == 0;
                entry.errorCode = Untouched;
            }
            return all;
        });
}

// Every file is locked by the user according to its lock properties.
void GetCheckOutStatusCall(benchmark::State& state, int size) {
    const Prepared& prepared = Prepare(Answer::Properties, size);
    FileLockStatusMap files = LockStatusOf(prepared.paths);
    TimeCalls(
        state, prepared, 1, "GetCheckOutStatus did not mark every file",
        [&](IVANTOFileServices& service) { return service.GetCheckOutStatus(&files, false); },
        [&] { return TakeAllCheckedOut(files); });
}

void GetContextInformationCall(benchmark::State& state, int size) {
    const Prepared& prepared = Prepare(Answer::Contexts, size);
    FileContextList contexts;
    TimeCalls(
        state, prepared, 1, "GetContextInformation did not add every file",
        [&](IVANTOFileServices& service) {
            return service.GetContextInformation(prepared.paths, &contexts);
        },
        [&] {
            const bool all = contexts.size() == static_cast<std::size_t>(size) &&
                             !contexts.back().context.documentUrn.IsEmpty();
            contexts.clear();
            return all;
        });
}

// With `filter` empty every property is kept (fifteen per file), else two per file.
void GetPropertiesCall(benchmark::State& state, int size, bool twoNames) {
    const Prepared& prepared = Prepare(Answer::Properties, size);
    PropertyNameSet filter;
    if (twoNames) {
        filter = {GUserText(L"PartNumber"), GUserText(L"LockedBy")};
    }
    const std::size_t perFile = twoNames ? 2 : 15;
    FilePropertyList properties;
    TimeCalls(
        state, prepared, 1, "GetProperties did not add every file's properties",
        [&](IVANTOFileServices& service) {
            return service.GetProperties(prepared.paths, filter, &properties);
        },
        [&] {
            bool all = properties.size() == static_cast<std::size_t>(size);
            for (const FilePropertyEntry& file : properties) {
                std::size_t kept = 0;
                for (const ObjectTypeProperties& group : file.objectTypes) {
                    kept += group.properties.size();
                }
                all = all && kept == perFile;
            }
            properties.clear();
            return all;
        });
}

void GetChildrenCall(benchmark::State& state, int size) {
    const Prepared& prepared = Prepare(Answer::Children, size);
    const GUserText parent = Wide(AssemblyPath(ParentNumber));
    RelationMap children;
    TimeCalls(
        state, prepared, 1, "GetChildren did not add every child",
        [&](IVANTOFileServices& service) { return service.GetChildren(parent, &children); },
        [&] {
            const bool all = children.size() == static_cast<std::size_t>(size);
            children.clear();
            return all;
        });
}

// One command per path; each part adds its drawing, and each tenth part a new assembly.
void GetCorvaneWUResultsCall(benchmark::State& state, int size) {
    const Prepared& prepared = Prepare(Answer::WhereUsed, size);
    const std::size_t expected =
        static_cast<std::size_t>(size) + static_cast<std::size_t>(size) / PartsPerAssembly;
    RelationMap whereUsed;
    TimeCalls(
        state, prepared, static_cast<std::size_t>(size),
        "GetCorvaneWUResults did not add every relation",
        [&](IVANTOFileServices& service) {
            return service.GetCorvaneWUResults(prepared.paths, &whereUsed, false);
        },
        [&] {
            const bool all = whereUsed.size() == expected;
            whereUsed.clear();
            return all;
        });
}

// ---- Registration and the ratio lines -----------------------------------------------------------

constexpr int FewFiles = 10000;
constexpr int ManyFiles = 100000;
constexpr int FewPaths = 1000;
constexpr int ManyPaths = 10000;

constexpr double ScalingTarget = 12.0;
constexpr double OverheadTarget = 3.0;

// One method measured at two sizes against the parse of its answers.
struct Measured {
    const char* label;   // on the ratio lines
    const char* name;    // of the call benchmarks
    const char* answers; // of the parse benchmarks
    int few;
    int many;
};

constexpr Measured Methods[] = {
    {"CheckOut", "CheckOut", "Lock", FewFiles, ManyFiles},
    {"CheckIn", "CheckIn", "Unlock", FewFiles, ManyFiles},
    {"GetCheckOutStatus", "GetCheckOutStatus", "Properties", FewFiles, ManyFiles},
    {"GetProperties (empty filter)", "GetProperties", "Properties", FewFiles, ManyFiles},
    {"GetProperties (two names)", "GetPropertiesTwoNames", "Properties", FewFiles, ManyFiles},
    {"GetContextInformation", "GetContextInformation", "Contexts", FewFiles, ManyFiles},
    {"GetChildren", "GetChildren", "Children", FewFiles, ManyFiles},
    {"GetCorvaneWUResults", "GetCorvaneWUResults", "WhereUsed", FewPaths, ManyPaths},
};

std::string CallName(const char* name, int size) {
    return std::string(name) + "/" + std::to_string(size);
}
std::string ParseName(const char* answers, int size) {
    return std::string("Parse") + answers + "/" + std::to_string(size);
}

template <class... Args>
void Register(const std::string& name, void (*run)(benchmark::State&, Args...), Args... args) {
    benchmark::RegisterBenchmark(name.c_str(), run, args...)->Unit(benchmark::kMillisecond);
}

} // namespace

void RegisterFileServiceBenchmarks() {
    // Grouped by answer, so that each answer is made once per size.
    for (const int size : {FewFiles, ManyFiles}) {
        Register(ParseName("Lock", size), ParseAnswers, Answer::Lock, size);
        Register(CallName("CheckOut", size), CheckOutCall, size);
    }
    for (const int size : {FewFiles, ManyFiles}) {
        Register(ParseName("Unlock", size), ParseAnswers, Answer::Unlock, size);
        Register(CallName("CheckIn", size), CheckInCall, size);
    }
    for (const int size : {FewFiles, ManyFiles}) {
        Register(ParseName("Properties", size), ParseAnswers, Answer::Properties, size);
        Register(CallName("GetCheckOutStatus", size), GetCheckOutStatusCall, size);
        Register(CallName("GetProperties", size), GetPropertiesCall, size, false);
        Register(CallName("GetPropertiesTwoNames", size), GetPropertiesCall, size, true);
    }
    for (const int size : {FewFiles, ManyFiles}) {
        Register(ParseName("Contexts", size), ParseAnswers, Answer::Contexts, size);
        Register(CallName("GetContextInformation", size), GetContextInformationCall, size);
    }
    for (const int size : {FewFiles, ManyFiles}) {
        Register(ParseName("Children", size), ParseAnswers, Answer::Children, size);
        Register(CallName("GetChildren", size), GetChildrenCall, size);
    }
    for (const int size : {FewPaths, ManyPaths}) {
        Register(ParseName("WhereUsed", size), ParseAnswers, Answer::WhereUsed, size);
        Register(CallName("GetCorvaneWUResults", size), GetCorvaneWUResultsCall, size);
    }
}

void PrintFileServiceRatios(const RatioReporter& reporter) {
    for (const Measured& method : Methods) {
        const std::string label = method.label;
        PrintRatio(reporter, label + " scaling", CallName(method.name, method.many),
                   CallName(method.name, method.few), ScalingTarget);
        for (const int size : {method.few, method.many}) {
            PrintRatio(reporter, label + " overhead " + std::to_string(size),
                       CallName(method.name, size), ParseName(method.answers, size),
                       OverheadTarget);
        }
    }
}

} // namespace bench
