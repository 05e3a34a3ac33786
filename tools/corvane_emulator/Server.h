// Serves the Handler over the local transport (platform/connector/ConnectorLink.h describes it):
// loopback TCP on a port the system picks, a secret made for this start, one frame per message.
// One thread runs everything, so commands never overlap; a connection that waits (latency set
// through the control interface, a slow client) holds up nobody else.
#pragma once

#include "Handler.h"

#include <boost/asio/io_context.hpp>

#include <cstdint>
#include <memory>
#include <string>

namespace vanto::emulator {

class Server {
public:
    // A client that has not presented the secret after this long is dropped.
    static constexpr int HandshakeTimeoutMs = 5000;
    static constexpr std::size_t MaxConnections = 256;

    Server(boost::asio::io_context& io, Handler& handler, std::uint16_t port = 0);
    ~Server();
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    std::uint16_t Port() const;
    const std::string& Secret() const { return secret_; }

    // Writes {"Port": ..., "Secret": ..., "Pid": ...} to `path` with permissions for this user
    // alone, replacing the file in one step.
    void WriteEndpointFile(const std::string& path) const;

private:
    class Connection;
    void Accept();

    struct State;
    std::shared_ptr<State> state_;
    std::string secret_;
};

} // namespace vanto::emulator
