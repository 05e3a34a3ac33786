// Properties and data objects: how a properties answer lands in the caller's list.
#pragma once

#include "VANTO.h"
#include "protocol/commands/DataManagementCommands.h"

namespace vanto::fileservices {

using Corvane::CommandIO::DataManagement::CorvaneGetPropertiesOutput;

// Appends one entry per file of the answer, with every object-type group; a property is kept when
// the filter is empty or holds its name. The answer's paths are taken in the narrow form.
void AppendProperties(const CorvaneGetPropertiesOutput& output, const PropertyNameSet& filter,
                      FilePropertyList& properties);

} // namespace vanto::fileservices
