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
    using Row = std::pair<const char*, std::wstring>; // the Status array's entries, then after
    const FileLockStatusMap before{{L"/w/a.par", {}}, {L"/w/b.par", {true, false, false, L"bob"}}};
    const std::vector<Row> rows = {
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
    for (const auto& [status, after] : rows) {
        SCOPED_TRACE(status);
        FileLockStatusMap files = before;
        MarkLocks(Read<CorvaneLockDesignRevisionsOutput>(std::string("{") + NoLockErrors +
                                                         R"("Status":[)" + status + "]}"),
                  files, GUserText(L"ann"));
        EXPECT_EQ(after, Show(files));
    }
}

TEST(AnswerMapping, ClearRefusedLocksClearsTheFilesOfEveryCodeButObjectLocked) {
    using Row = std::tuple<const char*, bool, std::wstring>; // errors, refused, after
    const FileLockStatusMap before{{L"/w/a.par", {true, true, false, L"ann"}},
                                   {L"/w/b.par", {true, false, false, L"bob"}}};
    const std::vector<Row> rows = {
        {R"({"ErrorCode":13,"Ids":["/w/a.par"]})", false, L"/w/a.par=XU:ann /w/b.par=X-:bob "},
        // The holder's name stays; ids match ignoring case and unknown ones are passed over.
        {R"({"ErrorCode":12,"Ids":["/W/A.PAR","/w/none.par"]},{"ErrorCode":5,"Ids":["/w/b.par"]})",
         true, L"/w/a.par=--:ann /w/b.par=--:bob "},
    };
    for (const auto& [errors, refused, after] : rows) {
        SCOPED_TRACE(errors);
        FileLockStatusMap files = before;
        EXPECT_EQ(refused, ClearRefusedLocks(
                               Read<CorvaneLockDesignRevisionsOutput>(
                                   std::string(R"({"Errors":[)") + errors + R"(],"Status":[]})"),
                               files));
        EXPECT_EQ(after, Show(files));
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

// The lock group (1) gives the holder, the document group (2) the stamp and the document id.
TEST(AnswerMapping, ApplyLockedByAndDocumentStampTakeTheFirstValueOfTheirGroup) {
    // The file, then what it gives a file checked out by bob, stamp "old", document "d-0".
    using Row = std::pair<FilePropertyEntry, std::wstring>;
    const std::vector<Row> rows = {
        {FileWith({{1, L"lockedby", {L"Ann", L"x"}},
                   {2, L"CONSISTENCYSTAMP", {L"v7", L"v8"}},
                   {2, L"documentid", {L"d-1"}}}),
         L"/w/a.par=XU:Ann v7,d-1"},
        {FileWith({{1, L"LockedBy", {L"eve"}}, {1, L"consistencyStamp", {L"v-lock"}}}),
         L"/w/a.par=X-:eve old,d-0"},
        // An empty holder frees the file but keeps the old name; an empty stamp is overwritten.
        {FileWith({{1, L"LockedBy", {L""}},
                   {2, L"consistencyStamp", {L""}},
                   {2, L"consistencyStamp", {L"v9"}}}),
         L"/w/a.par=--:bob v9,d-0"},
        // Another group, another name or no values change nothing.
        {FileWith({{2, L"LockedBy", {L""}},
                   {1, L"LockedAt", {L""}},
                   {1, L"LockedBy", {}},
                   {2, L"DocumentId", {}}}),
         L"/w/a.par=X-:bob old,d-0"},
        {FileWith({{1, L"LockedBy", {L""}}, {1, L"LockedBy", {L"ann"}}}),
         L"/w/a.par=XU:ann old,d-0"},
    };
    for (const auto& [file, after] : rows) {
        FileLockStatusMap files{{L"/w/a.par", {true, false, false, L"bob"}}};
        ApplyLockedBy(file, files.begin()->second, GUserText(L"ann"));
        DocumentStamp stamp{L"old", L"d-0"};
        ApplyDocumentStamp(file, stamp);
        EXPECT_EQ(after,
                  Show(files) + stamp.consistencyStamp.wstr() + L"," + stamp.documentId.wstr());
    }
}

// A first flag that is set is CallTable's IsFileSynchronized row.
TEST(AnswerMapping, MonitoredPathsKeepTheFirstFlagOfEachPath) {
    const auto output = Read<CorvaneIsPathMonitoredOutput>(
        R"({"PathToIsMonitored":[{"Key":"/w/\u00e9.par","Value":true},)"
        R"({"Key":"/w/b.par","Value":true},{"Key":"/w/\u00e9.par","Value":false}]})");
    PathMonitoredMap monitored{{L"/w/b.par", false}};
    AddMonitored(output, monitored);
    EXPECT_EQ((PathMonitoredMap{{L"/w/b.par", false}, {L"/w/\u00e9.par", true}}), monitored);
    EXPECT_FALSE(FirstMonitored(Read<CorvaneIsPathMonitoredOutput>(R"({"PathToIsMonitored":[]})")));
}

TEST(AnswerMapping, StoreFilePathsGivesEachHeldIdentifierItsLastPath) {
    using Row = std::pair<const char*, FileUidPathMap>; // after: from {id-1: "", id-3: old}
    const std::vector<Row> rows = {
        // Exact identifiers; no paths leave the old one; identifiers not held are passed over.
        {R"({"Key":"id-1","Values":["/w/a.par","/w/\u00e9.par"]},{"Key":"ID-3","Values":["/w/b"]},)"
         R"({"Key":"id-3","Values":[]},{"Key":"id-9","Values":["/w/z.par"]})",
         {{L"id-1", L"/w/\u00e9.par"}, {L"id-3", L"old"}}},
        {R"({"Key":"id-3","Values":["/w/b.par"]},{"Key":"id-3","Values":["/w/c.par"]})",
         {{L"id-1", L""}, {L"id-3", L"/w/c.par"}}},
    };
    for (const auto& [pairs, after] : rows) {
        SCOPED_TRACE(pairs);
        FileUidPathMap paths{{L"id-1", L""}, {L"id-3", L"old"}};
        StoreFilePaths(Read<CorvaneGetFilePathByUidOutput>(
                           std::string(R"({"DocumentIdToFilePathMap":[)") + pairs + "]}"),
                       paths);
        EXPECT_EQ(after, paths);
    }
}

// Per entry: path, component, component revision, document, their URNs, space, container. A
// later file object overwrites every field, empty ones included; a new answer entry starts from
// an empty context.
TEST(AnswerMapping, AppendContextsAddsOneEntryPerPathWithItsWholeContext) {
    FileContextList contexts{{L"/w/earlier.par", {}}};
    AppendContexts(
        Read<CorvaneGetFileContextInformationOutput>(
            R"({"FileContextInformation":[{"ContextInformation":{"CollaborationSpaceId":"cs",)"
            R"("ContainerId":"p-1"},"FileInformation":[{"FilePaths":[],"ComponentId":"stale",)"
            R"("DocumentUrn":"urn:stale"},{"FilePaths":["/w/a.par","/w/a2.par"],"ComponentId":"c",)"
            R"("ComponentRevisionId":"cr","DocumentId":"d","ComponentUrn":"urn:c",)"
            R"("ComponentRevisionUrn":"urn:cr"}]},)"
            R"({"FileInformation":[{"FilePaths":["/w/b.par"],"DocumentId":"e"}]}]})"),
        contexts);
    EXPECT_EQ(L"/w/earlier.par,,,,,,,,, /w/a.par,c,cr,d,urn:c,urn:cr,,cs,p-1, "
              L"/w/a2.par,c,cr,d,urn:c,urn:cr,,cs,p-1, /w/b.par,,,e,,,,,, ",
              Show(contexts));
}

TEST(AnswerMapping, NewerVersionFoundComparesTheNamedDocumentsStamp) {
    using Row = std::pair<const char*, bool>; // pairs, newer
    // Two files of one document: the first in the map's order decides for it.
    const DocumentStampMap stamps{{L"/w/a.par", {L"stamp-7", L"DOC-1"}},
                                  {L"/w/b.par", {L"stamp-8", L"doc-1"}},
                                  {L"/w/c.par", {L"s-3", L""}}};
    const std::vector<Row> rows = {
        {R"({"Key":"doc-1","Value":"stamp-8"})", true},
        {R"({"Key":"Doc-1","Value":"STAMP-7"})", false},
        // The last pair that names a document decides; pairs naming none change nothing.
        {R"({"Key":"DOC-1","Value":"stamp-8"},{"Key":"doc-1","Value":"stamp-7"})", false},
        // An empty identifier names the document without an id.
        {R"({"Key":"","Value":"s-4"})", true},
    };
    for (const auto& [pairs, newer] : rows) {
        SCOPED_TRACE(pairs);
        EXPECT_EQ(newer, NewerVersionFound(
                             Read<CorvaneCheckNewerVersionOnCloudOutput>(
                                 std::string(R"({"IdentifierToNewerVersionId":[)") + pairs + "]}"),
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
    const auto child = [](const std::string& paths, const std::string& urn) {
        return Relation("ChildDocumentInfo", paths, urn);
    };
    // A child without a CAD path takes the key before it (empty at first); a key already present
    // keeps its value. Only the first parent counts.
    const std::string answer = R"({"ParentChildRelationInfo":[{"ChildRelationInfos":[)" +
                               child(R"("/w/readme.txt")", "urn:r") + "," +
                               child(R"("/w/a.txt","/w/a.asm","/w/a.par")", "urn:1") + "," +
                               child(R"("/w/B.PAR")", "urn:2") + "," + child("", "urn:3") + "," +
                               child(R"("/w/d.Psm")", "urn:5") + "," +
                               child(R"("/w/held.par","/w/e.pwd")", "urn:6") + "," +
                               child(R"("/w/e.pwd")", "urn:7") + R"(]},{"ChildRelationInfos":[)" +
                               child(R"("/w/g.par")", "urn:g") + "]}]}";
    RelationMap children{{L"/w/held.par", L"urn:held"}};
    AddChildRelations(Read<CorvaneGetChildrenOutput>(answer), children);
    EXPECT_EQ((RelationMap{{L"", L"urn:r"},
                           {L"/w/a.asm", L"urn:1"},
                           {L"/w/B.PAR", L"urn:2"},
                           {L"/w/d.Psm", L"urn:5"},
                           {L"/w/held.par", L"urn:held"},
                           {L"/w/e.pwd", L"urn:7"}}),
              children);
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

    // The infos, then the revision taken from "A".
    for (const auto& [infos, after] : std::vector<std::pair<const char*, const wchar_t*>>{
             {"", L"A"},
             {R"({"Revid":"B"},{"Revid":"C"})", L"B"},
             {R"({"RevisionFilepath":"/w/a.par"})", L""}}) {
        GUserText revision(L"A");
        TakeFirstRevisionId(Read<CorvaneGetNextRevisionIdOutput>(
                                std::string(R"({"NextRevisionIdInfo":[)") + infos + "]}"),
                            revision);
        EXPECT_EQ(after, revision.wstr());
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
    using Row = std::pair<PropertyNameSet, std::wstring>; // filter, added
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
    for (const auto& [filter, added] : rows) {
        FilePropertyList properties(1);
        AppendProperties(output, filter, properties);
        EXPECT_EQ(L":|" + added, Show(properties));
    }
}

} // namespace
