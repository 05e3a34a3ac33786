// Containers, permissions and numbering: how their answers land in the caller's data.
#pragma once

#include "VANTO.h"
#include "protocol/commands/DataManagementCommands.h"
#include "protocol/commands/MCADCommands.h"

namespace vanto::fileservices {

using Corvane::CommandIO::DataManagement::CorvaneGetAccessPermissionsOutput;
using Corvane::CommandIO::DataManagement::CorvaneGetAvailableContainersOutput;
using Corvane::CommandIO::DataManagement::MCAD::CorvaneGetNextIdOutput;
using Corvane::CommandIO::DataManagement::MCAD::CorvaneGetNextRevisionIdOutput;

// Appends one entry per container of the answer; type and ownership are not handed back.
void AppendContainers(const CorvaneGetAvailableContainersOutput& output, ContainerList& containers);

// Inserts (path, permission) per answer entry; a path already in the map keeps its value.
void AddPermissions(const CorvaneGetAccessPermissionsOutput& output,
                    AccessPermissionMap& permissions);

// Appends (number, revision id) per answer entry.
void AppendItemIds(const CorvaneGetNextIdOutput& output, ItemIdRevisionList& ids);

// The first revision id of the answer into `revisionId`; an empty answer leaves it as it is.
void TakeFirstRevisionId(const CorvaneGetNextRevisionIdOutput& output, GUserText& revisionId);

} // namespace vanto::fileservices
