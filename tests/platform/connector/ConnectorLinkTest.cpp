// The link against a server of the test's own: an answer that comes in pieces, each far larger
// than one read takes, arrives whole and in order.
#include "connector/ConnectorLink.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/write.hpp>

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <thread>

namespace {

namespace asio = boost::asio;
using asio::ip::tcp;

std::string Frame(const std::string& body) {
    const auto header = Corvane::FrameHeader(body.size());
    return std::string(header.begin(), header.end()) + body;
}

std::string ReadFrame(tcp::socket& socket) {
    std::array<unsigned char, 4> header{};
    asio::read(socket, asio::buffer(header));
    std::string body(Corvane::FrameLength(header.data()), '\0');
    asio::read(socket, asio::buffer(body));
    return body;
}

TEST(ConnectorLink, AnAnswerInPiecesArrivesWhole) {
    std::string answer(3u << 20u, '\0');
    for (std::size_t i = 0; i < answer.size(); ++i) {
        answer[i] = static_cast<char>('a' + i % 23);
    }
    asio::io_context io;
    tcp::acceptor acceptor(io, {asio::ip::address_v4::loopback(), 0});
    std::string request;
    std::thread server([&] {
        tcp::socket socket = acceptor.accept();
        ReadFrame(socket); // the greeting
        asio::write(socket, asio::buffer(Frame(std::string(Corvane::HandshakeAccepted))));
        request = ReadFrame(socket);
        const std::string frame = Frame(answer);
        // The header alone first, then the body in three pieces with pauses between them.
        std::size_t from = 0;
        for (const std::size_t end :
             {std::size_t{4}, frame.size() / 3, frame.size() * 2 / 3, frame.size()}) {
            asio::write(socket, asio::buffer(frame.data() + from, end - from));
            from = end;
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        boost::system::error_code closed;
        asio::read(socket, asio::buffer(&from, 1), closed); // until the link closes
    });
    Corvane::ConnectorLink link(std::chrono::seconds(10));
    const Corvane::Endpoint endpoint{acceptor.local_endpoint().port(), "secret"};
    std::string received;
    EXPECT_NO_THROW(received = link.Call(endpoint, "execute", "{}"));
    link.Close();
    server.join();
    EXPECT_EQ("execute\n{}", request);
    EXPECT_TRUE(received == answer) << "received " << received.size() << " bytes";
}

} // namespace
