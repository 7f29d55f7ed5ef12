// `vrtool port` as its users run it.

#include "tests/vrtool/ToolRun.h"

#include <gtest/gtest.h>

TEST(VrtoolPort, TellsServiceAndInstance) {
    auto const run = test::runTool({L"port", L"60806"});

    EXPECT_EQ(
        "WHAT         VALUE\n"
        "port         60806\n"
        "basePort     60774\n"
        "instance     2\n"
        "description  port 60806 (is instance 2 of vrTransfer)\n",
        run.out);
    EXPECT_EQ("", run.error);
    EXPECT_EQ(0u, run.exitCode);
}

TEST(VrtoolPort, TellsProgramsTheSame) {
    auto const run = test::runTool({L"port", L"60806", L"--json"});
    auto const document = run.json();

    EXPECT_EQ(60806u, document["port"].asUInt());
    EXPECT_EQ(60774u, document["basePort"].asUInt());
    EXPECT_EQ(2u, document["instance"].asUInt());
    EXPECT_EQ("port 60806 (is instance 2 of vrTransfer)", document["description"].asString());
    EXPECT_EQ(4u, document.size());
    EXPECT_EQ(0u, run.exitCode);
}

TEST(VrtoolPort, HasNoNumberForThePlainInstance) {
    auto const document = test::runTool({L"port", L"60772", L"--json"}).json();

    EXPECT_EQ(60772u, document["basePort"].asUInt());
    EXPECT_EQ(0u, document["instance"].asUInt());
    EXPECT_EQ("port 60772 (is vrObserver)", document["description"].asString());
}

TEST(VrtoolPort, TakesTheLargestNumberAsTheLibraryDoes) {
    auto const document = test::runTool({L"port", L"4294967295", L"--json"}).json();

    EXPECT_EQ(60783u, document["basePort"].asUInt());
    EXPECT_EQ(268431657u, document["instance"].asUInt());
}

struct PortOfNoService {
    char const* name;
    wchar_t const* port;
    char const* failure;
};

void PrintTo(PortOfNoService const& port, std::ostream* stream) { *stream << port.name; }

class VrtoolPortOfNoService : public testing::TestWithParam<PortOfNoService> {};

TEST_P(VrtoolPortOfNoService, FailsWithTheTextOfTheLibrary) {
    auto const run = test::runTool({L"port", GetParam().port});

    EXPECT_EQ(GetParam().failure, run.error);
    EXPECT_EQ("", run.out);
    EXPECT_EQ(1u, run.exitCode);
}

INSTANTIATE_TEST_SUITE_P(
    VrtoolPort, VrtoolPortOfNoService,
    testing::Values(
        PortOfNoService{"Zero", L"0", "vrtool: Expected port >= 60772\n"},
        PortOfNoService{"BelowTheBlock", L"60771", "vrtool: Expected port >= 60772\n"},
        PortOfNoService{
            "FreePlace", L"60776", "vrtool: No description for port 60776 (base port 60776)\n"},
        PortOfNoService{
            "FreePlaceOfAnInstance", L"60819",
            "vrtool: No description for port 60819 (base port 60787)\n"}),
    [](auto const& test) { return test.param.name; });
