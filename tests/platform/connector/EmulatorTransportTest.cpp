// The transport to a running emulator: who is refused, what it answers to a body near the frame
// limit, and the client's time-out; every case ends with the emulator still serving.
#include "connector/ConnectorLink.h"
#include "connector/CorvaneClient.h"
#include "protocol/Envelope.h"
#include "support/EmulatorProcess.h"

#include <boost/asio/connect.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/write.hpp>

#include <gtest/gtest.h>

namespace {

using testsupport::EmulatorProcess;

TEST(EmulatorTransport, RefusesWhatItShouldAndKeepsServing) {
    EmulatorProcess emulator;
    const auto endpoint = emulator.Endpoint();
    Corvane::Endpoint wrong = endpoint;
    wrong.secret[0] = wrong.secret[0] == 'a' ? 'b' : 'a';
    Corvane::ConnectorLink link(std::chrono::seconds(5));
    try {
        link.Call(wrong, "ready", "");
        ADD_FAILURE() << "answered without the secret";
    } catch (const Corvane::CorvaneCommunicationException& error) {
        EXPECT_NE(std::string::npos, std::string(error.what()).find("handshake refused"))
            << error.what();
    }

    // Garbage: a frame header claiming 4 GB, then noise; and a client that says nothing at all.
    namespace asio = boost::asio;
    asio::io_context io;
    asio::ip::tcp::socket garbage(io);
    asio::ip::tcp::socket silent(io);
    const asio::ip::tcp::endpoint address(asio::ip::address_v4::loopback(), endpoint.port);
    garbage.connect(address);
    silent.connect(address);
    // Asynchronous, with a deadline: a connection the emulator failed to close fails the test
    // instead of holding it up.
    const unsigned char noise[] = {0xFF, 0xFF, 0xFF, 0xFF, 'n', 'o', 'i', 's', 'e'};
    boost::system::error_code closed = asio::error::would_block;
    char byte = 0;
    asio::async_write(garbage, asio::buffer(noise), [&](boost::system::error_code, std::size_t) {
        garbage.async_read_some(asio::buffer(&byte, 1),
                                [&](boost::system::error_code e, std::size_t) { closed = e; });
    });
    io.run_for(std::chrono::seconds(10));
    // Closed on it: end of file, or a reset when the noise was still unread.
    EXPECT_TRUE(closed == asio::error::eof || closed == asio::error::connection_reset ||
                closed == asio::error::connection_aborted)
        << closed.message();

    EXPECT_EQ(R"({"Ready":true})", link.Call(endpoint, "ready", ""));
    // The connection is kept for the next call, and looking at it does not end it.
    EXPECT_TRUE(link.Alive());
    EXPECT_TRUE(link.Alive());

    // A body near the frame limit is read whole and refused (code 7); what else a hostile body
    // gets is checked in process (tests/tools/corvane_emulator/HandlerTest).
    Corvane::ConnectorLink patient(std::chrono::seconds(20));
    const Corvane::CommandIO::CommandOutputBase refused(patient.Call(
        endpoint, "execute",
        R"({"Command":"GETPROPERTIES","SessionId":")" + std::string(50u << 20u, 's') + "\"}"));
    ASSERT_EQ(1u, refused.Errors.size());
    EXPECT_EQ(7, refused.Errors[0]->ErrorCode);

    // A call past its time-out says so, and the next call works. Held far longer than the time-out,
    // which is long enough for any answer not held back.
    emulator.Control(
        R"({"Action":"fault","Command":"GETCONNECTIONSTATUS","LatencyMs":600000,"Times":1})");
    Corvane::ConnectorLink hasty(std::chrono::seconds(3));
    const std::string status = R"({"Command":"GETCONNECTIONSTATUS","SessionId":"x"})";
    try {
        hasty.Call(endpoint, "execute", status);
        ADD_FAILURE() << "no time-out";
    } catch (const Corvane::CorvaneCommunicationException& error) {
        EXPECT_NE(std::string::npos, std::string(error.what()).find("time-out")) << error.what();
    }
    const Corvane::CommandIO::CommandOutputBase answer(hasty.Call(endpoint, "execute", status));
    ASSERT_EQ(1u, answer.Errors.size());
    EXPECT_EQ(3, answer.Errors[0]->ErrorCode); // unknown session, answered at once
}

} // namespace
