#ifndef TESTS_SUPPORT_CAMPAIGN_H
#define TESTS_SUPPORT_CAMPAIGN_H

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <ostream>
#include <random>
#include <string>

namespace test {

// The rounds of a random campaign. A test runs its short form; `scripts/torture` runs the same test
// longer, with a seed, a count and a time limit of its own, which arrive in the environment:
//
//     test::Campaign campaign(10000);
//     while (campaign.nextRound())
//         EXPECT_EQ(model(campaign.random()), ...) << campaign;
class Campaign {
  public:
    explicit Campaign(std::uint64_t rounds)
        : m_rounds(setting("VRUTILS_TORTURE_COUNT", rounds)),
          m_seed(setting("VRUTILS_TORTURE_SEED", 1)),
          m_end(Clock::now() + std::chrono::seconds(setting("VRUTILS_TORTURE_SECONDS", 60))) {}

    // Whether there is another round; each has a random source of its own, so that any round can be
    // repeated alone.
    bool nextRound() {
        if (m_round == m_rounds || Clock::now() >= m_end)
            return false;
        std::seed_seq sequence{m_seed, ++m_round};
        m_random.seed(sequence);
        return true;
    }

    std::mt19937& random() { return m_random; }

    // Until no further round begins, for what a round waits for or lets live.
    std::chrono::seconds timeLeft() const {
        return std::chrono::duration_cast<std::chrono::seconds>(m_end - Clock::now());
    }

    // A random whole number from 0 to the limit, the limit left out. The generator's numbers are used
    // as they come, not through a distribution, so that a seed means the same with every library.
    std::size_t below(std::size_t limit) { return m_random() % limit; }

    friend std::ostream& operator<<(std::ostream& stream, Campaign const& campaign) {
        return stream << "in round " << campaign.m_round << " of seed " << campaign.m_seed;
    }

  private:
    using Clock = std::chrono::steady_clock;

    static std::uint64_t setting(char const* name, std::uint64_t standard) {
        char const* const text = std::getenv(name);
        return text ? std::strtoull(text, nullptr, 10) : standard;
    }

    std::uint64_t m_rounds;
    std::uint64_t m_seed;
    Clock::time_point m_end;
    std::uint64_t m_round = 0;
    std::mt19937 m_random;
};

} // namespace test

#endif
