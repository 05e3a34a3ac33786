#include "Host.h"

#include "host/GUserText.h"
#include "os/Console.h"
#include "os/TextConversion.h"

#include <cstdio>

namespace vanto::host {

void Host::Register() {
    if (sessionNeeded_ || mock_) {
        return;
    }
    sessionNeeded_ = true;
    if (!skipRegistration_) {
        Session().IsConnected(false);
    }
}

const Exchanges& Host::Sent() {
    trace_.ReadInto(sent_);
    return sent_;
}

int Host::Print(Report report) {
    Diagnose(report);
    if (output_ == Output::Json) {
        report.PrintJson(stdout);
    } else {
        report.PrintTable(stdout);
    }
    std::fflush(stdout);
    report.PrintProblems(stderr);
    return report.ExitStatus();
}

int Host::Conclude(Report report) {
    Diagnose(report);
    report.PrintProblems(stderr);
    return report.ExitStatus();
}

void Host::Diagnose(Report& report) {
    if (!mock_ && (sessionNeeded_ || !Sent().Empty())) {
        report.Connection(Sent().NotConnectedCause(sessionNeeded_)).Errors(Sent().Errors());
    }
}

Progress::Progress(std::string what, std::size_t total)
    : what_(std::move(what)), total_(total),
      shown_(platform::os::IsTerminal(platform::os::StandardStream::Error)) {}

Progress::~Progress() {
    if (shown_ && done_ > 0) {
        std::fprintf(stderr, "\r\x1b[K");
    }
}

void Progress::Step() {
    ++done_;
    if (!shown_) {
        return;
    }
    if (total_ > 0) {
        std::fprintf(stderr, "\r%s %zu/%zu", what_.c_str(), done_, total_);
    } else {
        std::fprintf(stderr, "\r%s %zu", what_.c_str(), done_);
    }
    std::fflush(stderr);
}

PathList WideList(const std::vector<std::string>& texts) {
    PathList list;
    for (const std::string& text : texts) {
        list.push_back(Wide(text));
    }
    return list;
}

CLI::App* AddCommand(CLI::App& parent, const std::string& name, const std::string& help,
                     Needs needs, Runner& chosen, Runner run) {
    CLI::App* command = parent.add_subcommand(name, help);
    command->callback([&chosen, needs, run = std::move(run)] {
        chosen = [needs, run](Host& host) {
            if (needs == Needs::Session) {
                host.Register();
            }
            return run(host);
        };
    });
    return command;
}

namespace {

// UTF-8 that converts to wide text and back unchanged; anything else (stray bytes, overlong or
// surrogate forms) comes back with U+FFFD in it.
bool IsUtf8(const std::string& text) {
    return platform::os::WideToUtf8(platform::os::Utf8ToWide(text)) == text;
}

} // namespace

const CLI::Validator& TextCheck() {
    static const CLI::Validator check(
        [](std::string& value) {
            return IsUtf8(value) ? std::string() : std::string("not UTF-8 text");
        },
        "TEXT");
    return check;
}

const CLI::Validator& PathCheck() {
    static const CLI::Validator check(
        [](std::string& value) {
            if (value.empty()) {
                return std::string("a path cannot be empty");
            }
            if (!IsUtf8(value)) {
                return std::string("not UTF-8 text");
            }
            for (const char c : value) {
                if (static_cast<unsigned char>(c) < 0x20u || c == '\x7f') {
                    return std::string("a path cannot hold control characters");
                }
            }
            return std::string();
        },
        "PATH");
    return check;
}

CLI::Option* AddPaths(CLI::App& command, std::vector<std::string>& paths, const std::string& name,
                      const std::string& help) {
    return command.add_option(name, paths, help)->required()->check(PathCheck());
}

} // namespace vanto::host
