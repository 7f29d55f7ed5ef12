#include "vrUtils/TcpComms.h"

#include "foundation/FailureCodes.h"
#include "foundation/Message.h"
#include "foundation/Platform.h"
#include "foundation/Text.h"

#include <winsock2.h>

#include <algorithm>
#include <cctype>
#include <climits>
#include <cstring>

namespace vrUtils::TcpComms {

namespace {

static_assert(sizeof(sockaddr_in) == 16 && sizeof(SOCKET) == sizeof(std::uintptr_t));
static_assert(INVALID_SOCKET == ~std::uintptr_t{0});

[[noreturn]] void fail(std::uint32_t line, std::wstring const& message, std::uint32_t code) {
    throw vrSocketException("TcpComms", line, message, code);
}

// What is no name must be an address that has one.
hostent const* lookUp(std::string const& host) {
    if (std::isalpha(static_cast<unsigned char>(host.c_str()[0])))
        return gethostbyname(host.c_str());
    auto const address = inet_addr(host.c_str());
    return gethostbyaddr(reinterpret_cast<char const*>(&address), sizeof address, AF_INET);
}

std::wstring dotted(in_addr const& address) {
    auto const& bytes = address.S_un.S_un_b;
    return composeMessage(
        unsigned{bytes.s_b1}, L'.', unsigned{bytes.s_b2}, L'.', unsigned{bytes.s_b3}, L'.',
        unsigned{bytes.s_b4}, L'.');
}

// The transport counts with a sign.
int cutToInt(std::size_t length) {
    return static_cast<int>(std::min<std::size_t>(length, INT_MAX));
}

} // namespace

Socket::Socket(std::wstring const& host, std::uint16_t port) {
    auto const* const entry = lookUp(Strings::wideToNarrow(host));
    if (!entry || !entry->h_addr_list[0])
        fail(
            __LINE__, composeMessage(L"Failed to get inet address for server [", host, L']'),
            ServerNotResolved);

    sockaddr_in address{};
    address.sin_family = AF_INET;
    std::memcpy(&address.sin_addr, entry->h_addr_list[0], sizeof address.sin_addr);
    address.sin_port = htons(port);
    std::memcpy(m_address.data(), &address, sizeof address);
}

Socket& Socket::operator=(Socket const&) = default;

Socket::~Socket() { Disconnect(); }

void Socket::Connect() {
    if (m_socket != noSocket)
        return;

    m_socket = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    if (m_socket == noSocket)
        fail(__LINE__, L"Error creating socket", SocketNotConnected);

    sockaddr_in address;
    std::memcpy(&address, m_address.data(), sizeof address);
    if (connect(m_socket, reinterpret_cast<sockaddr const*>(&address), sizeof address) ==
        SOCKET_ERROR) {
        closesocket(m_socket);
        m_socket = noSocket;
        // Readers of the logs know the text as it is, its parenthesis open.
        fail(
            __LINE__, composeMessage(L"Failed to connect to server (", dotted(address.sin_addr)),
            SocketNotConnected);
    }
}

void Socket::Disconnect() {
    if (m_socket == noSocket)
        return;
    shutdown(m_socket, SD_BOTH);
    closesocket(m_socket);
    m_socket = noSocket;
}

unsigned long Socket::Send(std::vector<char> const& data, unsigned long length) const {
    auto const count = send(m_socket, data.data(), cutToInt(length), 0);
    if (count == SOCKET_ERROR)
        fail(__LINE__, L"Error sending to socket", GeneralFailure);
    return static_cast<unsigned long>(count);
}

unsigned long Socket::Receive(std::vector<char>* buffer, unsigned long milliseconds) const {
    if (!_checkSocketForData(milliseconds))
        return 0;
    auto const count = recv(m_socket, buffer->data(), cutToInt(buffer->size()), 0);
    if (count == SOCKET_ERROR)
        fail(__LINE__, L"Error receiving from socket", GeneralFailure);
    return static_cast<unsigned long>(count);
}

bool Socket::_checkSocketForData(unsigned long milliseconds) const {
    fd_set readable;
    FD_ZERO(&readable);
    FD_SET(m_socket, &readable);
    fd_set exceptional = readable;
    timeval limit{
        static_cast<long>(milliseconds / 1000), static_cast<long>(milliseconds % 1000 * 1000)};
    if (select(1, &readable, nullptr, &exceptional, &limit) < 1)
        return false;

    if (FD_ISSET(m_socket, &exceptional))
        fail(__LINE__, L"Socket error waiting for data", SocketFailedWaiting);
    return FD_ISSET(m_socket, &readable) != 0;
}

} // namespace vrUtils::TcpComms
