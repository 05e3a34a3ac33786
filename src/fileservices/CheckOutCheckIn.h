// Check-out and check-in: how the answers of the lock commands land in the caller's data.
#pragma once

#include "VANTO.h"
#include "protocol/commands/MCADCommands.h"

namespace vanto::fileservices {

using Corvane::CommandIO::DataManagement::MCAD::CorvaneLockDesignRevisionsOutput;
using Corvane::CommandIO::DataManagement::MCAD::CorvaneUnLockDesignRevisionsOutput;

// Marks every file of the map that a lock info names as checked out, by its holder; `user` is the
// signed-in user. Names the map does not hold are passed over.
void MarkLocks(const CorvaneLockDesignRevisionsOutput& output, FileLockStatusMap& files,
               const GUserText& user);

// Walks the answer's errors: "object locked" is passed over; any other code clears both lock
// flags of the files it names. True when such another code was met.
bool ClearRefusedLocks(const CorvaneLockDesignRevisionsOutput& output, FileLockStatusMap& files);

// Hands each lock info's code and holder to the first entry of the list whose UTF-8 file name is
// its design identifier.
void ApplyUnlockResults(const CorvaneUnLockDesignRevisionsOutput& output, FileCheckInList& files);

// The lock state a file's properties give: the first value of "LockedBy" in the lock group.
void ApplyLockedBy(const FilePropertyEntry& file, FileLockStatus& status, const GUserText& user);

} // namespace vanto::fileservices
