#ifndef TESTS_NET_CONNECTCALL_H
#define TESTS_NET_CONNECTCALL_H

#include "foundation/Platform.h"

#include <winsock2.h>

#include "tests/support/ImportHook.h"
#include "vrUtils/TcpComms.h"

#include <vector>

namespace test {

// The one connect call of a socket that is still closed; the call fails, and nothing is connected.
class ConnectCall {
  public:
    explicit ConnectCall(vrUtils::TcpComms::Socket& closed) {
        try {
            closed.Connect();
        } catch (vrUtils::TcpComms::vrSocketException const&) {
        }
    }

    SOCKET socket() const noexcept { return m_socket; }

    // As many bytes as the call was told.
    std::vector<unsigned char> const& address() const noexcept { return m_address; }

  private:
    SOCKET m_socket = INVALID_SOCKET;
    std::vector<unsigned char> m_address;
    ImportHook<decltype(connect)> const m_hook{
        "connect", [this](SOCKET socket, sockaddr const* address, int length) {
            auto const* const bytes = reinterpret_cast<unsigned char const*>(address);
            m_socket = socket;
            m_address.assign(bytes, bytes + length);
            return SOCKET_ERROR;
        }};
};

} // namespace test

#endif
