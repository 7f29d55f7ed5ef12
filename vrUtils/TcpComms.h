#ifndef VRUTILS_TCPCOMMS_H
#define VRUTILS_TCPCOMMS_H

/// @file
/// TCP sockets, and the small grammar of endpoint strings.
///
/// An endpoint string is a host, a name or a dotted IPv4 address, with or without a colon and a
/// decimal port behind it. Only the first colon counts, so IPv6 addresses have no place in it.
///
/// The library does not start the platform's socket layer: a host program calls `WSAStartup` before
/// it makes a `Socket`.

#include "vrUtils/vrException.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace vrUtils::TcpComms {

/// A socket operation failed; source name "TcpComms". The code tells at what: 0x80E0605C resolving
/// an address, 0x80E0600B creating or connecting, 0x80004005 sending or receiving, 0x80E06034
/// waiting.
class VRUTILS_API vrSocketException : public vrException {
  public:
    /// The constructors of `vrException`.
    using vrException::vrException;
    /// All fields of another failure, under this class.
    explicit vrSocketException(vrException const& failure) : vrException(failure) {}
};

/// A connection to a server, over IPv4. It is closed until `Connect`, and may be opened and closed
/// again any number of times. Nothing notices a peer that has gone before the next `Send` or
/// `Receive`.
///
/// **Assigning copies the handle's value**: the first of the two objects to close leaves the other
/// one with a dead handle. Copies cannot be constructed.
///
/// One thread may send while another receives; `Connect` and `Disconnect` must not run beside any
/// other call on the same object.
///
/// @code
/// Socket server(L"interplay01", 60774);
/// server.Connect();
/// server.Send(request, static_cast<unsigned long>(request.size()));
/// std::vector<char> answer(4096);
/// answer.resize(server.Receive(&answer, 5000));
/// @endcode
class VRUTILS_API Socket {
  public:
    /// Looks the server's address up; connects to nothing yet.
    /// @param host a name that begins with a letter; anything else is read as a dotted address,
    ///        which must have a name too. The first address counts
    /// @throws vrSocketException "Failed to get inet address for server [HOST]", code 0x80E0605C
    Socket(std::wstring const& host, std::uint16_t port);
    Socket(Socket const&) = delete;

    /// Takes address and handle as they stand; what this object held stays open.
    Socket& operator=(Socket const& other);

    /// `Disconnect`.
    ~Socket();

    /// Connects, for as long as the transport takes to decide. Does nothing if the socket is open.
    /// @throws vrSocketException "Error creating socket", or "Failed to connect to server (" and the
    ///         four bytes of the address in decimal with a dot behind each; code 0x80E0600B. The
    ///         socket is closed then, and may be connected again
    void Connect();

    /// Closes the connection in both directions; does nothing if it is closed.
    void Disconnect();

    /// Sends once.
    /// @param length how many bytes of the vector; that it has so many is not looked at
    /// @return how many bytes the transport took, which may be fewer
    /// @throws vrSocketException "Error sending to socket", code 0x80004005; the socket stays as it
    ///         is
    unsigned long Send(std::vector<char> const& data, unsigned long length) const;

    /// Receives once.
    /// @param buffer not null; its size at the call is the most that is received, and stays
    /// @param milliseconds how long to wait for something to come; 0 asks without waiting
    /// @return how many bytes came; 0 if the time passed, and if the peer closed the connection
    /// @throws vrSocketException "Socket error waiting for data", code 0x80E06034; "Error receiving
    ///         from socket", code 0x80004005; the socket stays as it is
    unsigned long Receive(std::vector<char>* buffer, unsigned long milliseconds) const;

  private:
    bool _checkSocketForData(unsigned long milliseconds) const;

    static constexpr std::uintptr_t noSocket = ~std::uintptr_t{0};

    // As the platform lays a socket address out.
    alignas(std::uint32_t) std::array<unsigned char, 16> m_address{};
    std::uintptr_t m_socket = noSocket;
};

/// Splits an endpoint at its first colon. With no colon the port is the default; with one it is the
/// number behind it, blanks in front of it skipped, and what follows it ignored: 0xFFFFFFFF if there
/// is none or it is too large, and a minus sign wraps it around.
/// @param host receives the text in front of the colon; may be the endpoint itself; not null
/// @param port not null
VRUTILS_API void getHostAndPort(
    std::wstring const& endpoint, std::uint32_t defaultPort, std::wstring* host,
    std::uint32_t* port);

/// The host of an endpoint, as `getHostAndPort` gives it.
VRUTILS_API std::wstring justHost(std::wstring const& endpoint);

/// The port of an endpoint, as `getHostAndPort` gives it.
VRUTILS_API std::uint32_t justPort(std::wstring const& endpoint, std::uint32_t defaultPort);

/// Tells of a connection that arrives here: `"host" on my port 60774 (is vrTransfer)`, or `"host"`
/// alone for port 0.
/// @throws vrException as `Instancing::descriptionOfPort`
VRUTILS_API std::wstring descriptionOfConnectionFrom(std::wstring const& host, std::uint32_t port);

/// Tells of a connection that goes out: `"host:60774" (port 60774 (is vrTransfer))`, or `"host"`
/// alone for port 0.
/// @throws vrException as `Instancing::descriptionOfPort`
VRUTILS_API std::wstring descriptionOfConnectionTo(std::wstring const& host, std::uint32_t port);

/// The same for an endpoint; without a port in it, port 0.
VRUTILS_API std::wstring descriptionOfConnectionTo(std::wstring const& endpoint);

} // namespace vrUtils::TcpComms

#endif
