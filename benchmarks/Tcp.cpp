// Bytes over TCP to a server on this machine and back, in a thread of this program.

#include "benchmarks/Candidate.h"

#include "foundation/Platform.h"
#include "vrUtils/TcpComms.h"

#include <boost/asio.hpp>

#include <thread>
#include <utility>
#include <vector>

namespace {

constexpr int smallBytes = 64;
constexpr int blockBytes = 64 << 10;
constexpr int blocks = 4096;

// What every client talks to: it answers each message with its last byte's worth of the same length,
// or, once a block has come, with one byte for all of them.
class Server {
  public:
    Server() {
        m_listener = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        bind(m_listener, reinterpret_cast<sockaddr*>(&address), sizeof address);
        int length = sizeof address;
        getsockname(m_listener, reinterpret_cast<sockaddr*>(&address), &length);
        m_port = ntohs(address.sin_port);
        listen(m_listener, 8);
        std::thread([this] { accept(); }).detach();
    }

    std::uint16_t port() const { return m_port; }

  private:
    void accept() const {
        for (;;) {
            auto const client = ::accept(m_listener, nullptr, nullptr);
            std::thread([client] { serve(client); }).detach();
        }
    }

    static void serve(SOCKET client) {
        std::vector<char> buffer(blockBytes);
        long long total = 0;
        for (int count; (count = recv(client, buffer.data(), blockBytes, 0)) > 0;) {
            if (total == 0 && count == smallBytes) {
                send(client, buffer.data(), count, 0);
                continue;
            }
            total += count;
            if (total == 1ll * blockBytes * blocks) {
                send(client, buffer.data(), 1, 0);
                total = 0;
            }
        }
        closesocket(client);
    }

    SOCKET m_listener;
    std::uint16_t m_port;
};

// The candidates: each sends and receives a message.

class Ours {
  public:
    explicit Ours(std::uint16_t port) : m_socket(L"127.0.0.1", port) { m_socket.Connect(); }

    void send(std::vector<char> const& data) {
        m_socket.Send(data, static_cast<unsigned long>(data.size()));
    }

    unsigned long receive(std::vector<char>& data) { return m_socket.Receive(&data, 10000); }

  private:
    vrUtils::TcpComms::Socket m_socket;
};

// The calls that ours is made of.
class Raw {
  public:
    explicit Raw(std::uint16_t port) : m_socket(socket(AF_INET, SOCK_STREAM, IPPROTO_TCP)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        connect(m_socket, reinterpret_cast<sockaddr*>(&address), sizeof address);
    }

    void send(std::vector<char> const& data) {
        ::send(m_socket, data.data(), static_cast<int>(data.size()), 0);
    }

    unsigned long receive(std::vector<char>& data) {
        fd_set readable;
        FD_ZERO(&readable);
        FD_SET(m_socket, &readable);
        auto exceptional = readable;
        timeval limit{10, 0};
        select(1, &readable, nullptr, &exceptional, &limit);
        auto const count = recv(m_socket, data.data(), static_cast<int>(data.size()), 0);
        return static_cast<unsigned long>(count);
    }

  private:
    SOCKET m_socket;
};

class Asio {
  public:
    explicit Asio(std::uint16_t port) : m_socket(m_context) {
        m_socket.connect({boost::asio::ip::address_v4::loopback(), port});
    }

    void send(std::vector<char> const& data) { m_socket.send(boost::asio::buffer(data)); }

    unsigned long receive(std::vector<char>& data) {
        return static_cast<unsigned long>(m_socket.receive(boost::asio::buffer(data)));
    }

  private:
    boost::asio::io_context m_context;
    boost::asio::ip::tcp::socket m_socket;
};

template <class Client>
void rows(char const* name, std::uint16_t port) {
    static Client client(port);
    static std::vector<char> small(smallBytes, 'v');
    static std::vector<char> const block(blockBytes, 'v');
    benchmarks::candidate("tcp-64B", name, [] {
        client.send(small);
        return client.receive(small);
    });
    benchmarks::candidate("tcp-256MiB", name, [] {
        for (int sent = 0; sent < blocks; ++sent)
            client.send(block);
        std::vector<char> answer(1);
        return client.receive(answer);
    });
}

} // namespace

void benchmarks::registerCandidates() {
    WSADATA data;
    WSAStartup(MAKEWORD(2, 2), &data);
    static Server const server;
    rows<Ours>("ours", server.port());
    rows<Raw>("limit", server.port());
    rows<Asio>("asio", server.port());
}
