// `vrtool connect` as its users run it, with a server of the tests' own.

#include "tests/support/LoopbackServer.h"
#include "tests/vrtool/ToolRun.h"

#include <gmock/gmock.h>

#include <stdexcept>
#include <string>

using testing::ElementsAre;
using testing::MatchesRegex;

namespace {

// Listens at one of the ports that the platform gives nobody unasked; another test may have the
// first one of them.
class ChosenPort {
  public:
    ChosenPort(std::uint16_t first, std::uint16_t distance) : m_port(first) {
        for (; !listens(); m_port = static_cast<std::uint16_t>(m_port + distance))
            if (m_port > first + 20 * distance)
                throw std::runtime_error("no port is free");
    }

    std::uint16_t number() const noexcept { return m_port; }

  private:
    bool listens() {
        m_socket = test::OwnedSocket(socket(AF_INET, SOCK_STREAM, IPPROTO_TCP));
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(m_port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        auto const* const plain = reinterpret_cast<sockaddr*>(&address);
        return bind(m_socket.get(), plain, sizeof address) == 0 && listen(m_socket.get(), 5) == 0;
    }

    test::OwnedSocket m_socket;
    std::uint16_t m_port;
};

test::ToolRun connectTo(std::wstring const& host, std::uint16_t port) {
    return test::runTool({L"connect", host, std::to_wstring(port)});
}

constexpr char times[] = " in \\d+\\.\\d\\d\\d ms, look-up \\d+\\.\\d\\d\\d ms\n";

} // namespace

TEST(VrtoolConnect, ConnectsAndEndsTheConnection) {
    test::LoopbackServer const server;

    auto const run = connectTo(L"localhost", server.port());

    EXPECT_EQ(0u, run.exitCode);
    EXPECT_EQ("", run.error);
    ASSERT_TRUE(server.hasCaller());
    EXPECT_EQ("", server.accept().receive(1));
}

TEST(VrtoolConnect, TellsWhichServiceAnswersAndHowSoon) {
    // Instance 20 and up.
    ChosenPort const port(60774 + 20 * 16, 16);

    auto const run = connectTo(L"localhost", port.number());

    auto const number = std::to_string(port.number());
    auto const instance = std::to_string((port.number() - 60774) / 16);
    EXPECT_THAT(
        run.out, MatchesRegex(
                     "connected to \"localhost:" + number + "\" \\(port " + number +
                     " \\(is instance " + instance + " of vrTransfer\\)\\)" + times));
    EXPECT_EQ(0u, run.exitCode);
}

TEST(VrtoolConnect, NamesHostAndPortWhereNoServiceIsKnown) {
    ChosenPort const port(20000, 1);

    auto const run = connectTo(L"127.0.0.1", port.number());

    EXPECT_THAT(
        run.out,
        MatchesRegex("connected to 127\\.0\\.0\\.1:" + std::to_string(port.number()) + times));
    EXPECT_EQ(0u, run.exitCode);
}

TEST(VrtoolConnect, GivesTheTimesAsJson) {
    test::LoopbackServer const server;

    auto const run =
        test::runTool({L"connect", L"127.0.0.1", std::to_wstring(server.port()), L"--json"});

    auto const answer = run.json();
    EXPECT_THAT(
        answer.getMemberNames(),
        ElementsAre("connectMicroseconds", "lookUpMicroseconds", "server"));
    EXPECT_EQ("127.0.0.1:" + std::to_string(server.port()), answer["server"].asString());
    EXPECT_LT(0, answer["connectMicroseconds"].asInt64());
    EXPECT_LE(0, answer["lookUpMicroseconds"].asInt64());
}

TEST(VrtoolConnect, SaysThatItWasRefused) {
    test::LoopbackServer const server(test::LoopbackServer::refusing);

    auto const run = connectTo(L"localhost", server.port());

    EXPECT_EQ("vrtool: Failed to connect to server (127.0.0.1.\n", run.error);
    EXPECT_EQ("", run.out);
    EXPECT_EQ(1u, run.exitCode);
}

TEST(VrtoolConnect, SaysThatAHostHasNoAddress) {
    auto const run = connectTo(L"media01.invalid", 60774);

    EXPECT_EQ("vrtool: Failed to get inet address for server [media01.invalid]\n", run.error);
    EXPECT_EQ("", run.out);
    EXPECT_EQ(1u, run.exitCode);
}
