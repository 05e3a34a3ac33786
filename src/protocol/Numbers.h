// The connector's numbers as they travel in requests and answers: return codes, identifier and
// object and container types, search values, permission levels and the status a caller is given.
// The component, the emulator, the host tool and the tests all name them from here; none spells a
// bare number.
#pragma once

#include <cstdint>

namespace vanto::protocol {

// "ErrorCode" of an error entry. 15 is the connector's too, but it has no name of its own.
namespace ReturnCode {
enum : std::int32_t {
    Fail = 1,
    FunctionalityUnavailable = 2,
    UserNotSignedIn = 3,
    CommandNotSupported = 4,
    NotStarted = 5,
    Offline = 6,
    InvalidInput = 7,
    ObjectNotFoundInModel = 8,
    InvalidObjectType = 9,
    UnableToDetermineFilePath = 10,
    FileDoesNotExist = 11,
    AccessDenied = 12,
    ObjectLocked = 13,
    DesignRevisionNotFoundInCloud = 14,
    ContainerUnsynchronized = 16,
    CollaborationSpaceUnavailable = 17,
    UnsupportedFileType = 18,
    DuplicateFileName = 19,
    DuplicateFileAttachmentName = 20,
    ReferenceExists = 21,
    StatusNotValid = 100,
    PrecedingStatusConstraintNotSatisfied = 101,
    ContainerAlreadySynchronized = 102,
};
} // namespace ReturnCode

// "IdentifierType": how an identifier names its document. The component always sends FilePath.
namespace IdentifierType {
enum : std::int32_t {
    FilePath = 0,
    DocumentId = 1,
    AnyId = 2, // any of the document's URNs or ids
};
} // namespace IdentifierType

// "ObjectType" of the properties command: the groups a file's properties come in.
namespace ObjectType {
enum : std::int32_t {
    Component = 0,
    Lock = 1,     // lock information ("LockedBy")
    Document = 2, // the document version ("consistencyStamp", "DocumentId")
};
} // namespace ObjectType

// "ContainerType" of a container: the kinds a host chooses from.
namespace ContainerType {
enum : std::int32_t {
    Project = 0,
    Library = 2,
};
} // namespace ContainerType

// "ComparisionOp" of a search term and "Operator" of a search definition.
namespace Search {
inline constexpr std::int32_t CompareEquals = 0;
inline constexpr std::int32_t CompareContains = 1;
inline constexpr std::int32_t CompareStartsWith = 2;
inline constexpr std::int32_t AllTerms = 1;
} // namespace Search

// "PropertyType" of a property.
namespace PropertyType {
inline constexpr std::int32_t Text = 0;
} // namespace PropertyType

// "AccessPermission": a file's level of access for the signed-in user.
namespace Permission {
enum : std::int32_t {
    None = 0,
    Read = 1,
    Write = 2,
};
} // namespace Permission

// What a caller's status argument is set to when the connector does not support the command.
namespace CallerStatus {
inline constexpr std::int32_t Unchanged = 0; // what a caller passes in
inline constexpr std::int32_t CommandNotSupported = 3;
} // namespace CallerStatus

} // namespace vanto::protocol
