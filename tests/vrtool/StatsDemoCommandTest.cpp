// `vrtool stats-demo` as its users run it.

#include "tools/vrtool/StatsDemoCommand.h"
#include "tests/support/ImportHook.h"
#include "tests/vrtool/RunHere.h"

#include <gtest/gtest.h>

#include <process.h>
#include <system_error>

namespace {

void expectStatistics(Json::Value const& document, std::uint64_t frames) {
    EXPECT_EQ(frames * 65536, document["BytesRead"].asUInt64());
    EXPECT_EQ(frames * 65536, document["BytesWritten"].asUInt64());
    EXPECT_EQ(frames, document["FramesTransferred"].asUInt64());
    EXPECT_EQ(1u, document["LastOneOut"].asUInt());
    EXPECT_EQ(0u, document["Transcoded"].asUInt());
    EXPECT_EQ(0u, document["TransferStatus"].asUInt());
    EXPECT_EQ(6u, document.size());
}

} // namespace

TEST(VrtoolStatsDemo, ShowsTheJsonOfTheLibrary) {
    auto const run = test::runTool({L"stats-demo", L"--threads", L"1", L"--frames", L"1"});

    EXPECT_EQ(
        "{\n"
        "\t\"BytesRead\" : 65536,\n"
        "\t\"BytesWritten\" : 65536,\n"
        "\t\"FramesTransferred\" : 1,\n"
        "\t\"LastOneOut\" : 1,\n"
        "\t\"Transcoded\" : 0,\n"
        "\t\"TransferStatus\" : 0\n"
        "}\n",
        run.out);
    EXPECT_EQ("", run.error);
    EXPECT_EQ(0u, run.exitCode);
}

TEST(VrtoolStatsDemo, LosesNothingAmongManyThreads) {
    auto const run = test::runTool({L"stats-demo", L"--threads", L"64", L"--frames", L"2000"});

    expectStatistics(run.json(), 64 * 2000);
}

TEST(VrtoolStatsDemo, HasEightThreadsOfAHundredThousandFramesUnlessToldOtherwise) {
    auto const run = test::runTool({L"stats-demo"});

    expectStatistics(run.json(), 8 * 100000);
}

TEST(VrtoolStatsDemo, FailsIfAThreadCannotBeStarted) {
    test::FailingImport<decltype(_beginthreadex)> const fails(
        "_beginthreadex", 0, 8, 2, test::thisProgram());

    EXPECT_THROW(test::runHere<StatsDemoCommand>("stats-demo"), std::system_error);

    EXPECT_EQ(2u, fails.calls());
}
