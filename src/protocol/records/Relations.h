// Relations between documents: children to add, parent-child structure and where-used answers.
// CorvaneChildRelationInfo and CorvaneRelation look alike but are not the same: the first has
// "RelationVersionId" where the second has "RelationConsistencyStamp".
#pragma once

#include "protocol/records/Identity.h"

namespace Corvane::DataTypes {

class CorvaneChildRevisionInfo : public Core::AllocatableObject {
public:
    VANTO_JSON_WRITER(CorvaneChildRevisionInfo)

    Core::TevString Identifier;
    std::int32_t IdentifierType = 0;
    Core::DynamicArray<Core::UniquePtr<CorvaneProperty>> RelationProperties;

    VANTO_JSON_FIELDS(CorvaneChildRevisionInfo, (),
                      (Identifier, IdentifierType, RelationProperties))
};

class CorvaneAddChildInputInfo : public Core::AllocatableObject {
public:
    VANTO_JSON_WRITER(CorvaneAddChildInputInfo)

    Core::TevString ParentIdentifier;
    std::int32_t ParentIdentifierType = 0;
    Core::DynamicArray<Core::UniquePtr<CorvaneChildRevisionInfo>> ChildRevisionInfos;

    VANTO_JSON_FIELDS(CorvaneAddChildInputInfo, (),
                      (ParentIdentifier, ParentIdentifierType, ChildRevisionInfos))
};

class CorvaneChildRelationInfo : public Core::AllocatableObject {
public:
    VANTO_JSON_READER(CorvaneChildRelationInfo)
    VANTO_JSON_WRITER(CorvaneChildRelationInfo)

    Core::UniquePtr<CorvaneFileInformationObject> ChildDocumentInfo;
    Core::TevString RelationId;
    Core::TevString RelationUrn;
    Core::TevString RelationType;
    Core::TevString RelationVersionId;
    Core::DynamicArray<Core::UniquePtr<CorvaneProperty>> RelationProperties;

    VANTO_JSON_FIELDS(CorvaneChildRelationInfo, (),
                      (ChildDocumentInfo, RelationId, RelationUrn, RelationType, RelationVersionId,
                       RelationProperties))
};

class CorvaneParentToRelationsInfo : public Core::AllocatableObject {
public:
    VANTO_JSON_READER(CorvaneParentToRelationsInfo)
    VANTO_JSON_WRITER(CorvaneParentToRelationsInfo)

    Core::UniquePtr<CorvaneFileInformationObject> ParentDocumentInfo;
    Core::DynamicArray<Core::UniquePtr<CorvaneChildRelationInfo>> ChildRelationInfos;

    VANTO_JSON_FIELDS(CorvaneParentToRelationsInfo, (), (ParentDocumentInfo, ChildRelationInfos))
};

class CorvaneRelation : public Core::AllocatableObject {
public:
    VANTO_JSON_READER(CorvaneRelation)
    VANTO_JSON_WRITER(CorvaneRelation)

    Core::UniquePtr<CorvaneFileInformationObject> RelatedDocument;
    Core::TevString RelationId;
    Core::TevString RelationUrn;
    Core::TevString RelationType;
    Core::TevString RelationConsistencyStamp;
    Core::DynamicArray<Core::UniquePtr<CorvaneProperty>> RelationProperties;

    VANTO_JSON_FIELDS(CorvaneRelation, (),
                      (RelatedDocument, RelationId, RelationUrn, RelationType,
                       RelationConsistencyStamp, RelationProperties))
};

class CorvaneQueryRelationInfo : public Core::AllocatableObject {
public:
    VANTO_JSON_READER(CorvaneQueryRelationInfo)
    VANTO_JSON_WRITER(CorvaneQueryRelationInfo)

    Core::UniquePtr<CorvaneFileInformationObject> InputDocument;
    Core::DynamicArray<Core::UniquePtr<CorvaneRelation>> Relations;

    VANTO_JSON_FIELDS(CorvaneQueryRelationInfo, (), (InputDocument, Relations))
};

} // namespace Corvane::DataTypes
