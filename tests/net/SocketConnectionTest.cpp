// A socket's connection, from its begin to its end.

#include "foundation/Platform.h"

#include <winsock2.h>

#include "vrUtils/TcpComms.h"

#include "ConnectCall.h"
#include "FailsOnSocket.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/HandleCount.h"
#include "tests/support/LoopbackServer.h"

#include <array>
#include <new>
#include <string>
#include <type_traits>
#include <vector>

using test::LoopbackServer;
using testing::ElementsAre;
using testing::IsEmpty;
using vrUtils::TcpComms::Socket;

namespace {

// A plain class of an address and a handle.
static_assert(!std::is_polymorphic_v<Socket> && sizeof(Socket) == 24);
static_assert(!std::is_copy_constructible_v<Socket> && std::is_copy_assignable_v<Socket>);

constexpr std::uint32_t notConnected = 0x80E0600B;

auto connecting(Socket& socket) {
    return [&socket] { socket.Connect(); };
}

auto FailsToConnect() {
    return FailsOnSocket(std::wstring(L"Failed to connect to server (127.0.0.1."), notConnected);
}

// The calls that close a connection, in order, carried out as they come.
class ClosingCalls {
  public:
    std::vector<std::string> const& calls() const noexcept { return m_calls; }

    std::vector<SOCKET> const& sockets() const noexcept { return m_sockets; }

  private:
    void record(std::string call, SOCKET socket) {
        m_calls.push_back(std::move(call));
        m_sockets.push_back(socket);
    }

    std::vector<std::string> m_calls;
    std::vector<SOCKET> m_sockets;
    test::ImportHook<decltype(shutdown)> const m_shutDown{
        "shutdown", [this](SOCKET socket, int how) {
            record("shutdown " + std::to_string(how), socket);
            return m_shutDown.original()(socket, how);
        }};
    test::ImportHook<decltype(closesocket)> const m_close{"closesocket", [this](SOCKET socket) {
                                                              record("close", socket);
                                                              return m_close.original()(socket);
                                                          }};
};

// What sockets are made, and the last one of them.
class SocketCalls {
  public:
    unsigned count() const noexcept { return m_hook.calls(); }

    std::vector<int> const& kind() const noexcept { return m_kind; }

    SOCKET made() const noexcept { return m_made; }

  private:
    std::vector<int> m_kind;
    SOCKET m_made = INVALID_SOCKET;
    test::ImportHook<decltype(socket)> const m_hook{
        "socket", [this](int family, int type, int protocol) {
            m_kind = {family, type, protocol};
            return m_made = m_hook.original()(family, type, protocol);
        }};
};

class SocketConnection : public testing::Test {
  protected:
    std::string exchange(test::LoopbackPeer const& peer, Socket const& socket) const {
        EXPECT_EQ(4u, socket.Send({'p', 'i', 'n', 'g'}, 4));
        return peer.receive(4);
    }

    LoopbackServer const m_server;
    Socket m_socket{L"127.0.0.1", m_server.port()};
};

class RefusedConnection : public testing::Test {
  protected:
    LoopbackServer const m_server{LoopbackServer::refusing};
    Socket m_socket{L"127.0.0.1", m_server.port()};
};

// A platform that is made to fail leaves nothing behind; the first session opens what stays.
class SocketSession : public testing::Test {
  protected:
    void SetUp() override { run(); }

    void run() {
        try {
            Socket socket(L"127.0.0.1", m_server.port());
            socket.Connect();
            auto const peer = m_server.accept();
            peer.send("x");
            std::vector<char> buffer(1);
            socket.Receive(&buffer, 20000);
            socket.Send(buffer, 1);
            socket.Disconnect();
        } catch (vrUtils::TcpComms::vrSocketException const&) {
        }
    }

    template <typename Call>
    void expectNothingLeftBy(test::FailingImport<Call> const& failing) {
        test::HandleLeakCheck const check;
        run();
        EXPECT_EQ(1u, failing.calls());
    }

    LoopbackServer const m_server;
};

} // namespace

TEST_F(SocketConnection, IsMadeByConnect) {
    EXPECT_FALSE(m_server.hasCaller());

    m_socket.Connect();

    EXPECT_EQ("ping", exchange(m_server.accept(), m_socket));
}

TEST_F(SocketConnection, IsMadeOverTcp) {
    SocketCalls const calls;

    m_socket.Connect();

    EXPECT_THAT(calls.kind(), ElementsAre(2, 1, 6));
}

TEST_F(SocketConnection, IsMadeWithTheNewSocketAndTheWholeAddress) {
    SocketCalls const calls;

    test::ConnectCall const call(m_socket);

    EXPECT_EQ(calls.made(), call.socket());
    EXPECT_EQ(16u, call.address().size());
}

TEST_F(SocketConnection, IsMadeOnce) {
    m_socket.Connect();
    auto const peer = m_server.accept();
    SocketCalls const calls;

    m_socket.Connect();

    EXPECT_EQ(0u, calls.count());
    EXPECT_FALSE(m_server.hasCaller());
    EXPECT_EQ("ping", exchange(peer, m_socket));
}

TEST_F(SocketConnection, IsNotMadeAnewWhereThePeerHasGone) {
    m_socket.Connect();
    m_server.accept().close();

    m_socket.Connect();

    EXPECT_FALSE(m_server.hasCaller());
}

TEST_F(SocketConnection, WithoutASocketFails) {
    test::FailingImport<decltype(socket)> const fails("socket", INVALID_SOCKET, WSAEMFILE);
    test::ImportHook<decltype(connect)> const connects("connect", [](auto...) { return 0; });
    ClosingCalls const closing;

    EXPECT_THAT(
        connecting(m_socket), FailsOnSocket(std::wstring(L"Error creating socket"), notConnected));

    EXPECT_EQ(0u, connects.calls());
    m_socket.Disconnect();
    EXPECT_THAT(closing.calls(), IsEmpty());
}

TEST_F(SocketConnection, IsMadeAtTheNextAttempt) {
    test::FailingImport<decltype(socket)> const fails("socket", INVALID_SOCKET, WSAEMFILE);
    EXPECT_ANY_THROW(m_socket.Connect());

    m_socket.Connect();

    EXPECT_EQ("ping", exchange(m_server.accept(), m_socket));
}

TEST_F(RefusedConnection, FailsWithTheAddress) {
    EXPECT_THAT(connecting(m_socket), FailsToConnect());
}

TEST_F(RefusedConnection, WritesEveryByteOfTheAddressInDecimal) {
    std::array<char, 4> bytes{'\xff', '\x00', '\x0a', '\xc8'};
    std::array<char*, 2> list{bytes.data(), nullptr};
    hostent entry{};
    entry.h_addr_list = list.data();
    test::ImportHook<decltype(gethostbyname)> const service(
        "gethostbyname", [&](char const*) { return &entry; });
    test::FailingImport<decltype(connect)> const fails("connect", SOCKET_ERROR, WSAECONNREFUSED);

    Socket socket(L"server", 1);

    EXPECT_THAT(
        connecting(socket),
        FailsOnSocket(std::wstring(L"Failed to connect to server (255.0.10.200."), notConnected));
}

TEST_F(RefusedConnection, IsClosedAtOnceAndOnlyOnce) {
    SocketCalls const calls;
    ClosingCalls const closing;

    EXPECT_ANY_THROW(m_socket.Connect());

    EXPECT_THAT(closing.calls(), ElementsAre("close"));
    EXPECT_THAT(closing.sockets(), ElementsAre(calls.made()));
    m_socket.Disconnect();
    EXPECT_THAT(closing.calls(), ElementsAre("close"));
}

TEST_F(RefusedConnection, CanBeTriedAgain) {
    EXPECT_ANY_THROW(m_socket.Connect());
    EXPECT_THAT(connecting(m_socket), FailsToConnect());
    m_server.listen();

    m_socket.Connect();

    EXPECT_TRUE(m_server.hasCaller());
}

TEST_F(RefusedConnection, IsClosedBeforeItsMessageIsMade) {
    ClosingCalls const closing;
    test::AllocationCounter counter;
    counter.failAt(1);

    EXPECT_THROW(m_socket.Connect(), std::bad_alloc);

    EXPECT_THAT(closing.calls(), ElementsAre("close"));
    m_server.listen();
    EXPECT_NO_THROW(m_socket.Connect());
}

TEST_F(RefusedConnection, LeavesNothingOpen) {
    EXPECT_ANY_THROW(m_socket.Connect());
    test::HandleLeakCheck const check;

    EXPECT_ANY_THROW(m_socket.Connect());
}

TEST_F(SocketConnection, EndsInBothDirectionsAndIsClosedThen) {
    SocketCalls const calls;
    m_socket.Connect();
    auto const peer = m_server.accept();
    ClosingCalls const closing;

    m_socket.Disconnect();

    EXPECT_THAT(closing.calls(), ElementsAre("shutdown 2", "close"));
    EXPECT_THAT(closing.sockets(), ElementsAre(calls.made(), calls.made()));
    EXPECT_EQ("", peer.receive(1));
}

TEST_F(SocketConnection, EndsOnce) {
    m_socket.Connect();
    m_socket.Disconnect();
    ClosingCalls const closing;

    m_socket.Disconnect();

    EXPECT_THAT(closing.calls(), IsEmpty());
}

TEST_F(SocketConnection, ThatWasNeverMadeDoesNotEnd) {
    ClosingCalls const closing;

    m_socket.Disconnect();
    { Socket const closed(L"127.0.0.1", m_server.port()); }

    EXPECT_THAT(closing.calls(), IsEmpty());
}

TEST_F(SocketConnection, EndsWithTheSocket) {
    ClosingCalls const closing;
    {
        Socket socket(L"127.0.0.1", m_server.port());
        socket.Connect();
    }

    EXPECT_THAT(closing.calls(), ElementsAre("shutdown 2", "close"));
    EXPECT_EQ("", m_server.accept().receive(1));
}

TEST_F(SocketConnection, CanBeMadeAgainAnyNumberOfTimes) {
    for (int round = 0; round < 3; ++round) {
        m_socket.Connect();
        EXPECT_EQ("ping", exchange(m_server.accept(), m_socket));
        m_socket.Disconnect();
    }
}

TEST_F(SocketConnection, EndsAlsoWhereThePlatformSaysItDoesNot) {
    m_socket.Connect();
    auto const peer = m_server.accept();
    test::FailingImport<decltype(shutdown)> const fails("shutdown", SOCKET_ERROR, WSAENOTCONN);
    test::ImportHook<decltype(closesocket)> const closes("closesocket", [&](SOCKET socket) {
        closes.original()(socket);
        return SOCKET_ERROR;
    });

    m_socket.Disconnect();
    m_socket.Disconnect();

    EXPECT_EQ(1u, fails.calls());
    EXPECT_EQ(1u, closes.calls());
    EXPECT_EQ("", peer.receive(1));
}

TEST_F(SocketConnection, IsSharedByAssignment) {
    m_socket.Connect();
    auto const peer = m_server.accept();
    Socket other(L"localhost", 1);
    ClosingCalls const closing;

    other = m_socket;

    EXPECT_EQ("ping", exchange(peer, other));
    EXPECT_EQ("ping", exchange(peer, m_socket));
    EXPECT_THAT(closing.calls(), IsEmpty());
}

TEST_F(SocketConnection, OfWhatIsAssignedToStaysOpen) {
    SocketCalls const calls;
    m_socket.Connect();
    auto const peer = m_server.accept();
    test::OwnedSocket const kept(calls.made());

    m_socket = Socket(L"localhost", 1);

    EXPECT_EQ(1, send(kept.get(), "x", 1, 0));
    EXPECT_EQ("x", peer.receive(1));
    EXPECT_ANY_THROW(m_socket.Send({'x'}, 1));
}

TEST_F(SocketConnection, SharedByTwoEndsForBothAndIsClosedTwice) {
    m_socket.Connect();
    auto const peer = m_server.accept();
    Socket other(L"localhost", 1);
    other = m_socket;
    ClosingCalls const closing;

    m_socket.Disconnect();
    EXPECT_ANY_THROW(other.Send({'x'}, 1));
    other.Disconnect();

    EXPECT_THAT(closing.calls(), ElementsAre("shutdown 2", "close", "shutdown 2", "close"));
    EXPECT_EQ(closing.sockets().front(), closing.sockets().back());
}

TEST_F(SocketConnection, GoesToTheAssignedServer) {
    Socket other(L"localhost", 1);

    other = m_socket;
    other.Connect();

    EXPECT_TRUE(m_server.hasCaller());
}

TEST_F(SocketSession, LeavesNothingBehind) {
    test::HandleLeakCheck const check;

    run();
}

TEST_F(SocketSession, LeavesNothingBehindWithoutAName) {
    expectNothingLeftBy(
        test::FailingImport<decltype(gethostbyaddr)>("gethostbyaddr", nullptr, WSANO_DATA));
}

TEST_F(SocketSession, LeavesNothingBehindWithoutASocket) {
    expectNothingLeftBy(
        test::FailingImport<decltype(socket)>("socket", INVALID_SOCKET, WSAENOBUFS));
}

TEST_F(SocketSession, LeavesNothingBehindUnconnected) {
    expectNothingLeftBy(
        test::FailingImport<decltype(connect)>("connect", SOCKET_ERROR, WSAETIMEDOUT));
}

TEST_F(SocketSession, LeavesNothingBehindWhereTheWaitFails) {
    expectNothingLeftBy(test::FailingImport<decltype(select)>("select", SOCKET_ERROR, WSAENOTSOCK));
}

TEST_F(SocketSession, LeavesNothingBehindWhereReceivingFails) {
    expectNothingLeftBy(test::FailingImport<decltype(recv)>("recv", SOCKET_ERROR, WSAECONNRESET));
}

TEST_F(SocketSession, LeavesNothingBehindWhereSendingFails) {
    expectNothingLeftBy(test::FailingImport<decltype(send)>("send", SOCKET_ERROR, WSAECONNRESET));
}

TEST_F(SocketSession, LeavesNothingBehindWhereItCannotShutDown) {
    expectNothingLeftBy(
        test::FailingImport<decltype(shutdown)>("shutdown", SOCKET_ERROR, WSAENOTCONN));
}
