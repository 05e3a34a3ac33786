// Containers, permissions and numbering through the real file-services interface.
#include "fileservices/SharedPaths.h"

#include <vector>

namespace {

using testsupport::Lines;

// A container entry as its five texts, in order.
std::vector<std::wstring> TextsOf(const ContainerEntry& entry) {
    return {entry.localFilePath.wstr(), entry.containerName.wstr(), entry.containerId.wstr(),
            entry.containerUrn.wstr(), entry.collaborationSpaceId.wstr()};
}

class ContainersNumbering : public testsupport::SharedPathsTest {
protected:
    std::int32_t status = 7;
};

TEST_F(ContainersNumbering, GetAvailableContainersAppendsContainersAndFlagsAnUnsupportedCommand) {
    const std::string answer =
        R"({"Errors":[],"ContainerInformation":[)"
        R"({"LocalFilePath":"/c/Proj\u00e9t","ContainerType":0,"ContainerName":)"
        R"("Proj\u00e9t","ContainerId":"c-1","ContainerUrn":"urn:c:1",)"
        R"("ContainerOwnershipType":1,"CollaborationSpace":)"
        R"({"CollaborationSpaceId":"cs-1"}},)"
        R"({"LocalFilePath":"/c/Lib","ContainerName":"Lib","ContainerId":"c-2"}]})";
    connector.Answer("GETAVAILABLECONTAINERS", answer);
    ContainerList containers(1);
    EXPECT_EQ(S_OK, files->GetAvailableContainers(&containers, &status));
    ASSERT_EQ(3u, containers.size());
    EXPECT_EQ(
        (std::vector<std::wstring>{L"/c/Proj\u00e9t", L"Proj\u00e9t", L"c-1", L"urn:c:1", L"cs-1"}),
        TextsOf(containers[1]));
    EXPECT_EQ((std::vector<std::wstring>{L"/c/Lib", L"Lib", L"c-2", L"", L""}),
              TextsOf(containers[2]));
    EXPECT_EQ(7, status);
    EXPECT_EQ(Lines{}, Take());
    EXPECT_EQ(Head("GETAVAILABLECONTAINERS") +
                  R"("Name":"","ContainerType":[0,2],"ReturnUnsynched":false})",
              Sent("GETAVAILABLECONTAINERS"));

    containers.resize(1);
    const auto call = [&] { return files->GetAvailableContainers(&containers, &status); };
    connector.Answer("GETAVAILABLECONTAINERS", ErrorsAnswer({1}, answer));
    EXPECT_EQ(E_FAIL, call());
    EXPECT_EQ(7, status);
    EXPECT_EQ((Lines{{0, L"ERROR WHILE GETTING CORVANE CONTAINER INFORMATION."}, CodeLine(1)}),
              Take());
    ExpectEachException("GETAVAILABLECONTAINERS", E_FAIL, call);
    EXPECT_EQ(7, status);
    // Only "not supported" tells the caller so, whichever error it comes with.
    connector.Answer("GETAVAILABLECONTAINERS", ErrorsAnswer({1, 4}, answer));
    EXPECT_EQ(E_FAIL, call());
    EXPECT_EQ(3, status);
    EXPECT_EQ((Lines{{0, L"ERROR WHILE GETTING CORVANE CONTAINER INFORMATION."},
                     CodeLine(1),
                     CodeLine(4)}),
              Take());
    EXPECT_EQ(1u, containers.size());
}

TEST_F(ContainersNumbering, AddProjectToSyncSendsTheUrnAndFlagsAnUnsupportedCommand) {
    const auto call = [&] { return files->AddProjectToSync(L"urn:p:\u00e9", &status); };
    connector.Answer("ADDPROJECTTOSYNC", R"({"Errors":[],"TaskId":"t-1"})");
    EXPECT_EQ(S_OK, call());
    EXPECT_EQ(Head("ADDPROJECTTOSYNC") + "\"ProjectURN\":\"urn:p:\xC3\xA9\"}",
              Sent("ADDPROJECTTOSYNC"));
    EXPECT_EQ(Lines{}, Take());

    connector.Answer("ADDPROJECTTOSYNC", ErrorsAnswer({1}));
    EXPECT_EQ(E_FAIL, call());
    EXPECT_EQ((Lines{{0, L"ERROR WHILE ADDING PROJECT TO SYNC."}, CodeLine(1)}), Take());
    ExpectEachException("ADDPROJECTTOSYNC", E_FAIL, call);
    EXPECT_EQ(7, status);
    connector.Answer("ADDPROJECTTOSYNC", ErrorsAnswer({4, 1}));
    EXPECT_EQ(E_FAIL, call());
    EXPECT_EQ(3, status);
    EXPECT_EQ((Lines{{0, L"ERROR WHILE ADDING PROJECT TO SYNC."}, CodeLine(4), CodeLine(1)}),
              Take());
}

TEST_F(ContainersNumbering, GetFileAccessPermissionsKeepsTheFirstPermissionOfEachPath) {
    const std::string answer = R"({"Errors":[],"AccessPermissionsInfo":[)"
                               R"({"Path":"/w/a.par","AccessPermission":2,"MoreInfo":"x"},)"
                               R"({"Path":"/w/b.asm","AccessPermission":1},)"
                               R"({"Path":"/w/a.par","AccessPermission":3},)"
                               R"({"Path":"/w/held.par","AccessPermission":3}]})";
    connector.Answer("GETACCESSPERMISSIONS", answer);
    AccessPermissionMap permissions{{L"/w/held.par", 0}};
    const auto call = [&] {
        return files->GetFileAccessPermissions({L"/w/a.par", L"/w/b.asm"}, &permissions);
    };
    EXPECT_EQ(S_OK, call());
    EXPECT_EQ((AccessPermissionMap{{L"/w/a.par", 2}, {L"/w/b.asm", 1}, {L"/w/held.par", 0}}),
              permissions);
    EXPECT_EQ(Head("GETACCESSPERMISSIONS") + R"("Paths":["/w/a.par","/w/b.asm"]})",
              Sent("GETACCESSPERMISSIONS"));
    EXPECT_EQ(Lines{}, Take());

    permissions = {{L"/w/held.par", 0}};
    connector.Answer("GETACCESSPERMISSIONS", ErrorsAnswer({1}, answer));
    EXPECT_EQ(E_FAIL, call());
    // No code line: this failure does not report its codes.
    EXPECT_EQ((Lines{{0, L"Error getting Access Permissions."}}), Take());
    ExpectEachException("GETACCESSPERMISSIONS", E_FAIL, call);
    EXPECT_EQ((AccessPermissionMap{{L"/w/held.par", 0}}), permissions);
}

TEST_F(ContainersNumbering, GenerateItemIdAndRevisionAsksForNumbersInAFolderForAFileType) {
    const std::string answer = R"({"Errors":[],"NextIdInfo":[)"
                               R"({"PropertyName":"number","Number":"1001","Revid":"A"},)"
                               R"({"Number":"1002","Revid":"A"}]})";
    connector.Answer("GETNEXTID", answer);
    std::int32_t count = 2;
    ItemIdRevisionList ids{{L"900", L"C"}};
    const auto call = [&](const wchar_t* folder, const wchar_t* extension) {
        return files->GenerateItemIDAndRevision(folder, extension, count, &ids);
    };
    EXPECT_EQ(S_OK, call(L"/w/proj", L"par"));
    EXPECT_EQ((ItemIdRevisionList{{L"900", L"C"}, {L"1001", L"A"}, {L"1002", L"A"}}), ids);
    EXPECT_EQ(Head("GETNEXTID") + R"("FileExtension":"par","NumberOfIds":2,"GetInitialRevId":true,)"
                                  R"("Properties":["number"],"DirectoryPath":"/w/proj"})",
              Sent("GETNEXTID"));
    EXPECT_EQ(Lines{}, Take());

    ids = {{L"900", L"C"}};
    // Without a folder or a file type there is nothing to ask, and nothing is written.
    EXPECT_EQ(E_FAIL, call(L"", L"par"));
    EXPECT_EQ(E_FAIL, call(L"/w/proj", L""));
    EXPECT_EQ(Lines{}, Take());
    EXPECT_EQ(1u, connector.executeRequests.size());

    connector.Answer("GETNEXTID", ErrorsAnswer({4, 1}, answer));
    EXPECT_EQ(E_FAIL, call(L"/w/proj", L"par"));
    EXPECT_EQ(
        (Lines{{0, L"ERROR WHILE GENERATING ITEMID AND REVISION."}, CodeLine(4), CodeLine(1)}),
        Take());
    ExpectEachException("GETNEXTID", E_FAIL, [&] { return call(L"/w/proj", L"par"); });
    EXPECT_EQ((ItemIdRevisionList{{L"900", L"C"}}), ids);
}

TEST_F(ContainersNumbering, GenerateNextRevisionIdTakesTheFirstRevisionOfTheAnswer) {
    const std::string answer = R"({"Errors":[],"NextRevisionIdInfo":[)"
                               R"({"RevisionFilepath":"/w/a.par","Revid":"B"},{"Revid":"C"}]})";
    connector.Answer("GETNEXTREVISIONID", answer);
    GUserText revision(L"A");
    const auto call = [&] { return files->GenerateNextRevisionID(L"/w/a.par", &revision); };
    EXPECT_EQ(S_OK, call());
    EXPECT_EQ(GUserText(L"B"), revision);
    EXPECT_EQ(Head("GETNEXTREVISIONID") +
                  R"("DesignRevisionIdentifiers":[{"Value":"/w/a.par","IdentifierType":0}],)"
                  R"("Properties":["revid"]})",
              Sent("GETNEXTREVISIONID"));
    EXPECT_EQ(Lines{}, Take());

    // An empty answer leaves the caller's text as it was, and so does every failure.
    revision = L"A";
    connector.Answer("GETNEXTREVISIONID", R"({"Errors":[],"NextRevisionIdInfo":[]})");
    EXPECT_EQ(S_OK, call());
    connector.Answer("GETNEXTREVISIONID", ErrorsAnswer({1}, answer));
    EXPECT_EQ(E_FAIL, call());
    EXPECT_EQ((Lines{{0, L"ERROR WHILE GENERATING NEXT REVISION."}, CodeLine(1)}), Take());
    ExpectEachException("GETNEXTREVISIONID", E_FAIL, call);
    EXPECT_EQ(GUserText(L"A"), revision);
}

} // namespace
