// Serves the Handler over the local transport (platform/connector/ConnectorLink.h describes it):
// loopback TCP on a port the system picks, a secret made for this start, one frame per message.
// One thread runs everything, so commands never overlap; a connection that waits (latency set
// through the control interface, a slow client) holds up nobody else.
//
// Connections that have not presented the secret yet have a few places of their own and a short
// time to present it: a newcomer beyond those places pushes out the one waiting longest, so no
// number of silent or wrong clients keeps out one that has the secret. Whatever ends that way is
// logged as a count per second, not a line each.
#pragma once

#include "Handler.h"

#include <boost/asio/io_context.hpp>
#include <boost/json/object.hpp>

#include <cstdint>
#include <memory>
#include <string>

namespace vanto::emulator {

class Server {
public:
    // A client that has not presented the secret after this long is dropped.
    static constexpr int HandshakeTimeoutMs = 2000;
    // Connections waiting to present the secret, and connections that have.
    static constexpr std::size_t MaxWaiting = 16;
    static constexpr std::size_t MaxConnections = 256;

    Server(boost::asio::io_context& io, Handler& handler, EventLog& log, std::uint16_t port = 0);
    ~Server();
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    std::uint16_t Port() const;
    const std::string& Secret() const { return secret_; }

    // Writes {"Port": ..., "Secret": ..., "Pid": ..., and `more`} to `path` with permissions for
    // this user alone, replacing the file in one step.
    void WriteEndpointFile(const std::string& path, boost::json::object more = {}) const;
    // Removes it when it still holds `secret` (another emulator may have replaced it).
    static void RemoveEndpointFile(const std::string& path, const std::string& secret);

private:
    class Connection;
    void Accept();

    struct State;
    std::shared_ptr<State> state_;
    std::string secret_;
};

} // namespace vanto::emulator
