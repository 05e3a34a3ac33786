// Finding and starting other programs: the environment, the user's data folder, the folder of the
// component's own module, and detached launches.
#pragma once

#include <string>
#include <vector>

namespace platform::os {

// The environment variable's value; empty when it is not set.
std::wstring EnvironmentValue(const std::wstring& name);
// Sets the variable for this process and the programs it starts; empty text removes it.
bool SetEnvironmentValue(const std::wstring& name, const std::wstring& value);

// Where per-user application data lives: $XDG_DATA_HOME, else ~/.local/share (POSIX);
// %LOCALAPPDATA% (Windows). Empty when unknown.
std::wstring UserDataDirectory();

// Folder of the module (shared library or executable) that holds this code; empty when unknown.
std::wstring ModuleDirectory();

// Whether a regular file exists at `path` that this user may run.
bool IsExecutableFile(const std::wstring& path);

// What a detached launch gives back. Wine starts a Unix program without a Windows process: it is
// started, but has no id (0) to wait on or end.
struct LaunchedProgram {
    bool started = false;
    unsigned long pid = 0;
};

// Starts `program` with `arguments`, detached from this process (its own session, no console,
// standard streams on the null device), and does not wait for it.
LaunchedProgram LaunchDetached(const std::wstring& program,
                               const std::vector<std::wstring>& arguments);

// `path` as `program` names the file. A Unix program started by Wine knows files by their Unix
// names; any other program by the name given. Empty when Wine has no Unix name for it.
std::wstring PathForProgram(const std::wstring& program, const std::wstring& path);

// The file at the Unix path `unixPath` as this process names it: unchanged on POSIX, its DOS name
// under Wine, empty on Windows itself.
std::wstring PathFromUnix(const std::string& unixPath);

// Ends the process at once (SIGKILL, TerminateProcess) and reaps it; false when it could not.
bool KillProcess(unsigned long pid);
// Waits up to `timeoutMs` for a process started by LaunchDetached to end (and reaps it).
bool WaitForExit(unsigned long pid, int timeoutMs);

} // namespace platform::os
