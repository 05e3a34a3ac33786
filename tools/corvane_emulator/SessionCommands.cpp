// The session's own commands: the connection's status, the session information and the
// monitored root folders.
#include "Commands.h"

namespace vanto::emulator {

using namespace command;

namespace {
constexpr const char* Version = "Corvane connector emulator 1.0";
} // namespace

VANTO_EMULATOR_COMMAND(GetConnectionStatus, vanto::protocol::GetConnectionStatusCommand) {
    // Offline answers code 6 before this runs.
}

VANTO_EMULATOR_COMMAND(GetSessionInfo, vanto::protocol::GetSessionInfoCommand) {
    const auto user = store.UserByKey(c.user);
    out.AuthenticatedUserName = T(user->name);
    // The emulator is its own gateway: one log for both.
    out.CorvaneLogPath = T(c.options->dataFolder + "/" + LogFileName);
    out.CloudGatewayLogPath = out.CorvaneLogPath;
    out.UserEmail = T(user->email);
    out.IsLoggedIn = user->signedIn;
    out.UserId = T(user->urn);
    out.Version = Version;
    for (const auto& [name, entry] : *c.commands) {
        out.Capabilities.push_back(T(name));
    }
}

VANTO_EMULATOR_COMMAND(GetRootFolders, vanto::protocol::GetRootFoldersCommand) {
    for (const std::string& folder : store.RootFolders()) {
        out.RootFolders.push_back(T(folder));
    }
}

} // namespace vanto::emulator
