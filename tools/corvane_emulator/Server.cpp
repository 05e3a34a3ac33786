#include "Server.h"

#include "Text.h"

#include "connector/ConnectorLink.h"
#include "os/Os.h"
#include "os/Service.h"
#include "protocol/Numbers.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/write.hpp>
#include <boost/json.hpp>

#include <array>

namespace vanto::emulator {

namespace asio = boost::asio;
using asio::ip::tcp;
using boost::system::error_code;

struct Server::State {
    State(asio::io_context& context, Handler& h, std::uint16_t port)
        : io(context), handler(h),
          acceptor(context, tcp::endpoint(asio::ip::address_v4::loopback(), port)) {}
    asio::io_context& io;
    Handler& handler;
    tcp::acceptor acceptor;
    std::string secret;
    std::size_t connections = 0;
};

namespace {

// Compares in time that does not depend on where the texts differ.
bool SameSecret(std::string_view given, std::string_view expected) {
    unsigned char difference = given.size() == expected.size() ? 0 : 1;
    for (std::size_t i = 0; i < given.size() && i < expected.size(); ++i) {
        difference |= static_cast<unsigned char>(given[i] ^ expected[i]);
    }
    return difference == 0;
}

} // namespace

class Server::Connection : public std::enable_shared_from_this<Server::Connection> {
public:
    Connection(std::shared_ptr<State> state, tcp::socket socket)
        : state_(std::move(state)), socket_(std::move(socket)), timer_(state_->io) {
        ++state_->connections;
    }
    ~Connection() { --state_->connections; }

    void Start() {
        error_code ignored;
        socket_.set_option(tcp::no_delay(true), ignored);
        timer_.expires_after(std::chrono::milliseconds(HandshakeTimeoutMs));
        timer_.async_wait([self = shared_from_this()](error_code error) {
            if (!error && !self->greeted_) {
                self->Drop();
            }
        });
        ReadFrame();
    }

private:
    void Drop() {
        error_code ignored;
        socket_.close(ignored);
        timer_.cancel();
    }

    void ReadFrame() {
        asio::async_read(
            socket_, asio::buffer(header_),
            [self = shared_from_this()](error_code error, std::size_t) { self->OnHeader(error); });
    }

    void OnHeader(error_code error) {
        if (error) {
            return Drop();
        }
        const std::size_t size = (std::size_t{header_[0]} << 24) | (std::size_t{header_[1]} << 16) |
                                 (std::size_t{header_[2]} << 8) | std::size_t{header_[3]};
        // Before the secret only a greeting's worth; after it, up to a frame's limit. A larger
        // frame cannot be skipped without reading it, so the connection ends.
        const std::size_t limit = greeted_ ? Corvane::MaxFrameBytes : 256;
        if (size > limit) {
            if (greeted_) {
                return Send(ErrorAnswer(protocol::ReturnCode::InvalidInput), true);
            }
            return Drop();
        }
        body_.resize(size);
        asio::async_read(
            socket_, asio::buffer(body_),
            [self = shared_from_this()](error_code e, std::size_t) { self->OnBody(e); });
    }

    void OnBody(error_code error) {
        if (error) {
            return Drop();
        }
        if (!greeted_) {
            const std::string_view text(body_);
            if (text.substr(0, Corvane::HandshakeGreeting.size()) != Corvane::HandshakeGreeting ||
                !SameSecret(text.substr(Corvane::HandshakeGreeting.size()), state_->secret)) {
                return Drop(); // nothing at all for a client without the secret
            }
            greeted_ = true;
            timer_.cancel();
            return Send(std::string(Corvane::HandshakeAccepted), false);
        }
        const std::size_t newline = body_.find('\n');
        const std::string_view operation = newline == std::string::npos
                                               ? std::string_view(body_)
                                               : std::string_view(body_).substr(0, newline);
        const std::string_view request = newline == std::string::npos
                                             ? std::string_view()
                                             : std::string_view(body_).substr(newline + 1);
        Answer answer = state_->handler.Handle(operation, request);
        if (answer.text.size() > Corvane::MaxFrameBytes) {
            answer.text = ErrorAnswer(protocol::ReturnCode::Fail);
        }
        std::string().swap(body_);
        if (answer.stopAfter) {
            stopping_ = true;
        }
        if (answer.delayMs == 0) {
            return Send(std::move(answer.text), false);
        }
        timer_.expires_after(std::chrono::milliseconds(answer.delayMs));
        timer_.async_wait(
            [self = shared_from_this(), text = std::move(answer.text)](error_code e) mutable {
                if (!e) {
                    self->Send(std::move(text), false);
                }
            });
    }

    void Send(std::string text, bool thenClose) {
        out_ = std::move(text);
        const std::size_t size = out_.size();
        outHeader_ = {static_cast<unsigned char>(size >> 24),
                      static_cast<unsigned char>(size >> 16), static_cast<unsigned char>(size >> 8),
                      static_cast<unsigned char>(size)};
        const std::array<asio::const_buffer, 2> frame{asio::buffer(outHeader_), asio::buffer(out_)};
        asio::async_write(socket_, frame,
                          [self = shared_from_this(), thenClose](error_code error, std::size_t) {
                              if (self->stopping_) {
                                  self->state_->io.stop();
                              }
                              if (error || thenClose) {
                                  return self->Drop();
                              }
                              std::string().swap(self->out_);
                              self->ReadFrame();
                          });
    }

    std::shared_ptr<State> state_;
    tcp::socket socket_;
    asio::steady_timer timer_;
    bool greeted_ = false;
    bool stopping_ = false;
    std::array<unsigned char, 4> header_{};
    std::array<unsigned char, 4> outHeader_{};
    std::string body_;
    std::string out_;
};

Server::Server(asio::io_context& io, Handler& handler, std::uint16_t port)
    : state_(std::make_shared<State>(io, handler, port)), secret_(RandomHex(32)) {
    state_->secret = secret_;
    Accept();
}

Server::~Server() {
    error_code ignored;
    state_->acceptor.close(ignored);
}

std::uint16_t Server::Port() const {
    return state_->acceptor.local_endpoint().port();
}

void Server::Accept() {
    std::weak_ptr<State> weak = state_;
    state_->acceptor.async_accept([this, weak](error_code error, tcp::socket socket) {
        const auto state = weak.lock();
        if (!state || !state->acceptor.is_open()) {
            return;
        }
        if (!error && state->connections < MaxConnections) {
            std::make_shared<Connection>(state, std::move(socket))->Start();
        }
        Accept();
    });
}

void Server::WriteEndpointFile(const std::string& path) const {
    platform::os::WritePrivateFile(
        path, boost::json::serialize(boost::json::object{
                  {"Port", Port()},
                  {"Secret", secret_},
                  {"Pid", static_cast<std::int64_t>(platform::os::CurrentProcessId())}}));
}

} // namespace vanto::emulator
