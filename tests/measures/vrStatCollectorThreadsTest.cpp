// Many threads count at the same time.

#include "vrUtils/vrStatCollector.h"

#include "tests/support/WideText.h"

#include <gtest/gtest.h>
#include <json/json.h>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

namespace {

constexpr int threadCount = 64;

vrStatCollector& stats() { return vrStatCollector::Singleton(); }

// Threads that are joined at the end of their scope.
class Threads {
  public:
    template <typename Work>
    Threads(int count, Work work) {
        for (int index = 0; index < count; ++index)
            m_threads.emplace_back(work, index);
    }

    Threads(Threads const&) = delete;
    Threads& operator=(Threads const&) = delete;

    ~Threads() { join(); }

    void join() {
        for (auto& thread : m_threads)
            thread.join();
        m_threads.clear();
    }

  private:
    std::vector<std::thread> m_threads;
};

Json::Value asDocument() {
    auto const text = test::utf8(stats().asJson());
    Json::Value document;
    std::unique_ptr<Json::CharReader> const reader(Json::CharReaderBuilder().newCharReader());
    EXPECT_TRUE(reader->parse(text.data(), text.data() + text.size(), &document, nullptr));
    return document;
}

} // namespace

TEST(vrStatCollectorThreads, TenMillionAdditionsLoseNothing) {
    constexpr unsigned additions = 10000000;
    constexpr unsigned each = additions / threadCount;

    Threads(threadCount, [](int) {
        for (unsigned time = 0; time < each; ++time)
            stats().AddStat(100, 1ul);
    }).join();

    EXPECT_EQ(additions, stats().GetStat(100));
}

TEST(vrStatCollectorThreads, StatsOfTheirOwnDoNotDisturbOneAnother) {
    constexpr unsigned times = 500;

    Threads(threadCount, [](int index) {
        for (unsigned time = 0; time < times; ++time)
            stats().AddStat(200 + index, std::uint64_t{1} << 33);
    }).join();

    for (int index = 0; index < threadCount; ++index)
        EXPECT_EQ(std::uint64_t{times} << 33, stats().GetStat(200 + index)) << index;
}

TEST(vrStatCollectorThreads, JsonIsTheStateOfOneMoment) {
    constexpr int adders = 4;
    constexpr int snapshots = 100;
    constexpr int first = 1000;
    constexpr int last = 1500;
    // Those in between take their time, and leave room between the reads of the first and the last.
    for (int number = first; number <= last; ++number) {
        auto const name = L"moment " + std::to_wstring(number);
        stats().SetStatName(number, &name);
    }
    std::atomic<bool> isOver{false};
    Threads const threads(adders, [&](int) {
        while (!isOver) {
            stats().AddStat(first, 1u);
            stats().AddStat(last, 1u);
        }
    });

    // Each adder is at most one ahead with the first; without a common moment the last overtakes.
    for (int snapshot = 0; snapshot < snapshots; ++snapshot) {
        auto const document = asDocument();
        auto const ofFirst = document["moment 1000"].asInt64();
        auto const ofLast = document["moment 1500"].asInt64();
        EXPECT_LE(ofLast, ofFirst);
        EXPECT_LE(ofFirst, ofLast + adders);
    }
    isOver = true;
}

TEST(vrStatCollectorThreads, NamingAndReadingMayGoOnBeside) {
    std::atomic<int> wrong{0};

    Threads(8, [&](int index) {
        auto const name = L"name " + std::to_wstring(index);
        for (int time = 0; time < 200; ++time) {
            stats().SetStatName(400 + index, &name);
            stats().SetStat(400 + index, 5);
            wrong += stats().GetStat(400 + index) != 5;
            wrong += stats().asJson().find(name) == std::wstring::npos;
        }
    }).join();

    EXPECT_EQ(0, wrong);
}
