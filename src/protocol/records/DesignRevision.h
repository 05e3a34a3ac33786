// Design revisions with their datasets and locks.
#pragma once

#include "protocol/records/Containers.h"
#include "protocol/records/Identity.h"

namespace Corvane::DataTypes {

class CorvaneLockInfo : public Core::AllocatableObject {
public:
    VANTO_JSON_READER(CorvaneLockInfo)

    Core::TevString DesignIdentifier; // the identifier's value, not a record
    Core::TevString LockedBy;
    Core::TevString LockedAt;    // the connector's time stamp, unparsed
    Core::TevString LockExpires; // likewise
    Core::TevString LockedByUrn;
    std::int32_t ErrorCode = 0; // return code for this identifier alone

    VANTO_JSON_FIELDS(CorvaneLockInfo, (),
                      (DesignIdentifier, LockedBy, LockedAt, LockExpires, LockedByUrn, ErrorCode))
};

class CorvaneDataset : public Core::AllocatableObject {
public:
    VANTO_JSON_READER(CorvaneDataset)

    Core::TevString CreationDate;
    Core::TevString Id;
    Core::TevString LastModifiedDate;
    Core::TevString Name;
    Core::TevString ContentType;
    Core::TevString OwnerId;
    Core::DynamicArray<Core::UniquePtr<CorvaneProperty>> Properties;
    Core::DynamicArray<Core::UniquePtr<CorvaneProperty>> AdhocProperties;
    Core::TevString Urn;
    Core::TevString VersionId;
    bool IsRelated = false;
    Core::TevString Checksum;
    std::int32_t FileSize = 0; // the connector's 32-bit long
    Core::TevString LastModifiedBy;
    Core::TevString CreatedBy;
    Core::TevString DatasetType;
    Core::TevString FileName;
    Core::TevString Domain;

    VANTO_JSON_FIELDS(CorvaneDataset, (),
                      (CreationDate, Id, LastModifiedDate, Name, ContentType, OwnerId, Properties,
                       AdhocProperties, Urn, VersionId, IsRelated, Checksum, FileSize,
                       LastModifiedBy, CreatedBy, DatasetType, FileName, Domain))
};

class CorvaneDesignRevision : public Core::AllocatableObject {
public:
    VANTO_JSON_READER(CorvaneDesignRevision)

    Core::TevString CreationDate;
    Core::TevString Id;
    Core::TevString LastModifiedDate;
    Core::TevString Name;
    Core::TevString OwnerId;
    Core::DynamicArray<Core::UniquePtr<CorvaneProperty>> Properties;
    Core::TevString Urn;
    Core::DynamicArray<Core::UniquePtr<CorvaneDataset>> Datasets;
    Core::UniquePtr<CorvaneLockInfo> LockInfo; // empty when the revision is not locked

    VANTO_JSON_FIELDS(CorvaneDesignRevision, (),
                      (CreationDate, Id, LastModifiedDate, Name, OwnerId, Properties, Urn, Datasets,
                       LockInfo))
};

class CorvaneContextToDesignRevisions : public Core::AllocatableObject {
public:
    VANTO_JSON_READER(CorvaneContextToDesignRevisions)

    // The key is singular but holds a list.
    Core::DynamicArray<Core::UniquePtr<CorvaneDesignRevision>> DesignRevision;
    Core::UniquePtr<CorvaneContextInformation> ContextInformation;

    VANTO_JSON_FIELDS(CorvaneContextToDesignRevisions, (), (DesignRevision, ContextInformation))
};

} // namespace Corvane::DataTypes
