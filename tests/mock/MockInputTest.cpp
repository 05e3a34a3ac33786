// Input files a host may find at the fixed path: none, empty, broken, hostile or very large. The
// store ends empty or with what was taken over, nothing is reported and nothing crashes.
#include "mock/MockFixture.h"

#include "host/HostLog.h"

#include <string>

namespace {

using testsupport::MockTest;
using vanto::mock::DeepestNesting;

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
