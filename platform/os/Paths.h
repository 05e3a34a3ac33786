// Where a Windows path lives on this system, and whole-file reads through that mapping.
//
// Windows uses its paths as they stand. Elsewhere a drive-letter path is mapped the way Wine
// maps it by default: drive Z: is the root of the file system and backslashes become slashes, so
// "Z:\PDM\Root" is "/PDM/Root". The environment variable named by DriveRootVariable moves that
// root to another folder (tests and demos give each run a folder of its own). It only moves where
// paths land; it never changes what the component does with them.
#pragma once

#include <cstdio>
#include <string>

namespace platform::os {

// The folder drive Z: maps to on POSIX systems; "/" when unset or empty.
inline constexpr const char* DriveRootVariable = "VANTO_DRIVE_Z";

// The path as this system opens it. POSIX: "Z:\a\b" (drive letter in either case) becomes
// <root>/a/b; any other drive letter maps to nothing and gives empty text, as a drive that is not
// there; paths without a drive letter stay as they are. Windows: unchanged.
std::wstring NativePath(const std::wstring& path);

// Opens the file at `path` (mapped as above) for binary reading; null when it cannot be opened.
std::FILE* OpenFileForReading(const std::wstring& path);

// Reads the whole file at `path` (mapped as above) into `contents`; false when it cannot be opened
// or read, in which case `contents` is empty.
bool ReadWholeFile(const std::wstring& path, std::string& contents);

// Points drive Z: at `folder` for this process (empty text restores "/"). False where the drives
// belong to the system (Windows): there the caller works on the real drive.
bool MoveDriveRoot(const std::wstring& folder);

} // namespace platform::os
