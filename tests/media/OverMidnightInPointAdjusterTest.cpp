#include "vrUtils/OverMidnightInPointAdjuster.h"

#include "tests/support/Campaign.h"

#include <gtest/gtest.h>

#include <array>
#include <thread>
#include <type_traits>
#include <vector>

namespace {

constexpr std::array<std::uint32_t, 9> dayLengths{0,       2160000, 2592000, 2589408, 2073600,
                                                  2073600, 4320000, 5184000, 5178816};

std::uint32_t dayLengthOf(std::int64_t rate) {
    return rate >= 0 && rate <= 8 ? dayLengths[static_cast<std::size_t>(rate)] : 0;
}

struct Recording {
    std::uint32_t start;
    std::uint32_t duration;
    std::uint32_t inPoint;
};

std::ostream& operator<<(std::ostream& stream, Recording const& recording) {
    return stream << "start " << recording.start << ", duration " << recording.duration
                  << ", in-point " << recording.inPoint;
}

unsigned long adjusted(Recording const& recording, std::int32_t rate) {
    return OverMidnightInPointAdjuster(
               recording.start, recording.duration, recording.inPoint,
               static_cast<EFrameRate>(rate))
        .Adjust();
}

// The rules in another shape: where the in-point would lie, and whether everything allows it there.
unsigned long modelOf(Recording const& recording, std::int32_t rate) {
    constexpr std::uint64_t modulus = std::uint64_t{1} << 32;
    std::uint64_t const day = dayLengthOf(rate);
    std::uint64_t const end = (std::uint64_t{recording.start} + recording.duration) % modulus;
    std::uint64_t const moved = (day + recording.inPoint) % modulus;
    bool const isMoved =
        recording.start < day && day < end && recording.inPoint < recording.start && moved < end;
    return static_cast<unsigned long>(isMoved ? moved : recording.inPoint);
}

// Numbers from all 32 bits, and from around the places where the comparisons turn.
std::uint32_t numberNear(test::Campaign& campaign, std::uint32_t day) {
    auto const distance = static_cast<std::uint32_t>(campaign.below(7)) - 3;
    switch (campaign.below(6)) {
    case 0:
        return static_cast<std::uint32_t>(campaign.random()());
    case 1:
        return day + distance;
    case 2:
        return 0x80000000 + distance;
    case 3:
        return static_cast<std::uint32_t>(campaign.below(20));
    case 4:
        return 0 - day + distance;
    default:
        return static_cast<std::uint32_t>(campaign.below(day ? day : 1));
    }
}

class AdjusterAtRate : public testing::TestWithParam<std::int32_t> {
  protected:
    std::int32_t rate() const { return GetParam(); }
    std::uint32_t day() const { return dayLengthOf(rate()); }
};

class AdjusterAtUnknownRate : public AdjusterAtRate {};

std::string nameOf(testing::TestParamInfo<std::int32_t> const& test) {
    return (test.param < 0 ? "RateMinus" : "Rate") +
           std::to_string(std::abs(std::int64_t{test.param}));
}

} // namespace

TEST_P(AdjusterAtRate, DayHasItsLength) {
    EXPECT_EQ(day(), OverMidnightInPointAdjuster::DayLength(static_cast<EFrameRate>(rate())));
}

TEST_P(AdjusterAtRate, MovesAnInPointBehindMidnightByADay) {
    EXPECT_EQ(day() + 500, adjusted({day() - 1000, 2000, 500}, rate()));
}

TEST_P(AdjusterAtRate, StartAtTheEndOfTheDayStays) {
    EXPECT_EQ(5u, adjusted({day(), 1000, 5}, rate()));
    EXPECT_EQ(day() + 5, adjusted({day() - 1, 1000, 5}, rate()));
}

TEST_P(AdjusterAtRate, EndAtMidnightStays) {
    EXPECT_EQ(0u, adjusted({day() - 1, 1, 0}, rate()));
    EXPECT_EQ(day(), adjusted({day() - 1, 2, 0}, rate()));
}

TEST_P(AdjusterAtRate, InPointAtTheStartStays) {
    EXPECT_EQ(100u, adjusted({100, day() + 1, 100}, rate()));
    EXPECT_EQ(day() + 99, adjusted({100, day() + 1, 99}, rate()));
}

TEST_P(AdjusterAtRate, MovedInPointAtTheEndStays) {
    EXPECT_EQ(1000u, adjusted({day() - 1000, 2000, 1000}, rate()));
    EXPECT_EQ(day() + 999, adjusted({day() - 1000, 2000, 999}, rate()));
}

TEST_P(AdjusterAtRate, RecordingOfNothingStays) {
    EXPECT_EQ(0u, adjusted({day() - 1, 0, 0}, rate()));
    EXPECT_EQ(0u, adjusted({0, 0, 0}, rate()));
}

// A sum that wraps is smaller than the start, and so ends within the first day.
TEST_P(AdjusterAtRate, EndThatWrapsStays) {
    EXPECT_EQ(day() + 7, adjusted({100, 0xFFFFFFFF - 100, 7}, rate()));
    EXPECT_EQ(7u, adjusted({100, 0xFFFFFFFF - 99, 7}, rate()));
    EXPECT_EQ(7u, adjusted({day() - 1, 0xFFFFFFFF, 7}, rate()));
}

TEST_P(AdjusterAtRate, ComparesWithoutSign) {
    EXPECT_EQ(day() + 50, adjusted({100, 0x80000000, 50}, rate()));
    EXPECT_EQ(50u, adjusted({0x80000000, 0x7FFFFFFF, 50}, rate()));
    EXPECT_EQ(0xFFFFFFFFu, adjusted({day() - 1, 2, 0xFFFFFFFF}, rate()));
}

INSTANTIATE_TEST_SUITE_P(OverMidnightInPointAdjuster, AdjusterAtRate, testing::Range(1, 9), nameOf);

TEST_P(AdjusterAtUnknownRate, DayHasNoLength) {
    EXPECT_EQ(0u, OverMidnightInPointAdjuster::DayLength(static_cast<EFrameRate>(rate())));
}

TEST_P(AdjusterAtUnknownRate, EveryInPointStays) {
    for (std::uint32_t const inPoint : {0u, 1u, 500u, 0x80000000u, 0xFFFFFFFFu})
        for (std::uint32_t const start : {0u, 1u, 2159000u, 0xFFFFFFFFu})
            EXPECT_EQ(inPoint, adjusted({start, 2000, inPoint}, rate())) << inPoint;
}

INSTANTIATE_TEST_SUITE_P(
    OverMidnightInPointAdjuster, AdjusterAtUnknownRate,
    testing::Values(0, 9, 10, 25, -1, -3, INT32_MAX, INT32_MIN), nameOf);

TEST(OverMidnightInPointAdjuster, InPointBeforeMidnightStays) {
    EXPECT_EQ(2159500u, adjusted({2159000, 2000, 2159500}, eFrameRate25));
}

TEST(OverMidnightInPointAdjuster, RecordingWithinADayStays) {
    EXPECT_EQ(50u, adjusted({100, 2000, 50}, eFrameRate25));
}

TEST(OverMidnightInPointAdjuster, DropFrameDaysAreShorter) {
    Recording const recording{2589407, 100, 10};

    EXPECT_EQ(2589418u, adjusted(recording, eFrameRate2997Drop));
    EXPECT_EQ(10u, adjusted(recording, eFrameRate30));
}

TEST(OverMidnightInPointAdjuster, AnswersTheSameEachTime) {
    OverMidnightInPointAdjuster const adjuster(2159000, 2000, 500, eFrameRate25);

    EXPECT_EQ(2160500u, adjuster.Adjust());
    EXPECT_EQ(2160500u, adjuster.Adjust());
    EXPECT_EQ(2160500u, OverMidnightInPointAdjuster(adjuster).Adjust());
}

TEST(OverMidnightInPointAdjuster, ConstantHoldsTheSecondsOfADay) {
    constexpr auto seconds = OverMidnightInPointAdjuster::framesInOneDay;
    auto const& object = OverMidnightInPointAdjuster::framesInOneDay;

    EXPECT_TRUE((std::is_same_v<std::uint32_t const, decltype(seconds)>));
    EXPECT_EQ(86400u, seconds);
    EXPECT_EQ(86400u, object);
}

TEST(OverMidnightInPointAdjuster, IsAPlainValue) {
    EXPECT_FALSE(std::is_polymorphic_v<OverMidnightInPointAdjuster>);
    EXPECT_EQ(16u, sizeof(OverMidnightInPointAdjuster));
}

TEST(OverMidnightInPointAdjuster, AgreesWithTheRulesOnRandomRecordings) {
    constexpr int recordingsPerRound = 1000;
    test::Campaign campaign(1000);
    int moved = 0;
    while (campaign.nextRound()) {
        for (int count = 0; count < recordingsPerRound; ++count) {
            auto const rate = static_cast<std::int32_t>(campaign.below(11)) - 1;
            auto const day = dayLengthOf(rate);
            Recording recording{};
            recording.start = numberNear(campaign, day);
            recording.duration = numberNear(campaign, day);
            recording.inPoint = numberNear(campaign, day);

            auto const expected = modelOf(recording, rate);
            ASSERT_EQ(expected, adjusted(recording, rate))
                << recording << ", rate " << rate << ' ' << campaign;
            moved += expected != recording.inPoint;
        }
    }

    EXPECT_GT(moved, 1000);
}

TEST(OverMidnightInPointAdjuster, AgreesWithTheRulesAroundEveryEquality) {
    for (std::int32_t rate = -1; rate <= 9; ++rate) {
        auto const day = dayLengthOf(rate);
        std::vector<std::uint32_t> numbers;
        for (std::uint32_t const middle : {0u, 1000u, day / 2, day, 2 * day, 0u - day, 0x80000000u})
            for (std::uint32_t distance = 0; distance < 5; ++distance)
                numbers.push_back(middle + distance - 2);

        for (auto const start : numbers)
            for (auto const duration : numbers)
                for (auto const inPoint : numbers) {
                    Recording const recording{start, duration, inPoint};
                    ASSERT_EQ(modelOf(recording, rate), adjusted(recording, rate)) << recording;
                }
    }
}

TEST(OverMidnightInPointAdjuster, ServesManyThreads) {
    OverMidnightInPointAdjuster const adjuster(2159000, 2000, 500, eFrameRate25);
    std::array<int, 8> wrong{};
    std::vector<std::thread> threads;
    for (auto& count : wrong)
        threads.emplace_back([&] {
            for (int call = 0; call < 10000; ++call)
                count += adjuster.Adjust() != 2160500;
        });
    for (auto& thread : threads)
        thread.join();

    EXPECT_EQ((std::array<int, 8>{}), wrong);
}
