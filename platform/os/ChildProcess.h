// Running another program to its end and keeping what it wrote: what tests of a command-line
// program need. Used by tests only, not by the component.
#pragma once

#include <string>
#include <vector>

namespace platform::os {

struct ProgramRun {
    bool started = false;
    bool finished = false; // false: it was ended at the time-out
    int exitCode = -1;
    std::string out; // standard output, as written
    std::string err; // standard error, as written
};

// Runs `program` with `arguments`, standard input empty, and waits up to `timeoutMs`. The program
// inherits this process's environment. Arguments are bytes on POSIX; on Windows they are taken as
// UTF-8 in which an encoded surrogate (ED A0..BF xx) stands for that lone UTF-16 unit, so that a
// test can hand over an argument that is no text.
ProgramRun RunProgram(const std::string& program, const std::vector<std::string>& arguments,
                      int timeoutMs);

} // namespace platform::os
