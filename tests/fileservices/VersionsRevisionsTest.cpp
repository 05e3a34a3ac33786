// Versions and revisions through the real file-services interface: the newer-version check
// against the document's stamp and the design-revision query. The inert entry points are walked
// with every slot (CallFrameTest).
#include "fileservices/SharedPaths.h"

namespace {

using testsupport::Lines;

class VersionsRevisions : public testsupport::SharedPathsTest {
protected:
    // The stamp the properties answer gives the document of `path`.
    void StampDocument(const std::string& documentId, const std::string& stamp) {
        connector.Answer("GETPROPERTIES",
                         R"({"Errors":[],"FilePropertiesArray":[{"FilePath":"/w/part.par",)"
                         R"("ObjectTypeToPropertiesArray":[{"ObjectType":2,"Properties":[)"
                         R"({"Name":"consistencyStamp","PropertyValues":[")" +
                             stamp + R"("]},{"Name":"DocumentId","PropertyValues":[")" +
                             documentId + R"("]}]}]}]})");
    }
    // A newer-version answer of (identifier, newer version id) pairs.
    void AnswerNewer(const std::string& pairs, const std::string& errors = "") {
        connector.Answer("CHECKFORNEWERVERSION", R"({"Errors":[)" + errors +
                                                     R"(],"IdentifierToNewerVersionId":[)" + pairs +
                                                     "]}");
    }
    bool IsNewer() { return files->IsNewVersionAvailable(L"/w/part.par"); }
};

constexpr const wchar_t* NoErrorsFound = L"\nNo Errors Found!\n";

TEST_F(VersionsRevisions, IsNewVersionAvailableAsksWithThePathAndComparesWithTheStamp) {
    StampDocument("DOC-1", "stamp-7");
    AnswerNewer(R"({"Key":"doc-1","Value":"stamp-8"})");
    EXPECT_TRUE(IsNewer());
    EXPECT_FALSE(files->IsNewRevisionAvailable(L"/w/part.par")); // whatever the cloud holds
    // The stamp comes first, through the properties of the path, then the question itself.
    EXPECT_EQ((testsupport::Texts{"GETPROPERTIES", "CHECKFORNEWERVERSION"}),
              connector.CommandsSent());
    EXPECT_EQ(Head("CHECKFORNEWERVERSION") +
                  R"("IdentifierToCheckForNewerVersion":["/w/part.par"],"IdentifierType":0})",
              Sent("CHECKFORNEWERVERSION"));
    EXPECT_EQ((Lines{{2, NoErrorsFound}}), Take());

    // Ids match ignoring case; a version id equal to the stamp but for case is not newer.
    AnswerNewer(R"({"Key":"doc-1","Value":"STAMP-7"})");
    EXPECT_FALSE(IsNewer());
    // The last pair that names the document decides; pairs naming nothing change nothing.
    AnswerNewer(R"({"Key":"DOC-1","Value":"stamp-8"},{"Key":"Doc-1","Value":"stamp-7"})");
    EXPECT_FALSE(IsNewer());
    AnswerNewer(R"({"Key":"DOC-1","Value":"stamp-8"},{"Key":"DOC-2","Value":"stamp-7"})");
    EXPECT_TRUE(IsNewer());
    AnswerNewer("");
    EXPECT_FALSE(IsNewer());
    // Errors in the answer are not looked at: its pairs still count, and nothing is written.
    AnswerNewer(R"({"Key":"DOC-1","Value":"stamp-8"})", R"({"ErrorCode":1})");
    EXPECT_TRUE(IsNewer());
    EXPECT_EQ((Lines(5, {2, NoErrorsFound})), Take());

    // Without a stamp only an empty identifier matches the document.
    connector.Answer("GETPROPERTIES", R"({"Errors":[]})");
    AnswerNewer(R"({"Key":"DOC-1","Value":"stamp-8"})");
    EXPECT_FALSE(IsNewer());
    AnswerNewer(R"({"Key":"","Value":"stamp-8"})");
    EXPECT_TRUE(IsNewer());
}

TEST_F(VersionsRevisions, IsNewVersionAvailableFailsOnlyWhenTheQueryItselfThrows) {
    ExpectEachException("CHECKFORNEWERVERSION", false, [&] { return IsNewer(); },
                        {{2, NoErrorsFound}});
    // A failed stamp look-up does not stop the question.
    connector.Answer("GETPROPERTIES", ErrorsAnswer({8}));
    AnswerNewer(R"({"Key":"","Value":"stamp-8"})");
    EXPECT_TRUE(IsNewer());
    EXPECT_EQ((Lines{{0, L"Error getting file properties."}}), Take());
}

TEST_F(VersionsRevisions, GetDesignRevisionsSearchesByNameAndAppendsEveryRevision) {
    const std::string answer = R"({"Errors":[],"DesignRevisionInfo":[)"
                               R"({"DesignRevision":[{"Name":"bracket A"},{"Name":"bracket B"}]},)"
                               R"({"DesignRevision":[{"Name":"br\u00e8cket"}]}]})";
    connector.Answer("QUERYDESIGNREVISIONS", answer);
    PathList names{L"kept"};
    EXPECT_EQ(S_OK, files->GetDesignRevisions(L"br\u00e8cket", &names));
    EXPECT_EQ((PathList{L"kept", L"bracket A", L"bracket B", L"br\u00e8cket"}), names);
    EXPECT_EQ(Lines{}, Take());
    // Both criteria search the same definition; one page of 50, in project context.
    const std::string definition =
        R"({"Definition":{"Operator":1,"SearchTerms":[{"Property":"name","Value":")"
        "br\xC3\xA8"
        "cket"
        R"(","ComparisionOp":0}]}})";
    EXPECT_EQ(Head("QUERYDESIGNREVISIONS") + R"("AttachmentCriteria":)" + definition +
                  R"(,"RevisionCriteria":)" + definition +
                  R"(,"Options":{"Skip":0,"Limit":50},"Operator":0,"Context":)"
                  R"({"CollaborationSpaceId":"","ContainerType":"PROJECT","ContainerId":"",)"
                  R"("ContainerURN":""}})",
              Sent("QUERYDESIGNREVISIONS"));

    // A failed query reports with the numbering text, then each code that has a message.
    connector.Answer("QUERYDESIGNREVISIONS", ErrorsAnswer({1, 15, 4}, answer));
    names = {L"kept"};
    EXPECT_EQ(E_FAIL, files->GetDesignRevisions(L"bracket", &names));
    EXPECT_EQ((Lines{{0, L"ERROR WHILE GENERATING NEXT REVISION."}, CodeLine(1), CodeLine(4)}),
              Take());

    const auto call = [&] { return files->GetDesignRevisions(L"bracket", &names); };
    ExpectEachException("QUERYDESIGNREVISIONS", E_FAIL, call);
    EXPECT_EQ(PathList{L"kept"}, names);
    // A host that passes no list still gets its answer.
    connector.Answer("QUERYDESIGNREVISIONS", R"({"DesignRevisionInfo":[{"DesignRevision":[{}]}]})");
    EXPECT_EQ(S_OK, files->GetDesignRevisions(L"bracket", nullptr));
}

} // namespace
