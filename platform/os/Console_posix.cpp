#include "os/Console.h"

#include <cstdlib>
#include <unistd.h>

namespace platform::os {

namespace {
int Descriptor(StandardStream stream) {
    return stream == StandardStream::Output ? STDOUT_FILENO : STDERR_FILENO;
}
} // namespace

bool IsTerminal(StandardStream stream) {
    return ::isatty(Descriptor(stream)) == 1;
}

bool PrepareTerminal(StandardStream stream) {
    return IsTerminal(stream);
}

std::vector<std::string> Utf8Arguments(int argc, char** argv) {
    return std::vector<std::string>(argv, argv + argc);
}

bool SetRuntimeEnvironmentValue(const char* name, const std::string& value) {
    return ::setenv(name, value.c_str(), 1) == 0;
}

} // namespace platform::os
