// Container and context records. The two container records differ on purpose: a container's
// type is an integer and its URN key "ContainerUrn"; a context's type is a text and its key
// "ContainerURN".
#pragma once

#include "protocol/records/Identity.h"

namespace Corvane::DataTypes {

class CorvaneCollaborationSpace : public Core::AllocatableObject {
public:
    VANTO_JSON_READER(CorvaneCollaborationSpace)

    Core::TevString CollaborationSpaceId;

    VANTO_JSON_FIELDS(CorvaneCollaborationSpace, (), (CollaborationSpaceId))
};

class CorvaneContainerInformation : public Core::AllocatableObject {
public:
    VANTO_JSON_READER(CorvaneContainerInformation)

    Core::TevString LocalFilePath;
    std::int32_t ContainerType = 0;
    Core::TevString ContainerName;
    Core::TevString ContainerId;
    Core::TevString ContainerUrn;
    std::int32_t ContainerOwnershipType = 0;
    Core::UniquePtr<CorvaneCollaborationSpace> CollaborationSpace;

    VANTO_JSON_FIELDS(CorvaneContainerInformation, (),
                      (LocalFilePath, ContainerType, ContainerName, ContainerId, ContainerUrn,
                       ContainerOwnershipType, CollaborationSpace))
};

class CorvaneContextInformation : public Core::AllocatableObject {
public:
    VANTO_JSON_READER(CorvaneContextInformation)
    VANTO_JSON_WRITER(CorvaneContextInformation)

    Core::TevString CollaborationSpaceId;
    Core::TevString ContainerType;
    Core::TevString ContainerId;
    Core::TevString ContainerURN;

    VANTO_JSON_FIELDS(CorvaneContextInformation, (),
                      (CollaborationSpaceId, ContainerType, ContainerId, ContainerURN))
};

class CorvaneFileContextInformation : public Core::AllocatableObject {
public:
    VANTO_JSON_READER(CorvaneFileContextInformation)

    // The key is singular but holds a list.
    Core::DynamicArray<Core::UniquePtr<CorvaneFileInformationObject>> FileInformation;
    Core::UniquePtr<CorvaneContextInformation> ContextInformation;

    VANTO_JSON_FIELDS(CorvaneFileContextInformation, (), (FileInformation, ContextInformation))
};

class CorvaneFileUidAndContextInformationPair : public Core::AllocatableObject {
public:
    VANTO_JSON_WRITER(CorvaneFileUidAndContextInformationPair)

    Core::TevString FileUid;
    Core::UniquePtr<CorvaneContextInformation> ContextInformation;

    VANTO_JSON_FIELDS(CorvaneFileUidAndContextInformationPair, (), (FileUid, ContextInformation))
};

} // namespace Corvane::DataTypes
