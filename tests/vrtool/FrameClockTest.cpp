// Times of day and frames, as `vrtool timecode` turns one into the other.

#include "tools/vrtool/FrameClock.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

std::string failureOf(FrameClock const& clock, std::string const& text) {
    try {
        clock.framesOf(text);
    } catch (std::invalid_argument const& failure) {
        return failure.what();
    }
    return "none";
}

class FrameClockAtRate : public testing::TestWithParam<int> {
  protected:
    FrameClock const clock{static_cast<EFrameRate>(GetParam())};
};

} // namespace

TEST_P(FrameClockAtRate, TimesOfADayComeBack) {
    for (std::uint32_t frames = 0; frames < clock.dayLength(); frames += 997)
        ASSERT_EQ(frames, clock.framesOf(clock.timeOf(frames)));
}

TEST_P(FrameClockAtRate, MidnightEndsTheDay) {
    EXPECT_EQ("24:00:00:00", clock.timeOf(clock.dayLength()));
    EXPECT_EQ(clock.dayLength(), clock.framesOf("24:00:00:00"));
}

INSTANTIATE_TEST_SUITE_P(
    VrtoolFrameClock, FrameClockAtRate, testing::Range(1, 9),
    [](auto const& test) { return "Rate" + std::to_string(test.param); });

TEST(VrtoolFrameClock, TimesCountWholeFrames) {
    FrameClock const clock(eFrameRate25);

    EXPECT_EQ(2159000u, clock.framesOf("23:59:20:00"));
    EXPECT_EQ("23:59:20:00", clock.timeOf(2159000));
    EXPECT_EQ("00:00:00:24", clock.timeOf(24));
    EXPECT_EQ("00:00:01:00", clock.timeOf(25));
}

TEST(VrtoolFrameClock, DropFrameLeavesTimesOut) {
    FrameClock const clock(eFrameRate2997Drop);

    EXPECT_EQ("00:00:59:29", clock.timeOf(1799));
    EXPECT_EQ("00:01:00:02", clock.timeOf(1800));
    EXPECT_EQ("00:09:59:29", clock.timeOf(17981));
    EXPECT_EQ("00:10:00:00", clock.timeOf(17982));
    EXPECT_EQ("there is no 00:01:00:01 at this rate", failureOf(clock, "00:01:00:01"));
    EXPECT_EQ("none", failureOf(clock, "00:10:00:01"));
}

TEST(VrtoolFrameClock, FastDropFrameLeavesFourOut) {
    FrameClock const clock(eFrameRate5994Drop);

    EXPECT_EQ("00:00:59:59", clock.timeOf(3599));
    EXPECT_EQ("00:01:00:04", clock.timeOf(3600));
    EXPECT_EQ("there is no 00:01:00:03 at this rate", failureOf(clock, "00:01:00:03"));
}

TEST(VrtoolFrameClock, TimesGoOnBehindMidnight) {
    FrameClock const clock(eFrameRate25);

    EXPECT_EQ("24:00:20:00", clock.timeOf(2160500));
    EXPECT_EQ("47721:51:31:20", clock.timeOf(0xFFFFFFFF));
    EXPECT_EQ(8999999u, clock.framesOf("99:59:59:24"));
}

TEST(VrtoolFrameClock, NumbersAreFrames) {
    FrameClock const clock(eFrameRate25);

    EXPECT_EQ(0u, clock.framesOf("0"));
    EXPECT_EQ(500u, clock.framesOf("0000000500"));
    EXPECT_EQ(4294967295u, clock.framesOf("4294967295"));
}

TEST(VrtoolFrameClock, TimesThatAreNoneAreRefused) {
    FrameClock const clock(eFrameRate25);

    for (auto const* text : {"00:00:00:25", "00:00:60:00", "00:60:00:00", "99:99:99:99"})
        EXPECT_EQ("there is no " + std::string(text) + " at this rate", failureOf(clock, text));
}

TEST(VrtoolFrameClock, OtherTextsAreRefused) {
    FrameClock const clock(eFrameRate25);

    for (auto const* text :
         {"", "-1", "+1", " 1", "1 ", "0x10", "1.5", "4294967296", "99999999999", "00:00:00",
          "0:00:00:00", "00:00:00:00:00", "00:00:00;00", "100:00:00:00", "aa:bb:cc:dd"})
        EXPECT_EQ(
            text + std::string(" is neither a number up to 4294967295 nor a time hh:mm:ss:ff"),
            failureOf(clock, text));
}

TEST(VrtoolFrameClock, UnknownRatesHaveNoTimes) {
    for (int const rate : {0, 9, -1}) {
        FrameClock const clock(static_cast<EFrameRate>(rate));

        EXPECT_EQ(0u, clock.dayLength());
        EXPECT_EQ("", clock.timeOf(0));
        EXPECT_EQ(7u, clock.framesOf("7"));
        EXPECT_EQ("there is no 00:00:00:00 at this rate", failureOf(clock, "00:00:00:00"));
    }
}
