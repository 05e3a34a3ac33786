// How each answer lands in the caller's data: one row per case, the answer as the connector's JSON
// text, the caller's data before and after. The whole calls (requests, log lines, results) are
// the scenario tests' concern.
#include "fileservices/CheckOutCheckIn.h"
#include "fileservices/ContainersNumbering.h"
#include "fileservices/IdentityContext.h"
#include "fileservices/PropertiesDataObjects.h"
#include "fileservices/StructureWhereUsed.h"
#include "fileservices/VersionsRevisions.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

namespace {

using namespace vanto::fileservices;

template <class Output> Output Read(const std::string& json) {
    return Output(Core::TevString(json));
}

// "path=XU:holder": checked out (X), by the user (U), and the holder's name.
std::wstring Show(const FileLockStatusMap& files) {
    std::wstring text;
    for (const auto& [path, s] : files) {
        text += path.wstr() + L"=" + (s.isCheckedOut ? L"X" : L"-") +
                (s.isCheckedOutByCurrentUser ? L"U" : L"-") + L":" + s.checkedOutBy.wstr() + L" ";
    }
    return text;
}

std::wstring Show(const FileCheckInList& files) {
    std::wstring text;
    for (const FileCheckInEntry& e : files) {
        text += e.fileName.wstr() + L"=" + std::to_wstring(e.errorCode) + L":" + e.lockedBy.wstr() +
                L" ";
    }
    return text;
}

// The texts, each followed by a comma, and a space after them all.
template <class... Texts> std::wstring Fields(const Texts&... texts) {
    return ((texts.wstr() + L",") + ...) + L" ";
}

std::wstring Show(const FileContextList& contexts) {
    std::wstring text;
    for (const auto& [path, c] : contexts) {
        text +=
            Fields(path, c.componentId, c.componentRevisionId, c.documentId, c.componentUrn,
                   c.componentRevisionUrn, c.documentUrn, c.collaborationSpaceId, c.containerId);
    }
    return text;
}

std::wstring Show(const ContainerList& containers) {
    std::wstring text;
    for (const ContainerEntry& c : containers) {
        text += Fields(c.localFilePath, c.containerName, c.containerId, c.containerUrn,
                       c.collaborationSpaceId);
    }
    return text;
}

// "path type name(type)=value,value" per object-type group.
std::wstring Show(const FilePropertyList& files) {
    std::wstring text;
    for (const FilePropertyEntry& file : files) {
        text += file.filePath.wstr() + L":";
        for (const ObjectTypeProperties& group : file.objectTypes) {
            text += L" " + std::to_wstring(group.objectType);
            for (const PropertyEntry& property : group.properties) {
                text += L" " + property.name.wstr() + L"(" + std::to_wstring(property.type) + L")=";
                for (const GUserText& value : property.values) {
                    text += value.wstr() + L",";
                }
            }
        }
        text += L"|";
    }
    return text;
}

constexpr const char* NoLockErrors = R"("Errors":[],)";

TEST(AnswerMapping, MarkLocksMarksTheFilesTheLockInfosNameByTheirHolder) {
    struct Row {
        const char* status; // the Status array's entries
        std::wstring after;
    };
    const FileLockStatusMap before{{L"/w/a.par", {}}, {L"/w/b.par", {true, false, false, L"bob"}}};
    const std::vector<Row> rows = {
        {"", L"/w/a.par=--: /w/b.par=X-:bob "},
        // The holder's name is compared with the user's ignoring case; so are the file names.
        {R"({"DesignIdentifier":"/W/A.PAR","LockedBy":"ANN"})",
         L"/w/a.par=XU:ANN /w/b.par=X-:bob "},
        // In any order, with names the map does not hold passed over; the last one for a file wins.
        {R"({"DesignIdentifier":"/w/zzz.par","LockedBy":"ann"},)"
         R"({"DesignIdentifier":"/w/b.par","LockedBy":"ann"},)"
         R"({"DesignIdentifier":"/w/a.par","LockedBy":"eve"},)"
         R"({"DesignIdentifier":"/w/b.par","LockedBy":"eve"})",
         L"/w/a.par=X-:eve /w/b.par=X-:eve "},
        // A name is compared only up to a null character, as the map compares its keys.
        {R"({"DesignIdentifier":"/w/a.par\u0000x","LockedBy":"ann"})",
         L"/w/a.par=XU:ann /w/b.par=X-:bob "},
        {R"({"DesignIdentifier":"/w/a.pa","LockedBy":"ann"})", L"/w/a.par=--: /w/b.par=X-:bob "},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.status);
        FileLockStatusMap files = before;
        MarkLocks(Read<CorvaneLockDesignRevisionsOutput>(std::string("{") + NoLockErrors +
                                                         R"("Status":[)" + row.status + "]}"),
                  files, GUserText(L"ann"));
        EXPECT_EQ(row.after, Show(files));
    }
}

TEST(AnswerMapping, ClearRefusedLocksClearsTheFilesOfEveryCodeButObjectLocked) {
    struct Row {
        const char* errors;
        bool refused;
        std::wstring after;
    };
    const FileLockStatusMap before{{L"/w/a.par", {true, true, false, L"ann"}},
                                   {L"/w/b.par", {true, false, false, L"bob"}}};
    const std::vector<Row> rows = {
        {"", false, L"/w/a.par=XU:ann /w/b.par=X-:bob "},
        {R"({"ErrorCode":13,"Ids":["/w/a.par"]})", false, L"/w/a.par=XU:ann /w/b.par=X-:bob "},
        // The holder's name stays; ids match ignoring case and unknown ones are passed over.
        {R"({"ErrorCode":12,"Ids":["/W/A.PAR","/w/none.par"]})", true,
         L"/w/a.par=--:ann /w/b.par=X-:bob "},
        {R"({"ErrorCode":13,"Ids":["/w/a.par"]},{"ErrorCode":1,"Ids":[]})", true,
         L"/w/a.par=XU:ann /w/b.par=X-:bob "},
        {R"({"ErrorCode":1,"Ids":["/w/b.par"]},{"ErrorCode":5,"Ids":["/w/a.par"]})", true,
         L"/w/a.par=--:ann /w/b.par=--:bob "},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.errors);
        FileLockStatusMap files = before;
        EXPECT_EQ(row.refused, ClearRefusedLocks(Read<CorvaneLockDesignRevisionsOutput>(
                                                     std::string(R"({"Errors":[)") + row.errors +
                                                     R"(],"Status":[]})"),
                                                 files));
        EXPECT_EQ(row.after, Show(files));
    }
}

TEST(AnswerMapping, ApplyUnlockResultsUpdatesTheFirstEntryOfEachSentName) {
    struct Row {
        const char* status;
        std::wstring after;
    };
    const FileCheckInList before{
        {L"/w/a.par", 0, L""}, {L"/w/b.par", 0, L""}, {L"/w/a.par", 0, L""}};
    const std::vector<Row> rows = {
        {"", L"/w/a.par=0: /w/b.par=0: /w/a.par=0: "},
        // Matching is exact; the first entry of a name takes every answer for it, the last winning.
        {R"({"DesignIdentifier":"/w/a.par","LockedBy":"eve","ErrorCode":12},)"
         R"({"DesignIdentifier":"/W/B.PAR","ErrorCode":7},)"
         R"({"DesignIdentifier":"/w/b.par","ErrorCode":5},)"
         R"({"DesignIdentifier":"/w/a.par","LockedBy":"b\u00f6b","ErrorCode":9})",
         L"/w/a.par=9:b\u00f6b /w/b.par=5: /w/a.par=0: "},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.status);
        FileCheckInList files = before;
        // The names come from the request made from the list.
        CorvaneUnLockDesignRevisionsInput sent;
        for (const char* name : {"/w/a.par", "/w/b.par", "/w/a.par"}) {
            sent.DesignIdentifiers.emplace_back(new Corvane::DataTypes::CorvaneDesignIdentifier());
            sent.DesignIdentifiers.back()->Value = name;
        }
        ApplyUnlockResults(Read<CorvaneUnLockDesignRevisionsOutput>(std::string(R"({"Status":[)") +
                                                                    row.status + "]}"),
                           files, sent);
        EXPECT_EQ(row.after, Show(files));
    }
}

// A file's properties: one group per (object type, name, values) triple.
FilePropertyEntry FileWith(std::vector<std::tuple<int, const wchar_t*, PathList>> properties) {
    FilePropertyEntry file{L"/w/a.par", {}};
    for (auto& [type, name, values] : properties) {
        file.objectTypes.push_back({type, {{name, 0, std::move(values)}}});
    }
    return file;
}

TEST(AnswerMapping, ApplyLockedByTakesTheFirstValueOfTheLockGroup) {
    struct Row {
        FilePropertyEntry file;
        std::wstring after; // from a file checked out by bob
    };
    const std::vector<Row> rows = {
        {FileWith({}), L"/w/a.par=X-:bob "},
        {FileWith({{1, L"lockedby", {L"Ann", L"x"}}}), L"/w/a.par=XU:Ann "},
        {FileWith({{1, L"LockedBy", {L"eve"}}}), L"/w/a.par=X-:eve "},
        // An empty holder frees the file but keeps the old name.
        {FileWith({{1, L"LockedBy", {L""}}}), L"/w/a.par=--:bob "},
        // Another group, another name or no values change nothing.
        {FileWith({{2, L"LockedBy", {L""}}, {1, L"LockedAt", {L""}}, {1, L"LockedBy", {}}}),
         L"/w/a.par=X-:bob "},
        {FileWith({{1, L"LockedBy", {L""}}, {1, L"LockedBy", {L"ann"}}}), L"/w/a.par=XU:ann "},
    };
    for (const Row& row : rows) {
        FileLockStatusMap files{{L"/w/a.par", {true, false, false, L"bob"}}};
        ApplyLockedBy(row.file, files.begin()->second, GUserText(L"ann"));
        EXPECT_EQ(row.after, Show(files));
    }
}

TEST(AnswerMapping, ApplyDocumentStampTakesTheFirstValuesOfTheDocumentGroup) {
    struct Row {
        FilePropertyEntry file;
        std::wstring stamp, documentId; // from "old", "d-0"
    };
    const std::vector<Row> rows = {
        {FileWith({}), L"old", L"d-0"},
        {FileWith({{2, L"CONSISTENCYSTAMP", {L"v7", L"v8"}}, {2, L"documentid", {L"d-1"}}}), L"v7",
         L"d-1"},
        {FileWith({{1, L"consistencyStamp", {L"v-lock"}}, {2, L"DocumentId", {}}}), L"old", L"d-0"},
        {FileWith({{2, L"consistencyStamp", {L""}}, {2, L"consistencyStamp", {L"v9"}}}), L"v9",
         L"d-0"},
    };
    for (const Row& row : rows) {
        DocumentStamp stamp{L"old", L"d-0"};
        ApplyDocumentStamp(row.file, stamp);
        EXPECT_EQ(row.stamp, stamp.consistencyStamp.wstr());
        EXPECT_EQ(row.documentId, stamp.documentId.wstr());
    }
}

TEST(AnswerMapping, MonitoredPathsKeepTheFirstFlagOfEachPath) {
    struct Row {
        const char* entries;
        PathMonitoredMap after; // from {b.par: false}
        bool first;
    };
    const std::vector<Row> rows = {
        {"", {{L"/w/b.par", false}}, false},
        {R"({"Key":"/w/\u00e9.par","Value":true},{"Key":"/w/b.par","Value":true},)"
         R"({"Key":"/w/\u00e9.par","Value":false})",
         {{L"/w/b.par", false}, {L"/w/\u00e9.par", true}},
         true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.entries);
        const auto output = Read<CorvaneIsPathMonitoredOutput>(
            std::string(R"({"PathToIsMonitored":[)") + row.entries + "]}");
        PathMonitoredMap monitored{{L"/w/b.par", false}};
        AddMonitored(output, monitored);
        EXPECT_EQ(row.after, monitored);
        EXPECT_EQ(row.first, FirstMonitored(output));
    }
}

TEST(AnswerMapping, StoreFilePathsGivesEachHeldIdentifierItsLastPath) {
    struct Row {
        const char* pairs;
        FileUidPathMap after; // from {id-1: "", id-3: old}
    };
    const std::vector<Row> rows = {
        {"", {{L"id-1", L""}, {L"id-3", L"old"}}},
        // Exact identifiers; no paths leave the old one; identifiers not held are passed over.
        {R"({"Key":"id-1","Values":["/w/a.par","/w/\u00e9.par"]},{"Key":"ID-3","Values":["/w/b"]},)"
         R"({"Key":"id-3","Values":[]},{"Key":"id-9","Values":["/w/z.par"]})",
         {{L"id-1", L"/w/\u00e9.par"}, {L"id-3", L"old"}}},
        {R"({"Key":"id-3","Values":["/w/b.par"]},{"Key":"id-3","Values":["/w/c.par"]})",
         {{L"id-1", L""}, {L"id-3", L"/w/c.par"}}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.pairs);
        FileUidPathMap paths{{L"id-1", L""}, {L"id-3", L"old"}};
        StoreFilePaths(Read<CorvaneGetFilePathByUidOutput>(
                           std::string(R"({"DocumentIdToFilePathMap":[)") + row.pairs + "]}"),
                       paths);
        EXPECT_EQ(row.after, paths);
    }
}

TEST(AnswerMapping, AppendContextsAddsOneEntryPerPathWithItsWholeContext) {
    struct Row {
        const char* entries;
        std::wstring
            added; // path, component, component revision, document, their URNs, space, container
    };
    const std::vector<Row> rows = {
        {"", L""},
        // A later file object overwrites every field, empty ones included; a new answer entry
        // starts from an empty context.
        {R"({"ContextInformation":{"CollaborationSpaceId":"cs","ContainerId":"p-1"},)"
         R"("FileInformation":[{"FilePaths":[],"ComponentId":"stale","DocumentUrn":"urn:stale"},)"
         R"({"FilePaths":["/w/a.par","/w/a2.par"],"ComponentId":"c","ComponentRevisionId":"cr",)"
         R"("DocumentId":"d","ComponentUrn":"urn:c","ComponentRevisionUrn":"urn:cr"}]},)"
         R"({"FileInformation":[{"FilePaths":["/w/b.par"],"DocumentId":"e"}]})",
         L"/w/a.par,c,cr,d,urn:c,urn:cr,,cs,p-1, /w/a2.par,c,cr,d,urn:c,urn:cr,,cs,p-1, "
         L"/w/b.par,,,e,,,,,, "},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.entries);
        FileContextList contexts{{L"/w/earlier.par", {}}};
        AppendContexts(Read<CorvaneGetFileContextInformationOutput>(
                           std::string(R"({"FileContextInformation":[)") + row.entries + "]}"),
                       contexts);
        EXPECT_EQ(L"/w/earlier.par,,,,,,,,, " + row.added, Show(contexts));
    }
}

TEST(AnswerMapping, NewerVersionFoundComparesTheNamedDocumentsStamp) {
    struct Row {
        const char* pairs;
        bool newer;
    };
    // Two files of one document: the first in the map's order decides for it.
    const DocumentStampMap stamps{{L"/w/a.par", {L"stamp-7", L"DOC-1"}},
                                  {L"/w/b.par", {L"stamp-8", L"doc-1"}},
                                  {L"/w/c.par", {L"s-3", L""}}};
    const std::vector<Row> rows = {
        {"", false},
        {R"({"Key":"doc-1","Value":"stamp-8"})", true},
        {R"({"Key":"Doc-1","Value":"STAMP-7"})", false},
        // The last pair that names a document decides; pairs naming none change nothing.
        {R"({"Key":"DOC-1","Value":"stamp-8"},{"Key":"doc-1","Value":"stamp-7"})", false},
        // An empty identifier names the document without an id.
        {R"({"Key":"","Value":"s-4"})", true},
        {R"({"Key":"","Value":"s-3"})", false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.pairs);
        EXPECT_EQ(row.newer,
                  NewerVersionFound(
                      Read<CorvaneCheckNewerVersionOnCloudOutput>(
                          std::string(R"({"IdentifierToNewerVersionId":[)") + row.pairs + "]}"),
                      stamps));
    }
}

// A child or where-used relation of `urn` whose document has `paths` ("" for none).
std::string Relation(const char* documentKey, const std::string& paths, const std::string& urn) {
    std::string relation = "{";
    if (!paths.empty()) {
        relation += "\"" + std::string(documentKey) + "\":{\"FilePaths\":[" + paths + "]},";
    }
    return relation + R"("RelationUrn":")" + urn + "\"}";
}

TEST(AnswerMapping, AddChildRelationsKeysEachChildByItsFirstCadPath) {
    struct Row {
        std::vector<std::string> children; // of the first parent
        RelationMap after;                 // from {held.par: urn:held}
    };
    const auto child = [](const std::string& paths, const std::string& urn) {
        return Relation("ChildDocumentInfo", paths, urn);
    };
    const std::vector<Row> rows = {
        {{}, {{L"/w/held.par", L"urn:held"}}},
        // A child without a CAD path takes the key before it (empty at first); a key already
        // present keeps its value.
        {{child(R"("/w/readme.txt")", "urn:r"),
          child(R"("/w/a.txt","/w/a.asm","/w/a.par")", "urn:1"), child(R"("/w/B.PAR")", "urn:2"),
          child("", "urn:3"), child(R"("/w/d.Psm")", "urn:5"),
          child(R"("/w/held.par","/w/e.pwd")", "urn:6"), child(R"("/w/e.pwd")", "urn:7")},
         {{L"", L"urn:r"},
          {L"/w/a.asm", L"urn:1"},
          {L"/w/B.PAR", L"urn:2"},
          {L"/w/d.Psm", L"urn:5"},
          {L"/w/held.par", L"urn:held"},
          {L"/w/e.pwd", L"urn:7"}}},
    };
    for (const Row& row : rows) {
        std::string answer = R"({"ParentChildRelationInfo":[{"ChildRelationInfos":[)";
        for (const std::string& c : row.children) {
            answer += (&c != row.children.data() ? "," : "") + c;
        }
        // Only the first parent counts.
        answer += R"(]},{"ChildRelationInfos":[)" + child(R"("/w/g.par")", "urn:g") + "]}]}";
        RelationMap children{{L"/w/held.par", L"urn:held"}};
        AddChildRelations(Read<CorvaneGetChildrenOutput>(answer), children);
        EXPECT_EQ(row.after, children);
    }
}

TEST(AnswerMapping, AddWhereUsedRelationsKeysEachRelationByItsLastPath) {
    const auto used = [](const std::string& paths, const std::string& urn) {
        return Relation("RelatedDocument", paths, urn);
    };
    // A relation without a related document keeps the key before it within its query, which
    // starts empty; a key already present keeps its value.
    const std::string answer = R"({"QueryRelationInfos":[{"Relations":[)" +
                               used(R"("/w/dwg1.dft","/w/dwg2.dft")", "urn:1") + "," +
                               used("", "urn:2") + "," + used(R"("/w/held.par")", "urn:held2") +
                               "," + used("", "urn:4") + R"(]},{"Relations":[)" +
                               used("", "urn:3") + "]}]}";
    RelationMap whereUsed{{L"/w/held.par", L"urn:held"}};
    AddWhereUsedRelations(Read<CorvaneQueryPrimaryObjectsOutput>(answer), whereUsed);
    EXPECT_EQ(
        (RelationMap{{L"", L"urn:3"}, {L"/w/dwg2.dft", L"urn:1"}, {L"/w/held.par", L"urn:held"}}),
        whereUsed);
}

TEST(AnswerMapping, RelationUrnsOfListsTheFoundChildrenFirstThenEmptyTexts) {
    struct Row {
        PathList childPaths;
        std::vector<std::string> urns;
    };
    const RelationMap children{{L"/w/a.par", L"urn:a"}, {L"/w/b.par", L"urn:\u00e9"}};
    const std::vector<Row> rows = {
        {{}, {}},
        {{L"/w/x.par", L"/w/b.par", L"/w/A.PAR", L"/w/a.par"}, {"urn:\xC3\xA9", "urn:a", "", ""}},
    };
    for (const Row& row : rows) {
        const auto urns = RelationUrnsOf(row.childPaths, children);
        EXPECT_EQ(row.urns, std::vector<std::string>(urns.begin(), urns.end()));
    }
}

TEST(AnswerMapping, ContainersPermissionsAndNumbersAreAddedToWhatTheCallerHas) {
    ContainerList containers(1);
    AppendContainers(
        Read<CorvaneGetAvailableContainersOutput>(
            R"({"ContainerInformation":[{"LocalFilePath":"/c/Proj\u00e9t",)"
            R"("ContainerType":0,"ContainerName":"Proj\u00e9t","ContainerId":"c-1",)"
            R"("ContainerUrn":"urn:c:1","ContainerOwnershipType":1,)"
            R"("CollaborationSpace":{"CollaborationSpaceId":"cs-1"}},)"
            R"({"LocalFilePath":"/c/Lib","ContainerName":"Lib","ContainerId":"c-2"}]})"),
        containers);
    EXPECT_EQ(L",,,,, /c/Proj\u00e9t,Proj\u00e9t,c-1,urn:c:1,cs-1, /c/Lib,Lib,c-2,,, ",
              Show(containers));

    AccessPermissionMap permissions{{L"/w/held.par", 0}};
    AddPermissions(Read<CorvaneGetAccessPermissionsOutput>(
                       R"({"AccessPermissionsInfo":[{"Path":"/w/a.par","AccessPermission":2},)"
                       R"({"Path":"/w/b.asm","AccessPermission":1},)"
                       R"({"Path":"/w/a.par","AccessPermission":3},)"
                       R"({"Path":"/w/held.par","AccessPermission":3}]})"),
                   permissions);
    EXPECT_EQ((AccessPermissionMap{{L"/w/a.par", 2}, {L"/w/b.asm", 1}, {L"/w/held.par", 0}}),
              permissions);

    ItemIdRevisionList ids{{L"900", L"C"}};
    AppendItemIds(Read<CorvaneGetNextIdOutput>(R"({"NextIdInfo":[{"Number":"1001","Revid":"A"},)"
                                               R"({"Number":"1002","Revid":"B"}]})"),
                  ids);
    EXPECT_EQ((ItemIdRevisionList{{L"900", L"C"}, {L"1001", L"A"}, {L"1002", L"B"}}), ids);

    struct Row {
        const char* infos;
        const wchar_t* revision; // from "A"
    };
    for (const Row& row : std::vector<Row>{{"", L"A"},
                                           {R"({"Revid":"B"},{"Revid":"C"})", L"B"},
                                           {R"({"RevisionFilepath":"/w/a.par"})", L""}}) {
        GUserText revision(L"A");
        TakeFirstRevisionId(Read<CorvaneGetNextRevisionIdOutput>(
                                std::string(R"({"NextRevisionIdInfo":[)") + row.infos + "]}"),
                            revision);
        EXPECT_EQ(row.revision, revision.wstr());
    }

    PathList names{L"kept"};
    AppendRevisionNames(
        Read<CorvaneQueryDesignRevisionsOutput>(
            R"({"DesignRevisionInfo":[{"DesignRevision":[{"Name":"bracket A"},)"
            R"({"Name":"bracket B"}]},{"DesignRevision":[{"Name":"br\u00e8cket"}]}]})"),
        names);
    EXPECT_EQ((PathList{L"kept", L"bracket A", L"bracket B", L"br\u00e8cket"}), names);
}

TEST(AnswerMapping, AppendPropertiesKeepsEveryGroupAndFiltersPropertiesByExactName) {
    struct Row {
        PropertyNameSet filter;
        std::wstring added;
    };
    const auto output = Read<CorvaneGetPropertiesOutput>(
        R"({"FilePropertiesArray":[{"FilePath":"/w/pi\u00e8ce.par",)"
        R"("ObjectTypeToPropertiesArray":[{"ObjectType":0,"Properties":[)"
        R"({"Name":"Material","PropertyType":1,"PropertyValues":["st\u00e9el","Al"]},)"
        R"({"Name":"Mass","PropertyType":3,"PropertyValues":["2.5"]}]},)"
        R"({"ObjectType":1,"Properties":[{"Name":"LockedBy"}]}]},{"FilePath":"/w/b.asm"}]})");
    const std::vector<Row> rows = {
        {{},
         L"/w/pi\u00e8ce.par: 0 Material(1)=st\u00e9el,Al, Mass(3)=2.5, 1 LockedBy(0)=|/w/b.asm:|"},
        // Groups whose properties are all filtered out are kept, empty.
        {{L"Mass", L"lockedby"}, L"/w/pi\u00e8ce.par: 0 Mass(3)=2.5, 1|/w/b.asm:|"},
    };
    for (const Row& row : rows) {
        FilePropertyList properties(1);
        AppendProperties(output, row.filter, properties);
        EXPECT_EQ(L":|" + row.added, Show(properties));
    }
}

} // namespace
