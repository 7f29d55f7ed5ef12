#include "tools/vrtool/SocketLayer.h"

#include "tools/vrtool/Platform.h"

#include <winsock2.h>

#include <system_error>

SocketLayer::SocketLayer() {
    WSADATA about;
    int const error = WSAStartup(MAKEWORD(2, 2), &about);
    if (error != 0)
        throw std::system_error(error, std::system_category(), "no sockets");
}

SocketLayer::~SocketLayer() { WSACleanup(); }
