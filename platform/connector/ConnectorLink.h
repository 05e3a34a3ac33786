// The client end of the local transport to the connector emulator.
//
// Loopback TCP: the emulator listens on 127.0.0.1 at a port of its choosing and writes the port
// and a secret made for that start into its endpoint file, which only its user can read. A client
// presents the secret in its first message; without it the emulator answers nothing and closes.
// Every message, both ways, is one frame: a 4-byte big-endian length, then that many bytes, at
// most MaxFrameBytes. A request is the operation's name, a line feed, then the body; the answer
// is the body alone.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace Corvane {

inline constexpr std::size_t MaxFrameBytes = 64u * 1024u * 1024u;
inline constexpr std::string_view HandshakeGreeting = "CORVANE-EMULATOR 1 ";
inline constexpr std::string_view HandshakeAccepted = "OK";

struct Endpoint {
    std::uint16_t port = 0;
    std::string secret;
};

// Reads an endpoint file ({"Port": n, "Secret": "..."}); empty when it is missing or unreadable.
std::optional<Endpoint> ReadEndpointFile(const std::wstring& path);

// One connection, opened on first use and kept for the calls after it. Every call has a
// deadline. Failures throw CorvaneCommunicationException saying which: no endpoint, lost
// connection, time-out or refused handshake; the connection is then closed and the next call
// opens a new one.
class ConnectorLink {
public:
    explicit ConnectorLink(std::chrono::milliseconds timeout);
    ~ConnectorLink();
    ConnectorLink(const ConnectorLink&) = delete;
    ConnectorLink& operator=(const ConnectorLink&) = delete;

    std::string Call(const Endpoint& endpoint, std::string_view operation, std::string_view body);
    // Only connects and shakes hands (within the deadline); fails as Call does.
    void Open(const Endpoint& endpoint);
    void Close() noexcept;
    // Whether a connection is open and its other end has not closed it (closes it if so). A Call
    // right after a true answer does not ask again: each asking is a few system calls, and under
    // Wine each of those is a round trip to its server.
    bool Alive() noexcept;

    std::chrono::milliseconds Timeout() const { return timeout_; }

private:
    struct State;
    void Connect(const Endpoint& endpoint, std::chrono::steady_clock::time_point deadline);

    std::chrono::milliseconds timeout_;
    std::unique_ptr<State> state_;
};

} // namespace Corvane
