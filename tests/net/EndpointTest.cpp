#include "vrUtils/TcpComms.h"

#include "FailsForPort.h"

#include <ostream>
#include <string>

using namespace vrUtils::TcpComms;

namespace {

constexpr std::uint32_t noNumber = 0xFFFFFFFF;

struct Split {
    wchar_t const* endpoint;
    wchar_t const* host;
    std::uint32_t port;

    friend void PrintTo(Split const& split, std::ostream* stream) {
        *stream << testing::PrintToString(split.endpoint);
    }
};

// Where no port stands in the endpoint.
constexpr std::uint32_t preset = 4711;

class Endpoint : public testing::TestWithParam<Split> {};

INSTANTIATE_TEST_SUITE_P(
    WithoutColon, Endpoint,
    testing::Values(
        Split{L"", L"", preset}, Split{L"host", L"host", preset},
        Split{L"10.0.0.1", L"10.0.0.1", preset}, Split{L" host ", L" host ", preset},
        Split{L"80", L"80", preset}, Split{L"host;80", L"host;80", preset}));

INSTANTIATE_TEST_SUITE_P(
    WithNumber, Endpoint,
    testing::Values(
        Split{L"host:80", L"host", 80}, Split{L"10.0.0.1:60772", L"10.0.0.1", 60772},
        Split{L"host:0", L"host", 0}, Split{L"host:007", L"host", 7},
        Split{L"host:+80", L"host", 80}, Split{L"host:65536", L"host", 65536},
        Split{L"host:4294967294", L"host", 4294967294}, Split{L":80", L"", 80},
        Split{L" h\u00f6st :80", L" h\u00f6st ", 80}));

INSTANTIATE_TEST_SUITE_P(
    WithBlanksBeforeTheNumber, Endpoint,
    testing::Values(
        Split{L"host: 80", L"host", 80}, Split{L"host:\t\t80", L"host", 80},
        Split{L"host:\r\n 80", L"host", 80}, Split{L"host:\v\f80", L"host", 80}));

INSTANTIATE_TEST_SUITE_P(
    WithMoreBehindTheNumber, Endpoint,
    testing::Values(
        Split{L"host:80abc", L"host", 80}, Split{L"host:80 81", L"host", 80},
        Split{L"host:80:90", L"host", 80}, Split{L"host:80/a:b", L"host", 80},
        Split{L"host:0x50", L"host", 0}, Split{L"host:1,000", L"host", 1},
        Split{L"host:80.5", L"host", 80}));

INSTANTIATE_TEST_SUITE_P(
    WithoutNumber, Endpoint,
    testing::Values(
        Split{L"host:", L"host", noNumber}, Split{L":", L"", noNumber},
        Split{L"host: ", L"host", noNumber}, Split{L"host:abc", L"host", noNumber},
        Split{L"host::80", L"host", noNumber}, Split{L"host:-", L"host", noNumber},
        Split{L"::1", L"", noNumber}, Split{L"host:x80", L"host", noNumber},
        Split{L"host:\u0661", L"host", noNumber}));

INSTANTIATE_TEST_SUITE_P(
    WithNumberBelowZero, Endpoint,
    testing::Values(
        Split{L"host:-1", L"host", 0xFFFFFFFF}, Split{L"host:-80", L"host", 0xFFFFFFB0},
        Split{L"host:-0", L"host", 0}));

INSTANTIATE_TEST_SUITE_P(
    WithNumberTooLarge, Endpoint,
    testing::Values(
        Split{L"host:4294967295", L"host", 0xFFFFFFFF},
        Split{L"host:4294967296", L"host", 0xFFFFFFFF},
        Split{L"host:99999999999999999999999", L"host", 0xFFFFFFFF},
        Split{L"host:-99999999999", L"host", 0xFFFFFFFF}));

} // namespace

TEST_P(Endpoint, IsSplitAtItsFirstColon) {
    std::wstring host = L"before";
    std::uint32_t port = 1;

    getHostAndPort(GetParam().endpoint, preset, &host, &port);

    EXPECT_EQ(GetParam().host, host);
    EXPECT_EQ(GetParam().port, port);
}

TEST_P(Endpoint, HasAHost) { EXPECT_EQ(GetParam().host, justHost(GetParam().endpoint)); }

TEST_P(Endpoint, HasAPort) { EXPECT_EQ(GetParam().port, justPort(GetParam().endpoint, preset)); }

TEST(EndpointSplit, TakesAnyDefault) {
    EXPECT_EQ(0u, justPort(L"host", 0));
    EXPECT_EQ(0xFFFFFFFFu, justPort(L"host", 0xFFFFFFFF));
}

TEST(EndpointSplit, MayOverwriteTheEndpoint) {
    std::wstring text = L"a-host-that-is-not-short:80";
    std::uint32_t port = 0;

    getHostAndPort(text, preset, &text, &port);

    EXPECT_EQ(L"a-host-that-is-not-short", text);
    EXPECT_EQ(80u, port);
}

TEST(EndpointSplit, MayOverwriteAnEndpointWithoutColon) {
    std::wstring text = L"host";
    std::uint32_t port = 0;

    getHostAndPort(text, preset, &text, &port);

    EXPECT_EQ(L"host", text);
    EXPECT_EQ(preset, port);
}

TEST(EndpointSplit, KeepsZeroCharacters) {
    std::wstring const endpoint(
        L"a\0b:8\0"
        L"0",
        7);

    EXPECT_EQ(std::wstring(L"a\0b", 3), justHost(endpoint));
    EXPECT_EQ(8u, justPort(endpoint, preset));
}

TEST(EndpointSplit, TakesLongTexts) {
    std::wstring const letters(1 << 20, L'x');
    std::wstring const blanks(1 << 20, L' ');
    std::wstring const nines(1 << 20, L'9');

    EXPECT_EQ(letters, justHost(letters));
    EXPECT_EQ(letters, justHost(letters + L":1"));
    EXPECT_EQ(80u, justPort(L"host:" + blanks + L"80" + letters, preset));
    EXPECT_EQ(noNumber, justPort(L"host:" + letters, preset));
    EXPECT_EQ(0xFFFFFFFFu, justPort(L"host:" + nines, preset));
}

TEST(ConnectionFrom, TellsOwnPort) {
    EXPECT_EQ(
        L"\"client\" on my port 60774 (is vrTransfer)",
        descriptionOfConnectionFrom(L"client", 60774));
    EXPECT_EQ(
        L"\"client\" on my port 60790 (is instance 1 of vrTransfer)",
        descriptionOfConnectionFrom(L"client", 60790));
}

TEST(ConnectionFrom, WithoutPortTellsTheHostAlone) {
    EXPECT_EQ(L"\"client\"", descriptionOfConnectionFrom(L"client", 0));
    EXPECT_EQ(L"\"\"", descriptionOfConnectionFrom(L"", 0));
}

TEST(ConnectionFrom, TakesTheHostAsItStands) {
    EXPECT_EQ(L"\"a:1\"", descriptionOfConnectionFrom(L"a:1", 0));
    EXPECT_EQ(
        L"\"100%s\" on my port 60772 (is vrObserver)",
        descriptionOfConnectionFrom(L"100%s", 60772));
}

TEST(ConnectionFrom, FailsForAPortOfAnother) {
    EXPECT_THAT(
        [] { descriptionOfConnectionFrom(L"client", 80); },
        FailsForPort(L"Expected port >= 60772"));
    EXPECT_THAT(
        [] { descriptionOfConnectionFrom(L"client", 60776); },
        FailsForPort(L"No description for port 60776 (base port 60776)"));
}

TEST(ConnectionTo, TellsTheServersPort) {
    EXPECT_EQ(
        L"\"server:60774\" (port 60774 (is vrTransfer))",
        descriptionOfConnectionTo(L"server", 60774));
    EXPECT_EQ(
        L"\"server:60790\" (port 60790 (is instance 1 of vrTransfer))",
        descriptionOfConnectionTo(L"server", 60790));
}

TEST(ConnectionTo, WithoutPortTellsTheHostAlone) {
    EXPECT_EQ(L"\"server\"", descriptionOfConnectionTo(L"server", 0));
    EXPECT_EQ(L"\"\"", descriptionOfConnectionTo(L"", 0));
}

TEST(ConnectionTo, TakesTheHostAsItStands) {
    EXPECT_EQ(L"\"a:1\"", descriptionOfConnectionTo(L"a:1", 0));
    EXPECT_EQ(
        L"\"a:1:60772\" (port 60772 (is vrObserver))", descriptionOfConnectionTo(L"a:1", 60772));
}

TEST(ConnectionTo, FailsForAPortOfAnother) {
    EXPECT_THAT(
        [] { descriptionOfConnectionTo(L"server", 80); }, FailsForPort(L"Expected port >= 60772"));
    EXPECT_THAT(
        [] { descriptionOfConnectionTo(L"server", 60787); },
        FailsForPort(L"No description for port 60787 (base port 60787)"));
}

TEST(ConnectionTo, SplitsAnEndpoint) {
    EXPECT_EQ(
        L"\"server:60774\" (port 60774 (is vrTransfer))",
        descriptionOfConnectionTo(L"server: 60774"));
    EXPECT_EQ(L"\"server\"", descriptionOfConnectionTo(L"server"));
    EXPECT_EQ(L"\"server\"", descriptionOfConnectionTo(L"server:0"));
    EXPECT_EQ(L"\"\"", descriptionOfConnectionTo(L""));
}

TEST(ConnectionTo, EndpointWithAPortOfAnotherFails) {
    EXPECT_THAT(
        [] { descriptionOfConnectionTo(L"server:80"); }, FailsForPort(L"Expected port >= 60772"));
}

TEST(ConnectionTo, EndpointWithoutNumberHasTheLastPortOfAll) {
    EXPECT_EQ(
        L"\"server:4294967295\" (port 4294967295 (is instance 268431657 of OstrelSync HTTP "
        L"server))",
        descriptionOfConnectionTo(L"server:"));
}
