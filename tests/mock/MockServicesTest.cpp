// The mock session and file services as a host sees them, answered from the input file, and the
// input files a host may find at the fixed path: none, empty, broken, hostile or very large. Each
// test gets its own drive Z:, a fresh mock store and a manager made as a host makes it.
#include "fileservices/SlotTable.h"
#include "host/GUserFileName.h"
#include "host/HostLog.h"
#include "mock/MockStore.h"
#include "support/ComTestSupport.h"
#include "support/DriveRoot.h"

#include <filesystem>
#include <map>
#include <set>
#include <string>

namespace {

using testsupport::ManagerHandle;
using testsupport::ScopedDriveRoot;
using vanto::mock::DeepestNesting;

class MockTest : public ::testing::Test {
protected:
    MockTest() {
        std::error_code ignored;
        std::filesystem::remove(ScopedDriveRoot::Native(vanto::mock::InputFilePath), ignored);
        vanto::mock::ResetMockStateForTesting();
    }
    ~MockTest() override { vanto::mock::ResetMockStateForTesting(); }

    void WriteInput(const std::string& xml) { drive.Write(vanto::mock::InputFilePath, xml); }

    // The store as the mock sees it: read on first use.
    static const vanto::mock::MockStore& Store() { return *vanto::mock::Store(); }

    ScopedDriveRoot drive;
    ManagerHandle manager;
    IVANTOSession* session = manager.MockSession();
    IVANTOFileServices* files = manager.MockFileServices();
};

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

// Without memory for the store, the methods that need it answer 0x8007000E and touch nothing;
// the store is made (and the file read) by the first call after memory is back.
TEST_F(MockTest, NoStoreMeansOutOfMemoryUntilOneCanBeMade) {
    WriteInput(Sample);
    drive.RemoveAfterwards(L"Z:\\PDM\\VANTO\\Root");
    constexpr HRESULT OutOfMemory = static_cast<HRESULT>(0x8007000E);
    vanto::mock::FailStoreAllocationForTesting(true);
    RootFolderSet roots{GUserText(L"C:\\Existing")};
    FileCheckInList items{{GUserText(L"Z:\\PDM\\VANTO\\Root\\bracket.par"), 0, GUserText()}};
    FileLockStatusMap locks{{GUserText(L"Z:\\PDM\\VANTO\\Root\\bracket.par"), {}}};
    FileStatusInformation status;
    status.checkedOutBy = L"before";
    PathMonitoredMap monitored;
    const GUserText inside(L"Z:\\PDM\\VANTO\\Root\\bracket.par");
    EXPECT_EQ(OutOfMemory, session->GetRootFolders(&roots));
    EXPECT_EQ(OutOfMemory, files->CheckIn(&items));
    EXPECT_EQ(OutOfMemory, files->CheckOut(&locks));
    EXPECT_EQ(OutOfMemory, files->GetStatusInformation(inside, &status));
    EXPECT_FALSE(files->IsValidCorvaneFile(inside));
    EXPECT_EQ(S_OK, files->IsValidCorvaneFile(PathList{inside}, &monitored));
    EXPECT_EQ((PathMonitoredMap{{inside, false}}), monitored);
    EXPECT_EQ((RootFolderSet{GUserText(L"C:\\Existing")}), roots);
    EXPECT_EQ(GUserText(L"before"), status.checkedOutBy);
    EXPECT_EQ(nullptr, vanto::mock::Store());

    vanto::mock::FailStoreAllocationForTesting(false);
    EXPECT_TRUE(files->IsValidCorvaneFile(inside));
    EXPECT_EQ(S_OK, files->GetStatusInformation(inside, &status));
    EXPECT_EQ(GUserText(L"alice"), status.checkedOutBy);
}

// The mock session is always connected and writes no log records; the store's root folder is
// created by the first call that asks for it.
TEST_F(MockTest, TheSessionIsAlwaysConnectedSilentAndMakesTheRootFolder) {
    WriteInput(Sample);
    drive.RemoveAfterwards(L"Z:\\PDM\\VANTO\\Root");
    ASSERT_FALSE(GUserFileName(GUserText(L"Z:\\PDM\\VANTO\\Root")).Exists());
    CapturingLogSink log;
    RootFolderSet roots{GUserText(L"C:\\Existing")};
    LoggedInUserInfo user;
    bool timedOut = true;
    SessionInfo info{L"kept", L"", L"", L""};
    EXPECT_TRUE(session->IsConnected(true) && session->IsCorvaneRunning() &&
                session->IsCorvaneInstalled() && !session->IsCorvaneInOffLineMode());
    EXPECT_TRUE(session->StartCorvaneAndWaitForReadyState(0, &timedOut, nullptr));
    EXPECT_FALSE(timedOut);
    session->DeRegisterFromCorvane();
    EXPECT_EQ(S_OK, session->GetSessionInfo(&info));
    EXPECT_EQ(GUserText(L"kept"), info.authenticatedUserName);
    ASSERT_EQ(S_OK, session->GetRootFolders(&roots));
    EXPECT_EQ((RootFolderSet{L"C:\\Existing", L"Z:\\PDM\\VANTO\\Root"}), roots);
    EXPECT_TRUE(std::filesystem::is_directory(drive.Native(L"Z:\\PDM\\VANTO\\Root")));
    ASSERT_EQ(S_OK, session->GetRootFolders(&roots));
    EXPECT_EQ(S_OK, session->GetCurrentLoggedInUserInfo(&user));
    EXPECT_TRUE(log.records.empty());
}

// The mock's answer in each file-service slot where it is not S_OK, with a store that knows the
// slot table's first path (checked in and out by another user, with an error code).
const std::map<std::string, std::string> MockResults = {{"IsValidCorvaneFile(path)", "true"},
                                                        {"IsNewRevisionAvailable", "false"},
                                                        {"IsNewVersionAvailable", "false"},
                                                        {"IsFileSynchronized", "true"}};
// The slots answered from the store: they write no log records.
const std::set<std::string> FromStore = {"CheckIn", "CheckOut", "IsValidCorvaneFile(list)",
                                         "IsValidCorvaneFile(path)", "GetStatusInformation"};

// What a call can change of the slot arguments, as one comparable value.
std::vector<std::wstring> Observed(const testsupport::SlotArguments& a) {
    const auto n = [](std::size_t size) { return std::to_wstring(size); };
    const FileLockStatus& lock = a.locks.begin()->second;
    return {std::to_wstring(a.checkIns[0].errorCode) + a.checkIns[0].lockedBy.wstr(),
            n(lock.isCheckedOut) + n(lock.isCheckedOutByCurrentUser) + lock.checkedOutBy.wstr(),
            n(a.monitored.size()) + (a.monitored.empty() ? L"" : n(a.monitored.begin()->second)),
            a.status.checkedOutBy.wstr() + n(a.status.isCheckedOutByMe) +
                n(a.status.isNewVersionAvailable),
            n(a.stamps.size()),
            a.uids.begin()->second.wstr(),
            n(a.contexts.size()),
            n(a.containers.size()),
            std::to_wstring(a.containerStatus),
            n(a.permissions.size()),
            std::to_wstring(a.count),
            n(a.ids.size()),
            a.revision.wstr(),
            n(a.properties.size()),
            n(a.names.size()),
            n(a.relations.size()),
            std::to_wstring(a.code)};
}

// Every file-service slot of the mock: it reaches the method of its name, which opens and closes
// its scope record unless it answers from the store, asks no connector, writes no line and
// leaves the caller's data as it came, but for what the store tells about the known file.
TEST_F(MockTest, EachSlotGivesItsAnswerAndLeavesTheCallersData) {
    using namespace testsupport::slots;
    WriteInput("<xml><RootFolder>C:\\Corvane</RootFolder><OrbexUserName>Ann</OrbexUserName>"
               "<Files><F><FileName>c:\\corvane\\pump\\housing.par</FileName>"
               "<CheckIn>no</CheckIn><CheckedOut>no</CheckedOut><CheckedOutBy>bob</CheckedOutBy>"
               "<ErrorCode>DAL_E_CHECKED_OUT_TO_OTHER_USER</ErrorCode></F></Files></xml>");
    for (Method method : FileServiceMethods()) {
        SCOPED_TRACE(method.name);
        method.prepare = [](Rig& r) { r.files = r.manager.MockFileServices(); };
        const MethodRun run = RunMethod(method, [](Corvane::FakeConnector&) {});
        const auto result = MockResults.find(method.name);
        EXPECT_EQ(result != MockResults.end() ? result->second : "S_OK", run.result);
        std::vector<std::wstring> scopes;
        if (FromStore.count(method.name) == 0) {
            scopes.push_back(L"VANTOManager::VANTOMockFileServices::" +
                             GUserText(method.name).wstr());
        }
        EXPECT_EQ(scopes, run.scopes);
        EXPECT_EQ(static_cast<std::ptrdiff_t>(scopes.size()), run.closed);
        EXPECT_TRUE(!run.escaped && run.calls.empty() && run.errors.empty() && run.leaked == 0);
        testsupport::SlotArguments expected = Arguments();
        if (method.name == "IsValidCorvaneFile(list)") {
            expected.monitored = {{PathA, true}};
        } else if (method.name == "GetStatusInformation") {
            expected.status.checkedOutBy = L"bob";
        }
        EXPECT_EQ(Observed(expected), Observed(run.args));
    }
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
    ManagerHandle other;
    LoggedInUserInfo second;
    ASSERT_EQ(S_OK, other.MockSession()->GetCurrentLoggedInUserInfo(&second));
    EXPECT_EQ(GUserText(L"jdoe"), second.loginName);
    EXPECT_EQ(2, g_userReads);
    vanto::mock::SetUserNameSourceForTesting(previous);
}

// Beyond the slot walk: the first of two entries differing in case wins, the user is matched
// ignoring case, an unknown file leaves the status alone, and the root folder is matched as
// written.
TEST_F(MockTest, StatusTakesTheFirstEntryAndValidityTheRootAsWritten) {
    WriteInput(Sample);
    FileStatusInformation status;
    ASSERT_EQ(S_OK, files->GetStatusInformation(L"z:\\pdm\\vanto\\root\\BRACKET.par", &status));
    EXPECT_EQ(GUserText(L"alice"), status.checkedOutBy); // not the later "carol"
    EXPECT_TRUE(status.isCheckedOutByMe);                // "Alice" in the file
    FileStatusInformation untouched{true, true, L"earlier", 1, 1};
    ASSERT_EQ(S_OK, files->GetStatusInformation(L"Z:\\PDM\\VANTO\\Root\\none.par", &untouched));
    EXPECT_EQ(GUserText(L"earlier"), untouched.checkedOutBy);
    EXPECT_TRUE(untouched.isCheckedOutByMe);
    EXPECT_EQ(GUserText(L"alice"), Store().projects.at(L"Gearbox").owner);

    PathMonitoredMap monitored{{L"C:\\kept.par", true}};
    const PathList paths{L"z:\\pdm\\vanto\\root\\a.par", L"C:\\kept.par", L"Z:\\PDM\\VANTO\\Roo"};
    ASSERT_EQ(S_OK, files->IsValidCorvaneFile(paths, &monitored));
    EXPECT_EQ((PathMonitoredMap{{L"z:\\pdm\\vanto\\root\\a.par", false},
                                {L"C:\\kept.par", true},
                                {L"Z:\\PDM\\VANTO\\Roo", false}}),
              monitored);
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

// Input files that are missing or broken leave the store empty or with what was taken over;
// nothing is reported and nothing crashes.

constexpr HRESULT ElementNotFound = static_cast<HRESULT>(0x80070490);

std::string Nested(std::size_t levels, const std::string& open, const std::string& close,
                   const std::string& inner = "") {
    std::string opens, closes;
    for (std::size_t i = 0; i < levels; ++i) {
        opens += open;
        closes += close;
    }
    return opens + inner + closes;
}

std::string WithFile(const std::string& inside) {
    return "<xml><RootFolder>Z:\\R</RootFolder><Files><F>" + inside + "</F></Files></xml>";
}

class MockInputTest : public MockTest {
protected:
    // Reads `xml` as the input file in a fresh store; true when the store took nothing over.
    bool ReadsAsEmpty(const std::string& xml) {
        vanto::mock::ResetMockStateForTesting();
        WriteInput(xml);
        CapturingLogSink log;
        FileCheckInList items;
        const bool empty = files->CheckIn(&items) == ElementNotFound &&
                           !files->IsValidCorvaneFile(GUserText(L"Z:\\R\\a.par")) &&
                           Store().rootFolder.IsEmpty() && Store().userName.IsEmpty();
        EXPECT_TRUE(log.records.empty());
        return empty;
    }
};

TEST_F(MockInputTest, MissingEmptyAndMalformedFilesGiveAnEmptyStore) {
    RootFolderSet roots;
    ASSERT_EQ(S_OK, session->GetRootFolders(&roots));
    EXPECT_EQ(RootFolderSet{GUserText()}, roots);
    // A file that appears later is not read.
    WriteInput(WithFile("<FileName>Z:\\R\\a.par</FileName>"));
    EXPECT_EQ(ElementNotFound, files->CheckOut(nullptr));

    for (const std::string& xml :
         {std::string(), std::string("\xEF\xBB\xBF"), std::string("not xml at all"),
          std::string("<xml><RootFolder>Z:\\R</RootFolder>"), // never closed
          std::string("<xml><RootFolder>Z:\\R</RootFolder></xml"),
          std::string("<xml a=b><RootFolder>Z:\\R</RootFolder></xml>"),
          std::string("<XML><RootFolder>Z:\\R</RootFolder></XML>"), // another case
          std::string("<xml><RootFolder>Z:\\R&#1114112;</RootFolder></xml>"),
          std::string("<xml><RootFolder>Z:\\R</RootFolder></xml><"),
          std::string("<xml>") + '\0' + "<RootFolder>Z:\\R</RootFolder></xml>"}) {
        SCOPED_TRACE(xml);
        EXPECT_TRUE(ReadsAsEmpty(xml));
    }
}

TEST_F(MockInputTest, UnknownAndOtherCaseElementsAreIgnoredAtEveryLevel) {
    WriteInput(R"(<?xml version="1.0"?><!-- made by hand --><xml version="2">
        <Unknown><RootFolder>Z:\Wrong</RootFolder></Unknown>
        <rootfolder>Z:\lower</rootfolder>
        <RootFolder>Z:\R<Extra>ignored</Extra></RootFolder>
        <RootFolder>Z:\Second</RootFolder>
        <files><F><FileName>Z:\R\lower.par</FileName></F></files>
        <Files kind="parts">
          <!-- a comment is no file -->
          <Anything><FileName>Z:\R\a.par</FileName><Colour>red</Colour>
            <checkedoutby>x</checkedoutby><CheckedOutBy>bob</CheckedOutBy></Anything>
          <F><filename>Z:\R\b.par</filename></F>
        </Files>
      </xml>)");
    EXPECT_EQ(GUserText(L"Z:\\R"), Store().rootFolder);
    ASSERT_EQ(2u, Store().files.size());
    EXPECT_EQ(GUserText(L"bob"), Store().files.at(L"Z:\\R\\a.par").checkedOutBy);
    // An entry without a FileName element is kept under an empty name.
    EXPECT_EQ(1u, Store().files.count(GUserText()));
}

TEST_F(MockInputTest, TheReadersLeniencyAndEntitiesStayHarmless) {
    WriteInput(R"(<!DOCTYPE xml [ <!ENTITY a "&b;&b;&b;"> <!ENTITY b "lol"> ]>
      <xml><RootFolder>Z:\R</Mismatched>
        <OrbexUserName>&a;&amp;&#x41;&#0;hidden</OrbexUserName>
        <Files>
          <F><FileName>Z:\R\a.par&#0;.exe</FileName><CheckedOutBy>&#xD800;&lt;x&gt;</CheckedOutBy></F>
          <F><FileName><![CDATA[Z:\R\<b>.par]]></FileName></F>
        </Files></xml>)");
    EXPECT_EQ(GUserText(L"Z:\\R"), Store().rootFolder);
    // Unknown entities pass through as text; a NUL ends the text.
    EXPECT_EQ(GUserText(L"&a;&A"), Store().userName);
    ASSERT_EQ(2u, Store().files.size());
    // A lone surrogate becomes replacement characters.
    const std::wstring& holder = Store().files.at(L"Z:\\R\\a.par").checkedOutBy.wstr();
    ASSERT_LE(4u, holder.size());
    EXPECT_EQ(L'\xFFFD', holder.front());
    EXPECT_EQ(L"<x>", holder.substr(holder.size() - 3));
    EXPECT_EQ(1u, Store().files.count(L"Z:\\R\\<b>.par"));
}

TEST_F(MockInputTest, DeepNestingIsRefusedBeforeTheReaderRuns) {
    const std::string deep = Nested(100000, "<n>", "</n>");
    EXPECT_TRUE(ReadsAsEmpty(WithFile("<FileName>Z:\\R\\a.par</FileName>" + deep)));
    EXPECT_TRUE(ReadsAsEmpty(WithFile(Nested(100000, "<n>", ""))));
    // Within the limit the file is read as usual.
    vanto::mock::ResetMockStateForTesting();
    WriteInput(WithFile("<FileName>Z:\\R\\a.par</FileName>" + Nested(200, "<n>", "</n>")));
    EXPECT_EQ(S_OK, files->CheckIn(nullptr));
}

TEST(InputNesting, CountsTheLevelsTheReaderOpens) {
    EXPECT_EQ(0u, DeepestNesting(""));
    EXPECT_EQ(256u, DeepestNesting(Nested(256, "<a>", "</a>")));
    // Siblings, empty elements, attributes and mismatched closing tags as the reader sees them.
    EXPECT_EQ(4u, DeepestNesting(Nested(3, "<a>", "</a>", Nested(1000, "<b/><c></c>", ""))));
    EXPECT_EQ(6u, DeepestNesting(Nested(3, "<a x='>' y = \"<b>\">", "</zz >") +
                                 Nested(6, "<?x?><a>", "</a>")));
    // Closing tags hidden where the reader sees no markup do not lower the count, and a file
    // that ends while elements are open has still been nested that deep.
    for (const std::string& hidden :
         {std::string("<!-- </a></a> -->"), std::string("<![CDATA[</a></a>]]>"),
          std::string("<?pi </a></a> ?>"), std::string("<?></a></a>?>"),
          std::string("<a t='</a></a>'/>"), std::string("<!DOCTYPE x [ <!ENTITY e '</a></a>'> ]>"),
          std::string("<!x '</a'>")}) {
        SCOPED_TRACE(hidden);
        EXPECT_EQ(6u, DeepestNesting("<r><r><r>" + hidden + "<a><a><a>"));
    }
    // Quotes in a name are part of the name.
    EXPECT_EQ(4u, DeepestNesting(Nested(4, "<a\">", "") + "\""));
    // Where the reader stops with an error, so does the count.
    EXPECT_EQ(1u, DeepestNesting("<a><!-- <b><c>"));
    EXPECT_EQ(1u, DeepestNesting("<a><b c='><d><e>"));
    EXPECT_EQ(1u, DeepestNesting("<a></a></a><b><c>"));
    EXPECT_EQ(0u, DeepestNesting("x<a><b>"));
    EXPECT_EQ(0u, DeepestNesting("< a><b>"));
    EXPECT_EQ(2u, DeepestNesting(std::string("<a><b>\0<c><d>", 13)));
}

TEST_F(MockInputTest, AHundredThousandFilesAreRead) {
    std::string xml = "<xml><RootFolder>Z:\\R</RootFolder><Files>";
    for (int i = 0; i < 100000; ++i) {
        xml += "<F><FileName>Z:\\R\\f" + std::to_string(i % 99990) + ".par</FileName>";
        if (i % 99990 == 5) {
            xml += "<CheckedOutBy>u" + std::to_string(i) + "</CheckedOutBy>";
        }
        xml += "</F>";
    }
    xml += "</Files></xml>";
    WriteInput(xml);
    FileStatusInformation status;
    ASSERT_EQ(S_OK, files->GetStatusInformation(L"z:\\r\\F5.PAR", &status));
    EXPECT_EQ(GUserText(L"u5"), status.checkedOutBy);
    EXPECT_EQ(99990u, Store().files.size());
    EXPECT_EQ(1u, Store().files.count(L"Z:\\R\\f99989.par"));
}

} // namespace
