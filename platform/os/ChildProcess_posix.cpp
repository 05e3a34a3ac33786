#include "os/ChildProcess.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace platform::os {

namespace {

// An unnamed temporary file: the child writes into it, the parent reads it back from the start.
int TemporaryFile() {
    std::FILE* file = std::tmpfile();
    return file != nullptr ? ::dup(::fileno(file)) : -1;
}

std::string ReadAll(int fd) {
    std::string text;
    ::lseek(fd, 0, SEEK_SET);
    char buffer[4096];
    for (ssize_t got; (got = ::read(fd, buffer, sizeof buffer)) > 0;) {
        text.append(buffer, static_cast<std::size_t>(got));
    }
    ::close(fd);
    return text;
}

} // namespace

ProgramRun RunProgram(const std::string& program, const std::vector<std::string>& arguments,
                      int timeoutMs) {
    ProgramRun run;
    const int out = TemporaryFile();
    const int err = TemporaryFile();
    std::vector<char*> argv{const_cast<char*>(program.c_str())};
    for (const std::string& argument : arguments) {
        argv.push_back(const_cast<char*>(argument.c_str()));
    }
    argv.push_back(nullptr);
    const pid_t pid = out < 0 || err < 0 ? -1 : ::fork();
    if (pid == 0) {
        const int in = ::open("/dev/null", O_RDONLY);
        ::dup2(in, STDIN_FILENO);
        ::dup2(out, STDOUT_FILENO);
        ::dup2(err, STDERR_FILENO);
        ::execv(program.c_str(), argv.data());
        ::_exit(127);
    }
    if (pid > 0) {
        run.started = true;
        int status = 0;
        const auto deadline =
            std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
        while (::waitpid(pid, &status, WNOHANG) == 0) {
            if (std::chrono::steady_clock::now() > deadline) {
                ::kill(pid, SIGKILL);
                ::waitpid(pid, &status, 0);
                status = -1;
                break;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        run.finished = status != -1;
        run.exitCode = run.finished && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    run.out = out >= 0 ? ReadAll(out) : std::string();
    run.err = err >= 0 ? ReadAll(err) : std::string();
    return run;
}

} // namespace platform::os
