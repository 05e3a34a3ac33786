// Identity, property and permission records.
#pragma once

#include "protocol/RecordIO.h"

namespace Corvane::DataTypes {

class CorvaneDesignIdentifier : public Core::AllocatableObject {
public:
    VANTO_JSON_WRITER(CorvaneDesignIdentifier)

    Core::TevString Value;           // a file path, id or URN, as IdentifierType says
    std::int32_t IdentifierType = 0; // the connector's enumeration

    VANTO_JSON_FIELDS(CorvaneDesignIdentifier, (), (Value, IdentifierType))
};

class CorvaneProperty : public Core::AllocatableObject {
public:
    VANTO_JSON_READER(CorvaneProperty)
    VANTO_JSON_WRITER(CorvaneProperty)

    Core::TevString Name;
    std::int32_t PropertyType = 0;                      // the connector's enumeration
    Core::DynamicArray<Core::TevString> PropertyValues; // always as texts

    VANTO_JSON_FIELDS(CorvaneProperty, (), (Name, PropertyType, PropertyValues))
};

class CorvaneFileInformationObject : public Core::AllocatableObject {
public:
    VANTO_JSON_READER(CorvaneFileInformationObject)
    VANTO_JSON_WRITER(CorvaneFileInformationObject)

    Core::DynamicArray<Core::TevString> FilePaths; // local paths of the document
    Core::TevString ComponentId;
    Core::TevString ComponentRevisionId;
    Core::TevString DocumentId;
    Core::TevString ComponentUrn;
    Core::TevString ComponentRevisionUrn;
    Core::TevString DocumentUrn;

    VANTO_JSON_FIELDS(CorvaneFileInformationObject, (),
                      (FilePaths, ComponentId, ComponentRevisionId, DocumentId, ComponentUrn,
                       ComponentRevisionUrn, DocumentUrn))
};

class CorvaneObjectTypeToPropertiesPair : public Core::AllocatableObject {
public:
    VANTO_JSON_READER(CorvaneObjectTypeToPropertiesPair)

    std::int32_t ObjectType = 0;
    Core::DynamicArray<Core::UniquePtr<CorvaneProperty>> Properties;

    VANTO_JSON_FIELDS(CorvaneObjectTypeToPropertiesPair, (), (ObjectType, Properties))
};

class CorvaneFileProperties : public Core::AllocatableObject {
public:
    VANTO_JSON_READER(CorvaneFileProperties)

    Core::TevString FilePath;
    Core::DynamicArray<Core::UniquePtr<CorvaneObjectTypeToPropertiesPair>>
        ObjectTypeToPropertiesArray;

    VANTO_JSON_FIELDS(CorvaneFileProperties, (), (FilePath, ObjectTypeToPropertiesArray))
};

class CorvaneAccessPermissionsInfo : public Core::AllocatableObject {
public:
    VANTO_JSON_READER(CorvaneAccessPermissionsInfo)

    Core::TevString Path;
    std::int32_t AccessPermission = 0; // the connector's enumeration
    Core::TevString MoreInfo;

    VANTO_JSON_FIELDS(CorvaneAccessPermissionsInfo, (), (Path, AccessPermission, MoreInfo))
};

} // namespace Corvane::DataTypes
