#include "Server.h"

#include "Text.h"

#include "connector/ConnectorLink.h"
#include "os/Os.h"
#include "os/Service.h"
#include "os/TextConversion.h"
#include "protocol/Numbers.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/write.hpp>
#include <boost/json.hpp>

#include <array>
#include <cstdio>
#include <list>

namespace vanto::emulator {

namespace asio = boost::asio;
using asio::ip::tcp;
using boost::system::error_code;

struct Server::State : std::enable_shared_from_this<Server::State> {
    State(asio::io_context& context, Handler& h, EventLog& l, std::uint16_t port)
        : io(context), handler(h), log(l),
          acceptor(context, tcp::endpoint(asio::ip::address_v4::loopback(), port)),
          report(context) {}
    asio::io_context& io;
    Handler& handler;
    EventLog& log;
    tcp::acceptor acceptor;
    std::string secret;
    std::size_t greeted = 0;
    std::list<Connection*> waiting; // for the secret, the longest waiting first
    std::size_t refused = 0;        // since the last report
    asio::steady_timer report;

    // Counts one more connection ended without the secret; logs the count a second after the
    // first, so one line a second at most however many there are.
    void Refused() {
        if (refused++ > 0) {
            return;
        }
        report.expires_after(std::chrono::seconds(1));
        report.async_wait([weak = weak_from_this()](error_code error) {
            if (const auto alive = weak.lock(); alive && !error) {
                alive->Report();
            }
        });
    }
    void Report() {
        log.Write("closed " + std::to_string(refused) +
                  " connection(s) without the secret (wrong, missing, or crowded out)");
        refused = 0;
    }
};

class Server::Connection : public std::enable_shared_from_this<Server::Connection> {
public:
    Connection(std::shared_ptr<State> state, tcp::socket socket)
        : state_(std::move(state)), socket_(std::move(socket)), timer_(state_->io),
          place_(state_->waiting.insert(state_->waiting.end(), this)) {}
    ~Connection() {
        Drop();
        if (greeted_) {
            --state_->greeted;
        }
    }

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

    void Drop() {
        if (place_ != state_->waiting.end()) {
            state_->waiting.erase(place_);
            place_ = state_->waiting.end();
            state_->Refused();
        }
        error_code ignored;
        socket_.close(ignored);
        timer_.cancel();
    }

private:
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
            return Greet();
        }
        const Fault fault = state_->handler.Draw(Operation(), Request());
        if (fault.latencyMs == 0) {
            return Answer(fault);
        }
        // The wait comes before the work: a client that gives up meanwhile (its end closes) has
        // nothing done for it.
        timer_.expires_after(std::chrono::milliseconds(fault.latencyMs));
        timer_.async_wait([self = shared_from_this(), fault](error_code e) {
            if (!e && self->socket_.is_open()) {
                error_code ignored;
                self->socket_.cancel(ignored);
                self->Answer(fault);
            }
        });
        socket_.async_wait(tcp::socket::wait_read, [self = shared_from_this()](error_code e) {
            if (e != asio::error::operation_aborted) {
                self->Drop();
            }
        });
    }

    void Greet() {
        const std::string_view text(body_);
        if (text.substr(0, Corvane::HandshakeGreeting.size()) != Corvane::HandshakeGreeting ||
            !SameSecret(text.substr(Corvane::HandshakeGreeting.size()), state_->secret) ||
            state_->greeted == MaxConnections) {
            return Drop(); // nothing at all for a client without the secret
        }
        state_->waiting.erase(place_);
        place_ = state_->waiting.end();
        greeted_ = true;
        ++state_->greeted;
        timer_.cancel();
        Send(std::string(Corvane::HandshakeAccepted), false);
    }

    // The request in body_: the operation, a line feed, the text.
    std::string_view Operation() const {
        return std::string_view(body_).substr(0, body_.find('\n'));
    }
    std::string_view Request() const {
        const std::size_t newline = body_.find('\n');
        return newline == std::string::npos ? std::string_view()
                                            : std::string_view(body_).substr(newline + 1);
    }

    void Answer(Fault fault) {
        emulator::Answer answer = state_->handler.Handle(Operation(), Request(), fault);
        if (answer.text.size() > Corvane::MaxFrameBytes) {
            answer.text = ErrorAnswer(protocol::ReturnCode::Fail);
        }
        std::string().swap(body_);
        stopping_ = answer.stopAfter;
        Send(std::move(answer.text), false);
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
    std::list<Connection*>::iterator place_; // in the waiting list, or its end
    bool greeted_ = false;
    bool stopping_ = false;
    std::array<unsigned char, 4> header_{};
    std::array<unsigned char, 4> outHeader_{};
    std::string body_;
    std::string out_;
};

Server::Server(asio::io_context& io, Handler& handler, EventLog& log, std::uint16_t port)
    : state_(std::make_shared<State>(io, handler, log, port)), secret_(RandomHex(32)) {
    state_->secret = secret_;
    Accept();
}

Server::~Server() {
    error_code ignored;
    state_->acceptor.close(ignored);
    if (state_->refused > 0) {
        state_->Report();
    }
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
        if (!error) {
            if (state->waiting.size() == MaxWaiting) {
                state->waiting.front()->Drop();
            }
            std::make_shared<Connection>(state, std::move(socket))->Start();
        }
        Accept();
    });
}

void Server::WriteEndpointFile(const std::string& path, boost::json::object more) const {
    more["Port"] = Port();
    more["Secret"] = secret_;
    more["Pid"] = static_cast<std::int64_t>(platform::os::CurrentProcessId());
    platform::os::WritePrivateFile(path, boost::json::serialize(more));
}

void Server::RemoveEndpointFile(const std::string& path, const std::string& secret) {
    const auto endpoint = Corvane::ReadEndpointFile(platform::os::Utf8ToWide(path));
    if (endpoint && endpoint->secret == secret) {
        std::remove(path.c_str());
    }
}

} // namespace vanto::emulator
