// `vrtool timecode` as its users run it.

#include "tests/vrtool/ToolRun.h"

#include <gmock/gmock.h>

#include <array>

using testing::HasSubstr;
using testing::StartsWith;

namespace {

test::ToolRun
run(std::wstring const& start, std::wstring const& duration, std::wstring const& inPoint,
    std::wstring const& rate, std::vector<std::wstring> const& more = {}) {
    std::vector<std::wstring> arguments{L"timecode", L"--start", start,     L"--duration", duration,
                                        L"--in",     inPoint,    L"--rate", rate};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return test::runTool(arguments);
}

Json::Value told(
    std::wstring const& start, std::wstring const& duration, std::wstring const& inPoint,
    std::wstring const& rate = L"1") {
    return run(start, duration, inPoint, rate, {L"--json"}).json();
}

// The outcomes of the four tests: y, n, or - for one that was not made.
std::string outcomesOf(Json::Value const& document) {
    std::string outcomes;
    for (auto const* test :
         {"startsInFirstDay", "endsBehindMidnight", "inPointBeforeStart", "movedBeforeEnd"})
        outcomes += document[test].isNull() ? '-' : document[test].asBool() ? 'y' : 'n';
    return outcomes;
}

} // namespace

TEST(VrtoolTimecode, ShowsEachTestAndTheResult) {
    auto const shown = run(L"23:59:20:00", L"2000", L"500", L"1");

    EXPECT_EQ(
        R"(WHAT                VALUE
rate                1
dayLength           2160000
start               2159000
startTime           23:59:20:00
duration            2000
end                 2161000
endTime             24:00:40:00
in                  500
inTime              00:00:20:00
startsInFirstDay    yes
endsBehindMidnight  yes
inPointBeforeStart  yes
moved               2160500
movedBeforeEnd      yes
result              2160500
resultTime          24:00:20:00
)",
        shown.out);
    EXPECT_EQ("", shown.error);
    EXPECT_EQ(0u, shown.exitCode);
}

TEST(VrtoolTimecode, TellsProgramsTheSame) {
    auto const document = told(L"2159000", L"00:01:20:00", L"00:00:20:00");

    EXPECT_EQ(1, document["rate"].asInt());
    EXPECT_EQ(2160000u, document["dayLength"].asUInt());
    EXPECT_EQ("23:59:20:00", document["startTime"].asString());
    EXPECT_EQ(2000u, document["duration"].asUInt());
    EXPECT_EQ(500u, document["in"].asUInt());
    EXPECT_EQ(2160500u, document["moved"].asUInt());
    EXPECT_EQ(2160500u, document["result"].asUInt());
    EXPECT_EQ("yyyy", outcomesOf(document));
    EXPECT_EQ(16u, document.size());
}

TEST(VrtoolTimecode, TestsEndAtTheFirstThatFails) {
    EXPECT_EQ("n---", outcomesOf(told(L"2160000", L"10", L"5")));
    EXPECT_EQ("yn--", outcomesOf(told(L"2159999", L"1", L"0")));
    EXPECT_EQ("yyn-", outcomesOf(told(L"2159000", L"2000", L"2159000")));
    EXPECT_EQ("yyyn", outcomesOf(told(L"2159000", L"2000", L"1000")));
}

TEST(VrtoolTimecode, InPointThatStaysIsTheResult) {
    auto const document = told(L"2159000", L"2000", L"1000");

    EXPECT_EQ(2161000u, document["moved"].asUInt());
    EXPECT_EQ(1000u, document["result"].asUInt());
    EXPECT_EQ("00:00:40:00", document["resultTime"].asString());
    EXPECT_TRUE(told(L"2160000", L"10", L"5")["moved"].isNull());
}

TEST(VrtoolTimecode, DaysHaveTheLengthOfTheirRate) {
    std::array<std::uint32_t, 10> const lengths{0,       2160000, 2592000, 2589408, 2073600,
                                                2073600, 4320000, 5184000, 5178816, 0};

    for (std::size_t rate = 0; rate < lengths.size(); ++rate)
        EXPECT_EQ(
            lengths[rate], told(L"1", L"1", L"0", std::to_wstring(rate))["dayLength"].asUInt())
            << rate;
}

TEST(VrtoolTimecode, UnknownRateLeavesTheInPoint) {
    auto const document = told(L"2159000", L"2000", L"500", L"-1");

    EXPECT_EQ(-1, document["rate"].asInt());
    EXPECT_EQ(0u, document["dayLength"].asUInt());
    EXPECT_TRUE(document["startTime"].isNull() && document["resultTime"].isNull());
    EXPECT_EQ("n---", outcomesOf(document));
    EXPECT_EQ(500u, document["result"].asUInt());
}

TEST(VrtoolTimecode, EndWraps) {
    auto const document = told(L"100", L"4294967295", L"5");

    EXPECT_EQ(99u, document["end"].asUInt());
    EXPECT_EQ("yn--", outcomesOf(document));
}

TEST(VrtoolTimecode, DropFrameTimesAreThoseThereAre) {
    EXPECT_EQ(1800u, told(L"00:01:00:02", L"1", L"0", L"3")["start"].asUInt());

    auto const refused = run(L"00:01:00:00", L"1", L"0", L"3");
    EXPECT_THAT(
        refused.error, StartsWith("vrtool: --start: there is no 00:01:00:00 at this rate\n"));
    EXPECT_EQ(2u, refused.exitCode);
}

TEST(VrtoolTimecode, WrongArgumentsAreNamed) {
    auto const expectRefusal = [](test::ToolRun const& refused, std::string const& reason) {
        EXPECT_THAT(refused.error, StartsWith("vrtool: " + reason + "\n"));
        EXPECT_THAT(refused.error, HasSubstr("Usage: vrtool timecode"));
        EXPECT_EQ("", refused.out);
        EXPECT_EQ(2u, refused.exitCode);
    };
    std::string const neither = " is neither a number up to 4294967295 nor a time hh:mm:ss:ff";

    expectRefusal(run(L"[a", L"1", L"0", L"1"), "--start: [a" + neither);
    expectRefusal(run(L"1", L"4294967296", L"0", L"1"), "--duration: 4294967296" + neither);
    expectRefusal(run(L"1", L"1", L"", L"1"), "--in: " + neither);
    expectRefusal(
        run(L"1", L"1", L"0", L"25p"), "--rate: Value 25p not in range -2147483648 to 2147483647");
    expectRefusal(test::runTool({L"timecode", L"--start", L"1"}), "--duration is required");
}
