// The envelope every command shares: the input bases and the output base with its errors.
#pragma once

#include "protocol/RecordIO.h"

namespace Core::CommandIO {

// Sent as it is by the three session commands; JSON with "Command" and "SessionId" only.
class CommandInputBase : public Core::AllocatableObject {
public:
    explicit CommandInputBase(const char* command = "") : Command(command) {}
    VANTO_JSON_WRITER(CommandInputBase)

    Core::TevString Command;
    Core::TevString SessionId; // filled by the caller just before sending

    VANTO_JSON_FIELDS(CommandInputBase, (), (Command, SessionId))
};

// The base of every command input of the catalogue; "Version" follows the two keys above.
class VersionedCommandInputBase : public CommandInputBase {
public:
    explicit VersionedCommandInputBase(const char* command = "") : CommandInputBase(command) {}
    VANTO_JSON_WRITER(VersionedCommandInputBase)

    std::int32_t Version = 1; // the only version there is

    VANTO_JSON_FIELDS(VersionedCommandInputBase, (CommandInputBase), (Version))
};

} // namespace Core::CommandIO

namespace Corvane::Error {

// One connector error: its return code and the objects it concerns.
class ErrorInfo : public Core::AllocatableObject {
public:
    VANTO_JSON_READER(ErrorInfo)
    VANTO_JSON_WRITER(ErrorInfo)

    std::int32_t ErrorCode = 0;
    Core::DynamicArray<Core::TevString> Ids;

    VANTO_JSON_FIELDS(ErrorInfo, (), (ErrorCode, Ids))
};

} // namespace Corvane::Error

namespace Corvane::CommandIO {

// The base of every command output; no errors means success. Also the whole answer of
// "GETCONNECTIONSTATUS". It has no ToJson of its own: every output would inherit it and write
// "Errors" alone. The outputs that callers log state their own writer, which writes "Errors" first.
class CommandOutputBase : public Core::AllocatableObject {
public:
    VANTO_JSON_READER(CommandOutputBase)

    Core::DynamicArray<Core::UniquePtr<Corvane::Error::ErrorInfo>> Errors;

    VANTO_JSON_FIELDS(CommandOutputBase, (), (Errors))
};

} // namespace Corvane::CommandIO
