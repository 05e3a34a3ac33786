// Every slot of the real file-services interface, with a session and answers that let each call
// go all the way: the commands each one sends, in order. A slot that works through other slots
// sends what they send; the inert ones and LogErrors send nothing.
#include "fileservices/FileServicesFixture.h"

#include <algorithm>
#include <functional>
#include <iterator>

namespace {

using testsupport::Line;
using testsupport::Lines;
using testsupport::Texts;

class FileServicesSlots : public testsupport::FileServicesTest {};

TEST_F(FileServicesSlots, EachSlotSendsTheCommandsOfItsMethod) {
    // The file is monitored, has properties and is named in each answer that lists files.
    connector.Answer("ISPATHMONITORED",
                     R"({"Errors":[],"PathToIsMonitored":[{"Key":"/w/a.par","Value":true}]})");
    connector.Answer("GETPROPERTIES", R"({"Errors":[],"FilePropertiesArray":[)"
                                      R"({"FilePath":"/w/a.par","ObjectTypeToPropertiesArray":[)"
                                      R"({"ObjectType":1,"Properties":[)"
                                      R"({"Name":"LockedBy","PropertyValues":["ann"]}]}]}]})");
    const GUserText path(L"/w/a.par");
    // The maps and lists that are read name the file.
    testsupport::SlotArguments a;
    a.checkIns = {{path, 0, GUserText()}};
    a.locks = {{path, FileLockStatus()}};
    a.stamps = {{path, DocumentStamp()}};
    a.uids = {{L"uid-1", GUserText()}};
    a.code = 4;
    const Texts propertiesThenNewer{"GETPROPERTIES", "CHECKFORNEWERVERSION"};
    // Slots 3 to 29 in order.
    const std::pair<std::function<void()>, Texts> slots[] = {
        {[&] { files->CheckIn(&a.checkIns); }, {"UNLOCKDESIGNREVISIONS"}},
        {[&] { files->CheckOut(&a.locks); }, {"GETSESSIONINFO", "LOCKDESIGNREVISIONS"}},
        {[&] { files->IsValidCorvaneFile({path}, &a.monitored); }, {"ISPATHMONITORED"}},
        {[&] { files->IsValidCorvaneFile(path); }, {"ISPATHMONITORED"}},
        {[&] { files->GetStatusInformation(path, &a.status); }, propertiesThenNewer},
        {[&] { files->IsNewRevisionAvailable(path); }, {}},
        {[&] { files->IsNewVersionAvailable(path); }, propertiesThenNewer},
        {[&] { files->GetCheckOutStatus(&a.locks, true); },
         {"GETSESSIONINFO", "GETPROPERTIES", "GETPROPERTIES", "CHECKFORNEWERVERSION"}},
        {[&] { files->DownloadLatestVersion(path); }, {}},
        {[&] {
             files->AttachDocumentToRevision({{path, L"B"}});
         },
         {}},
        {[&] { files->GetDocumentConsistencyStamp(&a.stamps); }, {"GETPROPERTIES"}},
        {[&] { files->IsFileSynchronized(path); }, {"ISPATHMONITORED", "GETPROPERTIES"}},
        {[&] { files->GetFilePath(&a.uids); }, {"GETFILEPATHBYUID"}},
        {[&] { files->GetContextInformation({path}, &a.contexts); }, {"GETFILECONTEXTINFO"}},
        {[&] { files->GetAvailableContainers(&a.containers, &a.containerStatus); },
         {"GETAVAILABLECONTAINERS"}},
        {[&] { files->AddProjectToSync(L"urn:p", &a.containerStatus); }, {"ADDPROJECTTOSYNC"}},
        {[&] { files->GetFileAccessPermissions({path}, &a.permissions); },
         {"GETACCESSPERMISSIONS"}},
        {[&] { files->GenerateItemIDAndRevision(L"/w", L"par", a.count, &a.ids); }, {"GETNEXTID"}},
        {[&] { files->GenerateNextRevisionID(path, &a.revision); }, {"GETNEXTREVISIONID"}},
        {[&] { files->GetProperties({path}, {}, &a.properties); }, {"GETPROPERTIES"}},
        {[&] { files->SetDataObject(L"key", L"data"); }, {"SETDATAOBJECT"}},
        {[&] { files->GetDesignRevisions(L"a", &a.names); }, {"QUERYDESIGNREVISIONS"}},
        {[&] { files->AddChildren(path, {L"/w/b.par"}); }, {"ADDCHILDREN"}},
        {[&] { files->RemoveChildren(path, {L"/w/b.par"}); }, {"GETCHILDREN", "REMOVECHILDREN"}},
        {[&] { files->GetChildren(path, &a.relations); }, {"GETCHILDREN"}},
        {[&] {
             files->GetCorvaneWUResults({path, L"/w/b.par"}, &a.relations, false);
         },
         {"QUERYPRIMARYOBJECTS", "QUERYPRIMARYOBJECTS"}},
        {[&] { files->LogErrors(&a.code); }, {}},
    };
    for (std::size_t slot = 0; slot < std::size(slots); ++slot) {
        SCOPED_TRACE(slot + 3);
        connector.executeRequests.clear();
        slots[slot].first();
        EXPECT_EQ(slots[slot].second, connector.CommandsSent());
    }
    // With sound answers nothing went wrong on the way (LogErrors' own line aside).
    const Lines lines = Take();
    EXPECT_EQ(1, std::count_if(lines.begin(), lines.end(),
                               [](const Line& line) { return line.first == 0; }));
}

} // namespace
