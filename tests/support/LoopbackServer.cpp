#include "tests/support/LoopbackServer.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/OwnedHandle.h"

#include <chrono>
#include <utility>

namespace test {

namespace {

void require(bool isDone, char const* what) {
    auto const error = static_cast<DWORD>(WSAGetLastError());
    if (!isDone)
        throw platformFailure(error, what);
}

bool isReadable(SOCKET socket, std::chrono::seconds time) {
    fd_set sockets{1, {socket}};
    timeval limit{static_cast<long>(time.count()), 0};
    return select(0, &sockets, nullptr, nullptr, &limit) == 1;
}

template <typename Value>
void setOption(SOCKET socket, int level, int option, Value value) {
    auto const* const bytes = reinterpret_cast<char const*>(&value);
    require(setsockopt(socket, level, option, bytes, sizeof value) == 0, "setsockopt");
}

} // namespace

LoopbackPeer::LoopbackPeer(OwnedSocket socket) : m_socket(std::move(socket)) {
    auto const limit = std::chrono::milliseconds(ceiling).count();
    setOption(m_socket.get(), SOL_SOCKET, SO_RCVTIMEO, static_cast<DWORD>(limit));
    setOption(m_socket.get(), SOL_SOCKET, SO_SNDTIMEO, static_cast<DWORD>(limit));
    // Otherwise the bytes of a trickle would be gathered.
    setOption(m_socket.get(), IPPROTO_TCP, TCP_NODELAY, DWORD{TRUE});
}

void LoopbackPeer::send(std::string_view bytes) const {
    while (!bytes.empty()) {
        auto const count = ::send(m_socket.get(), bytes.data(), static_cast<int>(bytes.size()), 0);
        require(count != SOCKET_ERROR, "send");
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
}

void LoopbackPeer::trickle(std::string_view bytes) const {
    for (auto const byte : bytes)
        send({&byte, 1});
}

void LoopbackPeer::sendOutOfBand(char byte) const {
    require(::send(m_socket.get(), &byte, 1, MSG_OOB) == 1, "send out of band");
}

std::string LoopbackPeer::receive(std::size_t count) const {
    std::string bytes(count, '\0');
    std::size_t size = 0;
    while (size < count) {
        auto const room = static_cast<int>(count - size);
        auto const received = recv(m_socket.get(), bytes.data() + size, room, 0);
        require(received != SOCKET_ERROR, "recv");
        if (received == 0)
            break;
        size += static_cast<std::size_t>(received);
    }
    bytes.resize(size);
    return bytes;
}

void LoopbackPeer::reset() {
    setOption(m_socket.get(), SOL_SOCKET, SO_LINGER, linger{1, 0});
    close();
}

LoopbackServer::LoopbackServer(Start start) : m_socket(socket(AF_INET, SOCK_STREAM, IPPROTO_TCP)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    auto* const place = reinterpret_cast<sockaddr*>(&address);
    int size = sizeof address;
    require(bind(m_socket.get(), place, size) == 0, "bind");
    require(getsockname(m_socket.get(), place, &size) == 0, "getsockname");
    m_port = ntohs(address.sin_port);
    if (start == listening)
        listen();
}

void LoopbackServer::listen() const { require(::listen(m_socket.get(), SOMAXCONN) == 0, "listen"); }

LoopbackPeer LoopbackServer::accept() const {
    require(isReadable(m_socket.get(), ceiling), "wait for a connection");
    OwnedSocket connection(::accept(m_socket.get(), nullptr, nullptr));
    require(connection.get() != INVALID_SOCKET, "accept");
    return LoopbackPeer(std::move(connection));
}

bool LoopbackServer::hasCaller() const {
    return isReadable(m_socket.get(), std::chrono::seconds(0));
}

} // namespace test
