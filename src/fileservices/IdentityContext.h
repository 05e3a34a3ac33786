// File identity and context: how the answers about monitored paths, file paths by identifier,
// file contexts and document stamps land in the caller's data.
#pragma once

#include "VANTO.h"
#include "protocol/commands/DataManagementCommands.h"

namespace vanto::fileservices {

using Corvane::CommandIO::DataManagement::CorvaneGetFileContextInformationOutput;
using Corvane::CommandIO::DataManagement::CorvaneGetFilePathByUidOutput;
using Corvane::CommandIO::DataManagement::CorvaneIsPathMonitoredOutput;

// Inserts (path, monitored) per answer entry; a path already in the map keeps its flag.
void AddMonitored(const CorvaneIsPathMonitoredOutput& output, PathMonitoredMap& monitored);

// The flag of the answer's first entry; false when it has none.
bool FirstMonitored(const CorvaneIsPathMonitoredOutput& output);

// Gives each identifier of the map that the answer names its path; of several, the last.
void StoreFilePaths(const CorvaneGetFilePathByUidOutput& output, FileUidPathMap& paths);

// Appends one entry per file path of the answer, each with its document's whole context.
void AppendContexts(const CorvaneGetFileContextInformationOutput& output,
                    FileContextList& contexts);

// The stamp and document id that a file's document-version properties give.
void ApplyDocumentStamp(const FilePropertyEntry& file, DocumentStamp& stamp);

} // namespace vanto::fileservices
