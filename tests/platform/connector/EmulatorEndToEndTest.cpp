// The component's real path: its interfaces, the default backend, the transport and a running
// emulator seeded from the example workspace (Ada Byrne signed in; Ben Okafor holds housing.psm).
#include "connector/CorvaneClient.h"
#include "os/Os.h"
#include "session/SessionState.h"
#include "support/ComTestSupport.h"
#include "support/EmulatorProcess.h"

#include <boost/json.hpp>
#include <gtest/gtest.h>

#include <filesystem>

namespace {

using testsupport::EmulatorProcess;

bool Contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

class EmulatorSession : public ::testing::Test {
protected:
    void SetUp() override {
        if (!EmulatorProcess::Available()) {
            GTEST_SKIP() << "this build has no emulator program to start";
        }
        vanto::ResetSessionStateForTesting();
        emulator = std::make_unique<EmulatorProcess>();
        manager = std::make_unique<testsupport::ManagerHandle>();
        session = manager->Session();
        files = manager->FileServices();
    }
    void TearDown() override {
        if (session != nullptr) {
            session->DeRegisterFromCorvane();
        }
        manager.reset();
        emulator.reset();
        vanto::ResetSessionStateForTesting();
    }

    GUserText Doc(const char* relative) const { return emulator->Document(relative); }
    void Connect() const { ASSERT_TRUE(session->IsConnected(true)); }

    std::unique_ptr<EmulatorProcess> emulator;
    std::unique_ptr<testsupport::ManagerHandle> manager;
    IVANTOSession* session = nullptr;
    IVANTOFileServices* files = nullptr;
};

TEST_F(EmulatorSession, TheDefaultBackendConnectsRegistersAndReadsTheSession) {
    EXPECT_TRUE(session->IsCorvaneInstalled());
    EXPECT_TRUE(session->IsCorvaneRunning());
    EXPECT_TRUE(session->IsConnected(true));
    EXPECT_FALSE(session->IsCorvaneInOffLineMode());

    SessionInfo info;
    EXPECT_EQ(S_OK, session->GetSessionInfo(&info));
    EXPECT_EQ(GUserText(L"Ada Byrne"), info.authenticatedUserName);
    EXPECT_EQ(GUserText(L"ada.byrne@example.com"), info.userEmail);
    RootFolderSet roots;
    EXPECT_EQ(S_OK, session->GetRootFolders(&roots));
    EXPECT_EQ(RootFolderSet{GUserText(emulator->WorkspaceFolder().c_str())}, roots);
    EXPECT_TRUE(Contains(emulator->Control(R"({"Action":"status"})"), R"("Sessions":1)"));

    // Offline, then signed out: the status check fails and the session says which.
    emulator->Control(R"({"Action":"offline"})");
    EXPECT_FALSE(session->IsConnected(true));
    EXPECT_TRUE(session->IsCorvaneInOffLineMode());
    emulator->Control(R"({"Action":"online"})");
    EXPECT_TRUE(session->IsConnected(true));
    emulator->Control(R"({"Action":"signout"})");
    EXPECT_FALSE(session->IsConnected(true));
    EXPECT_FALSE(session->IsCorvaneInOffLineMode());
    emulator->Control(R"({"Action":"signin"})");

    session->DeRegisterFromCorvane();
    EXPECT_TRUE(Contains(emulator->Control(R"({"Action":"status"})"), R"("Sessions":0)"));
}

TEST_F(EmulatorSession, StartLaunchesTheEmulatorAndWaitsUntilItIsReady) {
    emulator->Stop();
    EXPECT_FALSE(session->IsCorvaneRunning());
    EXPECT_FALSE(session->IsConnected(true));
    bool timedOut = true;
    ASSERT_TRUE(session->StartCorvaneAndWaitForReadyState(20000, &timedOut, nullptr));
    EXPECT_FALSE(timedOut);
    EXPECT_TRUE(session->IsCorvaneRunning());
    EXPECT_TRUE(session->IsConnected(true));
    // It took the workspace of the earlier start from its database.
    RootFolderSet roots;
    EXPECT_EQ(S_OK, session->GetRootFolders(&roots));
    EXPECT_EQ(RootFolderSet{GUserText(emulator->WorkspaceFolder().c_str())}, roots);

    session->DeRegisterFromCorvane();
    emulator->Control(R"({"Action":"stop"})");
    const auto endpoint = std::filesystem::path(emulator->DataFolder()) / "endpoint.json";
    for (int waited = 0; std::filesystem::exists(endpoint) && waited < 10000; waited += 20) {
        platform::os::SleepMilliseconds(20);
    }
    EXPECT_FALSE(session->IsCorvaneRunning());
}

TEST_F(EmulatorSession, CheckOutAndCheckInFollowTheLocksOfTheCloud) {
    Connect();
    const GUserText shaft = Doc("Gearbox/Shaft/shaft.par");
    const GUserText housing = Doc("Gearbox/housing.psm");
    FileLockStatusMap out{{shaft, {}}, {housing, {}}};
    EXPECT_EQ(S_OK, files->CheckOut(&out));
    EXPECT_TRUE(out[shaft].isCheckedOut);
    EXPECT_TRUE(out[shaft].isCheckedOutByCurrentUser);
    EXPECT_TRUE(out[housing].isCheckedOut);
    EXPECT_FALSE(out[housing].isCheckedOutByCurrentUser);
    EXPECT_EQ(GUserText(L"Ben Okafor"), out[housing].checkedOutBy);
    const std::string locks = emulator->Control(R"({"Action":"locks"})");
    EXPECT_TRUE(Contains(locks, "shaft.par")) << locks;

    // Check-in: the holder releases; anyone else is refused, and the lock stays.
    FileCheckInList mine{{shaft, 0, {}}};
    EXPECT_EQ(S_OK, files->CheckIn(&mine));
    EXPECT_EQ(0, mine[0].errorCode);
    FileCheckInList bens{{housing, 0, {}}};
    EXPECT_EQ(E_FAIL, files->CheckIn(&bens));
    EXPECT_FALSE(Contains(emulator->Control(R"({"Action":"locks"})"), "shaft.par"));
    FileLockStatusMap now{{shaft, {}}, {housing, {}}};
    EXPECT_EQ(S_OK, files->GetCheckOutStatus(&now, false));
    EXPECT_FALSE(now[shaft].isCheckedOut);
    EXPECT_TRUE(now[housing].isCheckedOut);
    EXPECT_EQ(GUserText(L"Ben Okafor"), now[housing].checkedOutBy);

    // Another user saves a new version in the cloud: this desktop is told.
    FileStatusInformation status;
    EXPECT_EQ(S_OK, files->GetStatusInformation(shaft, &status));
    EXPECT_EQ(0, status.isNewVersionAvailable);
    const boost::json::object save{
        {"Action", "save"}, {"User", "Ben Okafor"}, {"Path", shaft.Narrow()}};
    ASSERT_TRUE(Contains(emulator->Control(boost::json::serialize(save)), R"("Ok":true)"));
    EXPECT_TRUE(files->IsNewVersionAvailable(shaft));
    EXPECT_EQ(S_OK, files->GetStatusInformation(shaft, &status));
    EXPECT_EQ(1, status.isNewVersionAvailable);
}

TEST_F(EmulatorSession, PropertiesStampsContextAndPermissions) {
    Connect();
    const GUserText bearing = Doc("Gearbox/Shaft/bearing.par");
    const GUserText cover = Doc("Gearbox/cover.par");
    const GUserText stranger = Doc("Gearbox/not-a-document.par");

    EXPECT_TRUE(files->IsValidCorvaneFile(bearing));
    PathMonitoredMap monitored;
    EXPECT_EQ(S_OK, files->IsValidCorvaneFile(PathList{bearing}, &monitored));
    EXPECT_TRUE(monitored[bearing]);

    FilePropertyList properties;
    EXPECT_EQ(S_OK, files->GetProperties(PathList{bearing}, PropertyNameSet{}, &properties));
    ASSERT_EQ(1u, properties.size());
    std::vector<GUserText> materials;
    for (const ObjectTypeProperties& type : properties[0].objectTypes) {
        for (const PropertyEntry& property : type.properties) {
            if (property.name == GUserText(L"Material")) {
                materials = property.values;
            }
        }
    }
    EXPECT_EQ(std::vector<GUserText>{GUserText(L"100Cr6")}, materials);
    FilePropertyList none;
    EXPECT_NE(S_OK, files->GetProperties(PathList{stranger}, PropertyNameSet{}, &none));

    DocumentStampMap stamps{{bearing, {}}};
    EXPECT_EQ(S_OK, files->GetDocumentConsistencyStamp(&stamps));
    EXPECT_FALSE(stamps[bearing].consistencyStamp.IsEmpty());
    EXPECT_FALSE(stamps[bearing].documentId.IsEmpty());
    FileUidPathMap paths{{stamps[bearing].documentId, {}}};
    EXPECT_EQ(S_OK, files->GetFilePath(&paths));
    EXPECT_EQ(bearing, paths[stamps[bearing].documentId]);

    FileContextList contexts;
    EXPECT_EQ(S_OK, files->GetContextInformation(PathList{bearing}, &contexts));
    ASSERT_EQ(1u, contexts.size());
    EXPECT_EQ(stamps[bearing].documentId, contexts[0].context.documentId);
    EXPECT_FALSE(contexts[0].context.componentRevisionUrn.IsEmpty());

    AccessPermissionMap permissions;
    EXPECT_EQ(S_OK, files->GetFileAccessPermissions(PathList{bearing, cover}, &permissions));
    EXPECT_EQ(2, permissions[bearing]); // write
    EXPECT_EQ(1, permissions[cover]);   // read only, as the example says
}

} // namespace
