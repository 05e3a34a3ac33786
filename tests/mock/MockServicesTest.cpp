// The mock session and file services as a host sees them, answered from the input file, and the
// input files a host may find at the fixed path: none, empty, broken, hostile or very large. Each
// test gets its own drive Z:, a fresh mock store and a manager made as a host makes it.
#include "fileservices/SlotTable.h"
#include "host/HostLog.h"
#include "mock/MockStore.h"
#include "support/ComTestSupport.h"
#include "support/DriveRoot.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>
#include <string>

namespace {

using testsupport::ManagerHandle;
using testsupport::ScopedDriveRoot;

class MockTest : public ::testing::Test {
protected:
    MockTest() {
        std::error_code ignored;
        std::filesystem::remove(ScopedDriveRoot::Native(vanto::mock::InputFilePath), ignored);
        vanto::mock::ResetMockStateForTesting();
    }
    ~MockTest() override { vanto::mock::ResetMockStateForTesting(); }

    void WriteInput(const std::string& xml) { drive.Write(vanto::mock::InputFilePath, xml); }

    ScopedDriveRoot drive;
    ManagerHandle manager;
    IVANTOSession* session = manager.MockSession();
    IVANTOFileServices* files = manager.MockFileServices();
};

const char* const Sample =
    "<?xml version='1.0'?><xml><RootFolder>Z:\\PDM\\VANTO\\Root</RootFolder><OrbexUserName>Alice"
    "</OrbexUserName><Projects><Project><ProjectName>Gearbox</ProjectName><Owner>alice</Owner>"
    "</Project></Projects><Files><File><FileName>Z:\\PDM\\VANTO\\Root\\bracket.par</FileName>"
    "<CheckedOutBy>alice</CheckedOutBy></File><File><FileName>Z:\\PDM\\VANTO\\Root\\housing.asm"
    "</FileName><CheckedOutBy>bob</CheckedOutBy></File><Other><FileName>Z:\\PDM\\VANTO\\ROOT\\"
    "BRACKET.PAR</FileName><CheckedOutBy>carol</CheckedOutBy></Other></Files></xml>";

// Without memory for the store, the methods that need it answer 0x8007000E and touch nothing;
// the store is made (and the file read) by the first call after memory is back. The mock session
// is always connected and writes no log records; the root folder is created by the first call
// that asks for it. An unknown file leaves the status alone, and the root is matched as written.
TEST_F(MockTest, TheSampleStoreOnceThereIsMemoryForIt) {
    WriteInput(Sample);
    drive.RemoveAfterwards(L"Z:\\PDM\\VANTO\\Root");
    CapturingLogSink log;
    vanto::mock::FailStoreAllocationForTesting(true);
    RootFolderSet roots{GUserText(L"C:\\Existing")};
    FileStatusInformation status{true, true, L"before", 1, 1};
    PathMonitoredMap monitored;
    const GUserText inside(L"Z:\\PDM\\VANTO\\Root\\bracket.par");
    EXPECT_EQ(static_cast<HRESULT>(0x8007000E), session->GetRootFolders(&roots));
    EXPECT_EQ(static_cast<HRESULT>(0x8007000E), files->GetStatusInformation(inside, &status));
    EXPECT_FALSE(files->IsValidCorvaneFile(inside));
    EXPECT_EQ(S_OK, files->IsValidCorvaneFile(PathList{inside}, &monitored));
    EXPECT_EQ((PathMonitoredMap{{inside, false}}), monitored);
    EXPECT_EQ(nullptr, vanto::mock::Store());

    vanto::mock::FailStoreAllocationForTesting(false);
    EXPECT_TRUE(session->IsConnected(true) && session->IsCorvaneRunning() &&
                session->IsCorvaneInstalled() && !session->IsCorvaneInOffLineMode());
    bool timedOut = true;
    EXPECT_TRUE(session->StartCorvaneAndWaitForReadyState(0, &timedOut, nullptr) && !timedOut);
    session->DeRegisterFromCorvane();
    SessionInfo info{L"kept", L"", L"", L""};
    EXPECT_EQ(S_OK, session->GetSessionInfo(&info));
    EXPECT_EQ(GUserText(L"kept"), info.authenticatedUserName);
    ASSERT_EQ(S_OK, session->GetRootFolders(&roots));
    EXPECT_EQ((RootFolderSet{L"C:\\Existing", L"Z:\\PDM\\VANTO\\Root"}), roots);
    EXPECT_TRUE(std::filesystem::is_directory(drive.Native(L"Z:\\PDM\\VANTO\\Root")));

    ASSERT_EQ(S_OK, files->GetStatusInformation(L"Z:\\PDM\\VANTO\\Root\\none.par", &status));
    EXPECT_EQ(GUserText(L"before"), status.checkedOutBy);
    EXPECT_TRUE(status.isCheckedOutByMe);
    const PathList paths{L"z:\\pdm\\vanto\\root\\a.par", L"C:\\kept.par", L"Z:\\PDM\\VANTO\\Roo"};
    monitored = {{L"C:\\kept.par", true}};
    ASSERT_EQ(S_OK, files->IsValidCorvaneFile(paths, &monitored));
    EXPECT_EQ((PathMonitoredMap{{paths[0], false}, {paths[1], true}, {paths[2], false}}),
              monitored);
    EXPECT_TRUE(log.records.empty());
}

// The mock's answer in each file-service slot where it is not S_OK, with a store that knows the
// slot table's first path (checked in and out by the user, written in another case, with an error
// code).
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
    WriteInput("<xml><RootFolder>C:\\Corvane</RootFolder><OrbexUserName>BOB</OrbexUserName>"
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
            expected.status.isCheckedOutByMe = true; // the user is matched ignoring case
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

// Without an input file the store is empty for the process: one that appears later is not read.
// The logon user is read once per process into both texts (again only while it could not be
// read); the e-mail stays as the caller had it.
TEST_F(MockTest, NoInputFileAndTheLogonUserAreReadOncePerProcess) {
    RootFolderSet roots;
    ASSERT_EQ(S_OK, session->GetRootFolders(&roots));
    EXPECT_EQ(RootFolderSet{GUserText()}, roots);
    WriteInput("<xml><RootFolder>Z:\\R</RootFolder><Files><F><FileName>Z:\\R\\a.par</FileName>"
               "</F></Files></xml>");
    EXPECT_EQ(static_cast<HRESULT>(0x80070490), files->CheckOut(nullptr));
    EXPECT_FALSE(files->IsValidCorvaneFile(GUserText(L"Z:\\R\\a.par")));

    const auto previous = vanto::mock::SetUserNameSourceForTesting(&CountedUserName);
    g_userReads = 0;
    LoggedInUserInfo user;
    for (const wchar_t* name : {L"", L"jdoe", L"someone-else"}) {
        g_userName = name;
        user = {L"", L"", L"kept@example.com"};
        ManagerHandle other;
        ASSERT_EQ(S_OK, other.MockSession()->GetCurrentLoggedInUserInfo(&user));
    }
    EXPECT_EQ((std::vector<GUserText>{L"jdoe", L"jdoe", L"kept@example.com"}),
              (std::vector<GUserText>{user.loginName, user.displayName, user.email}));
    EXPECT_EQ(2, g_userReads);
    vanto::mock::SetUserNameSourceForTesting(previous);
}

// Input files that are missing or broken leave the store empty or with what was taken over;
// nothing is reported and nothing crashes.

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

// Ten of them twice, each time with its own holder.
std::string ManyFiles() {
    std::string xml = "<xml><Files>";
    for (int i = 0; i < 100000; ++i) {
        xml += "<F><FileName>f" + std::to_string(i % 99990) + "</FileName><CheckedOutBy>u" +
               std::to_string(i) + "</CheckedOutBy></F>";
    }
    return xml + "</Files></xml>";
}

// What reading `xml` gives: how deep the reader would nest, then the store as
// "root|user|files|holder of the probed file" ("-" when it is not known). A run of replacement
// characters counts as one, however many the platform makes.
std::wstring Outcome(const std::string& xml, const GUserText& probe) {
    vanto::mock::MockStore store;
    vanto::mock::ReadInput(xml, store);
    const auto found = store.files.find(probe);
    std::wstring text = std::to_wstring(vanto::mock::DeepestNesting(xml)) + L":" +
                        store.rootFolder.wstr() + L"|" + store.userName.wstr() + L"|" +
                        std::to_wstring(store.files.size()) + L"|" +
                        (found == store.files.end() ? L"-" : found->second.checkedOutBy.wstr());
    text.erase(std::unique(text.begin(), text.end(),
                           [](wchar_t a, wchar_t b) { return a == L'\xFFFD' && b == a; }),
               text.end());
    return text;
}

const char* const Lenient =
    "<!DOCTYPE xml [ <!ENTITY a \"&b;&b;&b;\"> <!ENTITY b \"lol\"> ]><xml>"
    "<RootFolder>Z:\\R</Mismatched><OrbexUserName>&a;&amp;&#x41;&#0;hidden</OrbexUserName><Files>"
    "<F><FileName>Z:\\R\\a.par&#0;.exe</FileName><CheckedOutBy>&#xD800;&lt;x&gt;</CheckedOutBy></F>"
    "<F><FileName><![CDATA[Z:\\R\\<b>.par]]></FileName></F></Files></xml>";

const char* const Unknowns =
    "<?xml version='1.0'?><!-- by hand --><xml version='2'><Unknown><RootFolder>Z:\\Wrong"
    "</RootFolder></Unknown><rootfolder>Z:\\lower</rootfolder><RootFolder>Z:\\R<Extra>x</Extra>"
    "</RootFolder><RootFolder>Z:\\Second</RootFolder><files><F><FileName>Z:\\R\\l.par</FileName>"
    "</F></files><Files kind='parts'><!-- no file --><Any><FileName>Z:\\R\\a.par</FileName>"
    "<Colour>red</Colour><checkedoutby>x</checkedoutby><CheckedOutBy>bob</CheckedOutBy></Any>"
    "<F><filename>Z:\\R\\b.par</filename></F></Files></xml>";

// Every input file is read without a line or a crash, and gives its store; a file nested deeper
// than the reader may go is refused before it runs.
TEST(MockInput, EachInputFileGivesItsNestingAndStore) {
    const std::string deep = Nested(100000, "<n>", "</n>");
    const struct {
        std::string xml;
        std::wstring outcome;
        const wchar_t* probe = L"";
    } cases[] = {
        {"", L"0:||0|-"},
        {"not xml at all", L"0:||0|-"},
        {"<xml><RootFolder>Z:\\R</RootFolder>", L"2:||0|-"}, // never closed
        {"<xml><RootFolder>Z:\\R&#1114112;</RootFolder></xml>", L"2:||0|-"},
        {std::string("<xml>") + '\0' + "<RootFolder>Z:\\R</RootFolder></xml>", L"1:||0|-"},
        {WithFile("<FileName>Z:\\R\\a.par</FileName>" + deep), L"100003:||0|-"},
        {WithFile(Nested(100000, "<n>", "")), L"100003:||0|-"},
        {WithFile("<FileName>a</FileName>" + Nested(200, "<n>", "</n>")), L"203:Z:\\R||1|", L"A"},
        {Nested(256, "<a>", "</a>"), L"256:||0|-"},
        // Siblings, empty elements, attributes and mismatched closing tags as the reader sees
        // them.
        {Nested(3, "<a>", "</a>", Nested(1000, "<b/><c></c>", "")), L"4:||0|-"},
        {Nested(3, "<a x='>' y = \"<b>\">", "</zz >") + Nested(6, "<?x?><a>", "</a>"), L"6:||0|-"},
        // Closing tags hidden where the reader sees no markup do not lower the count, and a file
        // that ends while elements are open has still been nested that deep.
        {"<r><r><r><!-- </a></a> --><a><a><a>", L"6:||0|-"},
        {"<r><r><r><![CDATA[</a></a>]]><a><a><a>", L"6:||0|-"},
        {"<r><r><r><?pi </a></a> ?><a><a><a>", L"6:||0|-"},
        {"<r><r><r><a t='</a></a>'/><a><a><a>", L"6:||0|-"},
        {"<r><r><r><!DOCTYPE x [ <!ENTITY e '</a></a>'> ]><a><a><a>", L"6:||0|-"},
        {"<r><r><r><!x '</a'><a><a><a>", L"6:||0|-"},
        {Nested(4, "<a\">", "") + "\"", L"4:||0|-"}, // quotes in a name are part of it
        // Where the reader stops with an error, so does the count.
        {"<a><!-- <b><c>", L"1:||0|-"},
        {"<a><b c='><d><e>", L"1:||0|-"},
        {"<a></a></a><b><c>", L"1:||0|-"},
        {"x<a><b>", L"0:||0|-"},
        {"< a><b>", L"0:||0|-"},
        {std::string("<a><b>\0<c><d>", 13), L"2:||0|-"},
        // Unknown and other-case elements are ignored at every level; an entry without a
        // FileName element is kept under an empty name.
        {Unknowns, L"4:Z:\\R||2|bob", L"Z:\\R\\a.par"},
        // Unknown entities pass through as text, a NUL ends the text, a lone surrogate becomes
        // replacement characters, CDATA is text.
        {Lenient, L"4:Z:\\R|&a;&A|2|\xFFFD<x>", L"Z:\\R\\a.par"},
        {Lenient, L"4:Z:\\R|&a;&A|2|", L"Z:\\R\\<b>.par"},
        // The first of two entries differing in case wins.
        {Sample, L"4:Z:\\PDM\\VANTO\\Root|Alice|2|alice", L"z:\\pdm\\vanto\\root\\BRACKET.par"},
        {ManyFiles(), L"4:||99990|u5", L"F5"},
    };
    CapturingLogSink log;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.xml.substr(0, 200));
        EXPECT_EQ(c.outcome, Outcome(c.xml, c.probe));
    }
    EXPECT_TRUE(log.records.empty());
}

} // namespace
