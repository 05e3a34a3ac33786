// Commands on design revisions and assembly structure.
#pragma once

#include "protocol/Envelope.h"
#include "protocol/records/DesignRevision.h"
#include "protocol/records/Numbering.h"
#include "protocol/records/Relations.h"
#include "protocol/records/Search.h"

namespace Corvane::CommandIO::DataManagement::MCAD {

// Each input names the output its answer is read into.
class CorvaneLockDesignRevisionsOutput;
class CorvaneUnLockDesignRevisionsOutput;
class CorvaneQueryDesignRevisionsOutput;
class CorvaneQueryPrimaryObjectsOutput;
class CorvaneGetNextIdOutput;
class CorvaneGetNextRevisionIdOutput;
class CorvaneAddChildrenOutput;
class CorvaneGetChildrenOutput;
class CorvaneRemoveChildrenOutput;

using Core::CommandIO::VersionedCommandInputBase;

class CorvaneLockDesignRevisionsInput : public VersionedCommandInputBase {
public:
    static constexpr const char* CommandName = "LOCKDESIGNREVISIONS";
    CorvaneLockDesignRevisionsInput() : VersionedCommandInputBase(CommandName) {}
    VANTO_JSON_WRITER(CorvaneLockDesignRevisionsInput)
    using Output = CorvaneLockDesignRevisionsOutput;

    Core::DynamicArray<Core::UniquePtr<DataTypes::CorvaneDesignIdentifier>> DesignIdentifiers;
    std::int32_t TimeToLive = 0;

    VANTO_JSON_FIELDS(CorvaneLockDesignRevisionsInput, (VersionedCommandInputBase),
                      (DesignIdentifiers, TimeToLive))
};

class CorvaneLockDesignRevisionsOutput : public CommandOutputBase {
public:
    VANTO_JSON_READER(CorvaneLockDesignRevisionsOutput)

    Core::DynamicArray<Core::UniquePtr<DataTypes::CorvaneLockInfo>> Status;

    VANTO_JSON_FIELDS(CorvaneLockDesignRevisionsOutput, (CommandOutputBase), (Status))
};

class CorvaneUnLockDesignRevisionsInput : public VersionedCommandInputBase {
public:
    static constexpr const char* CommandName = "UNLOCKDESIGNREVISIONS";
    CorvaneUnLockDesignRevisionsInput() : VersionedCommandInputBase(CommandName) {}
    VANTO_JSON_WRITER(CorvaneUnLockDesignRevisionsInput)
    using Output = CorvaneUnLockDesignRevisionsOutput;

    Core::DynamicArray<Core::UniquePtr<DataTypes::CorvaneDesignIdentifier>> DesignIdentifiers;

    VANTO_JSON_FIELDS(CorvaneUnLockDesignRevisionsInput, (VersionedCommandInputBase),
                      (DesignIdentifiers))
};

class CorvaneUnLockDesignRevisionsOutput : public CommandOutputBase {
public:
    VANTO_JSON_READER(CorvaneUnLockDesignRevisionsOutput)

    Core::DynamicArray<Core::UniquePtr<DataTypes::CorvaneLockInfo>> Status;

    VANTO_JSON_FIELDS(CorvaneUnLockDesignRevisionsOutput, (CommandOutputBase), (Status))
};

class CorvaneQueryDesignRevisionsInput : public VersionedCommandInputBase {
public:
    static constexpr const char* CommandName = "QUERYDESIGNREVISIONS";
    CorvaneQueryDesignRevisionsInput() : VersionedCommandInputBase(CommandName) {}
    VANTO_JSON_WRITER(CorvaneQueryDesignRevisionsInput)
    using Output = CorvaneQueryDesignRevisionsOutput;

    Core::UniquePtr<DataTypes::Search::CorvaneSearchCriteria> AttachmentCriteria;
    Core::UniquePtr<DataTypes::Search::CorvaneSearchCriteria> RevisionCriteria;
    Core::UniquePtr<DataTypes::Search::CorvaneSearchOptions> Options;
    std::int32_t Operator = 0; // how the two criteria combine
    Core::UniquePtr<DataTypes::CorvaneContextInformation> Context;

    VANTO_JSON_FIELDS(CorvaneQueryDesignRevisionsInput, (VersionedCommandInputBase),
                      (AttachmentCriteria, RevisionCriteria, Options, Operator, Context))
};

class CorvaneQueryDesignRevisionsOutput : public CommandOutputBase {
public:
    VANTO_JSON_READER(CorvaneQueryDesignRevisionsOutput)

    Core::DynamicArray<Core::UniquePtr<DataTypes::CorvaneContextToDesignRevisions>>
        DesignRevisionInfo;

    VANTO_JSON_FIELDS(CorvaneQueryDesignRevisionsOutput, (CommandOutputBase), (DesignRevisionInfo))
};

class CorvaneQueryPrimaryObjectsInput : public VersionedCommandInputBase {
public:
    static constexpr const char* CommandName = "QUERYPRIMARYOBJECTS";
    CorvaneQueryPrimaryObjectsInput() : VersionedCommandInputBase(CommandName) {}
    VANTO_JSON_WRITER(CorvaneQueryPrimaryObjectsInput)
    using Output = CorvaneQueryPrimaryObjectsOutput;

    Core::TevString Identifier;
    std::int32_t IdentifierType = 0;
    Core::DynamicArray<Core::TevString> RelationTypes;

    VANTO_JSON_FIELDS(CorvaneQueryPrimaryObjectsInput, (VersionedCommandInputBase),
                      (Identifier, IdentifierType, RelationTypes))
};

// Logged by its caller, so it writes too.
class CorvaneQueryPrimaryObjectsOutput : public CommandOutputBase {
public:
    VANTO_JSON_READER(CorvaneQueryPrimaryObjectsOutput)
    VANTO_JSON_WRITER(CorvaneQueryPrimaryObjectsOutput)

    Core::DynamicArray<Core::UniquePtr<DataTypes::CorvaneQueryRelationInfo>> QueryRelationInfos;

    VANTO_JSON_FIELDS(CorvaneQueryPrimaryObjectsOutput, (CommandOutputBase), (QueryRelationInfos))
};

class CorvaneGetNextIdInput : public VersionedCommandInputBase {
public:
    static constexpr const char* CommandName = "GETNEXTID";
    CorvaneGetNextIdInput() : VersionedCommandInputBase(CommandName) {}
    VANTO_JSON_WRITER(CorvaneGetNextIdInput)
    using Output = CorvaneGetNextIdOutput;

    Core::TevString FileExtension;
    std::int32_t NumberOfIds = 0;
    bool GetInitialRevId = false;
    Core::DynamicArray<Core::TevString> Properties;
    Core::TevString DirectoryPath;

    VANTO_JSON_FIELDS(CorvaneGetNextIdInput, (VersionedCommandInputBase),
                      (FileExtension, NumberOfIds, GetInitialRevId, Properties, DirectoryPath))
};

class CorvaneGetNextIdOutput : public CommandOutputBase {
public:
    VANTO_JSON_READER(CorvaneGetNextIdOutput)

    Core::DynamicArray<Core::UniquePtr<DataTypes::CorvaneGetNextIdInfo>> NextIdInfo;

    VANTO_JSON_FIELDS(CorvaneGetNextIdOutput, (CommandOutputBase), (NextIdInfo))
};

class CorvaneGetNextRevisionIdInput : public VersionedCommandInputBase {
public:
    static constexpr const char* CommandName = "GETNEXTREVISIONID";
    CorvaneGetNextRevisionIdInput() : VersionedCommandInputBase(CommandName) {}
    VANTO_JSON_WRITER(CorvaneGetNextRevisionIdInput)
    using Output = CorvaneGetNextRevisionIdOutput;

    Core::DynamicArray<Core::UniquePtr<DataTypes::CorvaneDesignIdentifier>>
        DesignRevisionIdentifiers;
    Core::DynamicArray<Core::TevString> Properties;

    VANTO_JSON_FIELDS(CorvaneGetNextRevisionIdInput, (VersionedCommandInputBase),
                      (DesignRevisionIdentifiers, Properties))
};

class CorvaneGetNextRevisionIdOutput : public CommandOutputBase {
public:
    VANTO_JSON_READER(CorvaneGetNextRevisionIdOutput)

    Core::DynamicArray<Core::UniquePtr<DataTypes::CorvaneGetNextRevisionIdInfo>> NextRevisionIdInfo;

    VANTO_JSON_FIELDS(CorvaneGetNextRevisionIdOutput, (CommandOutputBase), (NextRevisionIdInfo))
};

// The input's list key is plural, the output's ("ParentChildRelationInfo") singular.
class CorvaneAddChildrenInput : public VersionedCommandInputBase {
public:
    static constexpr const char* CommandName = "ADDCHILDREN";
    CorvaneAddChildrenInput() : VersionedCommandInputBase(CommandName) {}
    VANTO_JSON_WRITER(CorvaneAddChildrenInput)
    using Output = CorvaneAddChildrenOutput;

    Core::DynamicArray<Core::UniquePtr<DataTypes::CorvaneAddChildInputInfo>>
        ParentChildRelationInfos;

    VANTO_JSON_FIELDS(CorvaneAddChildrenInput, (VersionedCommandInputBase),
                      (ParentChildRelationInfos))
};

class CorvaneAddChildrenOutput : public CommandOutputBase {
public:
    VANTO_JSON_READER(CorvaneAddChildrenOutput)
    VANTO_JSON_WRITER(CorvaneAddChildrenOutput)

    Core::DynamicArray<Core::UniquePtr<DataTypes::CorvaneParentToRelationsInfo>>
        ParentChildRelationInfo;

    VANTO_JSON_FIELDS(CorvaneAddChildrenOutput, (CommandOutputBase), (ParentChildRelationInfo))
};

class CorvaneGetChildrenInput : public VersionedCommandInputBase {
public:
    static constexpr const char* CommandName = "GETCHILDREN";
    CorvaneGetChildrenInput() : VersionedCommandInputBase(CommandName) {}
    VANTO_JSON_WRITER(CorvaneGetChildrenInput)
    using Output = CorvaneGetChildrenOutput;

    Core::TevString Identifier;
    std::int32_t IdentifierType = 0;

    VANTO_JSON_FIELDS(CorvaneGetChildrenInput, (VersionedCommandInputBase),
                      (Identifier, IdentifierType))
};

class CorvaneGetChildrenOutput : public CommandOutputBase {
public:
    VANTO_JSON_READER(CorvaneGetChildrenOutput)
    VANTO_JSON_WRITER(CorvaneGetChildrenOutput)

    Core::DynamicArray<Core::UniquePtr<DataTypes::CorvaneParentToRelationsInfo>>
        ParentChildRelationInfo;

    VANTO_JSON_FIELDS(CorvaneGetChildrenOutput, (CommandOutputBase), (ParentChildRelationInfo))
};

class CorvaneRemoveChildrenInput : public VersionedCommandInputBase {
public:
    static constexpr const char* CommandName = "REMOVECHILDREN";
    CorvaneRemoveChildrenInput() : VersionedCommandInputBase(CommandName) {}
    VANTO_JSON_WRITER(CorvaneRemoveChildrenInput)
    using Output = CorvaneRemoveChildrenOutput;

    Core::DynamicArray<Core::TevString> RelationURNs;

    VANTO_JSON_FIELDS(CorvaneRemoveChildrenInput, (VersionedCommandInputBase), (RelationURNs))
};

// Only "Errors"; other keys of the answer are ignored.
class CorvaneRemoveChildrenOutput : public CommandOutputBase {
public:
    VANTO_JSON_READER(CorvaneRemoveChildrenOutput)
    VANTO_JSON_WRITER(CorvaneRemoveChildrenOutput)

    VANTO_JSON_FIELDS(CorvaneRemoveChildrenOutput, (CommandOutputBase), ())
};

} // namespace Corvane::CommandIO::DataManagement::MCAD
