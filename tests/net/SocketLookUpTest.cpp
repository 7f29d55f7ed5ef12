// How a socket finds the address of its server.

#include "foundation/Platform.h"

#include <winsock2.h>

#include "vrUtils/TcpComms.h"

#include "ConnectCall.h"
#include "FailsOnSocket.h"
#include "tests/support/HandleCount.h"
#include "tests/support/LoopbackServer.h"

#include <array>
#include <clocale>
#include <ostream>
#include <string>
#include <vector>

using testing::ElementsAre;
using testing::ElementsAreArray;
using vrUtils::TcpComms::Socket;

namespace {

using Address = std::array<unsigned char, 4>;

std::string dotted(unsigned char const* bytes) {
    std::string text;
    for (int index = 0; index < 4; ++index)
        text += (index ? "." : "") + std::to_string(bytes[index]);
    return text;
}

// Knows these addresses of every host, and what it was asked.
class NameService {
  public:
    explicit NameService(std::vector<Address> addresses) : m_addresses(std::move(addresses)) {
        for (auto& address : m_addresses)
            m_list.push_back(reinterpret_cast<char*>(address.data()));
        m_list.push_back(nullptr);
        m_entry.h_addrtype = AF_INET;
        m_entry.h_length = 4;
        m_entry.h_addr_list = m_list.data();
    }

    std::vector<std::string> const& questions() const noexcept { return m_questions; }

  private:
    std::vector<Address> m_addresses;
    std::vector<char*> m_list;
    hostent m_entry{};
    std::vector<std::string> m_questions;
    test::ImportHook<decltype(gethostbyname)> const m_byName{
        "gethostbyname", [this](char const* name) {
            m_questions.push_back("name " + std::string(name));
            return &m_entry;
        }};
    // An address that no text spells tells whether it is the one that is looked up.
    test::ImportHook<decltype(inet_addr)> const m_parse{
        "inet_addr", [this](char const* text) -> unsigned long {
            m_questions.push_back("parse " + std::string(text));
            return 0x04030201;
        }};
    test::ImportHook<decltype(gethostbyaddr)> const m_byAddress{
        "gethostbyaddr", [this](char const* address, int length, int family) {
            m_questions.push_back(
                "address " + dotted(reinterpret_cast<unsigned char const*>(address)) + ", length " +
                std::to_string(length) + ", family " + std::to_string(family));
            return &m_entry;
        }};
};

// What the service is asked for a host.
std::vector<std::string> questionsFor(std::wstring const& host) {
    NameService const service({{10, 1, 2, 3}});
    Socket const socket(host, 1);
    return service.questions();
}

auto lookUp(std::wstring const& host) {
    return [host] { Socket(host, 1); };
}

auto FailsToResolve(std::wstring const& host) {
    return FailsOnSocket(L"Failed to get inet address for server [" + host + L"]", 0x80E0605C);
}

struct Host {
    wchar_t const* text;
    char const* narrow;

    friend void PrintTo(Host const& host, std::ostream* stream) {
        *stream << testing::PrintToString(host.text);
    }
};

class SocketNameLookUp : public testing::TestWithParam<Host> {};

INSTANTIATE_TEST_SUITE_P(
    , SocketNameLookUp,
    testing::Values(
        Host{L"localhost", "localhost"}, Host{L"Server-9.Local", "Server-9.Local"}, Host{L"A", "A"},
        Host{L"z", "z"}, Host{L"a b", "a b"}, Host{L"host:80", "host:80"},
        Host{L"h\u00e9", "h\xe9"}, Host{L"h\u0416", "h_"}));

class SocketAddressLookUp : public testing::TestWithParam<Host> {};

INSTANTIATE_TEST_SUITE_P(
    , SocketAddressLookUp,
    testing::Values(
        Host{L"127.0.0.1", "127.0.0.1"}, Host{L"9host", "9host"}, Host{L"", ""}, Host{L" a", " a"},
        Host{L"_host", "_host"}, Host{L"-host", "-host"}, Host{L"[::1]", "[::1]"},
        Host{L"@host", "@host"},
        Host{
            L"\u00e9cran", "\xe9"
                           "cran"},
        Host{L"\u0416", "_"}));

} // namespace

TEST_P(SocketNameLookUp, GoesByNameIfTheFirstCharacterIsALetter) {
    EXPECT_THAT(
        questionsFor(GetParam().text), ElementsAre(std::string("name ") + GetParam().narrow));
}

TEST_P(SocketAddressLookUp, GoesByAddressOtherwise) {
    EXPECT_THAT(
        questionsFor(GetParam().text),
        ElementsAre(
            std::string("parse ") + GetParam().narrow, "address 1.2.3.4, length 4, family 2"));
}

TEST(SocketLookUp, TakesTheHostsLocaleForWhatIsALetter) {
    ASSERT_TRUE(std::setlocale(LC_CTYPE, "English_United States.1252"));

    auto const questions = questionsFor(L"\u00e9cran");

    std::setlocale(LC_CTYPE, "C");
    EXPECT_THAT(
        questions, ElementsAre("name \xe9"
                               "cran"));
}

TEST(SocketLookUp, TakesTheFirstAddress) {
    NameService const service({{10, 1, 2, 3}, {10, 9, 9, 9}});

    Socket socket(L"server", 0x1234);

    EXPECT_THAT(
        test::ConnectCall(socket).address(),
        ElementsAreArray({2, 0, 0x12, 0x34, 10, 1, 2, 3, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(SocketLookUp, TakesTheAddressOfTheEntryNotThatOfTheText) {
    NameService const service({{10, 1, 2, 3}});

    Socket socket(L"10.7.7.7", 0xFFFF);

    EXPECT_THAT(
        test::ConnectCall(socket).address(),
        ElementsAreArray({2, 0, 0xFF, 0xFF, 10, 1, 2, 3, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(SocketLookUp, PutsThePortInNetworkOrder) {
    std::vector<unsigned> ports;
    test::ImportHook<decltype(htons)> const hook("htons", [&](u_short port) -> u_short {
        ports.push_back(port);
        return 0x4321;
    });

    Socket socket(L"localhost", 60774);

    EXPECT_THAT(ports, ElementsAre(60774u));
    auto const address = test::ConnectCall(socket).address();
    EXPECT_EQ(0x21, address.at(2));
    EXPECT_EQ(0x43, address.at(3));
}

TEST(SocketLookUp, MakesNoSocketYet) {
    test::ImportHook<decltype(socket)> const hook(
        "socket", [](int, int, int) { return SOCKET{1}; });

    Socket const socket(L"localhost", 1);

    EXPECT_EQ(0u, hook.calls());
}

TEST(SocketLookUp, EntryWithoutAddressFails) {
    NameService const service({});

    EXPECT_THAT(lookUp(L"server"), FailsToResolve(L"server"));
}

TEST(SocketLookUp, UnknownNameFails) {
    test::FailingImport<decltype(gethostbyname)> const fails(
        "gethostbyname", nullptr, WSAHOST_NOT_FOUND);

    EXPECT_THAT(lookUp(L"Server\u0416"), FailsToResolve(L"Server\u0416"));
    EXPECT_EQ(1u, fails.calls());
}

TEST(SocketLookUp, AddressWithoutNameFails) {
    test::FailingImport<decltype(gethostbyaddr)> const fails(
        "gethostbyaddr", nullptr, WSAHOST_NOT_FOUND);

    EXPECT_THAT(lookUp(L"127.0.0.1"), FailsToResolve(L"127.0.0.1"));
    EXPECT_EQ(1u, fails.calls());
}

TEST(SocketLookUp, HostThatBeginsWithADigitFails) {
    EXPECT_THAT(lookUp(L"9host"), FailsToResolve(L"9host"));
}

TEST(SocketLookUp, EmptyHostFails) { EXPECT_THAT(lookUp(L""), FailsToResolve(L"")); }

TEST(SocketLookUp, NameThatNobodyHasFails) {
    EXPECT_THAT(lookUp(L"nobody.invalid"), FailsToResolve(L"nobody.invalid"));
}

TEST(SocketLookUp, FailureLeavesNothingOpen) {
    EXPECT_ANY_THROW(Socket(L"nobody.invalid", 1));
    EXPECT_ANY_THROW(Socket(L"9host", 1));
    test::HandleLeakCheck const check;

    EXPECT_ANY_THROW(Socket(L"nobody.invalid", 1));
    EXPECT_ANY_THROW(Socket(L"9host", 1));
}

TEST(SocketLookUp, FindsThisComputerByNameAndByAddress) {
    test::LoopbackServer const server;
    for (auto const* host : {L"localhost", L"LocalHost", L"127.0.0.1"}) {
        Socket socket(host, server.port());

        EXPECT_NO_THROW(socket.Connect()) << testing::PrintToString(host);
    }
}

TEST(SocketLookUp, LeavesTheStartOfTheSocketLayerToTheHost) {
    EXPECT_FALSE(test::hasImport("WSAStartup", test::moduleUnderTest()));
    EXPECT_FALSE(test::hasImport("WSACleanup", test::moduleUnderTest()));
}
