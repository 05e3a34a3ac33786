// The mock session and file services as a host sees them, answered from the input file.
#include "mock/MockFixture.h"

#include "host/GUserFileName.h"
#include "host/HostLog.h"
#include "os/Os.h"

#include <filesystem>

namespace {

using testsupport::MockTest;

constexpr HRESULT ElementNotFound = static_cast<HRESULT>(0x80070490);
constexpr HRESULT CheckedOutToOtherUser = static_cast<HRESULT>(0x8004B001);

const char* const Sample = R"(<?xml version="1.0"?>
<xml>
  <RootFolder>Z:\PDM\VANTO\Root</RootFolder>
  <OrbexUserName>Alice</OrbexUserName>
  <Projects><Project><ProjectName>Gearbox</ProjectName><Owner>alice</Owner></Project></Projects>
  <Files>
    <File><FileName>Z:\PDM\VANTO\Root\bracket.par</FileName><CheckedOutBy>alice</CheckedOutBy></File>
    <File>
      <FileName>Z:\PDM\VANTO\Root\housing.asm</FileName><CheckedOut>No</CheckedOut>
      <CheckedOutBy>bob</CheckedOutBy><ErrorCode>DAL_E_CHECKED_OUT_TO_OTHER_USER</ErrorCode>
      <CheckIn>nO</CheckIn>
    </File>
    <Other><FileName>Z:\PDM\VANTO\ROOT\BRACKET.PAR</FileName><CheckedOutBy>carol</CheckedOutBy></Other>
  </Files>
</xml>)";

TEST_F(MockTest, SessionAnswersWithoutWritingLogRecords) {
    CapturingLogSink log;
    EXPECT_TRUE(session->IsConnected(true));
    EXPECT_TRUE(session->IsCorvaneInstalled());
    EXPECT_TRUE(session->IsCorvaneRunning());
    EXPECT_FALSE(session->IsCorvaneInOffLineMode());
    bool timedOut = true;
    EXPECT_TRUE(session->StartCorvaneAndWaitForReadyState(10, &timedOut, nullptr));
    EXPECT_FALSE(timedOut);
    SessionInfo info{L"kept", L"", L"", L""};
    EXPECT_EQ(S_OK, session->GetSessionInfo(&info));
    EXPECT_EQ(GUserText(L"kept"), info.authenticatedUserName);
    RootFolderSet roots;
    LoggedInUserInfo user;
    EXPECT_EQ(S_OK, session->GetRootFolders(&roots));
    EXPECT_EQ(S_OK, session->GetCurrentLoggedInUserInfo(&user));
    session->DeRegisterFromCorvane();
    EXPECT_TRUE(log.records.empty());
}

TEST_F(MockTest, RootFolderIsCreatedAndAddedToTheCallersSet) {
    WriteInput(Sample);
    drive.RemoveAfterwards(L"Z:\\PDM\\VANTO\\Root");
    const std::filesystem::path native = drive.Native(L"Z:\\PDM\\VANTO\\Root");
    ASSERT_FALSE(std::filesystem::exists(native));

    RootFolderSet roots{GUserText(L"C:\\Existing")};
    ASSERT_EQ(S_OK, session->GetRootFolders(&roots));
    EXPECT_EQ((RootFolderSet{L"C:\\Existing", L"Z:\\PDM\\VANTO\\Root"}), roots);
    EXPECT_TRUE(std::filesystem::is_directory(native));
    EXPECT_TRUE(GUserFileName(GUserText(L"Z:\\PDM\\VANTO\\Root")).Exists());
    // An existing folder is kept as it is.
    ASSERT_EQ(S_OK, session->GetRootFolders(&roots));
    EXPECT_TRUE(std::filesystem::is_directory(native));
}

TEST_F(MockTest, WithoutInputTheRootFolderIsEmptyText) {
    RootFolderSet roots;
    ASSERT_EQ(S_OK, session->GetRootFolders(&roots));
    EXPECT_EQ(RootFolderSet{GUserText()}, roots);
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
    g_userName = L"jdoe";
    LoggedInUserInfo first{L"", L"", L"kept@example.com"};
    ASSERT_EQ(S_OK, session->GetCurrentLoggedInUserInfo(&first));
    EXPECT_EQ(GUserText(L"jdoe"), first.loginName);
    EXPECT_EQ(GUserText(L"jdoe"), first.displayName);
    EXPECT_EQ(GUserText(L"kept@example.com"), first.email);

    // A later change and a second manager see the name read the first time.
    g_userName = L"someone-else";
    testsupport::ManagerHandle other;
    LoggedInUserInfo second;
    ASSERT_EQ(S_OK, other.MockSession()->GetCurrentLoggedInUserInfo(&second));
    EXPECT_EQ(GUserText(L"jdoe"), second.loginName);
    EXPECT_EQ(1, g_userReads);

    // A name that could not be read (or does not fit 260 characters) is asked for again.
    vanto::mock::ResetMockStateForTesting();
    g_userName = std::wstring(260, L'x');
    ASSERT_EQ(S_OK, session->GetCurrentLoggedInUserInfo(&second));
    EXPECT_EQ(GUserText(), second.loginName);
    g_userName = L"late";
    ASSERT_EQ(S_OK, session->GetCurrentLoggedInUserInfo(&second));
    EXPECT_EQ(GUserText(L"late"), second.displayName);
    EXPECT_EQ(3, g_userReads);
    vanto::mock::SetUserNameSourceForTesting(previous);

    vanto::mock::ResetMockStateForTesting();
    ASSERT_EQ(S_OK, session->GetCurrentLoggedInUserInfo(&second));
    EXPECT_EQ(GUserText(platform::os::LogonUserName()), second.loginName);
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
}

TEST_F(MockTest, ValidFilesBeginWithTheRootFolderAsWritten) {
    WriteInput(Sample);
    EXPECT_TRUE(files->IsValidCorvaneFile(GUserText(L"Z:\\PDM\\VANTO\\Root\\not-there.par")));
    EXPECT_TRUE(files->IsValidCorvaneFile(GUserText(L"Z:\\PDM\\VANTO\\Root")));
    EXPECT_FALSE(files->IsValidCorvaneFile(GUserText(L"z:\\pdm\\vanto\\root\\bracket.par")));
    EXPECT_FALSE(files->IsValidCorvaneFile(GUserText(L"Z:\\PDM\\VANTO\\Roo")));
    EXPECT_FALSE(files->IsValidCorvaneFile(GUserText(L"C:\\Temp\\bracket.par")));

    PathMonitoredMap monitored{{L"C:\\Temp\\kept.par", true}};
    const PathList paths{L"Z:\\PDM\\VANTO\\Root\\a.par", L"C:\\Temp\\kept.par", L"C:\\b.par"};
    ASSERT_EQ(S_OK, files->IsValidCorvaneFile(paths, &monitored));
    EXPECT_EQ((PathMonitoredMap{{L"Z:\\PDM\\VANTO\\Root\\a.par", true},
                                {L"C:\\Temp\\kept.par", true},
                                {L"C:\\b.par", false}}),
              monitored);
    EXPECT_EQ(S_OK, files->IsValidCorvaneFile(PathList{}, &monitored));
}

TEST_F(MockTest, NoRootFolderMakesNoFileValid) {
    WriteInput("<xml><Files><F><FileName>Z:\\a.par</FileName></F></Files></xml>");
    EXPECT_FALSE(files->IsValidCorvaneFile(GUserText(L"Z:\\a.par")));
    EXPECT_FALSE(files->IsValidCorvaneFile(GUserText()));
}

TEST_F(MockTest, CheckInAndCheckOutLeaveTheCallersItemsAsTheyCame) {
    WriteInput(Sample);
    const FileCheckInList checkIns{{L"Z:\\PDM\\VANTO\\Root\\housing.asm", 7, L"someone"},
                                   {L"Z:\\PDM\\VANTO\\Root\\unknown.par", 0, L""}};
    FileCheckInList items = checkIns;
    EXPECT_EQ(S_OK, files->CheckIn(&items));
    ASSERT_EQ(checkIns.size(), items.size());
    for (std::size_t i = 0; i < items.size(); ++i) {
        EXPECT_EQ(checkIns[i].fileName, items[i].fileName);
        EXPECT_EQ(checkIns[i].errorCode, items[i].errorCode);
        EXPECT_EQ(checkIns[i].lockedBy, items[i].lockedBy);
    }
    FileLockStatusMap locks{{L"Z:\\PDM\\VANTO\\Root\\housing.asm", {true, true, false, L"me"}}};
    EXPECT_EQ(S_OK, files->CheckOut(&locks));
    const FileLockStatus& lock = locks.at(L"Z:\\PDM\\VANTO\\Root\\housing.asm");
    EXPECT_TRUE(lock.isCheckedOut && lock.isCheckedOutByCurrentUser && !lock.isNewVersionAvailable);
    EXPECT_EQ(GUserText(L"me"), lock.checkedOutBy);
    EXPECT_EQ(1u, locks.size());
}

TEST_F(MockTest, EmptyStoreGivesElementNotFoundForCheckInAndCheckOut) {
    FileCheckInList items{{L"Z:\\a.par", 3, L"x"}};
    FileLockStatusMap locks{{L"Z:\\a.par", {}}};
    EXPECT_EQ(ElementNotFound, files->CheckIn(&items));
    EXPECT_EQ(ElementNotFound, files->CheckOut(&locks));
    EXPECT_EQ(3, items[0].errorCode);
    FileStatusInformation status;
    EXPECT_EQ(S_OK, files->GetStatusInformation(L"Z:\\a.par", &status));
    EXPECT_TRUE(status.checkedOutBy.IsEmpty());
}

// The result worked out per item is handed to nobody; it is checked here on the store itself.
TEST_F(MockTest, ItemResultsFollowTheFlagsAndErrorCodeNames) {
    WriteInput(R"(<xml><Files>
        <F><FileName>a</FileName><CheckIn>no</CheckIn><ErrorCode>DAL_E_CHECKED_OUT_TO_OTHER_USER</ErrorCode></F>
        <F><FileName>b</FileName><CheckIn>NO</CheckIn><ErrorCode>dal_e_checked_out_to_other_user</ErrorCode></F>
        <F><FileName>c</FileName><CheckIn>No</CheckIn></F>
        <F><FileName>d</FileName><CheckIn>none</CheckIn><ErrorCode>DAL_E_CHECKED_OUT_TO_OTHER_USER</ErrorCode></F>
        <F><FileName>e</FileName><CheckIn> no</CheckIn><ErrorCode>DAL_E_CHECKED_OUT_TO_OTHER_USER</ErrorCode></F>
        <F><FileName>f</FileName><CheckedOut>nO</CheckedOut><CheckedOutBy>bob</CheckedOutBy></F>
        <F><FileName>g</FileName><CheckedOut>yes</CheckedOut><CheckedOutBy>bob</CheckedOutBy></F>
      </Files></xml>)");
    const vanto::mock::MockFileMap& known = Store().files;
    const auto checkIn = [&](const wchar_t* name) {
        return vanto::mock::CheckInResult(known, FileCheckInEntry{name, 5, L"holder"});
    };
    EXPECT_EQ(CheckedOutToOtherUser, checkIn(L"A").errorCode);
    EXPECT_EQ(GUserText(), checkIn(L"A").lockedBy);
    EXPECT_EQ(0, checkIn(L"b").errorCode); // names are exact
    EXPECT_EQ(0, checkIn(L"c").errorCode);
    EXPECT_EQ(5, checkIn(L"d").errorCode); // only "no" means no
    EXPECT_EQ(5, checkIn(L"e").errorCode);
    EXPECT_EQ(5, checkIn(L"x").errorCode);
    EXPECT_EQ(GUserText(L"holder"), checkIn(L"x").lockedBy);

    const FileLockStatus held{true, true, false, L"me"};
    const FileLockStatus refused = vanto::mock::CheckOutResult(known, L"F", held);
    EXPECT_FALSE(refused.isCheckedOut || refused.isCheckedOutByCurrentUser);
    EXPECT_EQ(GUserText(L"bob"), refused.checkedOutBy);
    EXPECT_TRUE(vanto::mock::CheckOutResult(known, L"g", held).isCheckedOut);
}

TEST_F(MockTest, OnlyTheStubsWriteScopeRecords) {
    WriteInput(Sample);
    CapturingLogSink log;
    FileCheckInList items;
    FileLockStatusMap locks;
    PathMonitoredMap monitored;
    FileStatusInformation status;
    files->CheckIn(&items);
    files->CheckOut(&locks);
    files->IsValidCorvaneFile(PathList{L"Z:\\a"}, &monitored);
    files->GetStatusInformation(L"Z:\\a", &status);
    EXPECT_TRUE(log.records.empty());

    EXPECT_EQ(S_OK, files->AttachDocumentToRevision(RevisionAttachmentList(3)));
    EXPECT_TRUE(files->IsFileSynchronized(L"Z:\\a"));
    EXPECT_FALSE(files->IsNewVersionAvailable(L"Z:\\a"));
    EXPECT_EQ(
        (std::vector<std::wstring>{L"VANTOManager::VANTOMockFileServices::AttachDocumentToRevision",
                                   L"VANTOManager::VANTOMockFileServices::IsFileSynchronized",
                                   L"VANTOManager::VANTOMockFileServices::IsNewVersionAvailable"}),
        log.ScopesOpened());
}

} // namespace
