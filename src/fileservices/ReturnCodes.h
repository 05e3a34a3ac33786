// The connector's return codes: the ones the methods act on by number, the other enumerated
// values they send, and the message each code is reported with.
#pragma once

#include <cstdint>

namespace vanto::fileservices {

// Return codes ("ErrorCode" of an error entry) that methods act on.
enum ReturnCode : std::int32_t {
    ReturnCodeCommandNotSupported = 4,
    ReturnCodeObjectNotFoundInModel = 8,
    ReturnCodeObjectLocked = 13,
};

// "IdentifierType": how a design identifier names its document. The methods always name
// documents by their local file path.
inline constexpr std::int32_t IdentifierTypeFilePath = 0;

// Object types of the properties command: the groups a file's properties come in.
enum ObjectType : std::int32_t {
    ObjectTypeComponent = 0,
    ObjectTypeLock = 1,     // lock information ("LockedBy")
    ObjectTypeDocument = 2, // the document version ("consistencyStamp", "DocumentId")
};

// What a caller's status argument is set to when the connector does not support the command.
inline constexpr std::int32_t StatusCommandNotSupported = 3;

// The message LogErrors writes for `code`, or null for a code that has none (15 among them).
const wchar_t* ReturnCodeMessage(std::uint32_t code) noexcept;

} // namespace vanto::fileservices
