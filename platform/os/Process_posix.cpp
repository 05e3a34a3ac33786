#include "os/Process.h"

#include "os/TextConversion.h"

#include <cerrno>
#include <cstdlib>
#include <dlfcn.h>
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace platform::os {

std::wstring EnvironmentValue(const std::wstring& name) {
    const char* value = std::getenv(WideToUtf8(name).c_str());
    return value != nullptr ? Utf8ToWide(value) : std::wstring();
}

bool SetEnvironmentValue(const std::wstring& name, const std::wstring& value) {
    const std::string key = WideToUtf8(name);
    return (value.empty() ? ::unsetenv(key.c_str())
                          : ::setenv(key.c_str(), WideToUtf8(value).c_str(), 1)) == 0;
}

std::wstring UserDataDirectory() {
    if (const char* data = std::getenv("XDG_DATA_HOME"); data != nullptr && *data == '/') {
        return Utf8ToWide(data);
    }
    if (const char* home = std::getenv("HOME"); home != nullptr && *home == '/') {
        return Utf8ToWide(std::string(home) + "/.local/share");
    }
    return std::wstring();
}

std::wstring ModuleDirectory() {
    Dl_info info{};
    if (::dladdr(reinterpret_cast<void*>(&ModuleDirectory), &info) == 0 ||
        info.dli_fname == nullptr) {
        return std::wstring();
    }
    const std::string path = info.dli_fname;
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? std::wstring() : Utf8ToWide(path.substr(0, slash));
}

bool IsExecutableFile(const std::wstring& path) {
    const std::string file = WideToUtf8(path);
    struct stat status {};
    return !file.empty() && ::stat(file.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
           ::access(file.c_str(), X_OK) == 0;
}

LaunchedProgram LaunchDetached(const std::wstring& program,
                               const std::vector<std::wstring>& arguments) {
    std::vector<std::string> texts{WideToUtf8(program)};
    for (const std::wstring& argument : arguments) {
        texts.push_back(WideToUtf8(argument));
    }
    std::vector<char*> argv;
    for (std::string& text : texts) {
        argv.push_back(text.data());
    }
    argv.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
    posix_spawn_file_actions_init(&actions);
    posix_spawnattr_init(&attributes);
    for (int stream = 0; stream < 3; ++stream) {
        posix_spawn_file_actions_addopen(&actions, stream, "/dev/null",
                                         stream == 0 ? O_RDONLY : O_WRONLY, 0);
    }
    // A session of its own: the program outlives this process and its terminal.
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK);
    sigset_t none;
    sigemptyset(&none);
    posix_spawnattr_setsigmask(&attributes, &none);
    pid_t child = 0;
    const int result =
        posix_spawn(&child, texts[0].c_str(), &actions, &attributes, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
    if (result != 0) {
        return {};
    }
    return {true, static_cast<unsigned long>(child)};
}

std::wstring PathForProgram(const std::wstring& /*program*/, const std::wstring& path) {
    return path;
}

std::wstring PathFromUnix(const std::string& unixPath) {
    return Utf8ToWide(unixPath);
}

bool KillProcess(unsigned long pid) {
    if (::kill(static_cast<pid_t>(pid), SIGKILL) != 0) {
        return false;
    }
    int status = 0;
    ::waitpid(static_cast<pid_t>(pid), &status, 0);
    return true;
}

bool WaitForExit(unsigned long pid, int timeoutMs) {
    for (int waited = 0;; waited += 10) {
        int status = 0;
        const pid_t result = ::waitpid(static_cast<pid_t>(pid), &status, WNOHANG);
        if (result == static_cast<pid_t>(pid) || (result < 0 && errno == ECHILD)) {
            return true;
        }
        if (waited >= timeoutMs) {
            return false;
        }
        ::usleep(10000);
    }
}

} // namespace platform::os
