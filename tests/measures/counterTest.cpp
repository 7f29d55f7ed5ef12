#include "vrUtils/counter.h"

#include <gtest/gtest.h>

#include <atomic>
#include <limits>
#include <thread>
#include <type_traits>
#include <vector>

using vrUtils::counter;
using vrUtils::CounterIDs;

// The count is the process's: each test leaves it at zero.

namespace {

constexpr auto only = static_cast<CounterIDs>(0);

void incrementTimes(int times) {
    for (int time = 0; time < times; ++time)
        counter().Increment(only);
}

// Runs the work in so many threads.
template <typename Work>
void inThreads(int number, Work work) {
    std::vector<std::thread> threads;
    for (int index = 0; index < number; ++index)
        threads.emplace_back(work);
    for (auto& thread : threads)
        thread.join();
}

// Where a fixed number of threads wait for one another, again and again.
class Barrier {
  public:
    explicit Barrier(int threads) : m_threads(threads) {}

    void meet() {
        auto const round = m_round.load();
        if (++m_arrived == m_threads) {
            m_arrived = 0;
            ++m_round;
            return;
        }
        while (m_round == round)
            std::this_thread::yield();
    }

  private:
    int const m_threads;
    std::atomic<int> m_arrived{0};
    std::atomic<int> m_round{0};
};

} // namespace

static_assert(std::is_same_v<std::int32_t, std::underlying_type_t<CounterIDs>>);
static_assert(std::is_empty_v<counter>);
static_assert(std::is_copy_assignable_v<counter>);

TEST(counter, IsZeroAfterOneUpAndOneDown) {
    counter const count;

    count.Increment(only);

    EXPECT_TRUE(count.Decrement(only));
}

TEST(counter, IsZeroWithTheLastOfTwoOnly) {
    incrementTimes(2);

    EXPECT_FALSE(counter().Decrement(only));
    EXPECT_TRUE(counter().Decrement(only));
}

TEST(counter, GoesOnBelowZero) {
    EXPECT_FALSE(counter().Decrement(only));
    EXPECT_FALSE(counter().Decrement(only));

    // From -2 up to 1, and back to zero.
    incrementTimes(3);
    EXPECT_TRUE(counter().Decrement(only));
}

TEST(counter, AllObjectsShareTheCount) {
    counter const first;
    counter second;
    second = first;

    first.Increment(only);
    second.Increment(only);

    EXPECT_FALSE(counter(first).Decrement(only));
    EXPECT_TRUE(second.Decrement(only));
}

class OtherCounterIDs : public testing::TestWithParam<std::int32_t> {};

TEST_P(OtherCounterIDs, DoNothing) {
    auto const other = static_cast<CounterIDs>(GetParam());
    counter().Increment(only);

    counter().Increment(other);
    EXPECT_FALSE(counter().Decrement(other));
    EXPECT_FALSE(counter().Decrement(other));

    EXPECT_TRUE(counter().Decrement(only));
}

INSTANTIATE_TEST_SUITE_P(
    counter, OtherCounterIDs,
    testing::Values(
        1, 2, -1, 1000000, std::numeric_limits<std::int32_t>::max(),
        std::numeric_limits<std::int32_t>::min()));

TEST(counter, LosesNothingAmongManyThreads) {
    constexpr int threads = 64;
    constexpr int times = 20000;
    std::atomic<int> zeros{0};
    counter().Increment(only);

    inThreads(threads, [] { incrementTimes(times); });
    inThreads(threads, [&] {
        for (int time = 0; time < times; ++time)
            zeros += counter().Decrement(only);
    });

    EXPECT_EQ(0, zeros);
    EXPECT_TRUE(counter().Decrement(only));
}

TEST(counter, OneOfManyThreadsSeesZero) {
    constexpr int threads = 64;
    constexpr int times = 2000;
    std::atomic<int> zeros{0};
    incrementTimes(threads * times);

    inThreads(threads, [&] {
        for (int time = 0; time < times; ++time)
            zeros += counter().Decrement(only);
    });

    EXPECT_EQ(1, zeros);
}

TEST(counter, OneOfTwoThreadsSeesZeroEachTimeTheyRace) {
    constexpr int rounds = 20000;
    Barrier barrier(2);
    std::atomic<int> zeros{0};

    inThreads(2, [&] {
        for (int round = 0; round < rounds; ++round) {
            counter().Increment(only);
            barrier.meet();
            zeros += counter().Decrement(only);
            barrier.meet();
        }
    });

    EXPECT_EQ(rounds, zeros);
}
