// What every command of the emulator is made of: the answer's error list, the helpers that fill
// the records answers share, the commands themselves (one file per group, as the component's file
// services are grouped) and the table row a command's record types make.
#pragma once

#include "Handler.h"

#include "protocol/Catalogue.h"
#include "protocol/Numbers.h"

#include <stdexcept>
#include <type_traits>
#include <utility>
#include <vector>

namespace vanto::emulator {

namespace command {
using namespace Corvane::CommandIO;
using namespace Corvane::CommandIO::DataManagement;
using namespace Corvane::CommandIO::DataManagement::MCAD;
using namespace Corvane::CommandIO::Generic;
using namespace Corvane::DataTypes;
} // namespace command

using Context = Handler::Context;
namespace ReturnCode = protocol::ReturnCode;
namespace IdentifierType = protocol::IdentifierType;
namespace ObjectType = protocol::ObjectType;
namespace Permission = protocol::Permission;

// The code of a lock info that reports no error.
inline constexpr std::int32_t NoError = 0;

template <class R> R& Append(Core::DynamicArray<Core::UniquePtr<R>>& list) {
    list.push_back(Core::UniquePtr<R>(new R()));
    return *list.back();
}

template <class R> R& Set(Core::UniquePtr<R>& member) {
    member.reset(new R());
    return *member;
}

inline Core::TevString T(const std::string& text) {
    return Core::TevString(text);
}

// Errors of one answer, one entry per code with every object it concerns, in order of first
// appearance.
class ErrorList {
public:
    void Add(std::int32_t code, std::string_view id);
    void AddWithoutId(std::int32_t code) { entries_.push_back({code, {}}); }
    template <class Out> void WriteTo(Out& out) const {
        for (const auto& [code, ids] : entries_) {
            Corvane::Error::ErrorInfo& error = Append(out.Errors);
            error.ErrorCode = code;
            for (const std::string& id : ids) {
                error.Ids.push_back(T(id));
            }
        }
    }

private:
    std::vector<std::pair<std::int32_t, std::vector<std::string>>> entries_;
};

void FillFileInfo(command::CorvaneFileInformationObject& info, const Document& d);
void FillContext(command::CorvaneContextInformation& context, Store& store, const Document& d);
void FillLock(command::CorvaneLockInfo& info, const std::string& identifier, const Document& d,
              std::int32_t code);

// The record a command's request is read into: its input, or for the session's own commands the
// bare envelope.
template <class Command>
using InputOf = std::conditional_t<std::is_base_of_v<Core::CommandIO::CommandInputBase, Command>,
                                   Command, Core::CommandIO::CommandInputBase>;
template <class Command>
using CommandFunction = void (*)(Store&, Context&, const InputOf<Command>&,
                                 typename Command::Output&, ErrorList&);

inline constexpr bool NeedsCloud = true; // answers code 6 while offline
inline constexpr bool Local = false;     // answered from what this desktop knows

// A row of the command table: the name, the input's schema and the answer's record all come from
// the command's types.
template <class Command>
std::pair<const char*, Handler::Command> Entry(bool needsCloud, CommandFunction<Command> function) {
    using In = InputOf<Command>;
    using Out = typename Command::Output;
    Handler::Runner run = [function](Context& c, std::string_view text) {
        In in;
        vanto::protocol::ReadRecord(&in, vanto::protocol::SchemaOf<In>(), text);
        Out out;
        ErrorList errors;
        function(*c.store, c, in, out, errors);
        errors.WriteTo(out);
        std::string answer =
            vanto::protocol::WriteRecord(&out, vanto::protocol::SchemaOf<Out>()).str();
        if (answer.empty()) {
            throw std::runtime_error("the answer could not be written");
        }
        return answer;
    };
    return {Command::CommandName, {&vanto::protocol::SchemaOf<In>(), needsCloud, std::move(run)}};
}

// Declares a command's function by its record type.
#define VANTO_EMULATOR_COMMAND(Function, Command)                                                  \
    void Function([[maybe_unused]] Store& store, [[maybe_unused]] Context& c,                      \
                  [[maybe_unused]] const InputOf<Command>& in,                                     \
                  [[maybe_unused]] Command::Output& out, [[maybe_unused]] ErrorList& errors)

// CheckOutCheckIn.cpp
VANTO_EMULATOR_COMMAND(LockDesignRevisions, command::CorvaneLockDesignRevisionsInput);
VANTO_EMULATOR_COMMAND(UnlockDesignRevisions, command::CorvaneUnLockDesignRevisionsInput);
// VersionsRevisions.cpp
VANTO_EMULATOR_COMMAND(QueryDesignRevisions, command::CorvaneQueryDesignRevisionsInput);
VANTO_EMULATOR_COMMAND(CheckForNewerVersion, command::CorvaneCheckNewerVersionOnCloudInput);
// StructureWhereUsed.cpp
VANTO_EMULATOR_COMMAND(QueryPrimaryObjects, command::CorvaneQueryPrimaryObjectsInput);
VANTO_EMULATOR_COMMAND(AddChildren, command::CorvaneAddChildrenInput);
VANTO_EMULATOR_COMMAND(GetChildren, command::CorvaneGetChildrenInput);
VANTO_EMULATOR_COMMAND(RemoveChildren, command::CorvaneRemoveChildrenInput);
// ContainersNumbering.cpp
VANTO_EMULATOR_COMMAND(GetNextId, command::CorvaneGetNextIdInput);
VANTO_EMULATOR_COMMAND(GetNextRevisionId, command::CorvaneGetNextRevisionIdInput);
VANTO_EMULATOR_COMMAND(GetAvailableContainers, command::CorvaneGetAvailableContainersInput);
VANTO_EMULATOR_COMMAND(AddProjectToSync, command::CorvaneAddProjectToSyncInput);
VANTO_EMULATOR_COMMAND(GetAccessPermissions, command::CorvaneGetAccessPermissionsInput);
// IdentityContext.cpp
VANTO_EMULATOR_COMMAND(GetFileContextInfo, command::CorvaneGetFileContextInformationInput);
VANTO_EMULATOR_COMMAND(GetFilePathByUid, command::CorvaneGetFilePathByUidInput);
VANTO_EMULATOR_COMMAND(IsPathMonitored, command::CorvaneIsPathMonitoredInput);
// PropertiesDataObjects.cpp
VANTO_EMULATOR_COMMAND(GetProperties, command::CorvaneGetPropertiesInput);
VANTO_EMULATOR_COMMAND(SetDataObject, command::CorvaneSetDataObjectInput);
// SessionCommands.cpp
VANTO_EMULATOR_COMMAND(GetConnectionStatus, vanto::protocol::GetConnectionStatusCommand);
VANTO_EMULATOR_COMMAND(GetSessionInfo, vanto::protocol::GetSessionInfoCommand);
VANTO_EMULATOR_COMMAND(GetRootFolders, vanto::protocol::GetRootFoldersCommand);

} // namespace vanto::emulator
