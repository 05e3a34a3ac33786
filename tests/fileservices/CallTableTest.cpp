// Whole calls through the real file-services interface, one row each: the answers the connector
// gives, the requests the call sends (in order), the lines it writes, its result and what it
// leaves in the caller's data. How each answer maps onto the caller's data in detail is
// AnswerMappingTest's concern; the exception paths are FaultInjectionTest's.
#include "fileservices/FileServicesFixture.h"

#include "fileservices/ReturnCodes.h"

#include <functional>
#include <string>
#include <vector>

namespace {

using testsupport::Lines;
using testsupport::Texts;

std::string Show(HRESULT result) {
    return result == S_OK ? "S_OK" : result == E_FAIL ? "E_FAIL" : std::to_string(result);
}
std::string Show(bool result) {
    return result ? "true" : "false";
}
std::string Narrow(const GUserText& text) {
    return text.Narrow();
}

// The start every request of a versioned command shares.
std::string Head(const std::string& command) {
    return R"({"Command":")" + command + R"(","SessionId":"s-1","Version":1,)";
}

// The line LogErrors writes for `code`.
testsupport::Line CodeLine(std::uint32_t code) {
    return {0, vanto::fileservices::ReturnCodeMessage(code)};
}

constexpr const wchar_t* NoErrorsFound = L"\nNo Errors Found!\n";

// An answer made of `errors` (the inside of the array) and `rest`.
std::string WithErrors(const std::string& errors, const std::string& rest = "") {
    return R"({"Errors":[)" + errors + "]" + (rest.empty() ? "" : ",") + rest + "}";
}

struct Row {
    std::string name;
    std::vector<std::pair<std::string, std::string>> answers; // command, answer
    // The call; gives its result and, after a space, what it left in the caller's data.
    std::function<std::string(IVANTOFileServices&)> call;
    std::string outcome;
    Texts requests = {};
    Lines lines = {};
};

const std::string Children =
    R"({"Errors":[],"ParentChildRelationInfo":[{"ChildRelationInfos":[)"
    R"({"ChildDocumentInfo":{"FilePaths":["/w/a.par"]},"RelationUrn":"urn:a"},)"
    R"({"ChildDocumentInfo":{"FilePaths":["/w/b.par"]},"RelationUrn":"urn:b"}]}]})";
const std::string Stamp =
    R"({"Errors":[],"FilePropertiesArray":[{"FilePath":"/w/a.par","ObjectTypeToPropertiesArray":[)"
    R"({"ObjectType":2,"Properties":[{"Name":"consistencyStamp","PropertyValues":["v7"]},)"
    R"({"Name":"DocumentId","PropertyValues":["doc-1"]}]}]}]})";
const std::string Properties =
    R"("FilePropertiesArray":[{"FilePath":"/w/a.par","ObjectTypeToPropertiesArray":[)"
    R"({"ObjectType":0,"Properties":[{"Name":"Mass","PropertyValues":["2.5"]}]}]}])";
const std::string WhereUsed =
    R"({"QueryRelationInfos":[{"Relations":[{"RelatedDocument":{"FilePaths":["/w/d.dft"]},)"
    R"("RelationUrn":"urn:d"}]}]})";

std::vector<Row> Rows() {
    const std::string propertiesOf = R"("ObjectTypeList":[0,2,1]})";
    // IsFileSynchronized of a monitored file asks for its document properties.
    const std::pair<std::string, std::string> monitored{
        "ISPATHMONITORED", R"({"PathToIsMonitored":[{"Key":"p","Value":true}]})"};
    const auto synchronized = [](IVANTOFileServices& f) {
        return Show(f.IsFileSynchronized(L"/w/a.par"));
    };
    const Texts synchronizedRequests{
        Head("ISPATHMONITORED") + R"("Paths":["/w/a.par"]})",
        Head("GETPROPERTIES") +
            R"("FilePathToObjectTypesArray":[{"Key":"/w/a.par","ObjectTypeList":[2]}]})"};
    return {
        {"IsValidCorvaneFile(list)",
         {{"ISPATHMONITORED", R"({"PathToIsMonitored":[{"Key":"/w/\u00e9.par","Value":true}]})"}},
         [](IVANTOFileServices& f) {
             PathMonitoredMap map;
             const std::string result =
                 Show(f.IsValidCorvaneFile(PathList{L"/w/\u00e9.par", L"/w/b.par"}, &map));
             return result + " " + std::to_string(map.size());
         },
         "S_OK 1",
         {Head("ISPATHMONITORED") + "\"Paths\":[\"/w/\xC3\xA9.par\",\"/w/b.par\"]}"}},
        // The caller learns of the failure from the result alone.
        {"IsValidCorvaneFile(list) failed",
         {{"ISPATHMONITORED",
           WithErrors(R"({"ErrorCode":10})", R"("PathToIsMonitored":[{"Key":"c","Value":true}])")}},
         [](IVANTOFileServices& f) {
             PathMonitoredMap map;
             const std::string result = Show(f.IsValidCorvaneFile(PathList{L"c"}, &map));
             return result + " " + std::to_string(map.size());
         },
         "E_FAIL 0",
         {Head("ISPATHMONITORED") + R"("Paths":["c"]})"}},
        {"IsValidCorvaneFile(path) failed",
         {{"ISPATHMONITORED",
           WithErrors(R"({"ErrorCode":1})", R"("PathToIsMonitored":[{"Key":"x","Value":true}])")}},
         [](IVANTOFileServices& f) { return Show(f.IsValidCorvaneFile(GUserText())); },
         "false",
         {Head("ISPATHMONITORED") + R"("Paths":[""]})"}},
        // Outside every monitored folder: no properties are asked for.
        {"IsFileSynchronized unmonitored",
         {{"ISPATHMONITORED", R"({"PathToIsMonitored":[{"Key":"p","Value":false}]})"}},
         synchronized,
         "true",
         {Head("ISPATHMONITORED") + R"("Paths":["/w/a.par"]})"}},
        {"IsFileSynchronized not in the model",
         {monitored, {"GETPROPERTIES", WithErrors(R"({"ErrorCode":8},{"ErrorCode":12})")}},
         synchronized,
         "false",
         synchronizedRequests,
         {{0, L"Error getting file properties."}, {1, L"File is not synchronized."}}},
        // Only the first error counts.
        {"IsFileSynchronized other error",
         {monitored, {"GETPROPERTIES", WithErrors(R"({"ErrorCode":12},{"ErrorCode":8})")}},
         synchronized,
         "true",
         synchronizedRequests,
         {{0, L"Error getting file properties."}}},
        // The map's keys ignore case; a file the map does not hold is passed over.
        {"GetDocumentConsistencyStamp",
         {{"GETPROPERTIES", Stamp}},
         [](IVANTOFileServices& f) {
             DocumentStampMap stamps{{L"/W/A.PAR", {}}, {L"/w/o.par", {L"keep", L"me"}}};
             const HRESULT result = f.GetDocumentConsistencyStamp(&stamps);
             return Show(result) + " " + Narrow(stamps.at(L"/w/a.par").consistencyStamp) + "/" +
                    Narrow(stamps.at(L"/w/a.par").documentId) + " " +
                    Narrow(stamps.at(L"/w/o.par").consistencyStamp);
         },
         "S_OK v7/doc-1 keep",
         {Head("GETPROPERTIES") + R"("FilePathToObjectTypesArray":[{"Key":"/W/A.PAR",)" +
          propertiesOf + R"(,{"Key":"/w/o.par",)" + propertiesOf + "]}"},
         {{2, NoErrorsFound}}},
        // The stamp first, through the properties of the path, then the question itself.
        {"IsNewVersionAvailable",
         {{"GETPROPERTIES", Stamp},
          {"CHECKFORNEWERVERSION",
           R"({"IdentifierToNewerVersionId":[{"Key":"DOC-1","Value":"v9"}]})"}},
         [](IVANTOFileServices& f) { return Show(f.IsNewVersionAvailable(L"/w/a.par")); },
         "true",
         {Head("GETPROPERTIES") + R"("FilePathToObjectTypesArray":[{"Key":"/w/a.par",)" +
              propertiesOf + "]}",
          Head("CHECKFORNEWERVERSION") +
              R"("IdentifierToCheckForNewerVersion":["/w/a.par"],"IdentifierType":0})"},
         {{2, NoErrorsFound}}},
        // A failed stamp look-up does not stop the question, and its errors are not looked at.
        {"IsNewVersionAvailable without a stamp",
         {{"GETPROPERTIES", WithErrors(R"({"ErrorCode":8})")},
          {"CHECKFORNEWERVERSION",
           WithErrors(R"({"ErrorCode":1})",
                      R"("IdentifierToNewerVersionId":[{"Key":"","Value":"v"}])")}},
         [](IVANTOFileServices& f) {
             FileStatusInformation status{true, true, L"bob", 5, 5};
             const HRESULT result = f.GetStatusInformation(L"/w/a.par", &status);
             return Show(result) + " " + std::to_string(status.isNewVersionAvailable) +
                    std::to_string(status.isNewRevisionAvailable) + Narrow(status.checkedOutBy);
         },
         "S_OK 10bob",
         {Head("GETPROPERTIES") + R"("FilePathToObjectTypesArray":[{"Key":"/w/a.par",)" +
              propertiesOf + "]}",
          Head("CHECKFORNEWERVERSION") +
              R"("IdentifierToCheckForNewerVersion":["/w/a.par"],"IdentifierType":0})"},
         {{0, L"Error getting file properties."}}},
        // Success all the same: the caller learns of the failure from the paths left empty.
        {"GetFilePath failed",
         {{"GETFILEPATHBYUID",
           WithErrors(R"({"ErrorCode":8},{"ErrorCode":15},{"ErrorCode":11})",
                      R"("DocumentIdToFilePathMap":[{"Key":"id-1","Values":["/w/b.par"]}])")}},
         [](IVANTOFileServices& f) {
             FileUidPathMap paths{{L"id-1", L""}, {L"id-2", L""}};
             const std::string result = Show(f.GetFilePath(&paths));
             return result + " " + Narrow(paths.at(L"id-1"));
         },
         "S_OK ",
         {Head("GETFILEPATHBYUID") +
          R"("ListOfFileUidAndContextInformation":[{"FileUid":"id-1"},{"FileUid":"id-2"}]})"},
         {{0, L"ERROR WHILE GETTING FILE PATH."}, CodeLine(8), CodeLine(11)}},
        {"GetContextInformation failed",
         {{"GETFILECONTEXTINFO", WithErrors(R"({"ErrorCode":3},{"ErrorCode":6})",
                                            R"("FileContextInformation":[{"FileInformation":[)"
                                            R"({"FilePaths":["/w/x.par"]}]}])")}},
         [](IVANTOFileServices& f) {
             FileContextList contexts;
             const std::string result =
                 Show(f.GetContextInformation({L"/w/a.par", L"/w/b.par"}, &contexts));
             return result + " " + std::to_string(contexts.size());
         },
         "E_FAIL 0",
         {Head("GETFILECONTEXTINFO") + R"("Files":["/w/a.par","/w/b.par"]})"},
         {{0, L"ERROR WHILE GETTING CORVANE CONTEXT INFORMATION."}, CodeLine(3), CodeLine(6)}},
        {"GetAvailableContainers",
         {{"GETAVAILABLECONTAINERS", R"({"ContainerInformation":[{"ContainerId":"c-1"}]})"}},
         [](IVANTOFileServices& f) {
             ContainerList containers;
             std::int32_t status = 7;
             const std::string result = Show(f.GetAvailableContainers(&containers, &status));
             return result + " " + std::to_string(containers.size()) + std::to_string(status);
         },
         "S_OK 17",
         {Head("GETAVAILABLECONTAINERS") +
          R"("Name":"","ContainerType":[0,2],"ReturnUnsynched":false})"}},
        // Only "not supported" tells the caller so, whichever error it comes with.
        {"GetAvailableContainers unsupported",
         {{"GETAVAILABLECONTAINERS",
           WithErrors(R"({"ErrorCode":1},{"ErrorCode":4})",
                      R"("ContainerInformation":[{"ContainerId":"c-1"}])")}},
         [](IVANTOFileServices& f) {
             ContainerList containers;
             std::int32_t status = 7;
             const std::string result = Show(f.GetAvailableContainers(&containers, &status));
             return result + " " + std::to_string(containers.size()) + std::to_string(status);
         },
         "E_FAIL 03",
         {Head("GETAVAILABLECONTAINERS") +
          R"("Name":"","ContainerType":[0,2],"ReturnUnsynched":false})"},
         {{0, L"ERROR WHILE GETTING CORVANE CONTAINER INFORMATION."}, CodeLine(1), CodeLine(4)}},
        {"AddProjectToSync",
         {{"ADDPROJECTTOSYNC", WithErrors("", R"("TaskId":"t-1")")}},
         [](IVANTOFileServices& f) {
             std::int32_t status = 7;
             const std::string result = Show(f.AddProjectToSync(L"urn:p:\u00e9", &status));
             return result + " " + std::to_string(status);
         },
         "S_OK 7",
         {Head("ADDPROJECTTOSYNC") + "\"ProjectURN\":\"urn:p:\xC3\xA9\"}"}},
        {"AddProjectToSync failed",
         {{"ADDPROJECTTOSYNC", WithErrors(R"({"ErrorCode":1})")}},
         [](IVANTOFileServices& f) {
             std::int32_t status = 7;
             const std::string result = Show(f.AddProjectToSync(L"urn:p", &status));
             return result + " " + std::to_string(status);
         },
         "E_FAIL 7",
         {Head("ADDPROJECTTOSYNC") + R"("ProjectURN":"urn:p"})"},
         {{0, L"ERROR WHILE ADDING PROJECT TO SYNC."}, CodeLine(1)}},
        {"AddProjectToSync unsupported",
         {{"ADDPROJECTTOSYNC", WithErrors(R"({"ErrorCode":4},{"ErrorCode":1})")}},
         [](IVANTOFileServices& f) {
             std::int32_t status = 7;
             const std::string result = Show(f.AddProjectToSync(L"urn:p", &status));
             return result + " " + std::to_string(status);
         },
         "E_FAIL 3",
         {Head("ADDPROJECTTOSYNC") + R"("ProjectURN":"urn:p"})"},
         {{0, L"ERROR WHILE ADDING PROJECT TO SYNC."}, CodeLine(4), CodeLine(1)}},
        // No code line: this failure does not report its codes.
        {"GetFileAccessPermissions failed",
         {{"GETACCESSPERMISSIONS",
           WithErrors(R"({"ErrorCode":1})",
                      R"("AccessPermissionsInfo":[{"Path":"/w/a.par","AccessPermission":2}])")}},
         [](IVANTOFileServices& f) {
             AccessPermissionMap permissions;
             const std::string result =
                 Show(f.GetFileAccessPermissions({L"/w/a.par", L"/w/b.asm"}, &permissions));
             return result + " " + std::to_string(permissions.size());
         },
         "E_FAIL 0",
         {Head("GETACCESSPERMISSIONS") + R"("Paths":["/w/a.par","/w/b.asm"]})"},
         {{0, L"Error getting Access Permissions."}}},
        {"GenerateItemIDAndRevision failed",
         {{"GETNEXTID", WithErrors(R"({"ErrorCode":4},{"ErrorCode":1})",
                                   R"("NextIdInfo":[{"Number":"1001","Revid":"A"}])")}},
         [](IVANTOFileServices& f) {
             std::int32_t count = 2;
             ItemIdRevisionList ids;
             const std::string result =
                 Show(f.GenerateItemIDAndRevision(L"/w/proj", L"par", count, &ids));
             return result + " " + std::to_string(ids.size());
         },
         "E_FAIL 0",
         {Head("GETNEXTID") + R"("FileExtension":"par","NumberOfIds":2,"GetInitialRevId":true,)"
                              R"("Properties":["number"],"DirectoryPath":"/w/proj"})"},
         {{0, L"ERROR WHILE GENERATING ITEMID AND REVISION."}, CodeLine(4), CodeLine(1)}},
        // Without a folder or a file type there is nothing to ask, and nothing is written.
        {"GenerateItemIDAndRevision without a folder or type",
         {},
         [](IVANTOFileServices& f) {
             std::int32_t count = 2;
             const std::string result =
                 Show(f.GenerateItemIDAndRevision(L"", L"par", count, nullptr));
             return result + Show(f.GenerateItemIDAndRevision(L"/w", L"", count, nullptr));
         },
         "E_FAILE_FAIL"},
        {"GenerateNextRevisionID failed",
         {{"GETNEXTREVISIONID",
           WithErrors(R"({"ErrorCode":1})", R"("NextRevisionIdInfo":[{"Revid":"B"}])")}},
         [](IVANTOFileServices& f) {
             GUserText revision(L"A");
             const std::string result = Show(f.GenerateNextRevisionID(L"/w/a.par", &revision));
             return result + " " + Narrow(revision);
         },
         "E_FAIL A",
         {Head("GETNEXTREVISIONID") +
          R"("DesignRevisionIdentifiers":[{"Value":"/w/a.par","IdentifierType":0}],)"
          R"("Properties":["revid"]})"},
         {{0, L"ERROR WHILE GENERATING NEXT REVISION."}, CodeLine(1)}},
        {"GetProperties",
         {{"GETPROPERTIES", WithErrors("", Properties)}},
         [](IVANTOFileServices& f) {
             FilePropertyList properties(1);
             const std::string result =
                 Show(f.GetProperties({L"/w/pi\u00e8ce.par"}, {}, &properties));
             return result + " " + std::to_string(properties.size());
         },
         "S_OK 2",
         {Head("GETPROPERTIES") +
          "\"FilePathToObjectTypesArray\":[{\"Key\":\"/w/pi\xC3\xA8"
          "ce.par\"," +
          propertiesOf + "]}"},
         {{2, NoErrorsFound}}},
        {"GetProperties failed",
         {{"GETPROPERTIES", WithErrors(R"({"ErrorCode":1})", Properties)}},
         [](IVANTOFileServices& f) {
             FilePropertyList properties(1);
             const std::string result = Show(f.GetProperties({}, {}, &properties));
             return result + " " + std::to_string(properties.size());
         },
         "E_FAIL 1",
         {Head("GETPROPERTIES") + R"("FilePathToObjectTypesArray":[]})"},
         {{0, L"Error getting file properties."}}},
        // The answer is not looked at.
        {"SetDataObject",
         {{"SETDATAOBJECT", WithErrors(R"({"ErrorCode":1},{"ErrorCode":4})")}},
         [](IVANTOFileServices& f) {
             return Show(f.SetDataObject(L"layout-\u00e9", L"{\"a\":1}"));
         },
         "S_OK",
         {Head("SETDATAOBJECT") + "\"Key\":{\"PrimaryKey\":\"layout-\xC3\xA9\","
                                  R"("SecondaryKey":"SaveData"},"Data":"{\"a\":1}"})"}},
        // Both criteria search the same definition; one page of 50, in project context.
        {"GetDesignRevisions failed",
         {{"QUERYDESIGNREVISIONS",
           WithErrors(R"({"ErrorCode":1},{"ErrorCode":15},{"ErrorCode":4})",
                      R"("DesignRevisionInfo":[{"DesignRevision":[{"Name":"x"}]}])")}},
         [](IVANTOFileServices& f) {
             PathList names;
             const std::string result = Show(f.GetDesignRevisions(L"br\u00e8cket", &names));
             return result + " " + std::to_string(names.size());
         },
         "E_FAIL 0",
         {Head("QUERYDESIGNREVISIONS") + R"("AttachmentCriteria":{"Definition":{"Operator":1,)"
                                         R"("SearchTerms":[{"Property":"name","Value":"br)"
                                         "\xC3\xA8"
                                         R"(cket","ComparisionOp":0}]}},"RevisionCriteria":)"
                                         R"({"Definition":{"Operator":1,"SearchTerms":[)"
                                         R"({"Property":"name","Value":"br)"
                                         "\xC3\xA8"
                                         R"(cket","ComparisionOp":0}]}},)"
                                         R"("Options":{"Skip":0,"Limit":50},"Operator":0,)"
                                         R"("Context":{"CollaborationSpaceId":"",)"
                                         R"("ContainerType":"PROJECT","ContainerId":"",)"
                                         R"("ContainerURN":""}})"},
         {{0, L"ERROR WHILE GENERATING NEXT REVISION."}, CodeLine(1), CodeLine(4)}},
        {"AddChildren failed",
         {{"ADDCHILDREN", WithErrors(R"({"ErrorCode":1})")}},
         [](IVANTOFileServices& f) {
             return Show(f.AddChildren(L"/w/top.asm", {L"/w/a.par", L"/w/b.psm"}));
         },
         "E_FAIL",
         {Head("ADDCHILDREN") +
          R"("ParentChildRelationInfos":[{"ParentIdentifier":"/w/top.asm",)"
          R"("ParentIdentifierType":0,"ChildRevisionInfos":[)"
          R"({"Identifier":"/w/a.par","IdentifierType":0,"RelationProperties":[]},)"
          R"({"Identifier":"/w/b.psm","IdentifierType":0,"RelationProperties":[]}]}]})"},
         {{0, L"ERROR WHILE ADDING CHILDREN."}}},
        // The relations are found through the parent's children; those not found leave empty
        // texts at the end.
        {"RemoveChildren",
         {{"GETCHILDREN", Children}},
         [](IVANTOFileServices& f) {
             return Show(f.RemoveChildren(L"/w/top.asm", {L"/w/x.par", L"/w/b.par", L"/w/A.PAR"}));
         },
         "S_OK",
         {Head("GETCHILDREN") + R"("Identifier":"/w/top.asm","IdentifierType":0})",
          Head("REMOVECHILDREN") + R"("RelationURNs":["urn:b","",""]})"}},
        {"RemoveChildren after a failed look-up",
         {{"GETCHILDREN",
           WithErrors(R"({"ErrorCode":1})", Children.substr(13, Children.size() - 14))},
          {"REMOVECHILDREN", WithErrors(R"({"ErrorCode":1})")}},
         [](IVANTOFileServices& f) { return Show(f.RemoveChildren(L"/w/top.asm", {L"/w/b.par"})); },
         "E_FAIL",
         {Head("GETCHILDREN") + R"("Identifier":"/w/top.asm","IdentifierType":0})",
          Head("REMOVECHILDREN") + R"("RelationURNs":[""]})"},
         {{0, L"ERROR WHILE GETTING CHILDRENS."}, {0, L"ERROR WHILE REMOVING CHILDRENS."}}},
        {"GetChildren failed",
         {{"GETCHILDREN",
           WithErrors(R"({"ErrorCode":1})", Children.substr(13, Children.size() - 14))}},
         [](IVANTOFileServices& f) {
             RelationMap children;
             const std::string result = Show(f.GetChildren(L"/w/top.asm", &children));
             return result + " " + std::to_string(children.size());
         },
         "E_FAIL 0",
         {Head("GETCHILDREN") + R"("Identifier":"/w/top.asm","IdentifierType":0})"},
         {{0, L"ERROR WHILE GETTING CHILDRENS."}}},
        // One query per path, until one fails; what came before stays.
        {"GetCorvaneWUResults",
         {{"QUERYPRIMARYOBJECTS", WhereUsed}},
         [](IVANTOFileServices& f) {
             RelationMap whereUsed;
             const std::string result =
                 Show(f.GetCorvaneWUResults({L"/w/a.par", L"/w/b.par"}, &whereUsed, true));
             return result + " " + std::to_string(whereUsed.size());
         },
         "S_OK 1",
         {Head("QUERYPRIMARYOBJECTS") +
              R"("Identifier":"/w/a.par","IdentifierType":0,"RelationTypes":["DrawingOf"]})",
          Head("QUERYPRIMARYOBJECTS") +
              R"("Identifier":"/w/b.par","IdentifierType":0,"RelationTypes":["DrawingOf"]})"}},
        {"GetCorvaneWUResults failed",
         {{"QUERYPRIMARYOBJECTS",
           WithErrors(R"({"ErrorCode":1})", WhereUsed.substr(1, WhereUsed.size() - 2))}},
         [](IVANTOFileServices& f) {
             RelationMap whereUsed{{L"/w/held.par", L"urn:held"}};
             const std::string result =
                 Show(f.GetCorvaneWUResults({L"/w/a.par", L"/w/b.par"}, &whereUsed, false));
             return result + " " + std::to_string(whereUsed.size());
         },
         "E_FAIL 1",
         {Head("QUERYPRIMARYOBJECTS") + R"("Identifier":"/w/a.par","IdentifierType":0,)"
                                        R"("RelationTypes":["DrawingOf","DesignChildRelation"]})"},
         {{0, L"ERROR WHILE GETTING WHERE USED RESULTS."}}},
    };
}

using CallTable = testsupport::FileServicesTest;

TEST_F(CallTable, EachCallSendsItsRequestsWritesItsLinesAndGivesItsOutcome) {
    for (const Row& row : Rows()) {
        SCOPED_TRACE(row.name);
        connector.executeRequests.clear();
        for (const auto& [command, answer] : row.answers) {
            connector.Answer(command, answer);
        }
        EXPECT_EQ(row.outcome, row.call(*files));
        EXPECT_EQ(row.requests, connector.executeRequests);
        EXPECT_EQ(row.lines, Take());
        for (const auto& [command, answer] : row.answers) {
            connector.Answer(command, std::string(R"({"Errors":[]})"));
        }
    }
}

// Status asks revision then version through the table, each in its own scope; the synchronisation
// test opens none.
TEST_F(CallTable, CallsThroughTheTableOpenTheirOwnScopes) {
    FileStatusInformation status;
    EXPECT_EQ(S_OK, files->GetStatusInformation(L"/w/a.par", &status));
    EXPECT_TRUE(files->IsFileSynchronized(L"/w/a.par"));
    EXPECT_EQ(
        (std::vector<std::wstring>{L"VANTOManager::VANTOFileServices::GetStatusInformation",
                                   L"VANTOManager::VANTOFileServices::IsNewRevisionAvailable",
                                   L"VANTOManager::VANTOFileServices::IsNewVersionAvailable",
                                   L"VANTOManager::VANTOFileServices::GetDocumentConsistencyStamp",
                                   L"VANTOManager::VANTOFileServices::GetProperties"}),
        log.ScopesOpened());
}

// GetProperties runs no session test of its own: without a session id the question still goes
// out, with an empty one; without a proxy it fails in its guard.
TEST_F(CallTable, GetPropertiesAsksWithoutASessionButNotWithoutAProxy) {
    Unregister();
    EXPECT_EQ(S_OK, files->GetProperties({}, {}, nullptr));
    EXPECT_EQ(Texts{R"({"Command":"GETPROPERTIES","SessionId":"","Version":1,)"
                    R"("FilePathToObjectTypesArray":[]})"},
              connector.executeRequests);
    connector.proxyAvailable = false;
    testsupport::ManagerHandle bare;
    EXPECT_EQ(E_FAIL, bare.FileServices()->GetProperties({L"/w/b.asm"}, {}, nullptr));
    EXPECT_EQ(
        (Lines{{2, NoErrorsFound}, testsupport::ExceptionLine(L"Corvane proxy is not available")}),
        Take());
    EXPECT_EQ(1u, connector.executeRequests.size());
}

} // namespace
