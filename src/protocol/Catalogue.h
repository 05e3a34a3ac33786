// Every command the component sends through "execute", in one list. Whatever must exist once per
// command (a sample exchange, a row of the slot table, a handler in the emulator) is checked
// against this list, so that a new command cannot be half added.
#pragma once

#include "protocol/commands/DataManagementCommands.h"
#include "protocol/commands/GenericCommands.h"
#include "protocol/commands/MCADCommands.h"
#include "protocol/registration/SessionOutputs.h"

#include <type_traits>

namespace vanto::protocol {

template <class... Commands> struct CommandList {};

namespace catalogue {
using namespace Corvane::CommandIO::DataManagement;
using namespace Corvane::CommandIO::DataManagement::MCAD;
using namespace Corvane::CommandIO::Generic;

using All = CommandList<
    // Check-out, check-in and revisions.
    CorvaneLockDesignRevisionsInput, CorvaneUnLockDesignRevisionsInput,
    CorvaneQueryDesignRevisionsInput,
    // Structure and where-used.
    CorvaneQueryPrimaryObjectsInput, CorvaneAddChildrenInput, CorvaneGetChildrenInput,
    CorvaneRemoveChildrenInput,
    // Numbering.
    CorvaneGetNextIdInput, CorvaneGetNextRevisionIdInput,
    // Files, containers, properties and permissions.
    CorvaneGetFileContextInformationInput, CorvaneGetFilePathByUidInput,
    CorvaneCheckNewerVersionOnCloudInput, CorvaneGetPropertiesInput,
    CorvaneGetAvailableContainersInput, CorvaneAddProjectToSyncInput,
    CorvaneGetAccessPermissionsInput, CorvaneIsPathMonitoredInput, CorvaneSetDataObjectInput,
    // The session's own.
    GetConnectionStatusCommand, GetSessionInfoCommand, GetRootFoldersCommand>;
} // namespace catalogue

using Catalogue = catalogue::All;

template <class List, class Command> struct Lists;
template <class... Commands, class Command>
struct Lists<CommandList<Commands...>, Command>
    : std::bool_constant<(std::is_same_v<Commands, Command> || ...)> {};

// Whether the component may send `Command`: only what the catalogue lists is sent, so that what is
// checked against the catalogue is everything that goes out. (A test's own input may say so by
// specialising this.)
template <class Command> struct IsCatalogued : Lists<Catalogue, Command> {};

// Calls `visit` with a CommandTag of each command of the list, in order.
template <class Command> struct CommandTag { using Type = Command; };
template <class... Commands, class Visit>
void ForEachCommand(CommandList<Commands...>, Visit&& visit) {
    (visit(CommandTag<Commands>{}), ...);
}

} // namespace vanto::protocol
