#include "connector/ConnectorLink.h"

#include "connector/CorvaneClient.h"
#include "os/Paths.h"
#include "os/SocketWait.h"

#include <boost/asio/connect.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/json/parse.hpp>

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <limits>
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

// One frame: the length of the parts together, then the parts.
std::string Frame(std::initializer_list<std::string_view> parts) {
    std::size_t size = 0;
    for (const std::string_view part : parts) {
        size += part.size();
    }
    const auto header = FrameHeader(size);
    std::string frame(header.begin(), header.end());
    frame.reserve(4 + size);
    for (const std::string_view part : parts) {
        frame.append(part);
    }
    return frame;
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

    std::string inbox;

    // Runs the started operations until `done` says so or the deadline passes; then the socket
    // is closed and what was pending is drained. Connecting only: the exchanges after it wait
    // with the system's poll, which under Wine costs fewer calls to its server than Asio's
    // completion port.
    template <class Done> bool RunUntil(Done done, Clock::time_point deadline) {
        io.restart();
        while (!done()) {
            const auto now = Clock::now();
            if (now >= deadline || io.run_one_for(deadline - now) == 0) {
                if (done()) {
                    break;
                }
                TimedOut();
                io.restart();
                io.run();
                return false;
            }
        }
        return true;
    }

    void TimedOut() {
        error_code ignored;
        socket.close(ignored);
        open = false;
    }

    // Waits until the socket is ready or the deadline passes (then closes it and answers false).
    bool Wait(platform::os::SocketWait what, Clock::time_point deadline) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
        if (left.count() <= 0 ||
            !platform::os::WaitForSocket(socket.native_handle(), what,
                                         static_cast<int>(std::min<std::int64_t>(
                                             left.count(), std::numeric_limits<int>::max())))) {
            TimedOut();
            return false;
        }
        return true;
    }

    // Reads what has come, up to `room` bytes, once it has come: the count, with `error` set on a
    // failure; nothing on time-out.
    std::optional<std::size_t> ReadSome(char* into, std::size_t room, Clock::time_point deadline,
                                        error_code& error) {
        std::size_t count = 0;
        do {
            if (!Wait(platform::os::SocketWait::Read, deadline)) {
                return std::nullopt;
            }
            count = socket.read_some(asio::buffer(into, room), error);
        } while (error == asio::error::would_block);
        return count;
    }

    // Writes `frame` and reads the answer's; false on time-out, `error` set on any other failure.
    bool Exchange(std::string_view frame, std::string& answer, Clock::time_point deadline,
                  error_code& error) {
        for (std::size_t sent = 0; sent < frame.size();) {
            sent += socket.write_some(asio::buffer(frame.substr(sent)), error);
            if (error == asio::error::would_block) {
                if (!Wait(platform::os::SocketWait::Write, deadline)) {
                    return false;
                }
            } else if (error) {
                return true;
            }
        }
        inbox.resize(InboxBytes);
        std::size_t got = 0;
        while (got < 4) {
            const auto count = ReadSome(inbox.data() + got, inbox.size() - got, deadline, error);
            if (!count || error) {
                return count.has_value();
            }
            got += *count;
        }
        const std::size_t length = FrameLength(inbox.data());
        if (length > MaxFrameBytes) {
            error = asio::error::message_size;
            return true;
        }
        if (got - 4 > length) { // answers come only when asked: these bytes are no answer
            error = make_error_code(boost::system::errc::protocol_error);
            return true;
        }
        answer.assign(inbox.data() + 4, got - 4);
        answer.resize(length);
        for (std::size_t have = got - 4; have < length;) {
            const auto count = ReadSome(answer.data() + have, length - have, deadline, error);
            if (!count || error) {
                return count.has_value();
            }
            have += *count;
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
    // Non-blocking for good: every read and write waits with a deadline of its own, and Alive()
    // asks with one read.
    s.socket.non_blocking(true, error);
    std::string answer;
    if (!s.Exchange(Frame({HandshakeGreeting, endpoint.secret}), answer, deadline, error)) {
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
    if (operation.size() + 1 + body.size() > MaxFrameBytes) {
        throw Fail(Failure::Lost, "the request is larger than a frame may be");
    }
    std::string answer;
    error_code error;
    if (!s.Exchange(Frame({operation, "\n", body}), answer, deadline, error)) {
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
    char probe = 0;
    error_code error;
    s.socket.read_some(asio::buffer(&probe, 1), error);
    if (error != asio::error::would_block) {
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
