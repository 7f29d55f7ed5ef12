// `vrtool endpoint` as its users run it.

#include "tests/vrtool/ToolRun.h"

#include <gtest/gtest.h>

namespace {

Json::Value told(std::vector<std::wstring> arguments) {
    arguments.insert(arguments.begin(), {L"endpoint", L"--json"});
    return test::runTool(arguments).json();
}

} // namespace

TEST(VrtoolEndpoint, ShowsPartsAndDescriptions) {
    auto const run = test::runTool({L"endpoint", L"media01:60806"});

    EXPECT_EQ(
        R"(WHAT                  VALUE
host                  media01
port                  60806
instance              2
from                  "media01" on my port 60806 (is instance 2 of vrTransfer)
to                    "media01:60806" (port 60806 (is instance 2 of vrTransfer))
instanceEndpoint      -
sameInstanceEndpoint  -
)",
        run.out);
    EXPECT_EQ("", run.error);
    EXPECT_EQ(0u, run.exitCode);
}

TEST(VrtoolEndpoint, WithoutAPortIsTheHostAlone) {
    auto const document = told({L"media01"});

    EXPECT_EQ("media01", document["host"].asString());
    EXPECT_EQ(0u, document["port"].asUInt());
    EXPECT_EQ(0u, document["instance"].asUInt());
    EXPECT_EQ("\"media01\"", document["from"].asString());
    EXPECT_EQ("\"media01\"", document["to"].asString());
    EXPECT_TRUE(document["instanceEndpoint"].isNull());
    EXPECT_TRUE(document["sameInstanceEndpoint"].isNull());
    EXPECT_EQ(Json::Value(Json::objectValue), document["failures"]);
    EXPECT_EQ(8u, document.size());
}

TEST(VrtoolEndpoint, LeadsToAServiceInAnotherInstanceAndInItsOwn) {
    auto const document = told({L"media01:60806", L"--instance", L"3", L"--service", L"60772"});

    EXPECT_EQ("media01:60820", document["instanceEndpoint"].asString());
    EXPECT_EQ("media01:60804", document["sameInstanceEndpoint"].asString());
}

TEST(VrtoolEndpoint, LeadsToThePlainInstanceIfNoneIsNamed) {
    auto const document = told({L"media01:60806", L"--service", L"60772"});

    EXPECT_EQ("media01", document["instanceEndpoint"].asString());
    EXPECT_EQ("media01:60804", document["sameInstanceEndpoint"].asString());
}

TEST(VrtoolEndpoint, ShowsEachFailureInItsRow) {
    auto const run = test::runTool({L"endpoint", L"media01:80", L"--service", L"60772"});

    EXPECT_EQ(
        R"(WHAT                  VALUE    FAILURE
host                  media01
port                  80
instance              -        Expected port >= 60772
from                  -        Expected port >= 60772
to                    -        Expected port >= 60772
instanceEndpoint      media01
sameInstanceEndpoint  -        Expected port >= 60772
)",
        run.out);
    EXPECT_EQ("", run.error);
    EXPECT_EQ(1u, run.exitCode);
}

TEST(VrtoolEndpoint, TellsProgramsOfEachFailure) {
    auto const run = test::runTool({L"endpoint", L"--json", L"a", L"--service", L"60788"});
    auto const document = run.json();

    std::string const failure = "Expected port <= 60787, given 60788";
    EXPECT_EQ(failure, document["failures"]["instanceEndpoint"].asString());
    EXPECT_EQ(failure, document["failures"]["sameInstanceEndpoint"].asString());
    EXPECT_EQ(2u, document["failures"].size());
    EXPECT_TRUE(document["instanceEndpoint"].isNull());
    EXPECT_EQ("a", document["host"].asString());
    EXPECT_EQ(1u, run.exitCode);
}

struct Endpoint {
    char const* name;
    wchar_t const* text;
    char const* host;
    std::uint32_t port;
};

void PrintTo(Endpoint const& endpoint, std::ostream* stream) { *stream << endpoint.name; }

class VrtoolEndpoints : public testing::TestWithParam<Endpoint> {};

TEST_P(VrtoolEndpoints, AreReadAsTheLibraryDoes) {
    auto const document = told({GetParam().text});

    EXPECT_EQ(GetParam().host, document["host"].asString());
    EXPECT_EQ(GetParam().port, document["port"].asUInt());
}

INSTANTIATE_TEST_SUITE_P(
    VrtoolEndpoint, VrtoolEndpoints,
    testing::Values(
        Endpoint{"Empty", L"", "", 0}, Endpoint{"PortAlone", L":60774", "", 60774},
        Endpoint{"ColonAlone", L"a:", "a", 0xFFFFFFFF},
        Endpoint{"Letters", L"a:port", "a", 0xFFFFFFFF},
        Endpoint{"Blanks", L"a b:  60774 x", "a b", 60774},
        Endpoint{"TwoColons", L"a:60774:60775", "a", 60774},
        Endpoint{"TooLarge", L"a:99999999999", "a", 0xFFFFFFFF},
        Endpoint{"Negative", L"a:-1", "a", 0xFFFFFFFF},
        Endpoint{"Address", L"192.0.2.7:60774", "192.0.2.7", 60774},
        Endpoint{"Brackets", L"[a,b]:60774", "[a,b]", 60774}),
    [](auto const& test) { return test.param.name; });
