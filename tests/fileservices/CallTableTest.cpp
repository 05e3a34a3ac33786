// Whole calls through the real file-services interface, one row each: the answers the connector
// gives, the requests the call sends (in order), the lines it writes, its result and a sign of
// what it left in the caller's data. How each answer maps onto the caller's data in detail is
// AnswerMappingTest's concern; the exception paths are FaultInjectionTest's.
#include "fileservices/ReturnCodes.h"
#include "fileservices/SlotTable.h"

#include <functional>
#include <string>
#include <vector>

namespace {

using testsupport::Lines;
using testsupport::Texts;
using testsupport::slots::Show;
using F = IVANTOFileServices;
using A = testsupport::SlotArguments;

// The result, then how many entries the caller's data holds, or its text or number.
template <class Data> std::string With(HRESULT result, const Data& data) {
    return Show(result) + " " + std::to_string(data.size());
}
std::string With(HRESULT result, const GUserText& text) {
    return Show(result) + " " + text.Narrow();
}
std::string With(HRESULT result, const std::int32_t& number) {
    return Show(result) + " " + std::to_string(number);
}

// A request of a versioned command: its shared start, then `rest`.
std::string Request(const std::string& command, const std::string& rest) {
    return R"({"Command":")" + command + R"(","SessionId":"s-1","Version":1,)" + rest;
}

std::wstring Wide(const std::string& text) {
    return GUserText(std::string_view(text)).wstr();
}

// The line LogErrors writes for `code`.
testsupport::Line CodeLine(std::uint32_t code) {
    return {0, vanto::fileservices::ReturnCodeMessage(code)};
}

// The two lines a lock or unlock call writes about its exchange.
Lines Exchange(const std::wstring& call, const std::string& request, const std::string& answer) {
    return {{2, call + L" Input: " + Wide(request)}, {2, call + L" Output: " + Wide(answer)}};
}

Lines Then(Lines lines, const Lines& more) {
    lines.insert(lines.end(), more.begin(), more.end());
    return lines;
}

const testsupport::Line NoErrorsFound{2, L"\nNo Errors Found!\n"};

// An answer made of `errors` (the inside of the array) and `rest`.
std::string WithErrors(const std::string& errors, const std::string& rest = "") {
    return R"({"Errors":[)" + errors + "]" + (rest.empty() ? "" : ",") + rest + "}";
}

using Answers = std::vector<std::pair<std::string, std::string>>; // command, answer

// One set of answers and what the call makes of it.
struct Case {
    Answers answers;
    std::string outcome;
    Lines lines = {};
};

// A call and the requests it sends, with each set of answers it is run against.
struct Row {
    std::string name;
    std::function<std::string(F&, A&)> call;
    Texts requests;
    std::vector<Case> cases;
};

Case When(Answers answers, std::string outcome, Lines lines = {}) {
    return {std::move(answers), std::move(outcome), std::move(lines)};
}

Row Calls(std::string name, std::function<std::string(F&, A&)> call, Texts requests,
          std::vector<Case> cases) {
    return {std::move(name), std::move(call), std::move(requests), std::move(cases)};
}

Row Call(std::string name, Answers answers, std::function<std::string(F&, A&)> call,
         std::string outcome, Texts requests = {}, Lines lines = {}) {
    return {std::move(name),
            std::move(call),
            std::move(requests),
            {{std::move(answers), std::move(outcome), std::move(lines)}}};
}

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

// Check-out, check-in and lock status: the signed-in user is asked for first.
const std::string SessionInfo = R"({"Command":"GETSESSIONINFO","SessionId":"s-1"})";
const std::pair<std::string, std::string> User{"GETSESSIONINFO",
                                               R"({"AuthenticatedUserName":"ann"})"};
const Lines UserLines{{2, L"Authenticated User Name is : ann"},
                      {2, L"Corvane Log Path is : "},
                      {2, L"Cloud Gateway Log Path is : "}};
const std::wstring Skipped =
    L", is not proceeded for lock call since it is checked out to other user : ";

std::vector<Row> CheckOutRows() {
    const std::string lock = Request(
        "LOCKDESIGNREVISIONS", R"("DesignIdentifiers":[{"Value":"/w/A.asm","IdentifierType":0},)"
                               "{\"Value\":\"/w/\xC3\xA9.par\",\"IdentifierType\":0}],"
                               R"("TimeToLive":-1})");
    // The holder's name differs from the user's in case only; a name the map lacks is passed over.
    const std::string locked = R"({"Errors":[],"Status":[)"
                               R"({"DesignIdentifier":"/w/a.ASM","LockedBy":"ANN"},)"
                               R"({"DesignIdentifier":"/w/\u00e9.par","LockedBy":"Cl\u00e9o"},)"
                               R"({"DesignIdentifier":"/w/zzz.par","LockedBy":"ann"}]})";
    const auto checkOut = [](F& f, A& a) {
        a.locks = {{L"/w/b.par", {true, false, false, L"bob"}},
                   {L"/w/\u00e9.par", {}},
                   {L"/w/A.asm", {}},
                   {L"/w/mine.psm", {true, true, false, L"ann"}}};
        const HRESULT result = f.CheckOut(&a.locks);
        return With(result, a.locks.at(L"/w/A.asm").checkedOutBy);
    };
    const Lines checkOutLines = Then(UserLines, {{2, L"File Name : /w/A.asm"},
                                                 {2, L"File Name : /w/b.par" + Skipped + L"bob"},
                                                 {2, L"File Name : /w/mine.psm" + Skipped + L"ann"},
                                                 {2, L"File Name : /w/\u00e9.par"}});
    const auto lockLines = [&](const std::string& answer, bool failed) {
        Lines tail{{2, L"File Checkout successful."}};
        if (failed) {
            tail.push_back({0, L"Error while checkout."});
        }
        return Then(checkOutLines, Then(Exchange(L"LockDesignRevisions", lock, answer), tail));
    };
    const std::string otherLocked = WithErrors(R"({"ErrorCode":13,"Ids":["/w/c.par"]})",
                                               R"("Status":[{"DesignIdentifier":"/w/A.asm"}])");
    const std::string refused = WithErrors(R"({"ErrorCode":13,"Ids":[]},{"ErrorCode":12,"Ids":[]})",
                                           R"("Status":[{"DesignIdentifier":"/w/A.asm"}])");
    const std::string unlock = Request(
        "UNLOCKDESIGNREVISIONS", R"("DesignIdentifiers":[{"Value":"/w/a.par","IdentifierType":0},)"
                                 R"({"Value":"/w/b.par","IdentifierType":0},)"
                                 R"({"Value":"/w/a.par","IdentifierType":0}]})");
    // Names match exactly; the first entry of a name takes every answer for it, the last winning.
    const std::string unlocked =
        R"({"Status":[{"DesignIdentifier":"/w/a.par","LockedBy":"eve","ErrorCode":12},)"
        R"({"DesignIdentifier":"/W/B.PAR","ErrorCode":7},{"DesignIdentifier":"/w/b.par",)"
        R"("ErrorCode":5},{"DesignIdentifier":"/w/a.par","LockedBy":"b\u00f6b","ErrorCode":9}]})";
    const std::string failedUnlock =
        WithErrors(R"({"ErrorCode":12},{"ErrorCode":3})", unlocked.substr(1, unlocked.size() - 2));
    const auto checkIn = [](F& f, A& a) {
        a.checkIns = {{L"/w/a.par", 0, L""}, {L"/w/b.par", 0, L""}, {L"/w/a.par", 0, L""}};
        const HRESULT result = f.CheckIn(&a.checkIns);
        return Show(result) + " " + std::to_string(a.checkIns[0].errorCode) +
               a.checkIns[0].lockedBy.Narrow() + std::to_string(a.checkIns[1].errorCode) +
               std::to_string(a.checkIns[2].errorCode);
    };
    const auto unlockLines = [&](const std::string& answer, const wchar_t* last, int severity) {
        return Then({{2, L"File Name : /w/a.par"},
                     {2, L"File Name : /w/b.par"},
                     {2, L"File Name : /w/a.par"}},
                    Then(Exchange(L"UnLockDesignRevisions", unlock, answer), {{severity, last}}));
    };
    const std::string properties =
        Request("GETPROPERTIES", R"("FilePathToObjectTypesArray":[{"Key":"/w/a.par",)"
                                 R"("ObjectTypeList":[0,2,1]},{"Key":"/w/b.par",)"
                                 R"("ObjectTypeList":[0,2,1]}]})");
    const std::string lockedBy =
        R"("FilePropertiesArray":[{"FilePath":"/W/A.PAR",)"
        R"("ObjectTypeToPropertiesArray":[{"ObjectType":1,)"
        R"("Properties":[{"Name":"LockedBy","PropertyValues":["Ann"]}]}]},)"
        R"({"FilePath":"/w/zzz.par","ObjectTypeToPropertiesArray":[]}])";
    // Without the newer-version question; the file's look-up ignores case.
    const auto status = [](F& f, A& a) {
        a.locks = {{L"/w/a.par", {}}, {L"/w/b.par", {}}};
        const HRESULT result = f.GetCheckOutStatus(&a.locks, false);
        return With(result, a.locks) + Show(a.locks.at(L"/w/a.par").isCheckedOutByCurrentUser);
    };
    return {
        // Locked by somebody else: the call still succeeds; any other code fails it.
        Calls(
            "CheckOut", checkOut, {SessionInfo, lock},
            {{{User, {"LOCKDESIGNREVISIONS", locked}}, "S_OK ANN", lockLines(locked, false)},
             {{User, {"LOCKDESIGNREVISIONS", otherLocked}}, "S_OK ", lockLines(otherLocked, true)},
             {{User, {"LOCKDESIGNREVISIONS", refused}}, "E_FAIL ", lockLines(refused, true)}}),
        // No answer came, so no success line either.
        Call(
            "CheckOut with nothing to lock", {User},
            [](F& f, A& a) {
                a.locks = {{L"/w/a.par", {true, false, false, L"bob"}}};
                const HRESULT result = f.CheckOut(&a.locks);
                return With(result, a.locks.at(L"/w/a.par").checkedOutBy);
            },
            "S_OK bob", {SessionInfo},
            Then(UserLines, {{2, L"File Name : /w/a.par" + Skipped + L"bob"}})),
        // A failed check-in writes no LogErrors lines.
        Calls("CheckIn", checkIn, {unlock},
              {When({{"UNLOCKDESIGNREVISIONS", unlocked}},
                    "S_OK 9b\xC3\xB6"
                    "b50",
                    unlockLines(unlocked, L"Check-in successful. No errors found.", 2)),
               When({{"UNLOCKDESIGNREVISIONS", failedUnlock}}, "E_FAIL 000",
                    unlockLines(failedUnlock, L"Error while check-in.", 0))}),
        Calls("GetCheckOutStatus", status, {SessionInfo, properties},
              {When({User, {"GETPROPERTIES", WithErrors("", lockedBy)}}, "S_OK 2true",
                    Then(UserLines, {NoErrorsFound})),
               When({User, {"GETPROPERTIES", WithErrors(R"({"ErrorCode":8})", lockedBy)}},
                    "E_FAIL 2false", Then(UserLines, {{0, L"Error getting file properties."}}))}),
    };
}

std::vector<Row> Rows() {
    const std::string propertiesOf = R"("ObjectTypeList":[0,2,1]})";
    // IsFileSynchronized of a monitored file asks for its document properties.
    const std::pair<std::string, std::string> monitored{
        "ISPATHMONITORED", R"({"PathToIsMonitored":[{"Key":"p","Value":true}]})"};
    const auto synchronized = [](F& f, A&) { return Show(f.IsFileSynchronized(L"/w/a.par")); };
    const std::string isMonitored = Request("ISPATHMONITORED", R"("Paths":["/w/a.par"]})");
    const Texts synchronizedRequests{
        isMonitored,
        Request("GETPROPERTIES",
                R"("FilePathToObjectTypesArray":[{"Key":"/w/a.par","ObjectTypeList":[2]}]})")};
    // The stamp first, through the properties of the path, then the question itself.
    const Texts newerRequests{
        Request("GETPROPERTIES",
                R"("FilePathToObjectTypesArray":[{"Key":"/w/a.par",)" + propertiesOf + "]}"),
        Request("CHECKFORNEWERVERSION",
                R"("IdentifierToCheckForNewerVersion":["/w/a.par"],"IdentifierType":0})")};
    const auto containers = [](F& f, A& a) {
        a.containerStatus = 7;
        const HRESULT result = f.GetAvailableContainers(&a.containers, &a.containerStatus);
        return With(result, a.containers) + std::to_string(a.containerStatus);
    };
    const std::string containersRequest = Request(
        "GETAVAILABLECONTAINERS", R"("Name":"","ContainerType":[0,2],"ReturnUnsynched":false})");
    const auto addProject = [](F& f, A& a) {
        a.containerStatus = 7;
        return With(f.AddProjectToSync(L"urn:p:\u00e9", &a.containerStatus), a.containerStatus);
    };
    const std::string getChildren =
        Request("GETCHILDREN", R"("Identifier":"/w/top.asm","IdentifierType":0})");
    const std::string failedChildren =
        WithErrors(R"({"ErrorCode":1})", Children.substr(13, Children.size() - 14));
    const auto wuQuery = [](const std::string& path, const std::string& types) {
        return Request("QUERYPRIMARYOBJECTS", R"("Identifier":")" + path +
                                                  R"(","IdentifierType":0,"RelationTypes":[)" +
                                                  types + "]}");
    };
    const std::string criteria = R"({"Definition":{"Operator":1,"SearchTerms":[)"
                                 R"({"Property":"name","Value":"br)"
                                 "\xC3\xA8"
                                 R"(cket","ComparisionOp":0}]}})";
    return {
        Calls("IsValidCorvaneFile(list)",
              [](F& f, A& a) {
                  return With(f.IsValidCorvaneFile({L"/w/\u00e9.par", L"/w/b.par"}, &a.monitored),
                              a.monitored);
              },
              {Request("ISPATHMONITORED", "\"Paths\":[\"/w/\xC3\xA9.par\",\"/w/b.par\"]}")},
              {When({{"ISPATHMONITORED",
                      R"({"PathToIsMonitored":[{"Key":"/w/\u00e9.par","Value":true}]})"}},
                    "S_OK 1"),
               When({{"ISPATHMONITORED",
                      WithErrors(R"({"ErrorCode":10})",
                                 R"("PathToIsMonitored":[{"Key":"c","Value":true}])")}},
                    "E_FAIL 0")}),
        Call("IsValidCorvaneFile(path) failed",
             {{"ISPATHMONITORED", WithErrors(R"({"ErrorCode":1})",
                                             R"("PathToIsMonitored":[{"Key":"x","Value":true}])")}},
             [](F& f, A&) { return Show(f.IsValidCorvaneFile(GUserText())); }, "false",
             {Request("ISPATHMONITORED", R"("Paths":[""]})")}),
        // Outside every monitored folder: no properties are asked for.
        Call("IsFileSynchronized unmonitored",
             {{"ISPATHMONITORED", R"({"PathToIsMonitored":[{"Key":"p","Value":false}]})"}},
             synchronized, "true", {isMonitored}),
        // Only the first error counts.
        Calls(
            "IsFileSynchronized", synchronized, synchronizedRequests,
            {When({monitored, {"GETPROPERTIES", WithErrors(R"({"ErrorCode":8},{"ErrorCode":12})")}},
                  "false",
                  {{0, L"Error getting file properties."}, {1, L"File is not synchronized."}}),
             When({monitored, {"GETPROPERTIES", WithErrors(R"({"ErrorCode":12},{"ErrorCode":8})")}},
                  "true", {{0, L"Error getting file properties."}})}),
        // The map's keys ignore case; a file the map does not hold is passed over.
        Call("GetDocumentConsistencyStamp", {{"GETPROPERTIES", Stamp}},
             [](F& f, A& a) {
                 a.stamps = {{L"/W/A.PAR", {}}, {L"/w/o.par", {L"keep", L"me"}}};
                 const HRESULT result = f.GetDocumentConsistencyStamp(&a.stamps);
                 return With(result, a.stamps.at(L"/w/a.par").consistencyStamp) +
                        a.stamps.at(L"/w/a.par").documentId.Narrow() +
                        a.stamps.at(L"/w/o.par").consistencyStamp.Narrow();
             },
             "S_OK v7doc-1keep",
             {Request("GETPROPERTIES", R"("FilePathToObjectTypesArray":[{"Key":"/W/A.PAR",)" +
                                           propertiesOf + R"(,{"Key":"/w/o.par",)" + propertiesOf +
                                           "]}")},
             {NoErrorsFound}),
        // A failed stamp look-up does not stop the question, and its errors are not looked at.
        Calls("GetStatusInformation",
              [](F& f, A& a) {
                  a.status = {true, true, L"bob", 5, 5};
                  const HRESULT result = f.GetStatusInformation(L"/w/a.par", &a.status);
                  return Show(result) + " " + std::to_string(a.status.isNewVersionAvailable) +
                         std::to_string(a.status.isNewRevisionAvailable) +
                         a.status.checkedOutBy.Narrow();
              },
              newerRequests,
              {When({{"GETPROPERTIES", Stamp},
                     {"CHECKFORNEWERVERSION",
                      R"({"IdentifierToNewerVersionId":[{"Key":"DOC-1","Value":"v9"}]})"}},
                    "S_OK 10bob", {NoErrorsFound}),
               When({{"GETPROPERTIES", WithErrors(R"({"ErrorCode":8})")},
                     {"CHECKFORNEWERVERSION",
                      WithErrors(R"({"ErrorCode":1})",
                                 R"("IdentifierToNewerVersionId":[{"Key":"","Value":"v"}])")}},
                    "S_OK 10bob", {{0, L"Error getting file properties."}})}),
        // Success all the same: the caller learns of the failure from the paths left empty.
        Call(
            "GetFilePath failed",
            {{"GETFILEPATHBYUID",
              WithErrors(R"({"ErrorCode":8},{"ErrorCode":15},{"ErrorCode":11})",
                         R"("DocumentIdToFilePathMap":[{"Key":"id-1","Values":["/w/b.par"]}])")}},
            [](F& f, A& a) {
                a.uids = {{L"id-1", L""}, {L"id-2", L""}};
                const HRESULT result = f.GetFilePath(&a.uids);
                return With(result, a.uids.at(L"id-1"));
            },
            "S_OK ",
            {Request(
                "GETFILEPATHBYUID",
                R"("ListOfFileUidAndContextInformation":[{"FileUid":"id-1"},{"FileUid":"id-2"}]})")},
            {{0, L"ERROR WHILE GETTING FILE PATH."}, CodeLine(8), CodeLine(11)}),
        Call("GetContextInformation failed",
             {{"GETFILECONTEXTINFO", WithErrors(R"({"ErrorCode":3},{"ErrorCode":6})",
                                                R"("FileContextInformation":[{"FileInformation":[)"
                                                R"({"FilePaths":["/w/x.par"]}]}])")}},
             [](F& f, A& a) {
                 return With(f.GetContextInformation({L"/w/a.par", L"/w/b.par"}, &a.contexts),
                             a.contexts);
             },
             "E_FAIL 0", {Request("GETFILECONTEXTINFO", R"("Files":["/w/a.par","/w/b.par"]})")},
             {{0, L"ERROR WHILE GETTING CORVANE CONTEXT INFORMATION."}, CodeLine(3), CodeLine(6)}),
        // Only "not supported" tells the caller so, whichever error it comes with.
        Calls("GetAvailableContainers", containers, {containersRequest},
              {When({{"GETAVAILABLECONTAINERS",
                      R"({"ContainerInformation":[{"ContainerId":"c-1"}]})"}},
                    "S_OK 17"),
               When({{"GETAVAILABLECONTAINERS",
                      WithErrors(R"({"ErrorCode":1},{"ErrorCode":4})",
                                 R"("ContainerInformation":[{"ContainerId":"c-1"}])")}},
                    "E_FAIL 03",
                    {{0, L"ERROR WHILE GETTING CORVANE CONTAINER INFORMATION."},
                     CodeLine(1),
                     CodeLine(4)})}),
        Calls("AddProjectToSync", addProject,
              {Request("ADDPROJECTTOSYNC", "\"ProjectURN\":\"urn:p:\xC3\xA9\"}")},
              {When({{"ADDPROJECTTOSYNC", WithErrors("", R"("TaskId":"t-1")")}}, "S_OK 7"),
               When({{"ADDPROJECTTOSYNC", WithErrors(R"({"ErrorCode":1})")}}, "E_FAIL 7",
                    {{0, L"ERROR WHILE ADDING PROJECT TO SYNC."}, CodeLine(1)}),
               When({{"ADDPROJECTTOSYNC", WithErrors(R"({"ErrorCode":4},{"ErrorCode":1})")}},
                    "E_FAIL 3",
                    {{0, L"ERROR WHILE ADDING PROJECT TO SYNC."}, CodeLine(4), CodeLine(1)})}),
        // No code line: this failure does not report its codes.
        Call(
            "GetFileAccessPermissions failed",
            {{"GETACCESSPERMISSIONS",
              WithErrors(R"({"ErrorCode":1})",
                         R"("AccessPermissionsInfo":[{"Path":"/w/a.par","AccessPermission":2}])")}},
            [](F& f, A& a) {
                return With(f.GetFileAccessPermissions({L"/w/a.par", L"/w/b.asm"}, &a.permissions),
                            a.permissions);
            },
            "E_FAIL 0", {Request("GETACCESSPERMISSIONS", R"("Paths":["/w/a.par","/w/b.asm"]})")},
            {{0, L"Error getting Access Permissions."}}),
        Call(
            "GenerateItemIDAndRevision failed",
            {{"GETNEXTID", WithErrors(R"({"ErrorCode":4},{"ErrorCode":1})",
                                      R"("NextIdInfo":[{"Number":"1001","Revid":"A"}])")}},
            [](F& f, A& a) {
                a.count = 2;
                return With(f.GenerateItemIDAndRevision(L"/w/proj", L"par", a.count, &a.ids),
                            a.ids);
            },
            "E_FAIL 0",
            {Request("GETNEXTID", R"("FileExtension":"par","NumberOfIds":2,"GetInitialRevId":true,)"
                                  R"("Properties":["number"],"DirectoryPath":"/w/proj"})")},
            {{0, L"ERROR WHILE GENERATING ITEMID AND REVISION."}, CodeLine(4), CodeLine(1)}),
        // Without a folder or a file type there is nothing to ask, and nothing is written.
        Call(
            "GenerateItemIDAndRevision without a folder or type", {},
            [](F& f, A& a) {
                return Show(f.GenerateItemIDAndRevision(L"", L"par", a.count, nullptr)) +
                       Show(f.GenerateItemIDAndRevision(L"/w", L"", a.count, nullptr));
            },
            "E_FAILE_FAIL"),
        Call("GenerateNextRevisionID failed",
             {{"GETNEXTREVISIONID",
               WithErrors(R"({"ErrorCode":1})", R"("NextRevisionIdInfo":[{"Revid":"B"}])")}},
             [](F& f, A& a) {
                 a.revision = L"A";
                 return With(f.GenerateNextRevisionID(L"/w/a.par", &a.revision), a.revision);
             },
             "E_FAIL A",
             {Request("GETNEXTREVISIONID",
                      R"("DesignRevisionIdentifiers":[{"Value":"/w/a.par","IdentifierType":0}],)"
                      R"("Properties":["revid"]})")},
             {{0, L"ERROR WHILE GENERATING NEXT REVISION."}, CodeLine(1)}),
        Call("GetProperties", {{"GETPROPERTIES", WithErrors("", Properties)}},
             [](F& f, A& a) {
                 a.properties.resize(1);
                 return With(f.GetProperties({L"/w/pi\u00e8ce.par"}, {}, &a.properties),
                             a.properties);
             },
             "S_OK 2",
             {Request("GETPROPERTIES", "\"FilePathToObjectTypesArray\":[{\"Key\":\"/w/pi\xC3\xA8"
                                       "ce.par\"," +
                                           propertiesOf + "]}")},
             {NoErrorsFound}),
        Call("SetDataObject", {{"SETDATAOBJECT", WithErrors(R"({"ErrorCode":1},{"ErrorCode":4})")}},
             [](F& f, A&) { return Show(f.SetDataObject(L"layout-\u00e9", L"{\"a\":1}")); }, "S_OK",
             {Request("SETDATAOBJECT", "\"Key\":{\"PrimaryKey\":\"layout-\xC3\xA9\","
                                       R"("SecondaryKey":"SaveData"},"Data":"{\"a\":1}"})")}),
        // Both criteria search the same definition; one page of 50, in project context.
        Call(
            "GetDesignRevisions failed",
            {{"QUERYDESIGNREVISIONS",
              WithErrors(R"({"ErrorCode":1},{"ErrorCode":15},{"ErrorCode":4})",
                         R"("DesignRevisionInfo":[{"DesignRevision":[{"Name":"x"}]}])")}},
            [](F& f, A& a) {
                return With(f.GetDesignRevisions(L"br\u00e8cket", &a.names), a.names);
            },
            "E_FAIL 0",
            {Request("QUERYDESIGNREVISIONS",
                     R"("AttachmentCriteria":)" + criteria + R"(,"RevisionCriteria":)" + criteria +
                         R"(,"Options":{"Skip":0,"Limit":50},"Operator":0,"Context":)"
                         R"({"CollaborationSpaceId":"","ContainerType":"PROJECT","ContainerId":"",)"
                         R"("ContainerURN":""}})")},
            {{0, L"ERROR WHILE GENERATING NEXT REVISION."}, CodeLine(1), CodeLine(4)}),
        Call("AddChildren failed", {{"ADDCHILDREN", WithErrors(R"({"ErrorCode":1})")}},
             [](F& f, A&) {
                 return Show(f.AddChildren(L"/w/top.asm", {L"/w/a.par", L"/w/b.psm"}));
             },
             "E_FAIL",
             {Request(
                 "ADDCHILDREN",
                 R"("ParentChildRelationInfos":[{"ParentIdentifier":"/w/top.asm",)"
                 R"("ParentIdentifierType":0,"ChildRevisionInfos":[)"
                 R"({"Identifier":"/w/a.par","IdentifierType":0,"RelationProperties":[]},)"
                 R"({"Identifier":"/w/b.psm","IdentifierType":0,"RelationProperties":[]}]}]})")},
             {{0, L"ERROR WHILE ADDING CHILDREN."}}),
        // The relations are found through the parent's children, matching case; those not found
        // leave empty texts at the end.
        Call(
            "RemoveChildren", {{"GETCHILDREN", Children}},
            [](F& f, A&) {
                return Show(f.RemoveChildren(L"/w/top.asm",
                                             {L"/w/x.par", L"/w/b.par", L"/w/A.PAR", L"/w/a.par"}));
            },
            "S_OK",
            {getChildren, Request("REMOVECHILDREN", R"("RelationURNs":["urn:b","urn:a","",""]})")}),
        Call(
            "RemoveChildren after a failed look-up",
            {{"GETCHILDREN", failedChildren}, {"REMOVECHILDREN", WithErrors(R"({"ErrorCode":1})")}},
            [](F& f, A&) { return Show(f.RemoveChildren(L"/w/top.asm", {L"/w/b.par"})); }, "E_FAIL",
            {getChildren, Request("REMOVECHILDREN", R"("RelationURNs":[""]})")},
            {{0, L"ERROR WHILE GETTING CHILDRENS."}, {0, L"ERROR WHILE REMOVING CHILDRENS."}}),
        Call("GetCorvaneWUResults", {{"QUERYPRIMARYOBJECTS", WhereUsed}},
             [](F& f, A& a) {
                 return With(f.GetCorvaneWUResults({L"/w/a.par", L"/w/b.par"}, &a.relations, true),
                             a.relations);
             },
             "S_OK 1",
             {wuQuery("/w/a.par", R"("DrawingOf")"), wuQuery("/w/b.par", R"("DrawingOf")")}),
        Call("GetCorvaneWUResults failed",
             {{"QUERYPRIMARYOBJECTS",
               WithErrors(R"({"ErrorCode":1})", WhereUsed.substr(1, WhereUsed.size() - 2))}},
             [](F& f, A& a) {
                 a.relations = {{L"/w/held.par", L"urn:held"}};
                 return With(f.GetCorvaneWUResults({L"/w/a.par", L"/w/b.par"}, &a.relations, false),
                             a.relations);
             },
             "E_FAIL 1", {wuQuery("/w/a.par", R"("DrawingOf","DesignChildRelation")")},
             {{0, L"ERROR WHILE GETTING WHERE USED RESULTS."}}),
    };
}

using CallTable = testsupport::FileServicesTest;

TEST_F(CallTable, EachCallSendsItsRequestsWritesItsLinesAndGivesItsOutcome) {
    std::vector<Row> rows = Rows();
    for (Row& row : CheckOutRows()) {
        rows.push_back(std::move(row));
    }
    for (const Row& row : rows) {
        for (const Case& c : row.cases) {
            SCOPED_TRACE(row.name + " -> " + c.outcome);
            connector.executeRequests.clear();
            for (const auto& [command, answer] : c.answers) {
                connector.Answer(command, answer);
            }
            A data;
            EXPECT_EQ(c.outcome, row.call(*files, data));
            EXPECT_EQ(row.requests, connector.executeRequests);
            EXPECT_EQ(c.lines, Take());
            for (const auto& [command, answer] : c.answers) {
                connector.Answer(command, std::string(R"({"Errors":[]})"));
            }
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
    vanto::Session().sessionId.clear();
    EXPECT_EQ(S_OK, files->GetProperties({}, {}, nullptr));
    EXPECT_EQ(Texts{R"({"Command":"GETPROPERTIES","SessionId":"","Version":1,)"
                    R"("FilePathToObjectTypesArray":[]})"},
              connector.executeRequests);
    connector.proxyAvailable = false;
    testsupport::ManagerHandle bare;
    EXPECT_EQ(E_FAIL, bare.FileServices()->GetProperties({L"/w/b.asm"}, {}, nullptr));
    EXPECT_EQ((Lines{NoErrorsFound, testsupport::ExceptionLine(L"Corvane proxy is not available")}),
              Take());
    EXPECT_EQ(1u, connector.executeRequests.size());
}

} // namespace
