#include "connector/ConnectorLink.h"

#include "connector/CorvaneClient.h"
#include "os/Paths.h"

#include <boost/asio/connect.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/write.hpp>
#include <boost/json/parse.hpp>

#include <array>
#include <utility>

namespace Corvane {

namespace {

namespace asio = boost::asio;
using boost::system::error_code;
using Clock = std::chrono::steady_clock;

// Which of the four failures a broken call was.
enum class Failure { NoEndpoint, Lost, TimeOut, Refused };

CorvaneCommunicationException Fail(Failure failure, const std::string& detail) {
    const char* what = "";
    switch (failure) {
    case Failure::NoEndpoint:
        what = "Corvane connector: no endpoint";
        break;
    case Failure::Lost:
        what = "Corvane connector: lost connection";
        break;
    case Failure::TimeOut:
        what = "Corvane connector: time-out";
        break;
    case Failure::Refused:
        what = "Corvane connector: handshake refused";
        break;
    }
    return CorvaneCommunicationException(std::string(what) + " (" + detail + ")");
}

std::array<unsigned char, 4> Header(std::size_t size) {
    return {static_cast<unsigned char>(size >> 24), static_cast<unsigned char>(size >> 16),
            static_cast<unsigned char>(size >> 8), static_cast<unsigned char>(size)};
}

} // namespace

std::optional<Endpoint> ReadEndpointFile(const std::wstring& path) {
    std::string text;
    if (path.empty() || !platform::os::ReadWholeFile(path, text) || text.size() > 4096) {
        return std::nullopt;
    }
    error_code error;
    const boost::json::value value = boost::json::parse(text, error);
    if (error || !value.is_object()) {
        return std::nullopt;
    }
    const auto* port = value.get_object().if_contains("Port");
    const auto* secret = value.get_object().if_contains("Secret");
    if (port == nullptr || !port->is_int64() || port->get_int64() <= 0 ||
        port->get_int64() > 65535 || secret == nullptr || !secret->is_string() ||
        secret->get_string().empty()) {
        return std::nullopt;
    }
    return Endpoint{static_cast<std::uint16_t>(port->get_int64()),
                    std::string(secret->get_string())};
}

struct ConnectorLink::State {
    asio::io_context io;
    asio::ip::tcp::socket socket{io};
    Endpoint connectedTo;
    bool open = false;
    bool justAsked = false; // Alive() answered true and nothing has happened since

    // Runs the started operations until `done` says so or the deadline passes; then the socket
    // is closed and what was pending is drained.
    template <class Done> bool RunUntil(Done done, Clock::time_point deadline) {
        io.restart();
        while (!done()) {
            const auto now = Clock::now();
            if (now >= deadline || io.run_one_for(deadline - now) == 0) {
                if (done()) {
                    break;
                }
                error_code ignored;
                socket.close(ignored);
                open = false;
                io.restart();
                io.run();
                return false;
            }
        }
        return true;
    }

    // Writes one frame and, when `answer` is given, reads one; false on time-out, `error` set on
    // any other failure.
    bool Exchange(std::string_view request, std::string* answer, Clock::time_point deadline,
                  error_code& error) {
        const auto header = Header(request.size());
        const std::array<asio::const_buffer, 2> frame{asio::buffer(header),
                                                      asio::buffer(request.data(), request.size())};
        bool written = false;
        asio::async_write(socket, frame, [&](error_code e, std::size_t) {
            error = e;
            written = true;
        });
        if (!RunUntil([&] { return written; }, deadline)) {
            return false;
        }
        if (error || answer == nullptr) {
            return true;
        }
        std::array<unsigned char, 4> size{};
        bool read = false;
        bool tooLarge = false;
        asio::async_read(socket, asio::buffer(size), [&](error_code e, std::size_t) {
            if (e) {
                error = e;
                read = true;
                return;
            }
            const std::size_t length = (std::size_t{size[0]} << 24) | (std::size_t{size[1]} << 16) |
                                       (std::size_t{size[2]} << 8) | std::size_t{size[3]};
            if (length > MaxFrameBytes) {
                tooLarge = true;
                read = true;
                return;
            }
            answer->resize(length);
            asio::async_read(socket, asio::buffer(answer->data(), length),
                             [&](error_code e2, std::size_t) {
                                 error = e2;
                                 read = true;
                             });
        });
        if (!RunUntil([&] { return read; }, deadline)) {
            return false;
        }
        if (tooLarge) {
            error = asio::error::message_size;
        }
        return true;
    }
};

ConnectorLink::ConnectorLink(std::chrono::milliseconds timeout)
    : timeout_(timeout), state_(std::make_unique<State>()) {}

ConnectorLink::~ConnectorLink() {
    Close();
}

void ConnectorLink::Close() noexcept {
    error_code ignored;
    state_->socket.close(ignored);
    state_->open = false;
    state_->justAsked = false;
}

void ConnectorLink::Connect(const Endpoint& endpoint, Clock::time_point deadline) {
    Close();
    State& s = *state_;
    const asio::ip::tcp::endpoint address(asio::ip::address_v4::loopback(), endpoint.port);
    error_code error = asio::error::would_block;
    s.socket.async_connect(address, [&](error_code e) { error = e; });
    if (!s.RunUntil([&] { return error != asio::error::would_block; }, deadline)) {
        throw Fail(Failure::TimeOut, "connecting to port " + std::to_string(endpoint.port));
    }
    if (error) {
        Close();
        throw Fail(Failure::NoEndpoint,
                   "port " + std::to_string(endpoint.port) + ": " + error.message());
    }
    s.socket.set_option(asio::ip::tcp::no_delay(true), error);
    std::string answer;
    const std::string greeting = std::string(HandshakeGreeting) + endpoint.secret;
    if (!s.Exchange(greeting, &answer, deadline, error)) {
        throw Fail(Failure::TimeOut, "waiting for the handshake");
    }
    if (error || answer != HandshakeAccepted) {
        Close();
        throw Fail(Failure::Refused, error ? error.message() : "unexpected answer");
    }
    s.connectedTo = endpoint;
    s.open = true;
}

std::string ConnectorLink::Call(const Endpoint& endpoint, std::string_view operation,
                                std::string_view body) {
    State& s = *state_;
    const auto deadline = Clock::now() + timeout_;
    const bool alive = std::exchange(s.justAsked, false) || Alive();
    if (alive && (s.connectedTo.port != endpoint.port || s.connectedTo.secret != endpoint.secret)) {
        Close();
    }
    if (!s.open) {
        Connect(endpoint, deadline);
    }
    std::string request;
    request.reserve(operation.size() + 1 + body.size());
    request.append(operation).append(1, '\n').append(body);
    if (request.size() > MaxFrameBytes) {
        throw Fail(Failure::Lost, "the request is larger than a frame may be");
    }
    std::string answer;
    error_code error;
    if (!s.Exchange(request, &answer, deadline, error)) {
        throw Fail(Failure::TimeOut,
                   "no answer within " + std::to_string(timeout_.count()) + " ms");
    }
    if (error) {
        Close();
        throw Fail(Failure::Lost, error.message());
    }
    return answer;
}

bool ConnectorLink::Alive() noexcept {
    State& s = *state_;
    if (!s.open) {
        return false;
    }
    // A connection whose other end has gone (the emulator restarted) reads as end of file at
    // once; it is replaced before anything is sent on it.
    error_code mode;
    s.socket.non_blocking(true, mode);
    char probe = 0;
    error_code error;
    s.socket.read_some(asio::buffer(&probe, 1), error);
    s.socket.non_blocking(false, mode);
    if (mode || error != asio::error::would_block) {
        Close();
        return false;
    }
    s.justAsked = true;
    return true;
}

void ConnectorLink::Open(const Endpoint& endpoint) {
    try {
        Connect(endpoint, Clock::now() + timeout_);
    } catch (...) {
        Close();
        throw;
    }
}

} // namespace Corvane
