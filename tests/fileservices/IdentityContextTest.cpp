// File identity and context through the interface: monitored paths, synchronisation, status,
// paths by identifier, contexts and consistency stamps, each with its own result per path.
#include "fileservices/IdentityContext.h"
#include "fileservices/FileServicesFixture.h"

namespace {

using testsupport::FileServicesTest;
using testsupport::Line;
using testsupport::Lines;
using testsupport::Texts;

using IdentityContext = FileServicesTest;

std::vector<std::wstring> Fields(const FileContext& c) {
    return {c.componentId.wstr(), c.documentId.wstr(),          c.collaborationSpaceId.wstr(),
            c.containerId.wstr(), c.componentRevisionId.wstr(), c.componentRevisionUrn.wstr(),
            c.documentUrn.wstr(), c.componentUrn.wstr()};
}

constexpr const char* DocumentProperties =
    R"({"FilePropertiesArray":[{"FilePath":"/w/a.par","ObjectTypeToPropertiesArray":[)"
    R"({"ObjectType":1,"Properties":[{"Name":"consistencyStamp","PropertyValues":["v-lock"]}]},)"
    R"({"ObjectType":2,"Properties":[{"Name":"CONSISTENCYSTAMP","PropertyValues":["v7","v8"]},)"
    R"({"Name":"documentid","PropertyValues":["doc-1"]},{"Name":"DocumentId","PropertyValues":[]}]}]}]})";

TEST_F(IdentityContext, ListFormMapsEachPathOnceAndFailsSilentlyOnErrors) {
    connector.Answer("ISPATHMONITORED",
                     R"({"PathToIsMonitored":[{"Key":"/w/\u00e9.par","Value":true},)"
                     R"({"Key":"/w/b.par","Value":true},)"
                     R"({"Key":"/w/\u00e9.par","Value":false}]})");
    PathMonitoredMap monitored{{L"/w/b.par", false}};
    EXPECT_EQ(S_OK, files->IsValidCorvaneFile(PathList{L"/w/\u00e9.par", L"/w/b.par"}, &monitored));
    EXPECT_EQ(R"({"Command":"ISPATHMONITORED","SessionId":"s-1","Version":1,"Paths":["/w/)"
              "\xC3\xA9"
              R"(.par","/w/b.par"]})",
              Sent("ISPATHMONITORED"));
    // The first flag for a path stands, and so does a key the caller already had.
    EXPECT_EQ((PathMonitoredMap{{L"/w/b.par", false}, {L"/w/\u00e9.par", true}}), monitored);

    connector.Answer("ISPATHMONITORED",
                     R"({"Errors":[{"ErrorCode":10}],)"
                     R"("PathToIsMonitored":[{"Key":"/w/c.par","Value":true}]})");
    EXPECT_EQ(E_FAIL, files->IsValidCorvaneFile(PathList{L"/w/c.par"}, &monitored));
    EXPECT_EQ(2u, monitored.size());
    EXPECT_TRUE(Take().empty());
}

TEST_F(IdentityContext, SingleFormAnswersTheFirstEntryAndFalseOtherwise) {
    connector.Answer("ISPATHMONITORED", R"({"PathToIsMonitored":[{"Key":"x","Value":true},)"
                                        R"({"Key":"y","Value":false}]})");
    EXPECT_TRUE(files->IsValidCorvaneFile(GUserText()));
    EXPECT_EQ(R"({"Command":"ISPATHMONITORED","SessionId":"s-1","Version":1,"Paths":[""]})",
              Sent("ISPATHMONITORED"));
    connector.Answer("ISPATHMONITORED", R"({"Errors":[{"ErrorCode":1}],)"
                                        R"("PathToIsMonitored":[{"Key":"x","Value":true}]})");
    EXPECT_FALSE(files->IsValidCorvaneFile(GUserText(L"x")));
    connector.Answer("ISPATHMONITORED", R"({"PathToIsMonitored":[]})");
    EXPECT_FALSE(files->IsValidCorvaneFile(GUserText(L"x")));
    EXPECT_TRUE(Take().empty());
}

TEST_F(IdentityContext, SynchronizedUnlessTheModelSaysItDoesNotHoldTheFile) {
    const auto monitored = [this](bool flag) {
        connector.Answer("ISPATHMONITORED",
                         std::string(R"({"PathToIsMonitored":[{"Key":"p","Value":)") +
                             (flag ? "true" : "false") + "}]}");
    };
    const auto synchronized = [this] {
        connector.executeRequests.clear();
        return files->IsFileSynchronized(L"/w/a.par");
    };
    // Outside every monitored folder: no properties are asked for.
    monitored(false);
    EXPECT_TRUE(synchronized());
    EXPECT_EQ(Texts{"ISPATHMONITORED"}, connector.CommandsSent());

    monitored(true);
    connector.Answer("GETPROPERTIES", R"({"Errors":[{"ErrorCode":8},{"ErrorCode":12}]})");
    EXPECT_FALSE(synchronized());
    EXPECT_EQ(R"({"Command":"GETPROPERTIES","SessionId":"s-1","Version":1,)"
              R"("FilePathToObjectTypesArray":[{"Key":"/w/a.par","ObjectTypeList":[2]}]})",
              Sent("GETPROPERTIES"));
    EXPECT_EQ((Lines{{0, L"Error getting file properties."}, {1, L"File is not synchronized."}}),
              Take());
    // Only the first error counts.
    connector.Answer("GETPROPERTIES", R"({"Errors":[{"ErrorCode":12},{"ErrorCode":8}]})");
    EXPECT_TRUE(synchronized());
    EXPECT_EQ((Lines{{0, L"Error getting file properties."}}), Take());
    connector.Answer("GETPROPERTIES", R"({"Errors":[]})");
    EXPECT_TRUE(synchronized());
    EXPECT_TRUE(Take().empty());
    EXPECT_TRUE(log.ScopesOpened().empty());
}

TEST_F(IdentityContext, StatusAsksRevisionThenVersionThroughTheTable) {
    connector.Answer("GETPROPERTIES", DocumentProperties);
    connector.Answer("CHECKFORNEWERVERSION",
                     R"({"IdentifierToNewerVersionId":[{"Key":"DOC-1","Value":"v9"}]})");
    FileStatusInformation status{true, true, L"bob", 5, 5};
    EXPECT_EQ(S_OK, files->GetStatusInformation(L"/w/a.par", &status));
    EXPECT_EQ(1, status.isNewVersionAvailable);
    EXPECT_EQ(0, status.isNewRevisionAvailable);
    EXPECT_TRUE(status.isCheckedOut && status.isCheckedOutByMe);
    EXPECT_EQ(L"bob", status.checkedOutBy.wstr());
    EXPECT_EQ(
        (std::vector<std::wstring>{L"VANTOManager::VANTOFileServices::GetStatusInformation",
                                   L"VANTOManager::VANTOFileServices::IsNewRevisionAvailable",
                                   L"VANTOManager::VANTOFileServices::IsNewVersionAvailable",
                                   L"VANTOManager::VANTOFileServices::GetDocumentConsistencyStamp",
                                   L"VANTOManager::VANTOFileServices::GetProperties"}),
        log.ScopesOpened());
    EXPECT_EQ((Texts{"GETPROPERTIES", "CHECKFORNEWERVERSION"}), connector.CommandsSent());
}

TEST_F(IdentityContext, StampsComeFromTheDocumentGroupOfFilesTheMapHolds) {
    connector.Answer("GETPROPERTIES", DocumentProperties);
    DocumentStampMap stamps{{L"/W/A.PAR", {}}, {L"/w/other.par", {L"keep", L"me"}}};
    EXPECT_EQ(S_OK, files->GetDocumentConsistencyStamp(&stamps));
    EXPECT_EQ(L"v7", stamps.at(L"/w/a.par").consistencyStamp.wstr());
    EXPECT_EQ(L"doc-1", stamps.at(L"/w/a.par").documentId.wstr());
    EXPECT_EQ(L"keep", stamps.at(L"/w/other.par").consistencyStamp.wstr());

    connector.Answer("GETPROPERTIES", R"({"Errors":[{"ErrorCode":3}]})");
    DocumentStampMap untouched{{L"/w/a.par", {}}};
    EXPECT_EQ(E_FAIL, files->GetDocumentConsistencyStamp(&untouched));
    EXPECT_TRUE(untouched.at(L"/w/a.par").documentId.IsEmpty());
}

TEST_F(IdentityContext, FilePathsGoToTheirIdentifiersAndErrorsStillSucceed) {
    connector.Answer(
        "GETFILEPATHBYUID",
        R"({"DocumentIdToFilePathMap":[{"Key":"id-1","Values":["/w/a.par","/w/\u00e9.par"]},)"
        R"({"Key":"ID-2","Values":["/w/b.par"]},{"Key":"id-3","Values":[]},)"
        R"({"Key":"id-9","Values":["/w/z.par"]}]})");
    FileUidPathMap paths{{L"id-1", L""}, {L"id-2", L""}, {L"id-3", L"old"}};
    EXPECT_EQ(S_OK, files->GetFilePath(&paths));
    EXPECT_EQ(R"({"Command":"GETFILEPATHBYUID","SessionId":"s-1","Version":1,)"
              R"("ListOfFileUidAndContextInformation":[{"FileUid":"id-1"},{"FileUid":"id-2"},)"
              R"({"FileUid":"id-3"}]})",
              Sent("GETFILEPATHBYUID"));
    EXPECT_EQ((FileUidPathMap{{L"id-1", L"/w/\u00e9.par"}, {L"id-2", L""}, {L"id-3", L"old"}}),
              paths);

    connector.Answer("GETFILEPATHBYUID",
                     R"({"Errors":[{"ErrorCode":8},{"ErrorCode":15},{"ErrorCode":11}],)"
                     R"("DocumentIdToFilePathMap":[{"Key":"id-2","Values":["/w/b.par"]}]})");
    EXPECT_EQ(S_OK, files->GetFilePath(&paths));
    EXPECT_TRUE(paths.at(L"id-2").IsEmpty());
    Take();
    FileUidPathMap none;
    EXPECT_EQ(S_OK, files->GetFilePath(&none));
    EXPECT_EQ((Lines{{0, L"ERROR WHILE GETTING FILE PATH."},
                     {0, L"Object is not found in data model - "
                         L"ReturnCodes_OBJECT_NOT_FOUND_IN_MODEL"},
                     {0, L"Local file path does not exist - ReturnCodes_FILE_DOES_NOT_EXIST"}}),
              Take());
}

TEST_F(IdentityContext, ContextsAreAppendedPerPathWithTheWholeContext) {
    connector.Answer(
        "GETFILECONTEXTINFO",
        R"({"FileContextInformation":[{"ContextInformation":{"CollaborationSpaceId":"cs",)"
        R"("ContainerType":"PROJECT","ContainerId":"p-1","ContainerURN":"urn:p"},)"
        R"("FileInformation":[{"FilePaths":[],"ComponentId":"stale","DocumentUrn":"urn:stale"},)"
        R"({"FilePaths":["/w/a.par","/w/a2.par","/w/a3.par"],"ComponentId":"c","ComponentRevisionId":"cr",)"
        R"("DocumentId":"d","ComponentUrn":"urn:c","ComponentRevisionUrn":"urn:cr"}]},)"
        R"({"FileInformation":[{"FilePaths":["/w/b.par"],"DocumentId":"e"}]}]})");
    FileContextList contexts{{L"/w/earlier.par", {}}};
    EXPECT_EQ(S_OK, files->GetContextInformation({L"/w/a.par", L"/w/b.par"}, &contexts));
    EXPECT_EQ(R"({"Command":"GETFILECONTEXTINFO","SessionId":"s-1","Version":1,)"
              R"("Files":["/w/a.par","/w/b.par"]})",
              Sent("GETFILECONTEXTINFO"));
    ASSERT_EQ(5u, contexts.size());
    // The later file object of an entry overwrites every field, empty ones included.
    const std::vector<std::wstring> shared{L"c",  L"d",      L"cs", L"p-1",
                                           L"cr", L"urn:cr", L"",   L"urn:c"};
    for (std::size_t i = 1; i <= 3; ++i) {
        EXPECT_EQ(shared, Fields(contexts[i].context));
    }
    EXPECT_EQ(L"/w/a3.par", contexts[3].path.wstr());
    // A new answer entry starts from an empty context.
    EXPECT_EQ(L"/w/b.par", contexts[4].path.wstr());
    EXPECT_TRUE(contexts[4].context.containerId.IsEmpty());
    EXPECT_EQ(L"e", contexts[4].context.documentId.wstr());

    connector.Answer("GETFILECONTEXTINFO", R"({"Errors":[{"ErrorCode":3},{"ErrorCode":6},)"
                                           R"({"ErrorCode":2}],"FileContextInformation":[)"
                                           R"({"FileInformation":[{"FilePaths":["/w/x.par"]}]}]})");
    Take();
    EXPECT_EQ(E_FAIL, files->GetContextInformation({L"/w/x.par"}, &contexts));
    EXPECT_EQ(5u, contexts.size());
    EXPECT_EQ((Lines{{0, L"ERROR WHILE GETTING CORVANE CONTEXT INFORMATION."},
                     {0, L"User is not signed in - ReturnCodes_USER_NOT_SIGNEDIN"},
                     {0, L"Corvane is offline. - ReturnCodes_OFFLINE"},
                     {0, L"Service is not available - ReturnCodes_FUNCTIONALITY_UNAVAILABLE"}}),
              Take());
}

} // namespace
