// A statistic added to by one and by several threads, and the five that are always there as JSON.

#include "benchmarks/Candidate.h"
#include "benchmarks/StatisticsAsJson.h"

#include "foundation/Platform.h"
#include "vrUtils/vrStatCollector.h"

#include <atomic>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>

namespace {

constexpr int bytesRead = 0x10000;
constexpr std::uint64_t amount = 65536;

int ours() {
    vrStatCollector::Singleton().AddStat(bytesRead, amount);
    return 0;
}

// A table like ours, under a lock of the peer's choice.
template <class Lock>
class Table {
  public:
    int add(int id) {
        std::lock_guard const guard(m_lock);
        m_stats[id].value += amount;
        return 0;
    }

    void name(int id, std::wstring const& name) { m_stats[id].name = name; }

  private:
    struct Stat {
        std::wstring name;
        std::uint64_t value = 0;
    };

    Lock m_lock;
    std::map<int, Stat> m_stats;
};

class CriticalSection {
  public:
    CriticalSection() { InitializeCriticalSection(&m_section); }

    CriticalSection(CriticalSection const&) = delete;
    CriticalSection& operator=(CriticalSection const&) = delete;

    ~CriticalSection() { DeleteCriticalSection(&m_section); }

    void lock() { EnterCriticalSection(&m_section); }

    void unlock() { LeaveCriticalSection(&m_section); }

  private:
    CRITICAL_SECTION m_section;
};

template <class Lock>
int addToTable() {
    static auto& table = *[] {
        static Table<Lock> made;
        for (auto const id :
             {bytesRead, bytesRead + 1, bytesRead + 2, bytesRead + 3, bytesRead + 4})
            made.name(id, L"BytesReadOrWritten");
        return &made;
    }();
    return table.add(bytesRead);
}

// One number without a table: what a program has that counts one thing only.
std::uint64_t addToAtomic() {
    static std::atomic<std::uint64_t> value{0};
    return value += amount;
}

void addCandidates(char const* row, int threads) {
    using benchmarks::candidate;
    candidate(row, "ours", ours, threads);
    candidate(row, "limit", addToTable<CriticalSection>, threads);
    candidate(row, "mutex", addToTable<std::mutex>, threads);
    candidate(row, "atomic", addToAtomic, threads);
}

} // namespace

void benchmarks::registerCandidates() {
    addCandidates("add-stat-1", 1);
    addCandidates("add-stat-2", 2);
    addCandidates("add-stat-8", 8);
    statisticsAsJson("stats-json-5", 5);
}
