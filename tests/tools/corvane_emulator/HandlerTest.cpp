// The emulator's command handling, in process, on the example workspace with the database in
// memory. Requests are written and answers read with the component's own protocol records.
#include "Handler.h"

#include "Commands.h"

#include "protocol/registration/Registration.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <set>

namespace {

using namespace vanto::emulator;
using namespace Corvane::CommandIO;
using namespace Corvane::CommandIO::DataManagement;
using namespace Corvane::CommandIO::DataManagement::MCAD;
using namespace Corvane::DataTypes;

const std::string Workspace_ = VANTO_EXAMPLES_DIR "/workspace";
const std::string Shaft = Workspace_ + "/Gearbox/Shaft/shaft.par";
const std::string Housing = Workspace_ + "/Gearbox/housing.psm"; // locked by Ben Okafor
const std::string Cover = Workspace_ + "/Gearbox/cover.par";     // read-only for Ada Byrne
const std::string Gearbox = Workspace_ + "/Gearbox/gearbox.asm";

std::vector<std::int32_t> Codes(const CommandOutputBase& out) {
    std::vector<std::int32_t> codes;
    for (const auto& error : out.Errors) {
        codes.push_back(error->ErrorCode);
    }
    return codes;
}

class EmulatorHandler : public ::testing::Test {
protected:
    EmulatorHandler() : store(":memory:"), handler(store, Options()) { session = Register(); }
    static HandlerOptions Options() {
        HandlerOptions options;
        options.workspace.folder = Workspace_;
        options.workspace.importFile = Workspace_ + "/corvane-import.json";
        options.dataFolder = "/scratch";
        return options;
    }
    std::string Register() {
        Core::Registration::RegisterClientInput in;
        in.ProcessId = 42;
        return Core::Registration::RegisterClientOutput(
                   handler.Handle("register", in.ToJson().str()).text)
            .SessionId.str();
    }
    template <class Out, class In> Out Run(In& in) {
        in.SessionId = session;
        return Out(handler.Handle("execute", in.ToJson().str()).text);
    }
    std::string Raw(const std::string& text) { return handler.Handle("execute", text).text; }
    std::string Control(const std::string& text) { return handler.Handle("control", text).text; }

    CorvaneLockDesignRevisionsOutput Lock(const std::vector<std::string>& paths, int ttl = -1) {
        CorvaneLockDesignRevisionsInput in;
        for (const std::string& path : paths) {
            in.DesignIdentifiers.emplace_back(new CorvaneDesignIdentifier());
            in.DesignIdentifiers.back()->Value = path;
        }
        in.TimeToLive = ttl;
        return Run<CorvaneLockDesignRevisionsOutput>(in);
    }
    CorvaneUnLockDesignRevisionsOutput Unlock(const std::string& path) {
        CorvaneUnLockDesignRevisionsInput in;
        in.DesignIdentifiers.emplace_back(new CorvaneDesignIdentifier());
        in.DesignIdentifiers.back()->Value = path;
        return Run<CorvaneUnLockDesignRevisionsOutput>(in);
    }
    // The first value of a property of one object type; "<none>" when absent.
    std::string Property(const std::string& path, int type, const std::string& name) {
        CorvaneGetPropertiesInput in;
        in.FilePathToObjectTypesArray.emplace_back(new CorvaneStringToObjectTypesPair());
        in.FilePathToObjectTypesArray.back()->Key = path;
        in.FilePathToObjectTypesArray.back()->ObjectTypeList.push_back(type);
        const auto out = Run<CorvaneGetPropertiesOutput>(in);
        for (const auto& file : out.FilePropertiesArray) {
            for (const auto& group : file->ObjectTypeToPropertiesArray) {
                for (const auto& property : group->Properties) {
                    if (property->Name == name.c_str() && !property->PropertyValues.empty()) {
                        return property->PropertyValues[0].str();
                    }
                }
            }
        }
        return "<none>";
    }

    Store store;
    Handler handler;
    std::string session;
};

TEST_F(EmulatorHandler, LocksFollowTheHolder) {
    auto taken = Lock({Shaft});
    EXPECT_TRUE(taken.Errors.empty());
    ASSERT_EQ(1u, taken.Status.size());
    EXPECT_EQ("Ada Byrne", taken.Status[0]->LockedBy.str());
    EXPECT_EQ(Shaft, taken.Status[0]->DesignIdentifier.str());
    EXPECT_EQ("", taken.Status[0]->LockExpires.str());
    // Again by the holder: still hers, no error.
    EXPECT_TRUE(Lock({Shaft}).Errors.empty());
    EXPECT_EQ("Ada Byrne", Property(Shaft, 1, "LockedBy"));

    // Another user's lock: code 13 naming the holder; the free file in the same request is taken.
    const auto mixed = Lock({Housing, Gearbox});
    EXPECT_EQ(std::vector<std::int32_t>{13}, Codes(mixed));
    ASSERT_EQ(1u, mixed.Errors[0]->Ids.size());
    EXPECT_EQ(Housing, mixed.Errors[0]->Ids[0].str());
    EXPECT_EQ("Ben Okafor", mixed.Status[0]->LockedBy.str());
    EXPECT_EQ(13, mixed.Status[0]->ErrorCode);
    EXPECT_EQ("Ada Byrne", Property(Gearbox, 1, "LockedBy"));

    // Unlocking someone else's lock fails and leaves it.
    EXPECT_EQ(std::vector<std::int32_t>{13}, Codes(Unlock(Housing)));
    EXPECT_EQ("Ben Okafor", Property(Housing, 1, "LockedBy"));
    // The holder's unlock frees it.
    EXPECT_TRUE(Unlock(Shaft).Errors.empty());
    EXPECT_EQ("", Property(Shaft, 1, "LockedBy"));

    EXPECT_EQ(std::vector<std::int32_t>{8}, Codes(Lock({Workspace_ + "/Gearbox/none.par"})));
    EXPECT_EQ(std::vector<std::int32_t>{12}, Codes(Lock({Cover})));

    // An expired lock is free; a time to live sets an expiry.
    const auto housing = store.FindDocument(Housing);
    store.SetLock(housing->key, housing->lockUser, 0); // expires now
    EXPECT_TRUE(Lock({Housing}).Errors.empty());
    EXPECT_EQ("Ada Byrne", Property(Housing, 1, "LockedBy"));
    EXPECT_NE("", Lock({Shaft}, 3600).Status[0]->LockExpires.str());
}

TEST_F(EmulatorHandler, ControlActsAsAnotherUser) {
    EXPECT_NE(std::string::npos,
              Control(R"({"Action":"lock","User":"Cy","Path":")" + Shaft + R"("})").find("true"));
    EXPECT_EQ("Cy", Lock({Shaft}).Status[0]->LockedBy.str());
    // Not the holder: refused, unchanged.
    EXPECT_NE(std::string::npos,
              Control(R"({"Action":"unlock","User":"Dee","Path":")" + Shaft + R"("})")
                  .find(R"("Ok":false)"));
    EXPECT_EQ("Cy", Property(Shaft, 1, "LockedBy"));

    const std::string before = Property(Gearbox, 2, "consistencyStamp");
    Control(R"({"Action":"save","User":"Cy","Path":")" + Gearbox + R"("})");
    CorvaneCheckNewerVersionOnCloudInput check;
    check.IdentifierToCheckForNewerVersion.push_back(Gearbox);
    const auto newer = Run<CorvaneCheckNewerVersionOnCloudOutput>(check);
    ASSERT_EQ(1u, newer.IdentifierToNewerVersionId.size());
    EXPECT_EQ(Property(Gearbox, 2, "DocumentId"), newer.IdentifierToNewerVersionId[0]->Key.str());
    EXPECT_NE(before, newer.IdentifierToNewerVersionId[0]->Value.str());
    EXPECT_TRUE(newer.IdentifierToHasNewerVersionInCloud[0]->Value);
}

TEST_F(EmulatorHandler, PropertiesAndMonitoredPaths) {
    EXPECT_EQ("42CrMo4", Property(Shaft, 0, "Material"));
    EXPECT_EQ("Shaft", Property(Shaft, 0, "Name"));
    EXPECT_NE("<none>", Property(Shaft, 2, "consistencyStamp"));
    EXPECT_EQ(0u, Property(Shaft, 2, "DocumentId").find("DOC-"));

    CorvaneGetPropertiesInput unknown;
    unknown.FilePathToObjectTypesArray.emplace_back(new CorvaneStringToObjectTypesPair());
    unknown.FilePathToObjectTypesArray.back()->Key = Workspace_ + "/nothing.par";
    const auto missing = Run<CorvaneGetPropertiesOutput>(unknown);
    EXPECT_EQ(std::vector<std::int32_t>{8}, Codes(missing));
    unknown.FilePathToObjectTypesArray.back()->Key = Shaft;
    unknown.FilePathToObjectTypesArray.back()->ObjectTypeList.push_back(7);
    EXPECT_EQ(std::vector<std::int32_t>{9}, Codes(Run<CorvaneGetPropertiesOutput>(unknown)));

    CorvaneIsPathMonitoredInput in;
    std::string upper = Shaft;
    for (char& c : upper) {
        c = c == '/' ? '\\' : static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    }
    for (const std::string& path : {Shaft, Workspace_ + "/new/file.par", upper,
                                    Workspace_ + "-other/file.par", std::string("/elsewhere")}) {
        in.Paths.push_back(path);
    }
    const auto out = Run<CorvaneIsPathMonitoredOutput>(in);
    ASSERT_EQ(5u, out.PathToIsMonitored.size());
    const bool expected[] = {true, true, true, false, false};
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(expected[i], out.PathToIsMonitored[i]->Value) << in.Paths[i].str();
    }
}

TEST_F(EmulatorHandler, ContainersAndProjectSynchronisation) {
    CorvaneGetAvailableContainersInput list;
    EXPECT_EQ(1u, Run<CorvaneGetAvailableContainersOutput>(list).ContainerInformation.size());
    list.ReturnUnsynched = true;
    const auto all = Run<CorvaneGetAvailableContainersOutput>(list);
    ASSERT_EQ(2u, all.ContainerInformation.size());
    EXPECT_EQ("Gearbox", all.ContainerInformation[0]->ContainerName.str());
    EXPECT_EQ("CS-DRIVES",
              all.ContainerInformation[0]->CollaborationSpace->CollaborationSpaceId.str());
    const std::string pump = all.ContainerInformation[1]->ContainerUrn.str();

    CorvaneAddProjectToSyncInput add;
    add.ProjectURN = pump;
    const auto added = Run<CorvaneAddProjectToSyncOutput>(add);
    EXPECT_TRUE(added.Errors.empty());
    EXPECT_FALSE(added.TaskId.empty());
    EXPECT_EQ(std::vector<std::int32_t>{102}, Codes(Run<CorvaneAddProjectToSyncOutput>(add)));
    add.ProjectURN = "urn:corvane:project:nothing";
    EXPECT_EQ(std::vector<std::int32_t>{8}, Codes(Run<CorvaneAddProjectToSyncOutput>(add)));
}

TEST_F(EmulatorHandler, NumbersAndRevisionIdsNeverRepeat) {
    std::set<std::string> numbers;
    CorvaneGetNextIdInput next;
    next.FileExtension = "par";
    next.NumberOfIds = 3;
    next.GetInitialRevId = true;
    next.DirectoryPath = Workspace_ + "/Gearbox";
    for (int call = 0; call < 3; ++call) {
        const auto out = Run<CorvaneGetNextIdOutput>(next);
        ASSERT_EQ(3u, out.NextIdInfo.size());
        for (const auto& info : out.NextIdInfo) {
            EXPECT_TRUE(numbers.insert(info->Number.str()).second) << info->Number.str();
            EXPECT_EQ("A", info->Revid.str());
        }
    }
    next.FileExtension = "txt";
    EXPECT_EQ(std::vector<std::int32_t>{18}, Codes(Run<CorvaneGetNextIdOutput>(next)));

    CorvaneGetNextRevisionIdInput revision;
    revision.DesignRevisionIdentifiers.emplace_back(new CorvaneDesignIdentifier());
    revision.DesignRevisionIdentifiers.back()->Value = Gearbox; // has A and B
    const auto first = Run<CorvaneGetNextRevisionIdOutput>(revision);
    const auto second = Run<CorvaneGetNextRevisionIdOutput>(revision);
    EXPECT_EQ("C", first.NextRevisionIdInfo[0]->Revid.str());
    EXPECT_EQ("D", second.NextRevisionIdInfo[0]->Revid.str());
    EXPECT_EQ(Gearbox, first.NextRevisionIdInfo[0]->RevisionFilepath.str());
}

// The search by name: each design revision once, grouped by its project.
TEST_F(EmulatorHandler, DesignRevisionsAreFoundByName) {
    const struct {
        const char* name;
        std::size_t revisions;
    } cases[] = {{"Gearbox", 1}, {"gearbox", 1}, {"Nothing", 0}};
    for (const auto& c : cases) {
        CorvaneQueryDesignRevisionsInput query;
        auto& definition = Set(Set(query.RevisionCriteria).Definition);
        definition.SearchTerms.emplace_back(new Search::CorvaneSearchTerm());
        definition.SearchTerms.back()->Property = "name";
        definition.SearchTerms.back()->Value = c.name;
        const auto out = Run<CorvaneQueryDesignRevisionsOutput>(query);
        std::size_t found = 0;
        for (const auto& group : out.DesignRevisionInfo) {
            found += group->DesignRevision.size();
        }
        EXPECT_EQ(c.revisions, found) << c.name;
    }
}

TEST_F(EmulatorHandler, StructureAndWhereUsed) {
    CorvaneGetChildrenInput children;
    children.Identifier = Gearbox;
    const auto out = Run<CorvaneGetChildrenOutput>(children);
    ASSERT_EQ(1u, out.ParentChildRelationInfo.size());
    std::set<std::string> names;
    for (const auto& child : out.ParentChildRelationInfo[0]->ChildRelationInfos) {
        names.insert(child->ChildDocumentInfo->FilePaths[0].str());
        EXPECT_FALSE(child->RelationUrn.empty());
    }
    EXPECT_EQ(
        (std::set<std::string>{Workspace_ + "/Gearbox/Shaft/shaft-assembly.asm", Housing, Cover}),
        names);

    CorvaneQueryPrimaryObjectsInput used;
    used.Identifier = Gearbox;
    used.RelationTypes.push_back("DrawingOf");
    const auto drawings = Run<CorvaneQueryPrimaryObjectsOutput>(used);
    ASSERT_EQ(1u, drawings.QueryRelationInfos[0]->Relations.size());
    EXPECT_EQ(Workspace_ + "/Gearbox/Drawings/gearbox.pwd",
              drawings.QueryRelationInfos[0]->Relations[0]->RelatedDocument->FilePaths[0].str());
    used.Identifier = Shaft;
    used.RelationTypes.push_back("DesignChildRelation");
    EXPECT_EQ(1u,
              Run<CorvaneQueryPrimaryObjectsOutput>(used).QueryRelationInfos[0]->Relations.size());

    // A new child, then the same again, then removed by its URN (empty URNs are passed over).
    CorvaneAddChildrenInput add;
    add.ParentChildRelationInfos.emplace_back(new CorvaneAddChildInputInfo());
    add.ParentChildRelationInfos[0]->ParentIdentifier = Gearbox;
    add.ParentChildRelationInfos[0]->ChildRevisionInfos.emplace_back(
        new CorvaneChildRevisionInfo());
    add.ParentChildRelationInfos[0]->ChildRevisionInfos[0]->Identifier = Shaft;
    const auto added = Run<CorvaneAddChildrenOutput>(add);
    ASSERT_TRUE(added.Errors.empty());
    const std::string urn =
        added.ParentChildRelationInfo[0]->ChildRelationInfos[0]->RelationUrn.str();
    EXPECT_EQ(std::vector<std::int32_t>{21}, Codes(Run<CorvaneAddChildrenOutput>(add)));
    CorvaneRemoveChildrenInput remove;
    remove.RelationURNs.push_back(urn);
    remove.RelationURNs.push_back("");
    EXPECT_TRUE(Run<CorvaneRemoveChildrenOutput>(remove).Errors.empty());
    EXPECT_EQ(3u, Run<CorvaneGetChildrenOutput>(children)
                      .ParentChildRelationInfo[0]
                      ->ChildRelationInfos.size());
    EXPECT_EQ(std::vector<std::int32_t>{8}, Codes(Run<CorvaneRemoveChildrenOutput>(remove)));
}

TEST_F(EmulatorHandler, EnvelopeErrors) {
    EXPECT_EQ(std::vector<std::int32_t>{4},
              Codes(CommandOutputBase(Raw(R"({"Command":"FLY","SessionId":")" + session + "\"}"))));
    for (const std::string bad : {"", "{", "[]", "{\"Command\":5}", "{} {}",
                                  "{\"Command\":\"GETCONNECTIONSTATUS\",\"Version\":2}"}) {
        EXPECT_EQ(std::vector<std::int32_t>{7}, Codes(CommandOutputBase(Raw(bad)))) << bad;
    }
    Core::CommandIO::CommandInputBase status("GETCONNECTIONSTATUS");
    EXPECT_TRUE(Run<CommandOutputBase>(status).Errors.empty());
    session = "no-such-session";
    EXPECT_EQ(std::vector<std::int32_t>{3}, Codes(Run<CommandOutputBase>(status)));
}

TEST_F(EmulatorHandler, OfflineSignedOutAndFaults) {
    Core::CommandIO::CommandInputBase status("GETCONNECTIONSTATUS");
    Control(R"({"Action":"offline"})");
    EXPECT_EQ(std::vector<std::int32_t>{6}, Codes(Run<CommandOutputBase>(status)));
    EXPECT_EQ(std::vector<std::int32_t>{6}, Codes(Lock({Shaft})));
    EXPECT_EQ("", Property(Shaft, 1, "LockedBy")); // local questions are still answered
    Control(R"({"Action":"online"})");
    EXPECT_TRUE(Run<CommandOutputBase>(status).Errors.empty());

    Control(
        R"({"Action":"fault","Command":"LOCKDESIGNREVISIONS","FailCode":2,"Times":1,"LatencyMs":250})");
    const Answer failed = handler.Handle("execute", [&] {
        CorvaneLockDesignRevisionsInput in;
        in.SessionId = session;
        in.DesignIdentifiers.emplace_back(new CorvaneDesignIdentifier());
        in.DesignIdentifiers.back()->Value = Shaft;
        return in.ToJson().str();
    }());
    EXPECT_EQ(250u, failed.delayMs);
    EXPECT_EQ(std::vector<std::int32_t>{2}, Codes(CommandOutputBase(failed.text)));
    EXPECT_EQ("", Property(Shaft, 1, "LockedBy"));
    EXPECT_TRUE(Lock({Shaft}).Errors.empty()); // only once

    Control(R"({"Action":"signout"})");
    EXPECT_EQ(std::vector<std::int32_t>{3}, Codes(Run<CommandOutputBase>(status)));
    EXPECT_TRUE(Register().empty());
    Control(R"({"Action":"signin"})");
    session = Register();
    EXPECT_FALSE(session.empty());
    EXPECT_TRUE(Run<CommandOutputBase>(status).Errors.empty());
}

// Every command, each with bodies a client should never send: each answers an error and changes
// nothing.
TEST_F(EmulatorHandler, HostileBodiesGetErrorsAndChangeNothing) {
    const std::string before = Control(R"({"Action":"documents"})");
    const std::string deep = std::string(100000, '[') + std::string(100000, ']');
    const std::string huge(50u * 1024u * 1024u, 'x');
    for (const auto& [command, ignored] : handler.Commands()) {
        const std::string head =
            R"({"Command":")" + command + R"(","SessionId":")" + session + R"(","Version":1)";
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
        std::vector<std::string> bodies = {
            head,                                // truncated
            head + ",\"Paths\":[" + deep + "]}", // nested 100,000 deep
            head + ",\"x\":" + deep + "}",
            head + ",\"Paths\":[\"\xC3\x28\"]}", // invalid UTF-8
            R"({"Command":")" + command + R"(","SessionId":")" + huge + "\"}",
            R"({"Command":")" + command + R"(","SessionId":5})"};
        // The session commands read no key but the two of the envelope.
        if (command != "GETCONNECTIONSTATUS" && command != "GETSESSIONINFO" &&
            command != "GETCORVANEROOTFOLDERS") {
            bodies.push_back(wrongKinds);
        }
        for (const std::string& body : bodies) {
            const CommandOutputBase out(Raw(body));
            EXPECT_FALSE(out.Errors.empty()) << command << ": " << body.substr(0, 120);
        }
    }
    EXPECT_EQ(before, Control(R"({"Action":"documents"})"));
}

// A database written by this emulator, then marked as another emulator would have left it: the
// first one kept its version as a row of its settings, before the database's user_version.
TEST_F(EmulatorHandler, AnswersEveryCommandOfTheCatalogueAndNoOther) {
    std::set<std::string> catalogue;
    vanto::protocol::ForEachCommand(vanto::protocol::Catalogue{}, [&](auto tag) {
        catalogue.insert(decltype(tag)::Type::CommandName);
    });
    std::set<std::string> answered;
    for (const auto& [name, command] : handler.Commands()) {
        answered.insert(name);
    }
    EXPECT_EQ(catalogue, answered);
}

TEST(EmulatorStore, OpensOrMovesOverKnownVersionsAndRefusesOthers) {
    const struct {
        const char* marking;
        bool opens;
    } cases[] = {
        {"", true},
        {"PRAGMA user_version = 0; INSERT INTO meta VALUES ('schema_version', '1')", true},
        {"PRAGMA user_version = 0; INSERT INTO meta VALUES ('schema_version', '99')", false},
        {"PRAGMA user_version = 0", false},
        {"PRAGMA user_version = 99", false},
    };
    const auto path = std::filesystem::temp_directory_path() / "vanto-schema-version.db";
    for (const auto& c : cases) {
        std::filesystem::remove(path);
        Store(path.string()).EnsureUser("Cy");
        Database(path.string()).Execute(c.marking);
        if (!c.opens) {
            EXPECT_THROW(Store{path.string()}, SqliteError) << c.marking;
            continue;
        }
        Store store(path.string());
        EXPECT_TRUE(store.FindUser("Cy")) << c.marking;
        EXPECT_EQ(1, Database(path.string()).QueryInt("PRAGMA user_version")) << c.marking;
        EXPECT_EQ("", store.Setting("schema_version")) << c.marking;
    }
    std::filesystem::remove(path);
}

} // namespace
