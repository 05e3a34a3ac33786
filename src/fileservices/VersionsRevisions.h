// Versions and revisions: how the newer-version and design-revision answers are read.
#pragma once

#include "VANTO.h"
#include "protocol/commands/DataManagementCommands.h"
#include "protocol/commands/MCADCommands.h"

namespace vanto::fileservices {

using Corvane::CommandIO::DataManagement::CorvaneCheckNewerVersionOnCloudOutput;
using Corvane::CommandIO::DataManagement::MCAD::CorvaneQueryDesignRevisionsInput;
using Corvane::CommandIO::DataManagement::MCAD::CorvaneQueryDesignRevisionsOutput;

// Whether the cloud holds a newer version of one of the stamped documents: for each answer pair
// the first document whose id it names decides, by comparing the newer version id with the
// document's stamp; the last deciding pair wins, and false when none decides.
bool NewerVersionFound(const CorvaneCheckNewerVersionOnCloudOutput& output,
                       const DocumentStampMap& stamps);

// The query for design revisions of that name: one page of at most 50, in project context.
CorvaneQueryDesignRevisionsInput DesignRevisionQuery(const GUserText& designName);

// Appends the name of every design revision of the answer, in order.
void AppendRevisionNames(const CorvaneQueryDesignRevisionsOutput& output, PathList& names);

} // namespace vanto::fileservices
