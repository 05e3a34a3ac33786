// The mock session and file services as a host sees them, answered from the input file.
#include "mock/MockFixture.h"

#include "host/GUserFileName.h"
#include "host/HostLog.h"

namespace {

using testsupport::MockTest;

const char* const Sample = R"(<?xml version="1.0"?>
<xml>
  <RootFolder>Z:\PDM\VANTO\Root</RootFolder>
  <OrbexUserName>Alice</OrbexUserName>
  <Projects><Project><ProjectName>Gearbox</ProjectName><Owner>alice</Owner></Project></Projects>
  <Files>
    <File><FileName>Z:\PDM\VANTO\Root\bracket.par</FileName><CheckedOutBy>alice</CheckedOutBy></File>
    <File><FileName>Z:\PDM\VANTO\Root\housing.asm</FileName><CheckedOutBy>bob</CheckedOutBy></File>
    <Other><FileName>Z:\PDM\VANTO\ROOT\BRACKET.PAR</FileName><CheckedOutBy>carol</CheckedOutBy></Other>
  </Files>
</xml>)";

TEST_F(MockTest, OnlyTheFileServiceStubsWriteLogRecordsAndTheRootFolderIsMade) {
    WriteInput(Sample);
    drive.RemoveAfterwards(L"Z:\\PDM\\VANTO\\Root");
    ASSERT_FALSE(GUserFileName(GUserText(L"Z:\\PDM\\VANTO\\Root")).Exists());
    CapturingLogSink log;
    RootFolderSet roots{GUserText(L"C:\\Existing")};
    LoggedInUserInfo user;
    FileCheckInList items;
    FileLockStatusMap locks;
    PathMonitoredMap monitored;
    FileStatusInformation status;
    bool timedOut = true;
    SessionInfo info{L"kept", L"", L"", L""};
    EXPECT_TRUE(session->IsConnected(true) && session->IsCorvaneRunning() &&
                session->IsCorvaneInstalled() && !session->IsCorvaneInOffLineMode());
    EXPECT_TRUE(session->StartCorvaneAndWaitForReadyState(0, &timedOut, nullptr));
    EXPECT_FALSE(timedOut);
    session->DeRegisterFromCorvane();
    EXPECT_EQ(S_OK, session->GetSessionInfo(&info));
    EXPECT_EQ(GUserText(L"kept"), info.authenticatedUserName);
    // The root folder is created and added to the caller's set; once there, it is fine.
    ASSERT_EQ(S_OK, session->GetRootFolders(&roots));
    EXPECT_EQ((RootFolderSet{L"C:\\Existing", L"Z:\\PDM\\VANTO\\Root"}), roots);
    EXPECT_TRUE(std::filesystem::is_directory(drive.Native(L"Z:\\PDM\\VANTO\\Root")));
    ASSERT_EQ(S_OK, session->GetRootFolders(&roots));
    session->GetCurrentLoggedInUserInfo(&user);
    files->CheckIn(&items);
    files->CheckOut(&locks);
    files->IsValidCorvaneFile(PathList{L"Z:\\a"}, &monitored);
    files->GetStatusInformation(L"Z:\\a", &status);
    EXPECT_TRUE(log.records.empty());

    EXPECT_EQ(S_OK, files->AttachDocumentToRevision(RevisionAttachmentList(3)));
    EXPECT_TRUE(files->IsFileSynchronized(L"Z:\\a"));
    const std::wstring tag = L"VANTOManager::VANTOMockFileServices::";
    EXPECT_EQ(
        (std::vector<std::wstring>{tag + L"AttachDocumentToRevision", tag + L"IsFileSynchronized"}),
        log.ScopesOpened());
}

int g_userReads = 0;
std::wstring g_userName;
std::wstring CountedUserName() {
    ++g_userReads;
    return g_userName;
}

TEST_F(MockTest, LogonUserIsReadOncePerProcessIntoBothTexts) {
    const auto previous = vanto::mock::SetUserNameSourceForTesting(&CountedUserName);
    g_userReads = 0;
    g_userName = L""; // could not be read: asked again next time
    LoggedInUserInfo first{L"", L"", L"kept@example.com"};
    ASSERT_EQ(S_OK, session->GetCurrentLoggedInUserInfo(&first));
    g_userName = L"jdoe";
    ASSERT_EQ(S_OK, session->GetCurrentLoggedInUserInfo(&first));
    EXPECT_EQ(GUserText(L"jdoe"), first.loginName);
    EXPECT_EQ(GUserText(L"jdoe"), first.displayName);
    EXPECT_EQ(GUserText(L"kept@example.com"), first.email);

    g_userName = L"someone-else";
    testsupport::ManagerHandle other;
    LoggedInUserInfo second;
    ASSERT_EQ(S_OK, other.MockSession()->GetCurrentLoggedInUserInfo(&second));
    EXPECT_EQ(GUserText(L"jdoe"), second.loginName);
    EXPECT_EQ(2, g_userReads);
    vanto::mock::SetUserNameSourceForTesting(previous);
}

TEST_F(MockTest, StatusLooksFilesUpIgnoringCaseAndTheFirstEntryWins) {
    WriteInput(Sample);
    FileStatusInformation status;
    ASSERT_EQ(S_OK, files->GetStatusInformation(L"z:\\pdm\\vanto\\root\\BRACKET.par", &status));
    EXPECT_EQ(GUserText(L"alice"), status.checkedOutBy); // not the later "carol"
    EXPECT_TRUE(status.isCheckedOutByMe);                // "Alice" in the file
    ASSERT_EQ(S_OK, files->GetStatusInformation(L"Z:\\PDM\\VANTO\\Root\\housing.asm", &status));
    EXPECT_EQ(GUserText(L"bob"), status.checkedOutBy);
    EXPECT_FALSE(status.isCheckedOutByMe);

    FileStatusInformation untouched{true, true, L"earlier", 1, 1};
    ASSERT_EQ(S_OK, files->GetStatusInformation(L"Z:\\PDM\\VANTO\\Root\\none.par", &untouched));
    EXPECT_EQ(GUserText(L"earlier"), untouched.checkedOutBy);
    EXPECT_TRUE(untouched.isCheckedOutByMe);
    EXPECT_EQ(2u, Store().files.size());
    EXPECT_EQ(GUserText(L"alice"), Store().projects.at(L"Gearbox").owner);

    // Valid files begin with the root folder as written.
    EXPECT_TRUE(files->IsValidCorvaneFile(GUserText(L"Z:\\PDM\\VANTO\\Root\\not-there.par")));
    EXPECT_FALSE(files->IsValidCorvaneFile(GUserText(L"z:\\pdm\\vanto\\root\\bracket.par")));
    EXPECT_FALSE(files->IsValidCorvaneFile(GUserText(L"Z:\\PDM\\VANTO\\Roo")));
    PathMonitoredMap monitored{{L"C:\\kept.par", true}};
    const PathList paths{L"Z:\\PDM\\VANTO\\Root\\a.par", L"C:\\kept.par", L"C:\\b.par"};
    ASSERT_EQ(S_OK, files->IsValidCorvaneFile(paths, &monitored));
    EXPECT_EQ((PathMonitoredMap{{L"Z:\\PDM\\VANTO\\Root\\a.par", true},
                                {L"C:\\kept.par", true},
                                {L"C:\\b.par", false}}),
              monitored);
}

TEST_F(MockTest, CheckInAndCheckOutLeaveTheCallersItemsAsTheyCame) {
    WriteInput(
        "<xml><Files><F><FileName>a</FileName><CheckIn>no</CheckIn><CheckedOut>no</CheckedOut>"
        "<ErrorCode>DAL_E_CHECKED_OUT_TO_OTHER_USER</ErrorCode></F></Files></xml>");
    FileCheckInList items{{L"A", 7, L"someone"}, {L"unknown", 0, L""}};
    EXPECT_EQ(S_OK, files->CheckIn(&items));
    ASSERT_EQ(2u, items.size());
    EXPECT_TRUE(items[0].fileName == L"A" && items[0].errorCode == 7 &&
                items[0].lockedBy == L"someone");
    EXPECT_TRUE(items[1].fileName == L"unknown" && items[1].errorCode == 0 &&
                items[1].lockedBy.IsEmpty());

    FileLockStatusMap locks{{L"a", {true, true, false, L"me"}}};
    EXPECT_EQ(S_OK, files->CheckOut(&locks));
    const FileLockStatus& lock = locks.at(L"a");
    EXPECT_TRUE(lock.isCheckedOut && lock.isCheckedOutByCurrentUser && !lock.isNewVersionAvailable);
    EXPECT_EQ(GUserText(L"me"), lock.checkedOutBy);
}

// The results worked out per item are handed to nobody; they are checked on the store itself.
TEST_F(MockTest, ItemResultsFollowTheFlagsAndErrorCodeNames) {
    WriteInput(R"(<xml><Files>
      <F><FileName>a</FileName><CheckIn>no</CheckIn><ErrorCode>DAL_E_CHECKED_OUT_TO_OTHER_USER</ErrorCode></F>
      <F><FileName>b</FileName><CheckIn>NO</CheckIn><ErrorCode>dal_e_checked_out_to_other_user</ErrorCode></F>
      <F><FileName>c</FileName><CheckedOut>nO</CheckedOut><CheckedOutBy>bob</CheckedOutBy></F>
      <F><FileName>d</FileName><CheckIn>none</CheckIn><CheckedOut> no</CheckedOut><ErrorCode>DAL_E_CHECKED_OUT_TO_OTHER_USER</ErrorCode></F>
    </Files></xml>)");
    const auto checkIn = [&](const wchar_t* name) {
        return vanto::mock::CheckInResult(Store().files, FileCheckInEntry{name, 5, L"holder"});
    };
    const auto checkedOut = [&](const wchar_t* name) {
        return vanto::mock::CheckOutResult(Store().files, name, {true, true, false, L"me"});
    };
    EXPECT_EQ(static_cast<HRESULT>(0x8004B001), checkIn(L"A").errorCode);
    EXPECT_EQ(GUserText(), checkIn(L"A").lockedBy); // the file's never-filled fifth text
    EXPECT_EQ(0, checkIn(L"b").errorCode);          // names are exact
    EXPECT_EQ(5, checkIn(L"c").errorCode);          // checked in: the item's own code
    EXPECT_EQ(5, checkIn(L"d").errorCode);          // only "no" means no
    EXPECT_EQ(GUserText(L"holder"), checkIn(L"x").lockedBy);
    EXPECT_FALSE(checkedOut(L"C").isCheckedOut);
    EXPECT_EQ(GUserText(L"bob"), checkedOut(L"C").checkedOutBy);
    EXPECT_TRUE(checkedOut(L"d").isCheckedOut);
}

} // namespace
