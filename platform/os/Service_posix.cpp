#include "os/Service.h"

#include <boost/asio/signal_set.hpp>

#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <stdexcept>
#include <unistd.h>

namespace platform::os {

void WritePrivateFile(const std::string& path, std::string_view contents) {
    const std::string temporary = path + ".new";
    ::unlink(temporary.c_str());
    const int file = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (file < 0) {
        throw std::runtime_error("cannot write " + temporary);
    }
    const bool written =
        ::write(file, contents.data(), contents.size()) == static_cast<ssize_t>(contents.size());
    const bool closed = ::close(file) == 0;
    if (!written || !closed || std::rename(temporary.c_str(), path.c_str()) != 0) {
        ::unlink(temporary.c_str());
        throw std::runtime_error("cannot write " + path);
    }
}

std::FILE* OpenForAppending(const std::string& path) {
    return std::fopen(path.c_str(), "ae");
}

struct StopRequests::State {
    explicit State(boost::asio::io_context& io) : signals(io, SIGINT, SIGTERM) {}
    boost::asio::signal_set signals;
};

StopRequests::StopRequests(boost::asio::io_context& io, std::function<void()> stop)
    : state_(std::make_unique<State>(io)) {
    state_->signals.async_wait([stop = std::move(stop)](boost::system::error_code error, int) {
        if (!error) {
            stop();
        }
    });
}

StopRequests::~StopRequests() = default;

} // namespace platform::os
