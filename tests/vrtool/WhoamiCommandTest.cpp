// `vrtool whoami` as its users run it.

#include "tools/vrtool/WhoamiCommand.h"
#include "foundation/Platform.h"
#include "tests/support/ImportHook.h"
#include "tests/support/WideText.h"
#include "tests/vrtool/RunHere.h"
#include "vrUtils/Process.h"

#include <gmock/gmock.h>
#include <psapi.h>

using testing::ElementsAre;

namespace Process = vrUtils::Process;

namespace {

// In the order of the table.
std::vector<std::string> const names{
    "computer",
    "user",
    "binaryFolder",
    "vorraneFolder",
    "serverFolder",
    "pageFaultCount",
    "peakWorkingSetSize",
    "workingSetSize",
    "quotaPeakPagedPoolUsage",
    "quotaPagedPoolUsage",
    "quotaPeakNonPagedPoolUsage",
    "quotaNonPagedPoolUsage",
    "pagefileUsage",
    "peakPagefileUsage"};

test::ToolRun tableHere() { return test::runHere<WhoamiCommand>("whoami"); }

test::ToolRun jsonHere() { return test::runHere<WhoamiCommand>("whoami", {"--json"}); }

} // namespace

TEST(VrtoolWhoami, TellsInJsonWhatTheLibraryKnows) {
    auto const run = test::runTool({L"whoami", L"--json"});

    auto const document = run.json();
    EXPECT_EQ(names.size(), document.size());
    EXPECT_EQ(test::utf8(Process::GetComputerNameW()), document["computer"].asString());
    EXPECT_EQ(test::utf8(Process::GetCurrentUserName()), document["user"].asString());
    EXPECT_EQ(test::utf8(Process::GetOstrelBinaryPath()), document["binaryFolder"].asString());
    EXPECT_EQ(test::utf8(Process::GetVorranePath().str()), document["vorraneFolder"].asString());
    EXPECT_EQ(
        test::utf8(Process::GetOstrelServerPath().str()), document["serverFolder"].asString());
    EXPECT_EQ("", run.error);
    EXPECT_EQ(0u, run.exitCode);
}

TEST(VrtoolWhoami, TellsAllInTheTable) {
    auto const run = test::runTool({L"whoami"});

    auto const lines = run.lines();
    ASSERT_EQ(names.size() + 1, lines.size());
    EXPECT_THAT(test::cellsOf(lines[0]), ElementsAre("WHAT", "VALUE"));
    for (std::size_t row = 0; row < names.size(); ++row)
        EXPECT_EQ(names[row], test::cellsOf(lines[row + 1])[0]);
    EXPECT_THAT(
        test::cellsOf(lines[1]), ElementsAre("computer", test::utf8(Process::GetComputerNameW())));
    EXPECT_EQ(0u, run.exitCode);
}

TEST(VrtoolWhoami, TellsEachFigureOfTheMemoryUnderItsName) {
    test::ImportHook<decltype(GetProcessMemoryInfo)> const hook(
        "K32GetProcessMemoryInfo", [](HANDLE, PROCESS_MEMORY_COUNTERS* counters, DWORD) -> BOOL {
            counters->PageFaultCount = 1;
            counters->PeakWorkingSetSize = 2;
            counters->WorkingSetSize = 0x123456789A;
            counters->QuotaPeakPagedPoolUsage = 4;
            counters->QuotaPagedPoolUsage = 5;
            counters->QuotaPeakNonPagedPoolUsage = 6;
            counters->QuotaNonPagedPoolUsage = 7;
            counters->PagefileUsage = 8;
            counters->PeakPagefileUsage = 9;
            return TRUE;
        });

    auto const document = jsonHere().json();

    std::vector<std::uint64_t> figures;
    for (std::size_t name = 5; name < names.size(); ++name)
        figures.push_back(document[names[name]].asUInt64());
    EXPECT_THAT(figures, ElementsAre(1, 2, 0x123456789A, 4, 5, 6, 7, 8, 9));
}

TEST(VrtoolWhoami, SaysThatTheMemoryIsNotKnownAndTellsTheRest) {
    test::FailingImport<decltype(OpenProcess)> const fails(
        "OpenProcess", nullptr, ERROR_ACCESS_DENIED, test::everyCall);

    auto const table = tableHere();
    auto const json = jsonHere();

    EXPECT_EQ("vrtool: the memory is not known: OpenProcess failed\n", table.error);
    EXPECT_THAT(test::cellsOf(table.lines().at(6)), ElementsAre("pageFaultCount", "-"));
    EXPECT_TRUE(json.json()["workingSetSize"].isNull());
    EXPECT_EQ(names.size(), json.json().size());
    EXPECT_EQ(1u, table.exitCode);
    EXPECT_EQ(1u, json.exitCode);
}

TEST(VrtoolWhoami, ShowsADashForANameThatIsNotKnown) {
    test::FailingImport<decltype(GetUserNameW)> const fails(
        "GetUserNameW", FALSE, ERROR_ACCESS_DENIED, test::everyCall);

    EXPECT_THAT(test::cellsOf(tableHere().lines().at(2)), ElementsAre("user", "-"));
    auto const json = jsonHere();
    EXPECT_TRUE(json.json()["user"].isNull());
    EXPECT_EQ(0u, json.exitCode);
}
