// One small, realistic exchange per command: the request as the component writes it and an
// answer as the connector gives it, with every key of the output in its order. Shared by the
// allocation-failure test and the fuzz harnesses (and their starting corpus).
#pragma once

#include "protocol/commands/DataManagementCommands.h"
#include "protocol/commands/GenericCommands.h"
#include "protocol/commands/MCADCommands.h"
#include "protocol/registration/Registration.h"
#include "protocol/registration/SessionOutputs.h"

#include <string>

namespace testsupport {

// The file-information object of document `n` (component c-n, document d-n) at `paths`, the
// inside of a JSON array of texts.
inline std::string Document(const std::string& paths, char n) {
    const std::string id(1, n);
    return R"({"FilePaths":[)" + paths + R"(],"ComponentId":"c-)" + id +
           R"(","ComponentRevisionId":"cr-)" + id + R"(","DocumentId":"d-)" + id +
           R"(","ComponentUrn":"urn:c:)" + id + R"(","ComponentRevisionUrn":"urn:cr:)" + id +
           R"(","DocumentUrn":"urn:d:)" + id + R"("})";
}

template <class In, class Out> struct Sample {
    using Input = In;
    using Output = Out;
    std::string name;
    std::string input;
    std::string output; // empty when no answer is read
};

// A versioned command's exchange: its name, the request's shared start then `rest`, and `output`.
template <class In>
Sample<In, typename In::Output> Versioned(const std::string& rest, std::string output) {
    const std::string name = In::CommandName;
    return {name, R"({"Command":")" + name + R"(","SessionId":"s-1","Version":1,)" + rest,
            std::move(output)};
}

namespace samples {
using namespace Corvane::CommandIO;
using namespace Corvane::CommandIO::DataManagement;
using namespace Corvane::CommandIO::DataManagement::MCAD;
using namespace Corvane::CommandIO::Generic;
using namespace Core::Registration;
} // namespace samples

// Calls `visit(Sample<Input, Output>)` for every exchange: the commands of the catalogue, the
// three bare session commands, and registration.
template <class Visit> void ForEachSample(Visit&& visit) {
    using namespace samples;
    visit(Versioned<CorvaneLockDesignRevisionsInput>(
        R"("DesignIdentifiers":[)"
        R"({"Value":"C:\\Corvane\\Pump\\Housing.par","IdentifierType":0},)"
        R"({"Value":"C:\\Corvane\\Pump\\Pump.asm","IdentifierType":0}],"TimeToLive":-1})",
        R"({"Errors":[{"ErrorCode":13,"Ids":["C:\\Corvane\\Pump\\Pump.asm"]}],"Status":[)"
        R"({"DesignIdentifier":"C:\\Corvane\\Pump\\Housing.par","LockedBy":"ann",)"
        R"("LockedAt":"2024-03-07T09:05:02Z","LockExpires":"","LockedByUrn":"urn:user:ann",)"
        R"("ErrorCode":0}]})"));
    visit(Versioned<CorvaneUnLockDesignRevisionsInput>(
        R"("DesignIdentifiers":[{"Value":"C:\\Corvane\\Pump\\Housing.par","IdentifierType":0}]})",
        R"({"Errors":[],"Status":[{"DesignIdentifier":"C:\\Corvane\\Pump\\Housing.par",)"
        R"("LockedBy":"","LockedAt":"","LockExpires":"","LockedByUrn":"","ErrorCode":0}]})"));
    visit(Versioned<CorvaneQueryDesignRevisionsInput>(
        R"("AttachmentCriteria":{"Definition":{"Operator":1,"SearchTerms":[)"
        R"({"Property":"name","Value":"Housing","ComparisionOp":0}]}},)"
        R"("RevisionCriteria":{"Definition":{"Operator":1,"SearchTerms":[)"
        R"({"Property":"name","Value":"Housing","ComparisionOp":0}]}},)"
        R"("Options":{"Skip":0,"Limit":50},"Operator":0,"Context":{"CollaborationSpaceId":"",)"
        R"("ContainerType":"PROJECT","ContainerId":"","ContainerURN":""}})",
        R"({"Errors":[],"DesignRevisionInfo":[{"DesignRevision":[{"CreationDate":"2024-01-02",)"
        R"("Id":"dr-7","LastModifiedDate":"2024-03-07","Name":"Housing","OwnerId":"u-1",)"
        R"("Properties":[{"Name":"Revision","PropertyType":0,"PropertyValues":["B"]}],)"
        R"("Urn":"urn:dr:7","Datasets":[{"CreationDate":"2024-01-02","Id":"ds-1",)"
        R"("LastModifiedDate":"2024-03-07","Name":"Housing.par","ContentType":"part",)"
        R"("OwnerId":"u-1","Properties":[],"AdhocProperties":[{"Name":"Material",)"
        R"("PropertyType":0,"PropertyValues":["Stahl"]}],"Urn":"urn:ds:1","VersionId":"3",)"
        R"("IsRelated":true,"Checksum":"9f2c","FileSize":48213,"LastModifiedBy":"ann",)"
        R"("CreatedBy":"ann","DatasetType":"primary","FileName":"Housing.par",)"
        R"("Domain":"MCAD"}],"LockInfo":{"DesignIdentifier":"dr-7","LockedBy":"bob",)"
        R"("LockedAt":"2024-03-07T09:05:02Z","LockExpires":"","LockedByUrn":"urn:user:bob",)"
        R"("ErrorCode":0}}],"ContextInformation":{"CollaborationSpaceId":"cs-1",)"
        R"("ContainerType":"PROJECT","ContainerId":"p-4","ContainerURN":"urn:p:4"}}]})"));
    visit(Versioned<CorvaneQueryPrimaryObjectsInput>(
        R"("Identifier":"C:\\Corvane\\Pump\\Housing.par","IdentifierType":0,)"
        R"("RelationTypes":["DrawingOf","DesignChildRelation"]})",
        R"({"Errors":[],"QueryRelationInfos":[{"InputDocument":)" +
            Document(R"("C:\\Corvane\\Pump\\Housing.par")", '1') +
            R"(,"Relations":[{"RelatedDocument":)" +
            Document(R"("C:\\Corvane\\Pump\\Pump.asm")", '2') +
            R"(,"RelationId":"r-1","RelationUrn":"urn:r:1",)"
            R"("RelationType":"DesignChildRelation","RelationConsistencyStamp":"st-5",)"
            R"("RelationProperties":[]}]}]})"));
    visit(Versioned<CorvaneGetNextIdInput>(
        R"("FileExtension":"par","NumberOfIds":2,"GetInitialRevId":true,"Properties":["number"],)"
        R"("DirectoryPath":"C:\\Corvane\\Pump"})",
        R"({"Errors":[],"NextIdInfo":[{"PropertyName":"number","Number":"PN-1001","Revid":"A"},)"
        R"({"PropertyName":"number","Number":"PN-1002","Revid":"A"}]})"));
    visit(Versioned<CorvaneGetNextRevisionIdInput>(
        R"("DesignRevisionIdentifiers":[{"Value":"urn:dr:7","IdentifierType":0}],)"
        R"("Properties":["revid"]})",
        R"({"Errors":[],"NextRevisionIdInfo":[{"RevisionFilepath":)"
        R"("C:\\Corvane\\Pump\\Housing.par","Revid":"C"}]})"));
    visit(Versioned<CorvaneAddChildrenInput>(
        R"("ParentChildRelationInfos":[)"
        R"({"ParentIdentifier":"C:\\Corvane\\Pump\\Pump.asm","ParentIdentifierType":0,)"
        R"("ChildRevisionInfos":[{"Identifier":"C:\\Corvane\\Pump\\Housing.par",)"
        R"("IdentifierType":0,"RelationProperties":[]}]}]})",
        R"({"Errors":[],"ParentChildRelationInfo":[{"ParentDocumentInfo":)" +
            Document(R"("C:\\Corvane\\Pump\\Pump.asm")", '2') +
            R"(,"ChildRelationInfos":[{"ChildDocumentInfo":)" +
            Document(R"("C:\\Corvane\\Pump\\Housing.par")", '1') +
            R"(,"RelationId":"r-1","RelationUrn":"urn:r:1",)"
            R"("RelationType":"DesignChildRelation","RelationVersionId":"1",)"
            R"("RelationProperties":[{"Name":"Quantity","PropertyType":1,"PropertyValues":["2"]}]}]}]})"));
    visit(Versioned<CorvaneGetChildrenInput>(
        R"("Identifier":"C:\\Corvane\\Pump\\Pump.asm","IdentifierType":0})",
        R"({"Errors":[],"ParentChildRelationInfo":[{"ParentDocumentInfo":)" +
            Document(R"("C:\\Corvane\\Pump\\Pump.asm")", '2') +
            R"(,"ChildRelationInfos":[{"ChildDocumentInfo":)" +
            Document(R"("C:\\Corvane\\Pump\\Housing.txt","C:\\Corvane\\Pump\\Housing.par")", '1') +
            R"(,"RelationId":"r-1","RelationUrn":"urn:r:1","RelationType":"DesignChildRelation",)"
            R"("RelationVersionId":"1","RelationProperties":[]}]}]})"));
    visit(Versioned<CorvaneRemoveChildrenInput>(R"("RelationURNs":["urn:r:1",""]})",
                                                R"({"Errors":[{"ErrorCode":8,"Ids":[""]}]})"));
    visit(Versioned<CorvaneGetFileContextInformationInput>(
        R"("Files":["C:\\Corvane\\Pump\\Housing.par"]})",
        R"({"Errors":[],"FileContextInformation":[{"FileInformation":[)" +
            Document(R"("C:\\Corvane\\Pump\\Housing.par")", '1') +
            R"(],"ContextInformation":{"CollaborationSpaceId":"cs-1",)"
            R"("ContainerType":"PROJECT","ContainerId":"p-4","ContainerURN":"urn:p:4"}}]})"));
    visit(Versioned<CorvaneGetFilePathByUidInput>(
        R"("ListOfFileUidAndContextInformation":[{"FileUid":"d-1"},{"FileUid":"d-2"}]})",
        R"({"Errors":[],"DocumentIdToFilePathMap":[{"Key":"d-1","Values":)"
        R"(["C:\\Corvane\\Pump\\Housing.par"]},{"Key":"d-2","Values":[]}]})"));
    visit(Versioned<CorvaneCheckNewerVersionOnCloudInput>(
        R"("IdentifierToCheckForNewerVersion":["C:\\Corvane\\Pump\\Housing.par"],)"
        R"("IdentifierType":0})",
        R"({"Errors":[],"IdentifierToNewerVersionId":[{"Key":"d-1","Value":"st-6"}],)"
        R"("IdentifierToHasNewerVersionInCloud":[{"Key":"d-1","Value":true}]})"));
    visit(Versioned<CorvaneGetPropertiesInput>(
        R"("FilePathToObjectTypesArray":[{"Key":"C:\\Corvane\\Pump\\Gehäuse.par",)"
        R"("ObjectTypeList":[0,2,1]}]})",
        R"({"Errors":[],"FilePropertiesArray":[{"FilePath":"C:\\Corvane\\Pump\\Housing.par",)"
        R"("ObjectTypeToPropertiesArray":[{"ObjectType":1,"Properties":[{"Name":"LockedBy",)"
        R"("PropertyType":0,"PropertyValues":["ann"]}]},{"ObjectType":2,"Properties":[)"
        R"({"Name":"consistencyStamp","PropertyType":0,"PropertyValues":["st-5"]},)"
        R"({"Name":"DocumentId","PropertyType":0,"PropertyValues":["d-1"]}]}]}]})"));
    visit(Versioned<CorvaneGetAvailableContainersInput>(
        R"("Name":"","ContainerType":[0,2],"ReturnUnsynched":false})",
        R"({"Errors":[],"ContainerInformation":[{"LocalFilePath":"C:\\Corvane\\Pump",)"
        R"("ContainerType":0,"ContainerName":"Pump","ContainerId":"p-4",)"
        R"("ContainerUrn":"urn:p:4","ContainerOwnershipType":1,)"
        R"("CollaborationSpace":{"CollaborationSpaceId":"cs-1"}}]})"));
    visit(Versioned<CorvaneAddProjectToSyncInput>(R"("ProjectURN":"urn:p:4"})",
                                                  R"({"Errors":[],"TaskId":"t-31"})"));
    visit(Versioned<CorvaneGetAccessPermissionsInput>(
        R"("Paths":["C:\\Corvane\\Pump\\Housing.par"]})",
        R"({"Errors":[],"AccessPermissionsInfo":[{"Path":"C:\\Corvane\\Pump\\Housing.par",)"
        R"("AccessPermission":2,"MoreInfo":"read only"}]})"));
    visit(Versioned<CorvaneIsPathMonitoredInput>(
        R"("Paths":["C:\\Corvane\\Pump\\Housing.par","D:\\elsewhere.par"]})",
        R"({"Errors":[],"PathToIsMonitored":[{"Key":"C:\\Corvane\\Pump\\Housing.par",)"
        R"("Value":true},{"Key":"D:\\elsewhere.par","Value":false}]})"));
    visit(Versioned<CorvaneSetDataObjectInput>(
        R"("Key":{"PrimaryKey":"layout","SecondaryKey":"SaveData"},"Data":"{\"zoom\":2}"})",
        R"({"Errors":[{"ErrorCode":7,"Ids":["layout"]}]})"));
    visit(Sample<Core::CommandIO::CommandInputBase, CommandOutputBase>{
        "GETCONNECTIONSTATUS", R"({"Command":"GETCONNECTIONSTATUS","SessionId":"s-1"})",
        R"({"Errors":[{"ErrorCode":6,"Ids":[]},{"ErrorCode":3,"Ids":["ann"]}]})"});
    visit(Sample<Core::CommandIO::CommandInputBase, CorvaneGetSessionInfoOutput>{
        "GETSESSIONINFO", R"({"Command":"GETSESSIONINFO","SessionId":"s-1"})",
        R"({"Errors":[],"AuthenticatedUserName":"ann","CorvaneLogPath":"C:\\Logs\\corvane.log",)"
        R"("CloudGatewayLogPath":"C:\\Logs\\gateway.log","UserEmail":"ann@example.com",)"
        R"("IsLoggedIn":true,"UserId":"u-1","Version":"3.2.1","Capabilities":["MCAD","PDM"]})"});
    visit(Sample<Core::CommandIO::CommandInputBase, CorvaneGetRootFoldersOutput>{
        "GETCORVANEROOTFOLDERS", R"({"Command":"GETCORVANEROOTFOLDERS","SessionId":"s-1"})",
        R"({"Errors":[],"RootFolders":["C:\\Corvane","D:\\Zweig"]})"});
    visit(Sample<RegisterClientInput, RegisterClientOutput>{
        "REGISTER",
        R"({"ProcessId":4242,"ProcessStartTime":"2024-3-7T09:05:02",)"
        R"("FilePath":"C:\\Program Files\\Arbo","ClientInfo":{"FullName":"Arbo Lite V2024",)"
        R"("Product":"ArboLite"}})",
        R"({"SessionId":"0f8e-77aa"})"});
    // Deregistration reads no answer.
    visit(Sample<DeRegisterClientInput, void>{
        "DEREGISTER", R"({"SessionId":"0f8e-77aa","ProcessId":0,"ProcessStartTime":""})", ""});
}

} // namespace testsupport
