// What a socket sends and receives.

#include "foundation/Platform.h"

#include <winsock2.h>

#include "vrUtils/TcpComms.h"

#include "FailsOnSocket.h"
#include "tests/support/ImportHook.h"
#include "tests/support/LoopbackServer.h"

#include <chrono>
#include <climits>
#include <cstddef>
#include <string>
#include <thread>
#include <utility>
#include <vector>

using testing::ElementsAre;
using vrUtils::TcpComms::Socket;

namespace {

// Longer than anything takes here.
constexpr unsigned long longEnough = 20000;

std::vector<char> bytesOf(std::string const& text) { return {text.begin(), text.end()}; }

class SocketTransfer : public testing::Test {
  protected:
    void SetUp() override {
        m_socket.Connect();
        m_peer = m_server.accept();
    }

    unsigned long send(std::string const& text) const {
        return m_socket.Send(bytesOf(text), static_cast<unsigned long>(text.size()));
    }

    // What comes next, up to so many bytes.
    std::string receive(std::size_t room, unsigned long milliseconds = longEnough) const {
        std::vector<char> buffer(room);
        auto const count = m_socket.Receive(&buffer, milliseconds);
        return {buffer.data(), count};
    }

    // All that comes, until it is so much or nothing comes any more.
    std::string receiveAll(std::size_t size) const {
        std::string received;
        while (received.size() < size) {
            auto const piece = receive(size - received.size());
            if (piece.empty())
                break;
            received += piece;
        }
        return received;
    }

    auto sending() const {
        return [this] { send("x"); };
    }

    auto receiving() const {
        return [this] { receive(1); };
    }

    test::LoopbackServer const m_server;
    Socket m_socket{L"127.0.0.1", m_server.port()};
    test::LoopbackPeer m_peer;
};

auto FailsToSend() { return FailsOnSocket(std::wstring(L"Error sending to socket"), 0x80004005u); }

auto FailsToReceive() {
    return FailsOnSocket(std::wstring(L"Error receiving from socket"), 0x80004005u);
}

auto FailsWaiting() {
    return FailsOnSocket(std::wstring(L"Socket error waiting for data"), 0x80E06034u);
}

// Answers the wait for data, and leaves the sets as the answer makes them.
class WaitAnswer {
  public:
    WaitAnswer(int result, bool isReadable, bool isExceptional)
        : m_hook("select", [=](int, auto readable, auto, auto exceptional, auto) {
              if (!isReadable)
                  FD_ZERO(readable);
              if (!isExceptional)
                  FD_ZERO(exceptional);
              return result;
          }) {}

  private:
    test::ImportHook<decltype(select)> m_hook;
};

class SocketTimeLimit
    : public SocketTransfer,
      public testing::WithParamInterface<std::pair<unsigned long, std::pair<long, long>>> {};

INSTANTIATE_TEST_SUITE_P(
    , SocketTimeLimit,
    testing::Values(
        std::pair(0ul, std::pair(0l, 0l)), std::pair(1ul, std::pair(0l, 1000l)),
        std::pair(150ul, std::pair(0l, 150000l)), std::pair(999ul, std::pair(0l, 999000l)),
        std::pair(1000ul, std::pair(1l, 0l)), std::pair(1500ul, std::pair(1l, 500000l)),
        std::pair(0xFFFFFFFFul, std::pair(4294967l, 295000l))));

} // namespace

TEST_F(SocketTransfer, SendsAllBytes) {
    EXPECT_EQ(5u, m_socket.Send({'a', '\0', '\xff', '\r', '\n'}, 5));

    EXPECT_EQ(std::string("a\0\xff\r\n", 5), m_peer.receive(5));
}

TEST_F(SocketTransfer, SendsOnlyTheFirstBytesOfTheVector) {
    EXPECT_EQ(3u, m_socket.Send(bytesOf("abcdef"), 3));
    m_socket.Disconnect();

    EXPECT_EQ("abc", m_peer.receive(6));
}

TEST_F(SocketTransfer, SendsNothing) { EXPECT_EQ(0u, m_socket.Send({}, 0)); }

TEST_F(SocketTransfer, SendsFromTheVectorItself) {
    auto const data = bytesOf("abc");
    test::ImportHook<decltype(::send)> const hook(
        "send", [&](SOCKET, char const* bytes, int length, int flags) {
            EXPECT_EQ(data.data(), bytes);
            EXPECT_EQ(2, length);
            EXPECT_EQ(0, flags);
            return length;
        });

    m_socket.Send(data, 2);

    EXPECT_EQ(1u, hook.calls());
}

TEST_F(SocketTransfer, ShortSendIsTheCallersBusiness) {
    test::ImportHook<decltype(::send)> const hook("send", [](auto...) { return 2; });

    EXPECT_EQ(2u, send("abcdef"));

    EXPECT_EQ(1u, hook.calls());
}

TEST_F(SocketTransfer, DoesNotLookAtTheSizeOfTheVector) {
    int length = 0;
    test::ImportHook<decltype(::send)> const hook(
        "send", [&](SOCKET, char const*, int count, int) { return length = count; });

    EXPECT_EQ(1000u, m_socket.Send(bytesOf("abc"), 1000));

    EXPECT_EQ(1000, length);
}

TEST_F(SocketTransfer, SendsNoMoreThanTheTransportCanCount) {
    std::vector<int> lengths;
    test::ImportHook<decltype(::send)> const hook("send", [&](SOCKET, char const*, int count, int) {
        lengths.push_back(count);
        return count;
    });

    EXPECT_EQ(0x7FFFFFFFu, m_socket.Send(bytesOf("abc"), 0x7FFFFFFF));
    EXPECT_EQ(0x7FFFFFFFu, m_socket.Send(bytesOf("abc"), 0x80000000));
    EXPECT_EQ(0x7FFFFFFFu, m_socket.Send(bytesOf("abc"), 0xFFFFFFFF));

    EXPECT_THAT(lengths, ElementsAre(INT_MAX, INT_MAX, INT_MAX));
}

TEST_F(SocketTransfer, SendingClosedFails) {
    m_socket.Disconnect();
    SOCKET used = 0;
    test::ImportHook<decltype(::send)> const hook("send", [&](SOCKET socket, auto... arguments) {
        used = socket;
        return hook.original()(socket, arguments...);
    });

    EXPECT_THAT(sending(), FailsToSend());

    EXPECT_EQ(INVALID_SOCKET, used);
}

TEST_F(SocketTransfer, StaysOpenAfterAFailedSend) {
    test::FailingImport<decltype(::send)> const fails("send", SOCKET_ERROR, WSAENOBUFS);
    EXPECT_THAT(sending(), FailsToSend());

    EXPECT_EQ(3u, send("abc"));

    EXPECT_EQ("abc", m_peer.receive(3));
}

TEST_F(SocketTransfer, SendingToAPeerThatBrokeOffFailsInTheEnd) {
    m_peer.reset();

    EXPECT_THAT(
        [this] {
            while (send("x") == 1) {
            }
        },
        FailsToSend());
}

TEST_F(SocketTransfer, ReceivesWhatHasCome) {
    m_peer.send("abc");

    EXPECT_EQ("abc", receive(3));
}

TEST_F(SocketTransfer, LeavesTheVectorAsLargeAsItIs) {
    m_peer.send("ab");
    auto buffer = bytesOf("......");
    buffer.reserve(100);

    EXPECT_EQ(2u, m_socket.Receive(&buffer, longEnough));

    EXPECT_EQ(bytesOf("ab...."), buffer);
}

TEST_F(SocketTransfer, ReceivesIntoTheVectorItself) {
    m_peer.send("abc");
    std::vector<char> buffer(7);
    buffer.reserve(100);
    test::ImportHook<decltype(recv)> const hook(
        "recv", [&](SOCKET, char* bytes, int length, int flags) {
            EXPECT_EQ(buffer.data(), bytes);
            EXPECT_EQ(7, length);
            EXPECT_EQ(0, flags);
            return 5;
        });

    EXPECT_EQ(5u, m_socket.Receive(&buffer, longEnough));

    EXPECT_EQ(1u, hook.calls());
}

TEST_F(SocketTransfer, LeavesWhatDoesNotFitForTheNextCall) {
    m_peer.send("abcdef");

    EXPECT_EQ("abcd", receiveAll(4));
    EXPECT_EQ("ef", receiveAll(2));
}

TEST_F(SocketTransfer, EmptyVectorReceivesNothing) {
    m_peer.send("abc");

    EXPECT_EQ("", receive(0));

    EXPECT_EQ("abc", receiveAll(3));
}

TEST_F(SocketTransfer, EmptyVectorIsReceivedInto) {
    m_peer.send("abc");
    int length = -1;
    test::ImportHook<decltype(recv)> const hook(
        "recv", [&](SOCKET, char*, int room, int) { return length = room; });

    EXPECT_EQ("", receive(0));

    EXPECT_EQ(0, length);
}

TEST_F(SocketTransfer, PeerThatClosesGivesNothing) {
    m_peer.send("abc");
    m_peer.close();

    EXPECT_EQ("abc", receiveAll(3));
    EXPECT_EQ("", receive(1));
}

TEST_F(SocketTransfer, PeerThatSaysNothingGivesNothing) {
    test::ImportHook<decltype(recv)> const hook("recv", [](auto...) { return 1; });

    EXPECT_EQ("", receive(1, 0));

    EXPECT_EQ(0u, hook.calls());
}

TEST_F(SocketTransfer, WaitsUntilTheTimeHasPassed) {
    auto const begin = std::chrono::steady_clock::now();

    EXPECT_EQ("", receive(1, 150));

    auto const time = std::chrono::steady_clock::now() - begin;
    // The platform's clocks do not tick together.
    EXPECT_GT(time, std::chrono::milliseconds(130));
}

TEST_P(SocketTimeLimit, IsToldInSecondsAndMicroseconds) {
    std::pair<long, long> told;
    test::ImportHook<decltype(select)> const hook("select", [&](int, auto, auto, auto, auto limit) {
        told = {limit->tv_sec, limit->tv_usec};
        return 0;
    });

    EXPECT_EQ("", receive(1, GetParam().first));

    EXPECT_EQ(GetParam().second, told);
}

TEST_F(SocketTransfer, WaitsForThisSocketAlone) {
    SOCKET sent = INVALID_SOCKET;
    test::ImportHook<decltype(::send)> const sends("send", [&](SOCKET socket, auto...) {
        sent = socket;
        return 1;
    });
    send("x");
    test::ImportHook<decltype(select)> const hook(
        "select", [&](int count, auto readable, auto writable, auto exceptional, auto) {
            EXPECT_EQ(1, count);
            EXPECT_EQ(nullptr, writable);
            for (auto const* const set : {readable, exceptional}) {
                EXPECT_EQ(1u, set->fd_count);
                EXPECT_EQ(sent, set->fd_array[0]);
            }
            EXPECT_NE(readable, exceptional);
            return 0;
        });

    receive(1);

    EXPECT_EQ(1u, hook.calls());
}

TEST_F(SocketTransfer, FailedWaitGivesNothing) {
    m_peer.send("abc");
    WaitAnswer const failure(SOCKET_ERROR, true, true);
    test::ImportHook<decltype(recv)> const receives("recv", [](auto...) { return 1; });

    EXPECT_EQ("", receive(1));

    EXPECT_EQ(0u, receives.calls());
}

TEST_F(SocketTransfer, WaitThatEndsWithoutAnySocketGivesNothing) {
    WaitAnswer const timeOut(0, true, true);

    EXPECT_EQ("", receive(1));
}

TEST_F(SocketTransfer, ReceivingClosedGivesNothing) {
    m_socket.Disconnect();

    EXPECT_EQ("", receive(1));
}

TEST_F(SocketTransfer, ErrorOfTheSocketFailsAlsoWhereDataHasCome) {
    m_peer.send("abc");
    {
        WaitAnswer const both(2, true, true);
        EXPECT_THAT(receiving(), FailsWaiting());
    }

    EXPECT_EQ("abc", receiveAll(3));
}

TEST_F(SocketTransfer, ErrorOfTheSocketFailsWithoutData) {
    WaitAnswer const error(1, false, true);

    EXPECT_THAT(receiving(), FailsWaiting());
}

TEST_F(SocketTransfer, WaitForAnotherSocketGivesNothing) {
    m_peer.send("abc");
    WaitAnswer const neither(1, false, false);

    EXPECT_EQ("", receive(1));
}

TEST_F(SocketTransfer, ByteThatOvertakesOthersIsAnError) {
    m_peer.sendOutOfBand('!');

    EXPECT_THAT(receiving(), FailsWaiting());
}

TEST_F(SocketTransfer, StaysOpenAfterAFailedReceive) {
    m_peer.send("abc");
    test::FailingImport<decltype(recv)> const fails("recv", SOCKET_ERROR, WSAECONNRESET);
    EXPECT_THAT(receiving(), FailsToReceive());

    EXPECT_EQ("abc", receiveAll(3));
}

TEST_F(SocketTransfer, ReceivesATrickle) {
    std::string const text(200, 'x');
    std::thread peer([&] { m_peer.trickle(text); });

    EXPECT_EQ(text, receiveAll(text.size()));

    peer.join();
}

TEST_F(SocketTransfer, SendsInOneThreadAndReceivesInAnother) {
    // More than the transport holds, so that neither direction gets by without the other.
    std::string const text(4 << 20, 'x');
    constexpr std::size_t pieces = 64;
    std::thread peer([&] {
        for (std::size_t piece = 0; piece < pieces; ++piece)
            m_peer.echo(text.size() / pieces);
    });
    std::thread sender([&] {
        for (std::size_t sent = 0; sent < text.size();)
            sent += send(text.substr(sent, 65536));
    });

    EXPECT_TRUE(text == receiveAll(text.size()));

    sender.join();
    peer.join();
}

TEST_F(SocketTransfer, CanBeDoneByAConstantSocket) {
    Socket const& constant = m_socket;
    std::vector<char> buffer(1);

    constant.Send({'x'}, 1);
    m_peer.echo(1);

    EXPECT_EQ(1u, constant.Receive(&buffer, longEnough));
}
