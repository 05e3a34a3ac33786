// The command and data records: their keys, order and spellings as they go over the wire.
#include "protocol/commands/DataManagementCommands.h"
#include "protocol/commands/GenericCommands.h"
#include "protocol/commands/MCADCommands.h"
#include "protocol/registration/Registration.h"
#include "protocol/registration/SessionOutputs.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace {

using namespace Corvane::CommandIO::DataManagement::MCAD;
using namespace Corvane::CommandIO::DataManagement;
using namespace Corvane::CommandIO::Generic;
using namespace Corvane::DataTypes;
using namespace Corvane::DataTypes::Search;
using TextList = Core::DynamicArray<Core::TevString>;

template <class T> std::string Json() {
    return T().ToJson().str();
}

// Every input as a caller builds it before filling it: the envelope, then every own key.
TEST(CommandRecords, EveryInputWritesItsCommandAndAllItsKeys) {
    const std::string cases[][3] = {
        {Json<CorvaneLockDesignRevisionsInput>(), "LOCKDESIGNREVISIONS",
         R"("DesignIdentifiers":[],"TimeToLive":0)"},
        {Json<CorvaneUnLockDesignRevisionsInput>(), "UNLOCKDESIGNREVISIONS",
         R"("DesignIdentifiers":[])"},
        {Json<CorvaneQueryDesignRevisionsInput>(), "QUERYDESIGNREVISIONS", R"("Operator":0)"},
        {Json<CorvaneQueryPrimaryObjectsInput>(), "QUERYPRIMARYOBJECTS",
         R"("Identifier":"","IdentifierType":0,"RelationTypes":[])"},
        {Json<CorvaneGetNextIdInput>(), "GETNEXTID",
         R"("FileExtension":"","NumberOfIds":0,"GetInitialRevId":false,"Properties":[],)"
         R"("DirectoryPath":"")"},
        {Json<CorvaneGetNextRevisionIdInput>(), "GETNEXTREVISIONID",
         R"("DesignRevisionIdentifiers":[],"Properties":[])"},
        {Json<CorvaneAddChildrenInput>(), "ADDCHILDREN", R"("ParentChildRelationInfos":[])"},
        {Json<CorvaneGetChildrenInput>(), "GETCHILDREN", R"("Identifier":"","IdentifierType":0)"},
        {Json<CorvaneRemoveChildrenInput>(), "REMOVECHILDREN", R"("RelationURNs":[])"},
        {Json<CorvaneGetFileContextInformationInput>(), "GETFILECONTEXTINFO", R"("Files":[])"},
        {Json<CorvaneGetFilePathByUidInput>(), "GETFILEPATHBYUID",
         R"("ListOfFileUidAndContextInformation":[])"},
        {Json<CorvaneCheckNewerVersionOnCloudInput>(), "CHECKFORNEWERVERSION",
         R"("IdentifierToCheckForNewerVersion":[],"IdentifierType":0)"},
        {Json<CorvaneGetPropertiesInput>(), "GETPROPERTIES", R"("FilePathToObjectTypesArray":[])"},
        {Json<CorvaneGetAvailableContainersInput>(), "GETAVAILABLECONTAINERS",
         R"("Name":"","ContainerType":[],"ReturnUnsynched":false)"},
        {Json<CorvaneAddProjectToSyncInput>(), "ADDPROJECTTOSYNC", R"("ProjectURN":"")"},
        {Json<CorvaneGetAccessPermissionsInput>(), "GETACCESSPERMISSIONS", R"("Paths":[])"},
        {Json<CorvaneIsPathMonitoredInput>(), "ISPATHMONITORED", R"("Paths":[])"},
        {Json<CorvaneSetDataObjectInput>(), "SETDATAOBJECT", R"("Data":"")"},
    };
    for (const auto& [written, command, keys] : cases) {
        EXPECT_EQ(R"({"Command":")" + command + R"(","SessionId":"","Version":1,)" + keys + "}",
                  written);
    }
}

TEST(CommandRecords, ListOfRecordsAndFlatRecordWithEscapes) {
    CorvaneLockDesignRevisionsInput input;
    input.SessionId = "s";
    input.TimeToLive = 30;
    for (const char* value : {"C:\\parts\\a \"1\".prt", "tab\there\x01"}) {
        input.DesignIdentifiers.push_back(std::make_unique<CorvaneDesignIdentifier>());
        input.DesignIdentifiers.back()->Value = value;
        input.DesignIdentifiers.back()->IdentifierType = 1;
    }
    EXPECT_EQ(
        R"({"Command":"LOCKDESIGNREVISIONS","SessionId":"s","Version":1,"DesignIdentifiers":[)"
        R"({"Value":"C:\\parts\\a \"1\".prt","IdentifierType":1},)"
        R"({"Value":"tab\there\u0001","IdentifierType":1}],"TimeToLive":30})",
        input.ToJson().str());
}

TEST(CommandRecords, NestedRecordsAreWrittenOnlyWhenPresent) {
    CorvaneFileUidAndContextInformationPair pair;
    pair.FileUid = "u-1";
    EXPECT_EQ(R"({"FileUid":"u-1"})", pair.ToJson().str());
    pair.ContextInformation = std::make_unique<CorvaneContextInformation>();
    pair.ContextInformation->ContainerURN = "urn:p";
    EXPECT_EQ(R"({"FileUid":"u-1","ContextInformation":{"CollaborationSpaceId":"",)"
              R"("ContainerType":"","ContainerId":"","ContainerURN":"urn:p"}})",
              pair.ToJson().str());
    EXPECT_EQ("{}", CorvaneSearchCriteria().ToJson().str());
    Core::Registration::RegisterClientInput registration;
    registration.ProcessId = 42;
    EXPECT_EQ(R"({"ProcessId":42,"ProcessStartTime":"","FilePath":""})",
              registration.ToJson().str());
}

TEST(CommandRecords, QueryInputNestsCriteriaWithTheConnectorsSpelling) {
    CorvaneQueryDesignRevisionsInput query;
    query.RevisionCriteria = std::make_unique<CorvaneSearchCriteria>();
    query.RevisionCriteria->Definition = std::make_unique<CorvaneSearchDefinition>();
    query.RevisionCriteria->Definition->Operator = 1;
    query.RevisionCriteria->Definition->SearchTerms.push_back(
        std::make_unique<CorvaneSearchTerm>());
    query.RevisionCriteria->Definition->SearchTerms[0]->Property = "Name";
    query.RevisionCriteria->Definition->SearchTerms[0]->Value = "a.prt";
    query.RevisionCriteria->Definition->SearchTerms[0]->ComparisionOp = 3;
    query.Options = std::make_unique<CorvaneSearchOptions>();
    query.Options->Limit = 50;
    query.Operator = 2;
    EXPECT_EQ(R"({"Command":"QUERYDESIGNREVISIONS","SessionId":"","Version":1,)"
              R"("RevisionCriteria":{"Definition":{"Operator":1,"SearchTerms":[)"
              R"({"Property":"Name","Value":"a.prt","ComparisionOp":3}]}},)"
              R"("Options":{"Skip":0,"Limit":50},"Operator":2})",
              query.ToJson().str());
}

TEST(CommandRecords, ChildrenInputAndOutputSpellTheirListsDifferently) {
    CorvaneAddChildrenInput input;
    input.ParentChildRelationInfos.push_back(std::make_unique<CorvaneAddChildInputInfo>());
    input.ParentChildRelationInfos[0]->ChildRevisionInfos.push_back(
        std::make_unique<CorvaneChildRevisionInfo>());
    EXPECT_EQ(R"({"Command":"ADDCHILDREN","SessionId":"","Version":1,"ParentChildRelationInfos":[)"
              R"({"ParentIdentifier":"","ParentIdentifierType":0,"ChildRevisionInfos":[)"
              R"({"Identifier":"","IdentifierType":0,"RelationProperties":[]}]}]})",
              input.ToJson().str());

    const std::string answer =
        R"({"Errors":[],"ParentChildRelationInfo":[{"ParentDocumentInfo":{"DocumentId":"d1"},)"
        R"("ChildRelationInfos":[{"RelationId":"r1","RelationVersionId":"v2",)"
        R"("ChildDocumentInfo":{"FilePaths":["/c.prt"]}}]}],"ParentChildRelationInfos":[{}]})";
    const CorvaneGetChildrenOutput children(answer);
    ASSERT_EQ(1U, children.ParentChildRelationInfo.size());
    const auto& parent = *children.ParentChildRelationInfo[0];
    EXPECT_EQ("d1", parent.ParentDocumentInfo->DocumentId);
    ASSERT_EQ(1U, parent.ChildRelationInfos.size());
    EXPECT_EQ("v2", parent.ChildRelationInfos[0]->RelationVersionId);
    EXPECT_EQ(TextList{"/c.prt"}, parent.ChildRelationInfos[0]->ChildDocumentInfo->FilePaths);
    EXPECT_EQ(1U, CorvaneAddChildrenOutput(answer).ParentChildRelationInfo.size());
    // Logged answers are written back in declared order, absent records left out.
    EXPECT_EQ(R"({"Errors":[],"ParentChildRelationInfo":[{"ParentDocumentInfo":{"FilePaths":[],)"
              R"("ComponentId":"","ComponentRevisionId":"","DocumentId":"d1","ComponentUrn":"",)"
              R"("ComponentRevisionUrn":"","DocumentUrn":""},"ChildRelationInfos":[{)"
              R"("ChildDocumentInfo":{"FilePaths":["/c.prt"],"ComponentId":"",)"
              R"("ComponentRevisionId":"","DocumentId":"","ComponentUrn":"",)"
              R"("ComponentRevisionUrn":"","DocumentUrn":""},"RelationId":"r1","RelationUrn":"",)"
              R"("RelationType":"","RelationVersionId":"v2","RelationProperties":[]}]}]})",
              children.ToJson().str());
}

TEST(CommandRecords, IrregularKeysAreReadOnlyAsTheConnectorSpellsThem) {
    const CorvaneGetAvailableContainersOutput containers(
        R"({"ContainerInformation":[{"ContainerUrn":"urn:1","ContainerType":4,)"
        R"("CollaborationSpace":{"CollaborationSpaceId":"cs"}},{"ContainerURN":"urn:2"}]})");
    ASSERT_EQ(2U, containers.ContainerInformation.size());
    EXPECT_EQ("urn:1", containers.ContainerInformation[0]->ContainerUrn);
    EXPECT_EQ(4, containers.ContainerInformation[0]->ContainerType);
    EXPECT_EQ("cs", containers.ContainerInformation[0]->CollaborationSpace->CollaborationSpaceId);
    EXPECT_EQ("", containers.ContainerInformation[1]->ContainerUrn);

    const CorvaneContextInformation context(R"({"ContainerURN":"urn:3","ContainerUrn":"no",)"
                                            R"("ContainerType":"project"})");
    EXPECT_EQ("urn:3", context.ContainerURN);
    EXPECT_EQ("project", context.ContainerType);

    const CorvaneGetNextRevisionIdOutput next(
        R"({"NextRevisionIdInfo":[{"RevisionFilepath":"/a.prt","Revid":"B"},)"
        R"({"RevisionFilePath":"/b.prt"}]})");
    ASSERT_EQ(2U, next.NextRevisionIdInfo.size());
    EXPECT_EQ("/a.prt", next.NextRevisionIdInfo[0]->RevisionFilepath);
    EXPECT_EQ("B", next.NextRevisionIdInfo[0]->Revid);
    EXPECT_EQ("", next.NextRevisionIdInfo[1]->RevisionFilepath);

    const CorvaneGetFileContextInformationOutput files(
        R"({"FileContextInformation":[{"FileInformation":[{"DocumentUrn":"d"},{}],)"
        R"("ContextInformation":{"ContainerId":"p"}},{"FileInformation":[]}]})");
    ASSERT_EQ(2U, files.FileContextInformation.size());
    ASSERT_EQ(2U, files.FileContextInformation[0]->FileInformation.size());
    EXPECT_EQ("d", files.FileContextInformation[0]->FileInformation[0]->DocumentUrn);
    EXPECT_EQ("p", files.FileContextInformation[0]->ContextInformation->ContainerId);
    EXPECT_TRUE(files.FileContextInformation[1]->FileInformation.empty());
    EXPECT_EQ(nullptr, files.FileContextInformation[1]->ContextInformation);
}

TEST(CommandRecords, DesignRevisionAnswerReadsDatasetsLocksAndDefaults) {
    const CorvaneQueryDesignRevisionsOutput output(
        R"({"Errors":[],"DesignRevisionInfo":[{"DesignRevision":[)"
        R"({"Id":"r1","Datasets":[{"Name":"a","FileSize":2048,"IsRelated":true,)"
        R"("Properties":[{"Name":"M","PropertyType":2,"PropertyValues":["steel"]}]},{"Name":"b"}],)"
        R"("LockInfo":{"LockedBy":"Ann","ErrorCode":13}},{"Id":"r2"}]}]})");
    ASSERT_EQ(1U, output.DesignRevisionInfo.size());
    const auto& revisions = output.DesignRevisionInfo[0]->DesignRevision;
    ASSERT_EQ(2U, revisions.size());
    ASSERT_EQ(2U, revisions[0]->Datasets.size());
    const CorvaneDataset& first = *revisions[0]->Datasets[0];
    EXPECT_EQ(2048, first.FileSize);
    EXPECT_TRUE(first.IsRelated);
    ASSERT_EQ(1U, first.Properties.size());
    EXPECT_EQ(TextList{"steel"}, first.Properties[0]->PropertyValues);
    EXPECT_EQ(0, revisions[0]->Datasets[1]->FileSize);
    EXPECT_FALSE(revisions[0]->Datasets[1]->IsRelated);
    EXPECT_EQ("Ann", revisions[0]->LockInfo->LockedBy);
    EXPECT_EQ(13, revisions[0]->LockInfo->ErrorCode);
    EXPECT_EQ(nullptr, revisions[1]->LockInfo);
}

TEST(CommandRecords, PairListsKeepTheAnswersOrder) {
    const CorvaneCheckNewerVersionOnCloudOutput newer(
        R"({"IdentifierToNewerVersionId":[{"Key":"b","Value":"7"},{"Key":"a","Value":"3"}],)"
        R"("IdentifierToHasNewerVersionInCloud":[{"Key":"b","Value":true},{"Key":"a"}]})");
    ASSERT_EQ(2U, newer.IdentifierToNewerVersionId.size());
    EXPECT_EQ("b", newer.IdentifierToNewerVersionId[0]->Key);
    EXPECT_EQ("3", newer.IdentifierToNewerVersionId[1]->Value);
    ASSERT_EQ(2U, newer.IdentifierToHasNewerVersionInCloud.size());
    EXPECT_TRUE(newer.IdentifierToHasNewerVersionInCloud[0]->Value);
    EXPECT_FALSE(newer.IdentifierToHasNewerVersionInCloud[1]->Value);

    // Errors: missing keys read as defaults, written back in full.
    const CorvaneRemoveChildrenOutput removed(
        R"({"Errors":[{"ErrorCode":5,"Ids":["a","b"]},{"Ids":["c"]}],"Extra":[1,{}]})");
    EXPECT_EQ(R"({"Errors":[{"ErrorCode":5,"Ids":["a","b"]},{"ErrorCode":0,"Ids":["c"]}]})",
              removed.ToJson().str());
}

} // namespace
