// The component's real path, in this test program: its session, the default backend, the
// transport and a running emulator on the example workspace (Ada Byrne signed in). The file
// services on this path are checked through the host tool (tests/tools/vanto_host/HostCliTest).
#include "connector/CorvaneClient.h"
#include "os/TextConversion.h"
#include "session/SessionState.h"
#include "support/ComTestSupport.h"
#include "support/EmulatorProcess.h"

#include <boost/json.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using ::testing::HasSubstr;

class EmulatorSession : public ::testing::Test {
protected:
    void SetUp() override {
        vanto::ResetSessionStateForTesting();
        emulator = std::make_unique<testsupport::EmulatorProcess>();
        manager = std::make_unique<testsupport::ManagerHandle>();
        session = manager->Session();
    }
    void TearDown() override {
        if (session != nullptr) {
            session->DeRegisterFromCorvane();
        }
        manager.reset();
        emulator.reset();
        vanto::ResetSessionStateForTesting();
    }

    std::unique_ptr<testsupport::EmulatorProcess> emulator;
    std::unique_ptr<testsupport::ManagerHandle> manager;
    IVANTOSession* session = nullptr;
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
    EXPECT_THAT(emulator->Control(R"({"Action":"status"})"), HasSubstr(R"("Sessions":1)"));

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
    EXPECT_THAT(emulator->Control(R"({"Action":"status"})"), HasSubstr(R"("Sessions":0)"));
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
    // A program of the component's platform, given its data folder as that platform names it.
    EXPECT_THAT(
        emulator->Control(R"({"Action":"status"})"),
        HasSubstr("\"DataFolder\":" + boost::json::serialize(boost::json::value(
                                          platform::os::WideToUtf8(emulator->DataFolder())))));
    // It took the workspace of the earlier start from its database.
    RootFolderSet roots;
    EXPECT_EQ(S_OK, session->GetRootFolders(&roots));
    EXPECT_EQ(RootFolderSet{GUserText(emulator->WorkspaceFolder().c_str())}, roots);

    session->DeRegisterFromCorvane();
    emulator->Stop();
    EXPECT_FALSE(session->IsCorvaneRunning());
}

} // namespace
