#ifndef TESTS_SUPPORT_LOOPBACKSERVER_H
#define TESTS_SUPPORT_LOOPBACKSERVER_H

// A TCP server on the loopback address, which does what the test tells it to, when it is told:
//
//     test::LoopbackServer server;
//     Socket socket(L"127.0.0.1", server.port());
//     socket.Connect();
//     auto peer = server.accept();
//
//     peer.send("abc");
//     EXPECT_EQ(3u, socket.Receive(&buffer, 5000));
//     peer.reset();
//
// A client's connection stands before it is accepted, so that one thread can be both sides. A peer
// that is told nothing is one that never answers. What fails or takes longer than the ceiling throws
// std::system_error.

#include "foundation/Platform.h"

#include <winsock2.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace test {

// Owner of a socket of the tests' own.
class OwnedSocket {
  public:
    explicit OwnedSocket(SOCKET socket = INVALID_SOCKET) noexcept : m_socket(socket) {}

    OwnedSocket(OwnedSocket&& other) noexcept : m_socket(other.m_socket) {
        other.m_socket = INVALID_SOCKET;
    }

    OwnedSocket& operator=(OwnedSocket&& other) noexcept {
        std::swap(m_socket, other.m_socket);
        return *this;
    }

    ~OwnedSocket() { close(); }

    SOCKET get() const noexcept { return m_socket; }

    void close() noexcept {
        if (m_socket != INVALID_SOCKET)
            closesocket(m_socket);
        m_socket = INVALID_SOCKET;
    }

  private:
    SOCKET m_socket;
};

// The server's side of one connection.
class LoopbackPeer {
  public:
    LoopbackPeer() = default;

    explicit LoopbackPeer(OwnedSocket socket);

    // Sends all of it.
    void send(std::string_view bytes) const;

    // Sends each byte by itself.
    void trickle(std::string_view bytes) const;

    // Sends one byte that overtakes the others.
    void sendOutOfBand(char byte) const;

    // Waits for so many bytes; fewer only if the client has closed its side before.
    std::string receive(std::size_t count) const;

    // Sends back the next bytes that come.
    void echo(std::size_t count) const { send(receive(count)); }

    // Ends the connection in good order.
    void close() noexcept { m_socket.close(); }

    // Breaks the connection off.
    void reset();

  private:
    OwnedSocket m_socket;
};

class LoopbackServer {
  public:
    enum Start { listening, refusing };

    // @param start a refusing server has its port, and turns clients away until it is told to listen
    explicit LoopbackServer(Start start = listening);

    std::uint16_t port() const noexcept { return m_port; }

    void listen() const;

    // The next connection; waits for one.
    LoopbackPeer accept() const;

    // Whether a client has connected that is not accepted yet.
    bool hasCaller() const;

  private:
    OwnedSocket m_socket;
    std::uint16_t m_port = 0;
};

} // namespace test

#endif
