#include "tests/support/LoopbackServer.h"

#include <gtest/gtest.h>

#include <string>
#include <system_error>

using test::LoopbackServer;
using test::OwnedSocket;

namespace {

// A client of the platform's own; empty if the server turns it away.
OwnedSocket connectTo(LoopbackServer const& server) {
    OwnedSocket client(socket(AF_INET, SOCK_STREAM, IPPROTO_TCP));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(server.port());
    auto const* const place = reinterpret_cast<sockaddr const*>(&address);
    if (connect(client.get(), place, sizeof address) != 0)
        client.close();
    return client;
}

class LoopbackPeer : public testing::Test {
  protected:
    // What comes next; empty behind the end, which is the same for a reset here.
    std::string next() const {
        char bytes[8];
        auto const count = recv(m_client.get(), bytes, sizeof bytes, 0);
        return {bytes, count > 0 ? static_cast<std::size_t>(count) : 0};
    }

    LoopbackServer m_server;
    OwnedSocket m_client = connectTo(m_server);
    test::LoopbackPeer m_peer = m_server.accept();
};

} // namespace

TEST(LoopbackServer, HasACallerUntilItIsAccepted) {
    LoopbackServer const server;
    EXPECT_FALSE(server.hasCaller());
    auto const client = connectTo(server);
    EXPECT_TRUE(server.hasCaller());

    auto const peer = server.accept();

    EXPECT_FALSE(server.hasCaller());
}

TEST(LoopbackServer, RefusesUntilItListens) {
    LoopbackServer const server(LoopbackServer::refusing);
    EXPECT_EQ(INVALID_SOCKET, connectTo(server).get());

    server.listen();

    EXPECT_NE(INVALID_SOCKET, connectTo(server).get());
}

TEST_F(LoopbackPeer, Sends) {
    m_peer.send("abc");

    EXPECT_EQ("abc", next());
}

TEST_F(LoopbackPeer, SendsBackWhatComes) {
    EXPECT_EQ(3, send(m_client.get(), "abc", 3, 0));

    m_peer.echo(3);

    EXPECT_EQ("abc", next());
}

TEST_F(LoopbackPeer, ReceivesWhatCameBeforeTheEnd) {
    EXPECT_EQ(3, send(m_client.get(), "abc", 3, 0));
    m_client.close();

    EXPECT_EQ("abc", m_peer.receive(8));
}

TEST_F(LoopbackPeer, TricklesEveryByte) {
    m_peer.trickle("abc");
    m_peer.close();

    std::string received;
    for (auto piece = next(); !piece.empty(); piece = next())
        received += piece;
    EXPECT_EQ("abc", received);
}

TEST_F(LoopbackPeer, SendsOutOfBand) {
    m_peer.sendOutOfBand('!');

    fd_set sockets{1, {m_client.get()}};
    timeval limit{20, 0};
    EXPECT_EQ(1, select(0, nullptr, nullptr, &sockets, &limit));
}

TEST_F(LoopbackPeer, Closes) {
    m_peer.close();

    EXPECT_EQ("", next());
    EXPECT_EQ(1, send(m_client.get(), "x", 1, 0));
}

TEST_F(LoopbackPeer, ResetRefusesWhatIsSentThen) {
    m_peer.reset();
    EXPECT_EQ("", next());

    int count = 0;
    while (count != SOCKET_ERROR)
        count = send(m_client.get(), "x", 1, 0);

    EXPECT_EQ(WSAECONNRESET, WSAGetLastError());
}
