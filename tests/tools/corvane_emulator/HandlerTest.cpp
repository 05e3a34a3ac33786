// The emulator's command handling, in process, on the example workspace with the database in
// memory. Each row sends its requests to a fresh emulator and checks the last one's answer and the
// locks held after it.
#include "Handler.h"

#include "os/Process.h"
#include "protocol/Catalogue.h"

#include <boost/json.hpp>
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <set>
#include <tuple>

namespace {

using namespace vanto::emulator;
using Corvane::CommandIO::CommandOutputBase;

// The example workspace where this program reads it (under Wine by its DOS name), and the folder
// as the clients of these tests name it: the same on every platform.
const std::filesystem::path Folder =
    std::filesystem::path(platform::os::PathFromUnix(VANTO_EXAMPLES_DIR "/workspace"));
const std::string Workspace_ = "/client/workspace";

// Requests ("operation body") and the pieces looked for in answers are written with ' for ",
// "$" for the workspace folder as clients name it and "@" for the session.
const std::string Shaft = "$/Gearbox/Shaft/shaft.par";
const std::string Housing = "$/Gearbox/housing.psm"; // locked by Ben Okafor
const std::string Cover = "$/Gearbox/cover.par";     // read-only for Ada Byrne
const std::string Gearbox = "$/Gearbox/gearbox.asm"; // revisions A and B

std::string Expand(const std::string& text, const std::string& session = "") {
    std::string out;
    for (const char c : text) {
        out += c == '$' ? Workspace_ : c == '@' ? session : std::string(1, c == '\'' ? '"' : c);
    }
    return out;
}

std::string Command(const std::string& name, const std::string& keys = "") {
    return "execute {'Command':'" + name + "','SessionId':'@'" + keys + "}";
}
std::string Lock(const std::string& path, int ttl = -1) {
    return Command("LOCKDESIGNREVISIONS", ",'DesignIdentifiers':[{'Value':'" + path +
                                              "'}],'TimeToLive':" + std::to_string(ttl));
}
std::string Unlock(const std::string& path) {
    return Command("UNLOCKDESIGNREVISIONS", ",'DesignIdentifiers':[{'Value':'" + path + "'}]");
}
std::string Properties(const std::string& path, int type) {
    return Command("GETPROPERTIES", ",'FilePathToObjectTypesArray':[{'Key':'" + path +
                                        "','ObjectTypeList':[" + std::to_string(type) + "]}]");
}
std::string Control(const std::string& action, const std::string& more = "") {
    return "control {'Action':'" + action + "'" + more + "}";
}
// A control action by another user on a document.
std::string Other(const std::string& action, const std::string& user, const std::string& path) {
    return Control(action, ",'User':'" + user + "','Path':'" + path + "'");
}
using Locks = std::map<std::string, std::string>; // document -> holder
const Locks Imported = {{Housing, "Ben Okafor"}};

std::vector<std::int32_t> Codes(const std::string& answer) {
    std::vector<std::int32_t> codes;
    for (const auto& error : CommandOutputBase(answer).Errors) {
        codes.push_back(error->ErrorCode);
    }
    return codes;
}

// One emulator on the example workspace, with the database in memory and a session registered.
struct Emulator {
    Emulator() { Send("register {'ProcessId':42}"); }
    // The operation "expire" is this test's own: it makes the lock of a document expire now.
    Answer Send(const std::string& request) {
        const std::string text = Expand(request, session);
        const std::size_t space = text.find(' ');
        const std::string operation = text.substr(0, space);
        if (operation == "expire") {
            const auto document = store.FindDocument(text.substr(space + 1));
            store.SetLock(document->key, document->lockUser, 0);
            return {};
        }
        Answer answer = handler.Handle(operation, text.substr(space + 1));
        if (operation == "register") {
            session = boost::json::parse(answer.text).at("SessionId").as_string().c_str();
        }
        return answer;
    }
    Locks Held() {
        Locks held;
        const auto listing = boost::json::parse(Send(Control("locks")).text);
        for (const auto& lock : listing.at("Locks").as_array()) {
            held["$" + std::string(lock.at("Path").as_string().c_str()).substr(Workspace_.size())] =
                lock.at("LockedBy").as_string().c_str();
        }
        return held;
    }

    Store store{":memory:"};
    Handler handler{store,
                    {"Ada Byrne",
                     {Folder.u8string(), (Folder / "corvane-import.json").u8string(), Workspace_},
                     "/scratch"}};
    std::string session;
};

struct Row {
    std::vector<std::string> before; // requests sent first
    std::string request;             // the request whose answer is checked
    std::vector<std::int32_t> codes; // the answer's error codes
    // Pieces the answer holds exactly once; one starting with '!' it does not hold.
    std::vector<std::string> holds = {};
    Locks locks = Imported; // every lock after it
};

TEST(EmulatorHandler, AnswersAndLocksAfter) {
    const Locks shaftTaken = {{Shaft, "Ada Byrne"}, {Housing, "Ben Okafor"}};
    const std::string status = Command("GETCONNECTIONSTATUS");
    const std::string newer =
        Command("CHECKFORNEWERVERSION", ",'IdentifierToCheckForNewerVersion':['" + Gearbox + "']");
    const std::string children = Command("GETCHILDREN", ",'Identifier':'" + Gearbox + "'");
    const std::string revision =
        Command("GETNEXTREVISIONID", ",'DesignRevisionIdentifiers':[{'Value':'" + Gearbox + "'}]");
    const std::string pump =
        Command("ADDPROJECTTOSYNC", ",'ProjectURN':'urn:corvane:project:PRJ-PUMP'");
    const std::string add =
        Command("ADDCHILDREN", ",'ParentChildRelationInfos':[{'ParentIdentifier':'" + Gearbox +
                                   "','ChildRevisionInfos':[{'Identifier':'" + Shaft + "'}]}]");
    const std::string remove =
        Command("REMOVECHILDREN", ",'RelationURNs':['urn:corvane:relation:REL-000008','']");
    const std::string fault =
        "control {'Action':'fault','Command':'LOCKDESIGNREVISIONS','FailCode':2";
    const std::string nextId = ",'DirectoryPath':'$/Gearbox','FileExtension':'";
    const std::string monitored = "execute {'Command':'ISPATHMONITORED','SessionId':'@','Paths':['";
    const std::string named =
        "execute {'Command':'QUERYDESIGNREVISIONS','SessionId':'@','"
        "RevisionCriteria':{'Definition':{'SearchTerms':[{'Property':'name','Value':'";
    const Row rows[] = {
        // Locks: taken when free or the user's own; another user's lock is refused (code 13)
        // naming its holder, and a free file in the same request is taken.
        {{}, Lock(Shaft), {}, {"'LockedBy':'Ada Byrne'", "'LockExpires':''"}, shaftTaken},
        {{Other("lock", "Ada Byrne", Shaft)}, Lock(Shaft), {}, {}, shaftTaken},
        {{},
         Lock(Housing + "'},{'Value':'" + Gearbox),
         {13},
         {"'Ids':['" + Housing + "']", "'LockedBy':'Ben Okafor'"},
         {{Gearbox, "Ada Byrne"}, {Housing, "Ben Okafor"}}},
        {{}, Unlock(Housing), {13}},
        {{Lock(Shaft)}, Unlock(Shaft), {}},
        {{}, Lock("$/Gearbox/none.par"), {8}},
        {{}, Lock(Cover), {12}},
        {{"expire " + Housing}, Lock(Housing), {}, {}, {{Housing, "Ada Byrne"}}},
        {{}, Lock(Shaft, 3600), {}, {"!'LockExpires':''"}, shaftTaken},
        // Another user's save makes a newer version in the cloud.
        {{}, newer, {}, {"'Value':false"}},
        {{Other("save", "Ben Okafor", Gearbox)}, newer, {}, {"'Value':true"}},
        // Properties, and which paths are in the workspace (in any case, with either separator).
        {{}, Properties("$/nothing.par", 0), {8}},
        {{}, Properties(Shaft, 7), {9}},
        {{}, monitored + "$/new/file.par" + "']}", {}, {"'Value':true"}},
        {{}, monitored + "$\\\\GEARBOX\\\\COVER.PAR" + "']}", {}, {"'Value':true"}},
        {{}, monitored + "$-other/file.par" + "']}", {}, {"'Value':false"}},
        // Containers: the unsynchronised ones only when asked for; a project synchronised once.
        {{},
         Command("GETAVAILABLECONTAINERS", ",'ReturnUnsynched':true"),
         {},
         {"'ContainerName':'Gearbox'", "'ContainerName':'Pump'"}},
        {{pump}, pump, {102}},
        // Item numbers and revision ids never repeat.
        {{Command("GETNEXTID", nextId + "par','NumberOfIds':3")},
         Command("GETNEXTID", nextId + "par','NumberOfIds':1,'GetInitialRevId':true"),
         {},
         {"'Number':'1012','Revid':'A'", "!'1013'"}},
        {{}, Command("GETNEXTID", nextId + "txt','NumberOfIds':1"), {18}},
        {{}, revision, {}, {"'Revid':'C'", Gearbox}},
        {{revision}, revision, {}, {"'Revid':'D'"}},
        // The search by name, in any case: each design revision once.
        {{}, named + "gearbox'}]}}}", {}, {"'FileName':'gearbox.asm'"}},
        {{}, named + "Nothing'}]}}}", {}, {"'DesignRevisionInfo':[]"}},
        // Structure: children, a child added once and removed by its URN (an empty URN is
        // passed over); where-used and the rest are driven in HostCliTest.
        {{},
         children,
         {},
         {"$/Gearbox/Shaft/shaft-assembly.asm'", Housing, Cover, "!'RelationUrn':''"}},
        {{add}, add, {21}},
        {{add, remove}, children, {}, {"!" + Shaft}},
        {{add, remove}, remove, {8}},
        // The envelope and the session.
        {{}, "execute {'Command':'FLY','SessionId':'@'}", {4}},
        {{}, "execute {} {}", {7}},
        {{}, "execute {'Command':'GETCONNECTIONSTATUS','SessionId':'@','Version':2}", {7}},
        {{}, "execute {'Command':'GETCONNECTIONSTATUS','SessionId':'none'}", {3}},
        {{}, "deregister {'SessionId':'none'}", {3}},
        {{"deregister {'SessionId':'@'}"}, status, {3}},
        // Offline, local questions are still answered; signed out, no session is (the status
        // check offline and signed out is driven in EmulatorEndToEndTest).
        {{Control("offline")}, Properties(Shaft, 1), {}},
        {{Control("signout")}, "register {}", {3}, {"'SessionId':''"}},
        // Faults: for a number of calls or until cleared; status lists them with the times left.
        {{fault + ",'Times':1}", Lock(Shaft)}, Lock(Shaft), {}, {}, shaftTaken},
        {{fault + "}", Lock(Shaft)}, Lock(Shaft), {2}},
        {{fault + ",'Times':3}", Lock(Shaft)},
         Control("status"),
         {},
         {"'Faults':[{'Command':'LOCKDESIGNREVISIONS','LatencyMs':0,'FailCode':2,'Times':2}]"}},
        {{fault + "}", Control("clear-faults")}, Control("status"), {}, {"'Faults':[]"}},
        // A reset puts the workspace back as it was imported.
        {{Lock(Shaft)}, Control("reset"), {}, {"'Ok':true"}},
    };
    for (const Row& row : rows) {
        Emulator emulator;
        for (const std::string& request : row.before) {
            emulator.Send(request);
        }
        const Answer answer = emulator.Send(row.request);
        EXPECT_EQ(row.codes, Codes(answer.text)) << row.request << "\n" << answer.text;
        for (const std::string& piece : row.holds) {
            const bool absent = piece[0] == '!';
            const std::string text = Expand(piece.substr(absent));
            const std::size_t at = answer.text.find(text);
            EXPECT_EQ(absent, at == std::string::npos) << piece << " in " << answer.text;
            EXPECT_TRUE(absent || at == answer.text.rfind(text)) << piece << " twice";
        }
        EXPECT_EQ(row.locks, emulator.Held()) << row.request;
    }
}

// Every command, each with bodies a client should never send: each answers an error and changes
// nothing. Each body is just past a limit: depth, length of a text.
TEST(EmulatorHandler, HostileBodiesGetErrorsAndChangeNothing) {
    Emulator emulator;
    const std::string before = emulator.Send(Control("documents")).text;
    const std::string deep = std::string(vanto::protocol::MaxJsonDepth, '[') +
                             std::string(vanto::protocol::MaxJsonDepth, ']');
    const std::string longText(64u * 1024u + 1u, 'x');
    for (const auto& [command, ignored] : emulator.handler.Commands()) {
        const std::string head = R"({"Command":")" + command + R"(","SessionId":")" +
                                 emulator.session + R"(","Version":1)";
        // Every key a command reads, with a value of a kind that no key has.
        const std::string wrongKinds =
            head + R"(,"DesignIdentifiers":7,"TimeToLive":"x","Identifier":[],"IdentifierType":)"
                   R"(true,"RelationTypes":{"a":1},"Files":[1],"Paths":"p","Key":[1],)"
                   R"("Data":2,"ProjectURN":null,"NumberOfIds":1.5,"ContainerType":["a"],)"
                   R"("ReturnUnsynched":"yes","RevisionCriteria":5,"Options":[],)"
                   R"("FilePathToObjectTypesArray":[{"Key":1}],"RelationURNs":[null],)"
                   R"("ParentChildRelationInfos":[1],"ListOfFileUidAndContextInformation":{},)"
                   R"("IdentifierToCheckForNewerVersion":"x","DesignRevisionIdentifiers":[[]],)"
                   R"("FileExtension":1,"GetInitialRevId":0,"Properties":[2],"DirectoryPath":3,)"
                   R"("Name":4,"AttachmentCriteria":"c","Operator":"o","Context":1})";
        std::vector<std::string> bodies = {head, // truncated
                                           head + ",\"x\":" + deep + "}",
                                           head + ",\"Paths\":[\"\xC3\x28\"]}", // invalid UTF-8
                                           R"({"Command":")" + command + R"(","SessionId":")" +
                                               longText + "\"}",
                                           R"({"Command":")" + command + R"(","SessionId":5})"};
        // The session commands read no key but the two of the envelope.
        if (command != "GETCONNECTIONSTATUS" && command != "GETSESSIONINFO" &&
            command != "GETCORVANEROOTFOLDERS") {
            bodies.push_back(wrongKinds);
        }
        for (const std::string& body : bodies) {
            EXPECT_FALSE(Codes(emulator.handler.Handle("execute", body).text).empty())
                << command << ": " << body.substr(0, 120);
        }
    }
    EXPECT_EQ(before, emulator.Send(Control("documents")).text);
}

TEST(EmulatorHandler, AnswersEveryCommandOfTheCatalogueAndNoOther) {
    std::set<std::string> catalogue;
    vanto::protocol::ForEachCommand(vanto::protocol::Catalogue{}, [&](auto tag) {
        catalogue.insert(decltype(tag)::Type::CommandName);
    });
    const Emulator emulator;
    std::set<std::string> answered;
    for (const auto& [name, command] : emulator.handler.Commands()) {
        answered.insert(name);
    }
    EXPECT_EQ(catalogue, answered);
}

// A database written by this emulator, then marked as another emulator would have left it: the
// first one kept its version as a row of its settings, before the database's user_version; up to
// version 1 path keys folded ASCII letters only, and a stale key must be made again.
TEST(EmulatorStore, OpensOrMovesOverKnownVersionsAndRefusesOthers) {
    const std::string stale = "; UPDATE documents SET path_key = 'stale'";
    const struct {
        std::string marking;
        bool opens;
    } cases[] = {
        {"", true},
        {"PRAGMA user_version = 0; INSERT INTO meta VALUES ('schema_version', '1')" + stale, true},
        {"PRAGMA user_version = 1" + stale, true},
        {"PRAGMA user_version = 0; INSERT INTO meta VALUES ('schema_version', '99')", false},
        {"PRAGMA user_version = 0", false},
        {"PRAGMA user_version = 99", false},
    };
    const auto path = std::filesystem::temp_directory_path() / "vanto-schema-version.db";
    for (const auto& c : cases) {
        std::filesystem::remove(path);
        Store(path.string()).AddDocument("C:\\Über\\Welle.par", 0);
        Database(path.string()).Execute(c.marking);
        if (!c.opens) {
            EXPECT_THROW(Store{path.string()}, SqliteError) << c.marking;
            continue;
        }
        Store store(path.string());
        EXPECT_TRUE(store.FindDocument("c:/üBER/welle.PAR")) << c.marking;
        EXPECT_EQ(SchemaVersion, Database(path.string()).QueryInt("PRAGMA user_version"))
            << c.marking;
        EXPECT_EQ("", store.Setting("schema_version")) << c.marking;
    }
    std::filesystem::remove(path);
}

// Beyond what the store's lookup above shows (slashes, case of the drive letter and of Ü): other
// scripts fold too, one letter never becomes two, and bytes that are no UTF-8 stay as they are.
TEST(EmulatorText, PathKeysAndTimes) {
    const std::tuple<const char*, const char*, bool> paths[] = {
        {"C:\\Ωmega-Ǆ.par", "c:\\ωMEGA-ǆ.par", true},
        {"C:\\Straße.par", "C:\\STRASSE.par", false},
        {"\xFF\\A", "\xFF/a", true},
        {"\xC3\\A", "\xE3/a", false},
    };
    for (const auto& [a, b, same] : paths) {
        EXPECT_EQ(same, PathKey(a) == PathKey(b)) << a << " " << b;
    }
    const std::pair<std::int64_t, const char*> times[] = {{-1, "1969-12-31T23:59:59Z"},
                                                          {951782400, "2000-02-29T00:00:00Z"},
                                                          {4102444799, "2099-12-31T23:59:59Z"}};
    for (const auto& [seconds, text] : times) {
        EXPECT_EQ(text, IsoTime(seconds));
    }
}

} // namespace
