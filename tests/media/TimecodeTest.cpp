#include "media/Timecode.h"

#include "tests/support/Campaign.h"

#include <gtest/gtest.h>

using vrUtils::Timecode;

namespace {

struct Rate {
    EFrameRate rate;
    std::uint32_t framesPerSecond;
    std::uint32_t dropped;
    std::uint32_t dayLength;
};

void PrintTo(Rate const& rate, std::ostream* stream) { *stream << "rate " << rate.rate; }

Rate const rates[] = {
    {eFrameRateUnknown, 0, 0, 0},         {eFrameRate25, 25, 0, 2160000},
    {eFrameRate30, 30, 0, 2592000},       {eFrameRate2997Drop, 30, 2, 2589408},
    {eFrameRate24, 24, 0, 2073600},       {eFrameRate2398, 24, 0, 2073600},
    {eFrameRate50, 50, 0, 4320000},       {eFrameRate60, 60, 0, 5184000},
    {eFrameRate5994Drop, 60, 4, 5178816},
};

// Goes on by one frame as a clock does that shows each number which is not left out.
void advance(Timecode& clock, Rate const& rate) {
    if (++clock.frames < rate.framesPerSecond)
        return;
    clock.frames = 0;
    if (++clock.seconds < 60)
        return;
    clock.seconds = 0;
    if (++clock.minutes == 60) {
        clock.minutes = 0;
        ++clock.hours;
    }
    if (clock.minutes % 10 != 0)
        clock.frames = rate.dropped;
}

// What the sum comes to in 32 bits, by 64-bit steps that each cut the result.
std::uint32_t modelOf(Timecode const& time, Rate const& rate) {
    constexpr std::uint64_t mask = 0xFFFFFFFF;
    std::uint64_t const minutes = (std::uint64_t{time.hours} * 60 + time.minutes) & mask;
    std::uint64_t const seconds = (minutes * 60 + time.seconds) & mask;
    std::uint64_t const count = (seconds * rate.framesPerSecond + time.frames) & mask;
    std::uint64_t const blocks = (time.minutes / 10 + std::uint64_t{time.hours} * 6) & mask;
    std::uint64_t const dropping = (blocks * 9 + time.minutes % 10) & mask;
    return static_cast<std::uint32_t>((count + (mask + 1) * 8 - dropping * rate.dropped) & mask);
}

class TimecodeAtRate : public testing::TestWithParam<Rate> {};

} // namespace

TEST_P(TimecodeAtRate, CountsWholeFramesPerSecond) {
    Timecode const time{0, 0, 0, 0, GetParam().rate};

    EXPECT_EQ(GetParam().framesPerSecond, time.framesPerSecond());
}

TEST_P(TimecodeAtRate, DayHasItsLength) {
    Timecode const midnight{24, 0, 0, 0, GetParam().rate};

    EXPECT_EQ(GetParam().dayLength, midnight.toFrames());
}

TEST_P(TimecodeAtRate, EachNumberOfADayHasItsFrame) {
    Timecode clock{0, 0, 0, 0, GetParam().rate};
    for (std::uint32_t frame = 0; frame < GetParam().dayLength; ++frame) {
        if (clock.toFrames() != frame)
            FAIL() << frame << ": " << clock.hours << ':' << clock.minutes << ':' << clock.seconds
                   << ':' << clock.frames << " gives " << clock.toFrames();
        advance(clock, GetParam());
    }

    Rate const unknown = rates[0];
    if (GetParam().rate != unknown.rate) {
        EXPECT_EQ(24u, clock.hours);
        EXPECT_EQ(0u, clock.minutes + clock.seconds + clock.frames);
    }
}

TEST_P(TimecodeAtRate, WrapsOnRandomFields) {
    test::Campaign campaign(1000);
    while (campaign.nextRound()) {
        auto const field = [&] {
            auto const shift = campaign.below(32);
            return static_cast<std::uint32_t>(campaign.random()() >> shift);
        };
        Timecode time{0, 0, 0, 0, GetParam().rate};
        time.hours = field();
        time.minutes = field();
        time.seconds = field();
        time.frames = field();

        ASSERT_EQ(modelOf(time, GetParam()), time.toFrames()) << campaign;
    }
}

INSTANTIATE_TEST_SUITE_P(Timecode, TimecodeAtRate, testing::ValuesIn(rates), [](auto const& test) {
    return "Rate" + std::to_string(test.param.rate);
});

TEST(Timecode, DropFrameLeavesOutTheFirstNumbersOfAMinute) {
    EXPECT_EQ(1799u, (Timecode{0, 0, 59, 29, eFrameRate2997Drop}.toFrames()));
    EXPECT_EQ(1800u, (Timecode{0, 1, 0, 2, eFrameRate2997Drop}.toFrames()));
    EXPECT_EQ(3599u, (Timecode{0, 0, 59, 59, eFrameRate5994Drop}.toFrames()));
    EXPECT_EQ(3600u, (Timecode{0, 1, 0, 4, eFrameRate5994Drop}.toFrames()));
}

TEST(Timecode, DropFrameLeavesOutNoneInATenthMinute) {
    auto const last = Timecode{0, 9, 59, 29, eFrameRate2997Drop}.toFrames();

    EXPECT_EQ(last + 1, (Timecode{0, 10, 0, 0, eFrameRate2997Drop}.toFrames()));
    EXPECT_EQ(17982u, last + 1);
}

TEST(Timecode, FramesStandAloneAtAnUnknownRate) {
    for (std::int32_t const number : {0, 9, 10, -1, INT32_MAX, INT32_MIN}) {
        Timecode const time{23, 59, 59, 7, static_cast<EFrameRate>(number)};

        EXPECT_EQ(0u, time.framesPerSecond()) << number;
        EXPECT_EQ(7u, time.toFrames()) << number;
    }
}
