// How threads are stopped and joined.

#include "foundation/Platform.h"
#include "tests/process/ThreadCalls.h"
#include "tests/process/Worker.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/OwnedHandle.h"

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <future>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

using testing::ElementsAre;

namespace {

// Never ends. It holds nothing when it is killed: no lock, no memory.
class DeafBody {
  public:
    bool isRunning() const { return becomesSignalled(m_running.get()); }

    Worker::Body body() const {
        return [event = m_running.get()](void*) -> unsigned int {
            SetEvent(event);
            for (;;)
                Sleep(INFINITE);
        };
    }

  private:
    test::OwnedHandle m_running = newEvent();
};

// So many threads go on only when all of them have come.
class Meeting {
  public:
    explicit Meeting(unsigned awaited) : m_awaited(awaited) {}

    void arrive() {
        std::unique_lock lock(m_mutex);
        --m_awaited;
        m_changed.notify_all();
        m_changed.wait_for(lock, test::ceiling, [this] { return m_awaited == 0; });
    }

  private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    unsigned m_awaited;
};

} // namespace

TEST(Threaded, StopOfAnIdleObjectDoesNothing) {
    Worker worker(endAtOnce);
    ThreadCalls const calls;

    worker.StopThread();

    EXPECT_THAT(calls.calls(), ElementsAre());
    EXPECT_FALSE(isSignalled(worker.stopEvent()));
}

TEST(Threaded, JoinOfAnIdleObjectGivesTrueAtOnce) {
    Worker worker(endAtOnce);
    ThreadCalls const calls;

    EXPECT_TRUE(worker.join(0));
    EXPECT_TRUE(worker.join(INFINITE));
    worker.WaitUntilThreadFinishes();

    EXPECT_THAT(calls.calls(), ElementsAre());
}

TEST(Threaded, StopAsksFirstAndThenWaits) {
    ThreadStarts const starts;
    Worker worker(waitForStop, 54321);
    worker.StartThread();
    ThreadCalls const calls;

    worker.StopThread();

    EXPECT_THAT(
        calls.calls(),
        ElementsAre(
            Call{"SetEvent", worker.stopEvent()}, Call{"WaitForSingleObject", starts.last(), 54321},
            Call{"CloseHandle", starts.last()}));
}

TEST(Threaded, StopKillsADeafThread) {
    ThreadStarts const starts;
    DeafBody const deaf;
    Worker worker(deaf.body(), 20);
    worker.StartThread();
    ASSERT_TRUE(deaf.isRunning());
    auto const thread = secondHandleTo(starts.last());
    ThreadCalls const calls;

    worker.StopThread();

    EXPECT_THAT(
        calls.calls(),
        ElementsAre(
            Call{"SetEvent", worker.stopEvent()}, Call{"WaitForSingleObject", starts.last(), 20},
            Call{"TerminateThread", starts.last(), 0}, Call{"CloseHandle", starts.last()}));
    EXPECT_TRUE(becomesSignalled(thread.get()));
    EXPECT_EQ(0u, exitCodeOf(thread.get()));
}

TEST(Threaded, StopKillsNotBeforeTheTimeout) {
    DeafBody const deaf;
    Worker worker(deaf.body(), 200);
    worker.StartThread();
    ASSERT_TRUE(deaf.isRunning());
    auto const start = std::chrono::steady_clock::now();

    worker.StopThread();

    auto const time = std::chrono::steady_clock::now() - start;
    EXPECT_GE(time, std::chrono::milliseconds(190));
    EXPECT_LT(time, test::ceiling);
}

TEST(Threaded, StopKillsABusyThread) {
    ThreadStarts const starts;
    auto const running = newEvent();
    Worker worker(
        [&](void*) -> unsigned int {
            SetEvent(running.get());
            for (unsigned volatile turns = 0;; turns = turns + 1) {
            }
        },
        20);
    worker.StartThread();
    ASSERT_TRUE(becomesSignalled(running.get()));
    auto const thread = secondHandleTo(starts.last());

    worker.StopThread();

    EXPECT_TRUE(becomesSignalled(thread.get()));
}

TEST(Threaded, IsIdleAfterAKill) {
    ThreadStarts const starts;
    DeafBody const deaf;
    Worker worker(deaf.body(), 20);
    worker.StartThread();
    ASSERT_TRUE(deaf.isRunning());

    worker.StopThread();

    EXPECT_FALSE(isOpen(starts.last()));
    ThreadCalls const calls;
    EXPECT_TRUE(worker.join(0));
    worker.StopThread();
    EXPECT_THAT(calls.calls(), ElementsAre());
}

TEST(Threaded, KillLeavesNoHandleOpen) {
    DeafBody const deaf;
    test::HandleLeakCheck const check;

    for (int count = 0; count < 10; ++count) {
        Worker worker(deaf.body(), 1);
        worker.StartThread();
        ASSERT_TRUE(deaf.isRunning());
    }
}

TEST(Threaded, ForgetsAThreadThatCannotBeKilled) {
    ThreadStarts const starts;
    auto const release = newEvent();
    Worker worker([&](void*) { return waitForStop(release.get()); }, 1);
    worker.StartThread();
    auto const thread = secondHandleTo(starts.last());
    {
        test::FailingImport<decltype(TerminateThread)> const hook("TerminateThread", FALSE, 5);
        worker.StopThread();
        EXPECT_EQ(1u, hook.calls());
    }

    EXPECT_FALSE(isOpen(starts.last()));
    EXPECT_TRUE(worker.join(0));
    SetEvent(release.get());
    EXPECT_TRUE(becomesSignalled(thread.get()));
}

TEST(Threaded, StopKillsNothingThatAnotherHasJoinedMeanwhile) {
    Worker worker(waitForStop);
    worker.StartThread();
    test::FailingImport<decltype(TerminateThread)> const terminates("TerminateThread", TRUE, 0);
    test::ImportHook<decltype(CloseHandle)> const closes(
        "CloseHandle", [&](HANDLE handle) { return closes.original()(handle); });
    test::ImportHook<decltype(WaitForSingleObject)> const waits(
        "WaitForSingleObject", [&](HANDLE handle, DWORD milliseconds) -> DWORD {
            if (waits.calls() > 1)
                return waits.original()(handle, milliseconds);
            EXPECT_TRUE(worker.join(INFINITE));
            return WAIT_TIMEOUT;
        });

    worker.StopThread();

    EXPECT_EQ(2u, waits.calls());
    EXPECT_EQ(1u, closes.calls());
    EXPECT_EQ(0u, terminates.calls());
}

TEST(Threaded, StopDoesNotMindAFailedSignal) {
    ThreadStarts const starts;
    Worker worker(endAtOnce);
    worker.StartThread();
    test::FailingImport<decltype(SetEvent)> const hook("SetEvent", FALSE, 6);

    worker.StopThread();

    EXPECT_EQ(1u, hook.calls());
    EXPECT_FALSE(isOpen(starts.last()));
    EXPECT_TRUE(worker.join(0));
}

TEST(Threaded, StopOfANullEventKills) {
    ThreadStarts const starts;
    DeafBody const deaf;
    Worker worker(deaf.body(), 20, nullptr);
    worker.StartThread();
    ASSERT_TRUE(deaf.isRunning());
    auto const thread = secondHandleTo(starts.last());

    worker.StopThread();

    EXPECT_TRUE(becomesSignalled(thread.get()));
    EXPECT_FALSE(isOpen(starts.last()));
}

TEST(Threaded, JoinOfZeroLeavesARunningThread) {
    ThreadStarts const starts;
    Worker worker(waitForStop);
    worker.StartThread();

    EXPECT_FALSE(worker.join(0));

    EXPECT_TRUE(isOpen(starts.last()));
    EXPECT_FALSE(isSignalled(worker.stopEvent()));
    SetEvent(worker.stopEvent());
    EXPECT_TRUE(worker.join(INFINITE));
    EXPECT_FALSE(isOpen(starts.last()));
}

TEST(Threaded, JoinWaitsAsLongAsItIsTold) {
    ThreadStarts const starts;
    Worker worker(endAtOnce);
    worker.StartThread();
    ThreadCalls const calls;

    worker.join(12345);

    EXPECT_THAT(
        calls.calls(),
        ElementsAre(
            Call{"WaitForSingleObject", starts.last(), 12345}, Call{"CloseHandle", starts.last()}));
}

TEST(Threaded, WaitUntilThreadFinishesWaitsWithoutLimit) {
    ThreadStarts const starts;
    Worker worker(endAtOnce);
    worker.StartThread();
    ThreadCalls const calls;

    worker.WaitUntilThreadFinishes();

    EXPECT_THAT(
        calls.calls(), ElementsAre(
                           Call{"WaitForSingleObject", starts.last(), 0xFFFFFFFF},
                           Call{"CloseHandle", starts.last()}));
}

namespace {

class ThreadedWait : public testing::TestWithParam<DWORD> {};

} // namespace

INSTANTIATE_TEST_SUITE_P(
    OtherThanTimeout, ThreadedWait, testing::Values(WAIT_ABANDONED, 1u, 257u, 259u, WAIT_FAILED));

TEST_P(ThreadedWait, OtherThanTimeoutClosesAndGivesTrue) {
    ThreadStarts const starts;
    Worker worker(waitForStop);
    worker.StartThread();
    auto const thread = secondHandleTo(starts.last());
    test::FailingImport<decltype(WaitForSingleObject)> const hook(
        "WaitForSingleObject", GetParam(), ERROR_INVALID_HANDLE);

    EXPECT_TRUE(worker.join(1));

    EXPECT_FALSE(isOpen(starts.last()));
    EXPECT_TRUE(worker.join(1));
    EXPECT_EQ(1u, hook.calls());
    SetEvent(worker.stopEvent());
    EXPECT_TRUE(becomesSignalled(thread.get()));
}

TEST(Threaded, JoinOfABadHandleGivesTrue) {
    constexpr std::uintptr_t badHandle = 0x7FFFFFF0;
    Worker worker(endAtOnce);
    {
        test::FailingImport<decltype(_beginthreadex)> const hook("_beginthreadex", badHandle, 0);
        worker.StartThread();
    }
    ThreadCalls const calls;

    EXPECT_TRUE(worker.join(INFINITE));
    EXPECT_TRUE(worker.join(INFINITE));

    auto* const handle = reinterpret_cast<HANDLE>(badHandle);
    EXPECT_THAT(
        calls.calls(),
        ElementsAre(Call{"WaitForSingleObject", handle, INFINITE}, Call{"CloseHandle", handle}));
}

TEST(Threaded, StopAfterAFailedWaitKillsNothing) {
    ThreadStarts const starts;
    Worker worker(waitForStop);
    worker.StartThread();
    auto const thread = secondHandleTo(starts.last());
    test::FailingImport<decltype(TerminateThread)> const terminates("TerminateThread", TRUE, 0);
    test::FailingImport<decltype(WaitForSingleObject)> const waits(
        "WaitForSingleObject", WAIT_FAILED, ERROR_INVALID_HANDLE);

    worker.StopThread();

    EXPECT_EQ(0u, terminates.calls());
    EXPECT_FALSE(isOpen(starts.last()));
    EXPECT_TRUE(becomesSignalled(thread.get()));
}

TEST(Threaded, JoinDoesNotMindAFailedClose) {
    ThreadStarts const starts;
    Worker worker(endAtOnce);
    worker.StartThread();
    test::FailingImport<decltype(CloseHandle)> const hook("CloseHandle", FALSE, 6);

    EXPECT_TRUE(worker.join(INFINITE));
    EXPECT_TRUE(worker.join(INFINITE));

    EXPECT_EQ(1u, hook.calls());
    EXPECT_TRUE(CloseHandle(starts.last()));
}

TEST(Threaded, KeepsTheHandleOfAFinishedThreadUntilTheJoin) {
    ThreadStarts const starts;
    Worker worker(endAtOnce);
    worker.StartThread();
    ASSERT_TRUE(becomesSignalled(starts.last()));

    EXPECT_TRUE(isOpen(starts.last()));
    EXPECT_TRUE(worker.join(0));
    EXPECT_FALSE(isOpen(starts.last()));
}

TEST(Threaded, StopOfAFinishedThreadSpendsNoTime) {
    ThreadStarts const starts;
    Worker worker(endAtOnce, longTime);
    worker.StartThread();
    ASSERT_TRUE(becomesSignalled(starts.last()));
    auto const start = std::chrono::steady_clock::now();

    worker.StopThread();

    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(longTime / 2));
    EXPECT_FALSE(isOpen(starts.last()));
}

TEST(Threaded, TwoJoinersCloseTheHandleOnce) {
    Worker worker(endAtOnce);
    worker.StartThread();
    Meeting bothHaveWaited(2);
    test::ImportHook<decltype(CloseHandle)> const closes(
        "CloseHandle", [&](HANDLE handle) { return closes.original()(handle); });
    test::ImportHook<decltype(WaitForSingleObject)> const waits(
        "WaitForSingleObject", [&](HANDLE handle, DWORD milliseconds) {
            auto const result = waits.original()(handle, milliseconds);
            bothHaveWaited.arrive();
            return result;
        });

    auto other = std::async(std::launch::async, [&] { return worker.join(INFINITE); });
    EXPECT_TRUE(worker.join(INFINITE));
    EXPECT_TRUE(other.get());

    EXPECT_EQ(2u, waits.calls());
    EXPECT_EQ(1u, closes.calls());
}

TEST(Threaded, StormOfJoinersClosesEachHandleOnce) {
    constexpr unsigned rounds = 100;
    constexpr unsigned joinerCount = 4;
    std::atomic<unsigned> joined{0};
    std::optional<Meeting> allHaveWaited;
    test::ImportHook<decltype(CloseHandle)> const closes(
        "CloseHandle", [&](HANDLE handle) { return closes.original()(handle); });
    test::ImportHook<decltype(WaitForSingleObject)> const waits(
        "WaitForSingleObject", [&](HANDLE handle, DWORD milliseconds) {
            auto const result = waits.original()(handle, milliseconds);
            allHaveWaited->arrive();
            return result;
        });
    Worker worker(endAtOnce);

    for (unsigned round = 0; round < rounds; ++round) {
        allHaveWaited.emplace(joinerCount);
        worker.StartThread();
        std::vector<std::thread> joiners;
        for (unsigned number = 0; number < joinerCount; ++number)
            joiners.emplace_back([&] { joined += worker.join(INFINITE); });
        for (auto& joiner : joiners)
            joiner.join();
    }

    EXPECT_EQ(rounds * joinerCount, joined);
    EXPECT_EQ(rounds, closes.calls());
}
