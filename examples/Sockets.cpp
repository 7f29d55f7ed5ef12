// A question and its answer over TCP. A host starts the platform's socket layer itself; what is
// sent in one piece may arrive in several, and 0 bytes mean that nothing came or the peer has gone.

#include <vrUtils/TcpComms.h>

#include <iostream>
#include <thread>

#include <winsock2.h>

namespace {

SOCKET listenHere(std::uint16_t* port) {
    auto const listener = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{AF_INET, 0, {{{127, 0, 0, 1}}}, {}};
    int size = sizeof address;
    bind(listener, reinterpret_cast<sockaddr*>(&address), size);
    getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size);
    listen(listener, 1);
    *port = ntohs(address.sin_port);
    return listener;
}

void answerOne(SOCKET listener) {
    auto const client = accept(listener, nullptr, nullptr);
    char question[8];
    recv(client, question, sizeof question, 0);
    send(client, "at 25 frames", 12, 0);
    closesocket(client);
}

bool ask(std::uint16_t port) try {
    vrUtils::TcpComms::Socket server(L"127.0.0.1", port);
    server.Connect();
    server.Send({'r', 'a', 't', 'e', '?'}, 5);
    std::vector<char> buffer(4);
    while (auto const length = server.Receive(&buffer, 5000))
        std::wcout << std::wstring(buffer.data(), buffer.data() + length);
    std::wcout << L'\n';
    return true;
} catch (vrUtils::TcpComms::vrSocketException const& failure) {
    std::wcerr << failure.message() << L'\n';
    return false;
}

} // namespace

int main() {
    WSADATA sockets;
    std::uint16_t port = 0;
    if (WSAStartup(MAKEWORD(2, 2), &sockets) != 0)
        return 1;
    auto const listener = listenHere(&port);
    std::thread peer(answerOne, listener);
    auto const isAnswered = ask(port);
    closesocket(listener); // ends the wait of a peer that nobody has called
    peer.join();
    WSACleanup();
    return isAnswered ? 0 : 1;
}
