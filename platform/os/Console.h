// The host program's side of the console: whether a standard stream is a terminal, colour on it,
// the program's arguments as UTF-8, and setting an environment value that a loaded module reads
// through the C runtime. Used by host programs only, not by the component.
#pragma once

#include <string>
#include <vector>

namespace platform::os {

enum class StandardStream { Output, Error };

// True when the stream is an interactive terminal (a console on Windows), not a file or a pipe.
bool IsTerminal(StandardStream stream);

// Makes the terminal behind the stream understand ANSI colour sequences and UTF-8 output; false
// when it is no terminal or cannot be switched. POSIX terminals understand both already.
bool PrepareTerminal(StandardStream stream);

// The program's arguments, argv[0] included, as UTF-8. POSIX: argv as it came. Windows: the wide
// command line, converted; an argument that is not valid UTF-16 (an unpaired surrogate) gives a
// byte 0xFF in its place, which is no UTF-8 either, so that checks of the text refuse it.
std::vector<std::string> Utf8Arguments(int argc, char** argv);

// Sets an environment value for this process where the C runtime's getenv (also a loaded
// module's) sees it, and the programs it starts. Process.h's setter goes to the system's copy
// only, which a Windows runtime does not read again after its start.
bool SetRuntimeEnvironmentValue(const char* name, const std::string& value);

} // namespace platform::os
