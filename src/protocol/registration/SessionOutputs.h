// Answers read by the session service, and the session commands: "GETCONNECTIONSTATUS",
// "GETSESSIONINFO" and "GETCORVANEROOTFOLDERS", all sent with the bare CommandInputBase.
#pragma once

#include "protocol/Envelope.h"

namespace Corvane::CommandIO::Generic {

class CorvaneGetSessionInfoOutput : public CommandOutputBase {
public:
    VANTO_JSON_READER(CorvaneGetSessionInfoOutput)

    Core::TevString AuthenticatedUserName;
    Core::TevString CorvaneLogPath;
    Core::TevString CloudGatewayLogPath;
    Core::TevString UserEmail;
    bool IsLoggedIn = false;
    Core::TevString UserId;
    Core::TevString Version; // the connector's version text, not the envelope's number
    Core::DynamicArray<Core::TevString> Capabilities;

    VANTO_JSON_FIELDS(CorvaneGetSessionInfoOutput, (CommandOutputBase),
                      (AuthenticatedUserName, CorvaneLogPath, CloudGatewayLogPath, UserEmail,
                       IsLoggedIn, UserId, Version, Capabilities))
};

} // namespace Corvane::CommandIO::Generic

namespace Corvane::CommandIO::DataManagement {

class CorvaneGetRootFoldersOutput : public CommandOutputBase {
public:
    VANTO_JSON_READER(CorvaneGetRootFoldersOutput)

    Core::DynamicArray<Core::TevString> RootFolders;

    VANTO_JSON_FIELDS(CorvaneGetRootFoldersOutput, (CommandOutputBase), (RootFolders))
};

} // namespace Corvane::CommandIO::DataManagement

namespace vanto::protocol {

// The session commands go out as the bare envelope (CommandInputBase); each names its command and
// the output its answer is read into, as the inputs of the catalogue do.
struct GetConnectionStatusCommand {
    static constexpr const char* CommandName = "GETCONNECTIONSTATUS";
    using Output = Corvane::CommandIO::CommandOutputBase;
};
struct GetSessionInfoCommand {
    static constexpr const char* CommandName = "GETSESSIONINFO";
    using Output = Corvane::CommandIO::Generic::CorvaneGetSessionInfoOutput;
};
struct GetRootFoldersCommand {
    static constexpr const char* CommandName = "GETCORVANEROOTFOLDERS";
    using Output = Corvane::CommandIO::DataManagement::CorvaneGetRootFoldersOutput;
};

} // namespace vanto::protocol
