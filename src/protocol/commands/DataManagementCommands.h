// Commands on files, containers, properties and permissions.
#pragma once

#include "protocol/Envelope.h"
#include "protocol/records/Containers.h"
#include "protocol/records/Identity.h"
#include "protocol/records/Pairs.h"

namespace Corvane::CommandIO::DataManagement {

// Each input names the output its answer is read into.
class CorvaneGetFileContextInformationOutput;
class CorvaneGetFilePathByUidOutput;
class CorvaneCheckNewerVersionOnCloudOutput;
class CorvaneGetPropertiesOutput;
class CorvaneGetAvailableContainersOutput;
class CorvaneAddProjectToSyncOutput;
class CorvaneGetAccessPermissionsOutput;
class CorvaneIsPathMonitoredOutput;

using Core::CommandIO::VersionedCommandInputBase;

class CorvaneGetFileContextInformationInput : public VersionedCommandInputBase {
public:
    static constexpr const char* CommandName = "GETFILECONTEXTINFO";
    CorvaneGetFileContextInformationInput() : VersionedCommandInputBase(CommandName) {}
    VANTO_JSON_WRITER(CorvaneGetFileContextInformationInput)
    using Output = CorvaneGetFileContextInformationOutput;

    Core::DynamicArray<Core::TevString> Files; // local file paths

    VANTO_JSON_FIELDS(CorvaneGetFileContextInformationInput, (VersionedCommandInputBase), (Files))
};

class CorvaneGetFileContextInformationOutput : public CommandOutputBase {
public:
    VANTO_JSON_READER(CorvaneGetFileContextInformationOutput)

    Core::DynamicArray<Core::UniquePtr<DataTypes::CorvaneFileContextInformation>>
        FileContextInformation;

    VANTO_JSON_FIELDS(CorvaneGetFileContextInformationOutput, (CommandOutputBase),
                      (FileContextInformation))
};

class CorvaneGetFilePathByUidInput : public VersionedCommandInputBase {
public:
    static constexpr const char* CommandName = "GETFILEPATHBYUID";
    CorvaneGetFilePathByUidInput() : VersionedCommandInputBase(CommandName) {}
    VANTO_JSON_WRITER(CorvaneGetFilePathByUidInput)
    using Output = CorvaneGetFilePathByUidOutput;

    Core::DynamicArray<Core::UniquePtr<DataTypes::CorvaneFileUidAndContextInformationPair>>
        ListOfFileUidAndContextInformation;

    VANTO_JSON_FIELDS(CorvaneGetFilePathByUidInput, (VersionedCommandInputBase),
                      (ListOfFileUidAndContextInformation))
};

class CorvaneGetFilePathByUidOutput : public CommandOutputBase {
public:
    VANTO_JSON_READER(CorvaneGetFilePathByUidOutput)

    Core::DynamicArray<Core::UniquePtr<DataTypes::CorvaneStringToStringListPair>>
        DocumentIdToFilePathMap;

    VANTO_JSON_FIELDS(CorvaneGetFilePathByUidOutput, (CommandOutputBase), (DocumentIdToFilePathMap))
};

// The command literal is "CHECKFORNEWERVERSION" though the classes speak of the cloud.
class CorvaneCheckNewerVersionOnCloudInput : public VersionedCommandInputBase {
public:
    static constexpr const char* CommandName = "CHECKFORNEWERVERSION";
    CorvaneCheckNewerVersionOnCloudInput() : VersionedCommandInputBase(CommandName) {}
    VANTO_JSON_WRITER(CorvaneCheckNewerVersionOnCloudInput)
    using Output = CorvaneCheckNewerVersionOnCloudOutput;

    Core::DynamicArray<Core::TevString> IdentifierToCheckForNewerVersion;
    std::int32_t IdentifierType = 0;

    VANTO_JSON_FIELDS(CorvaneCheckNewerVersionOnCloudInput, (VersionedCommandInputBase),
                      (IdentifierToCheckForNewerVersion, IdentifierType))
};

class CorvaneCheckNewerVersionOnCloudOutput : public CommandOutputBase {
public:
    VANTO_JSON_READER(CorvaneCheckNewerVersionOnCloudOutput)

    Core::DynamicArray<Core::UniquePtr<DataTypes::CorvaneStringToStringPair>>
        IdentifierToNewerVersionId;
    Core::DynamicArray<Core::UniquePtr<DataTypes::CorvaneStringToBoolPair>>
        IdentifierToHasNewerVersionInCloud;

    VANTO_JSON_FIELDS(CorvaneCheckNewerVersionOnCloudOutput, (CommandOutputBase),
                      (IdentifierToNewerVersionId, IdentifierToHasNewerVersionInCloud))
};

class CorvaneGetPropertiesInput : public VersionedCommandInputBase {
public:
    static constexpr const char* CommandName = "GETPROPERTIES";
    CorvaneGetPropertiesInput() : VersionedCommandInputBase(CommandName) {}
    VANTO_JSON_WRITER(CorvaneGetPropertiesInput)
    using Output = CorvaneGetPropertiesOutput;

    Core::DynamicArray<Core::UniquePtr<DataTypes::CorvaneStringToObjectTypesPair>>
        FilePathToObjectTypesArray;

    VANTO_JSON_FIELDS(CorvaneGetPropertiesInput, (VersionedCommandInputBase),
                      (FilePathToObjectTypesArray))
};

class CorvaneGetPropertiesOutput : public CommandOutputBase {
public:
    VANTO_JSON_READER(CorvaneGetPropertiesOutput)

    Core::DynamicArray<Core::UniquePtr<DataTypes::CorvaneFileProperties>> FilePropertiesArray;

    VANTO_JSON_FIELDS(CorvaneGetPropertiesOutput, (CommandOutputBase), (FilePropertiesArray))
};

class CorvaneGetAvailableContainersInput : public VersionedCommandInputBase {
public:
    static constexpr const char* CommandName = "GETAVAILABLECONTAINERS";
    CorvaneGetAvailableContainersInput() : VersionedCommandInputBase(CommandName) {}
    VANTO_JSON_WRITER(CorvaneGetAvailableContainersInput)
    using Output = CorvaneGetAvailableContainersOutput;

    Core::TevString Name;
    Core::DynamicArray<std::int32_t> ContainerType;
    bool ReturnUnsynched = false; // the connector's spelling

    VANTO_JSON_FIELDS(CorvaneGetAvailableContainersInput, (VersionedCommandInputBase),
                      (Name, ContainerType, ReturnUnsynched))
};

class CorvaneGetAvailableContainersOutput : public CommandOutputBase {
public:
    VANTO_JSON_READER(CorvaneGetAvailableContainersOutput)

    Core::DynamicArray<Core::UniquePtr<DataTypes::CorvaneContainerInformation>>
        ContainerInformation;

    VANTO_JSON_FIELDS(CorvaneGetAvailableContainersOutput, (CommandOutputBase),
                      (ContainerInformation))
};

class CorvaneAddProjectToSyncInput : public VersionedCommandInputBase {
public:
    static constexpr const char* CommandName = "ADDPROJECTTOSYNC";
    CorvaneAddProjectToSyncInput() : VersionedCommandInputBase(CommandName) {}
    VANTO_JSON_WRITER(CorvaneAddProjectToSyncInput)
    using Output = CorvaneAddProjectToSyncOutput;

    Core::TevString ProjectURN; // URN in capitals, unlike the records' "Urn"

    VANTO_JSON_FIELDS(CorvaneAddProjectToSyncInput, (VersionedCommandInputBase), (ProjectURN))
};

class CorvaneAddProjectToSyncOutput : public CommandOutputBase {
public:
    VANTO_JSON_READER(CorvaneAddProjectToSyncOutput)

    Core::TevString TaskId;

    VANTO_JSON_FIELDS(CorvaneAddProjectToSyncOutput, (CommandOutputBase), (TaskId))
};

// Same layout as CorvaneIsPathMonitoredInput; only the command differs.
class CorvaneGetAccessPermissionsInput : public VersionedCommandInputBase {
public:
    static constexpr const char* CommandName = "GETACCESSPERMISSIONS";
    CorvaneGetAccessPermissionsInput() : VersionedCommandInputBase(CommandName) {}
    VANTO_JSON_WRITER(CorvaneGetAccessPermissionsInput)
    using Output = CorvaneGetAccessPermissionsOutput;

    Core::DynamicArray<Core::TevString> Paths;

    VANTO_JSON_FIELDS(CorvaneGetAccessPermissionsInput, (VersionedCommandInputBase), (Paths))
};

class CorvaneGetAccessPermissionsOutput : public CommandOutputBase {
public:
    VANTO_JSON_READER(CorvaneGetAccessPermissionsOutput)

    Core::DynamicArray<Core::UniquePtr<DataTypes::CorvaneAccessPermissionsInfo>>
        AccessPermissionsInfo;

    VANTO_JSON_FIELDS(CorvaneGetAccessPermissionsOutput, (CommandOutputBase),
                      (AccessPermissionsInfo))
};

class CorvaneIsPathMonitoredInput : public VersionedCommandInputBase {
public:
    static constexpr const char* CommandName = "ISPATHMONITORED";
    CorvaneIsPathMonitoredInput() : VersionedCommandInputBase(CommandName) {}
    VANTO_JSON_WRITER(CorvaneIsPathMonitoredInput)
    using Output = CorvaneIsPathMonitoredOutput;

    Core::DynamicArray<Core::TevString> Paths;

    VANTO_JSON_FIELDS(CorvaneIsPathMonitoredInput, (VersionedCommandInputBase), (Paths))
};

class CorvaneIsPathMonitoredOutput : public CommandOutputBase {
public:
    VANTO_JSON_READER(CorvaneIsPathMonitoredOutput)

    Core::DynamicArray<Core::UniquePtr<DataTypes::CorvaneStringToBoolPair>>
        PathToIsMonitored; // path, monitored

    VANTO_JSON_FIELDS(CorvaneIsPathMonitoredOutput, (CommandOutputBase), (PathToIsMonitored))
};

} // namespace Corvane::CommandIO::DataManagement
