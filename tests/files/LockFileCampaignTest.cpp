// Holders that are killed wherever they are, and many that contend for one lock.

#include "tests/files/LockFiles.h"
#include "tests/support/Campaign.h"
#include "tests/support/ChildAction.h"
#include "tests/support/OwnedHandle.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdio>
#include <memory>
#include <numeric>
#include <string>
#include <thread>
#include <vector>

using namespace vrUtils::Files;

namespace {

// Where a holder is when it is killed. At the steps it stops and waits for its end; on the way it
// takes the lock and gives it back without a pause, and may be anywhere.
enum Place : unsigned { onTheWay, holding, firstStep, lastStep = firstStep + 11, placeCount };

// Whether the lock file is open there: from behind the first call to ahead of the fifth.
bool isHeldAt(unsigned place) {
    return place == holding || (place > firstStep && place <= firstStep + 8);
}

// Stops this process at one of its calls on the lock file, ahead of the call or behind it.
class StopAt {
  public:
    explicit StopAt(unsigned place) : m_place(place) {}

    void reach(unsigned place) const {
        if (place != m_place)
            return;
        std::puts("reached");
        std::fflush(stdout);
        Sleep(INFINITE);
    }

  private:
    template <typename Signature>
    struct Hook {
        Hook(StopAt const& stop, char const* import, unsigned step)
            : hook(import, [this, &stop, step](auto... arguments) {
                  stop.reach(step);
                  auto const result = hook.original()(arguments...);
                  stop.reach(step + 1);
                  return result;
              }) {}

        test::ImportHook<Signature> hook;
    };

    unsigned m_place;
    Hook<decltype(CreateFileW)> m_open{*this, "CreateFileW", firstStep};
    Hook<decltype(WriteFile)> m_write{*this, "WriteFile", firstStep + 2};
    Hook<decltype(LockFileEx)> m_lock{*this, "LockFileEx", firstStep + 4};
    Hook<decltype(UnlockFile)> m_unlock{*this, "UnlockFile", firstStep + 6};
    Hook<decltype(CloseHandle)> m_close{*this, "CloseHandle", firstStep + 8};
    Hook<decltype(DeleteFileW)> m_delete{*this, "DeleteFileW", firstStep + 10};
};

test::ChildAction const beKilled(L"be killed with a lock", [](auto const& arguments) {
    auto const path = vr::Path::file(arguments.at(0));
    StopAt const stop(std::stoul(arguments.at(1)));
    {
        vrUtils::Files::LockFile const lock(path);
        stop.reach(holding);
    }
    std::puts("reached");
    std::fflush(stdout);
    for (;;)
        vrUtils::Files::LockFile const lock(path);
    return 0;
});

// A holder in a process of its own, and the place where it is to be killed.
struct Holder {
    std::wstring text;
    unsigned place;
    std::unique_ptr<test::ChildProcess> process = beKilled.start({text, std::to_wstring(place)});
};

class LockFileCampaign : public LockFiles {
  protected:
    static void take(std::wstring const& text) { LockFile const lock(vr::Path::file(text)); }
};

} // namespace

TEST_F(LockFileCampaign, HoldersThatAreKilledNeverBlockTheNext) {
    std::array<unsigned, placeCount> killed{};
    test::Campaign campaign(10);
    while (campaign.nextRound()) {
        // Two at a time, each with a file of its own: most of the time goes into their start.
        std::vector<Holder> holders;
        for (auto const* name : {L"a.mxf", L"b.mxf"})
            holders.push_back(
                {m_folder.file(name), static_cast<unsigned>(campaign.below(placeCount))});

        for (auto const& holder : holders) {
            SCOPED_TRACE(testing::Message() << campaign << ", at place " << holder.place);
            ASSERT_TRUE(holder.process->waitForOutput("reached"));
            if (isHeldAt(holder.place)) {
                ASSERT_THAT([&] { take(holder.text); }, FailsToLock(holder.text));
            }
            if (holder.place == onTheWay)
                holder.process->wait(std::chrono::milliseconds(campaign.below(20)));

            holder.process->kill();
            ++killed[holder.place];

            ASSERT_NO_THROW(take(holder.text));
        }
        ASSERT_EQ(std::vector<std::wstring>{}, m_folder.names()) << campaign;
    }
    std::printf(
        "%u holders killed, %u at the least at each of %u places\n",
        std::accumulate(killed.begin(), killed.end(), 0u),
        *std::min_element(killed.begin(), killed.end()), unsigned{placeCount});
}

namespace {

constexpr unsigned contenders = 8;
constexpr unsigned threadsOfEach = 4;

// What all contenders see, in memory that they share.
struct Arena {
    std::atomic<bool> over{false};
    std::atomic<unsigned> inside{0};
    std::atomic<unsigned> meetings{0};
    std::atomic<unsigned> faults{0};
    std::atomic<std::uint64_t> updates{0};
    std::atomic<std::uint64_t> refusals{0};
};

struct ViewCloser {
    void operator()(void* view) const noexcept { UnmapViewOfFile(view); }
};

// Memory of this name, zeros at first; all who name it have the same.
class SharedArena {
  public:
    explicit SharedArena(std::wstring const& name)
        : m_section(CreateFileMappingW(
              INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, sizeof(Arena), name.c_str())),
          m_view(MapViewOfFile(m_section.get(), FILE_MAP_ALL_ACCESS, 0, 0, sizeof(Arena))) {
        if (!m_view)
            throw test::platformFailure(GetLastError(), "cannot share memory");
    }

    Arena* operator->() const { return static_cast<Arena*>(m_view.get()); }

  private:
    test::OwnedHandle m_section;
    std::unique_ptr<void, ViewCloser> m_view;
};

// A number in a file, which updates lose as soon as two are made at the same time.
class CounterFile {
  public:
    explicit CounterFile(std::wstring name) : m_name(std::move(name)) {}

    std::uint64_t value() const {
        std::uint64_t value = 0;
        DWORD count = 0;
        auto const file = open();
        if (!ReadFile(file.get(), &value, sizeof value, &count, nullptr))
            throw test::platformFailure(GetLastError(), "cannot read the counter");
        return value;
    }

    void increase() const {
        auto const value = this->value() + 1;
        std::this_thread::yield();
        DWORD count = 0;
        auto const file = open();
        if (!WriteFile(file.get(), &value, sizeof value, &count, nullptr))
            throw test::platformFailure(GetLastError(), "cannot write the counter");
    }

  private:
    test::OwnedHandle open() const {
        return test::OwnedHandle(CreateFileW(
            m_name.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
            nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    }

    std::wstring m_name;
};

void contendOnce(vr::Path const& path, CounterFile const& counter, SharedArena const& arena) {
    try {
        vrUtils::Files::LockFile const lock(path);
        if (++arena->inside != 1)
            ++arena->meetings;
        counter.increase();
        ++arena->updates;
        --arena->inside;
    } catch (LockFileException const&) {
        ++arena->refusals;
        std::this_thread::yield();
    } catch (...) {
        ++arena->faults;
    }
}

test::ChildAction const contend(L"contend for a lock", [](auto const& arguments) {
    SharedArena const arena(arguments.at(1));
    test::OwnedHandle const progress(
        OpenEventW(EVENT_MODIFY_STATE, FALSE, (arguments.at(1) + L"-progress").c_str()));

    std::vector<std::thread> threads;
    for (unsigned thread = 0; thread < threadsOfEach; ++thread)
        threads.emplace_back([&] {
            auto const path = vr::Path::file(arguments.at(0));
            CounterFile const counter(arguments.at(0));
            while (!arena->over) {
                contendOnce(path, counter, arena);
                SetEvent(progress.get());
            }
        });
    for (auto& thread : threads)
        thread.join();
    return 0;
});

} // namespace

TEST_F(LockFileCampaign, ContendersNeverMeetAndLoseNoUpdate) {
    auto const name = L"vrutils-lock-arena-" + std::to_wstring(GetCurrentProcessId());
    SharedArena const arena(name);
    test::OwnedHandle const progress(
        CreateEventW(nullptr, FALSE, FALSE, (name + L"-progress").c_str()));
    test::Campaign campaign(8);
    test::ChildStart start;
    start.environment = {
        {L"VRUTILS_CHILD_SECONDS", std::to_wstring(campaign.timeLeft().count() + 30)}};
    std::vector<std::unique_ptr<test::ChildProcess>> children;
    for (unsigned child = 0; child < contenders; ++child)
        children.push_back(contend.start({m_text, name}, start));

    // A round is over as soon as so many updates more have been made.
    std::uint64_t goal = 0;
    while (campaign.nextRound())
        for (goal += 50; arena->updates < goal;)
            ASSERT_EQ(WAIT_OBJECT_0, WaitForSingleObject(progress.get(), 20'000)) << campaign;
    arena->over = true;
    for (auto const& child : children)
        EXPECT_EQ(0u, child->exitCode());

    EXPECT_EQ(0u, arena->meetings);
    EXPECT_EQ(0u, arena->faults);
    EXPECT_EQ(arena->updates, CounterFile(m_text).value());
    EXPECT_GT(arena->refusals, 0u);
    EXPECT_FALSE(m_folder.exists(L"clip.mxf.lck"));
    std::printf(
        "%llu updates, %llu refusals\n", static_cast<unsigned long long>(arena->updates),
        static_cast<unsigned long long>(arena->refusals));
}
