#include "os/Browser.h"

#include <spawn.h>

#include <vector>

extern char** environ;

namespace platform::os {

bool OpenInBrowser(const std::string& url) {
    std::string program = "xdg-open";
    std::string address = url;
    std::vector<char*> argv{program.data(), address.data(), nullptr};
    // In a session of its own, so that the browser outlives this short program.
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);
    pid_t child = 0;
    const int error =
        posix_spawnp(&child, program.c_str(), nullptr, &attributes, argv.data(), environ);
    posix_spawnattr_destroy(&attributes);
    return error == 0;
}

} // namespace platform::os
