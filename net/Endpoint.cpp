#include "vrUtils/TcpComms.h"

#include "foundation/Message.h"
#include "foundation/PortNumber.h"
#include "vrUtils/Instancing.h"

#include <utility>

namespace vrUtils::TcpComms {

void getHostAndPort(
    std::wstring const& endpoint, std::uint32_t defaultPort, std::wstring* host,
    std::uint32_t* port) {
    auto const colon = endpoint.find(L':');
    auto const number = colon == std::wstring::npos
                            ? defaultPort
                            : portNumber(endpoint.substr(colon + 1), 0xFFFFFFFF);
    // The host may be the endpoint itself.
    auto name = endpoint.substr(0, colon);
    *host = std::move(name);
    *port = number;
}

std::wstring justHost(std::wstring const& endpoint) {
    std::wstring host;
    std::uint32_t port = 0;
    getHostAndPort(endpoint, 0, &host, &port);
    return host;
}

std::uint32_t justPort(std::wstring const& endpoint, std::uint32_t defaultPort) {
    std::wstring host;
    std::uint32_t port = 0;
    getHostAndPort(endpoint, defaultPort, &host, &port);
    return port;
}

std::wstring descriptionOfConnectionFrom(std::wstring const& host, std::uint32_t port) {
    if (port == 0)
        return composeMessage(L'"', host, L'"');
    return composeMessage(L'"', host, L"\" on my ", Instancing::descriptionOfPort(port));
}

std::wstring descriptionOfConnectionTo(std::wstring const& host, std::uint32_t port) {
    if (port == 0)
        return composeMessage(L'"', host, L'"');
    return composeMessage(
        L'"', host, L':', port, L"\" (", Instancing::descriptionOfPort(port), L')');
}

std::wstring descriptionOfConnectionTo(std::wstring const& endpoint) {
    std::wstring host;
    std::uint32_t port = 0;
    getHostAndPort(endpoint, 0, &host, &port);
    return descriptionOfConnectionTo(host, port);
}

} // namespace vrUtils::TcpComms
