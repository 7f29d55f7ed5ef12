#include "vrUtils/Threads.h"

#include "foundation/Platform.h"
#include "tests/process/ThreadCalls.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/ChildAction.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/OwnedHandle.h"

#include <gmock/gmock.h>

#include <condition_variable>
#include <functional>
#include <future>
#include <mutex>
#include <optional>
#include <thread>
#include <type_traits>

using testing::ElementsAre;
using vrUtils::Threads::Threaded;

namespace {

// A stop timeout that no test is to use up.
constexpr std::uint32_t longTime = 20000;

// A worker whose body the test gives.
class Worker : public Threaded {
  public:
    using Body = std::function<unsigned int(void* stopEvent)>;

    explicit Worker(
        Body body, std::uint32_t stopTimeoutMs = longTime, void* stopEvent = ownStopEvent())
        : Threaded(stopTimeoutMs, stopEvent), m_body(std::move(body)) {}

    ~Worker() override { StopThread(); }

    using Threaded::stopEvent;

  private:
    unsigned int ThreadProcess() override { return m_body(stopEvent()); }

    Body m_body;
};

unsigned int endAtOnce(void*) { return 7; }

unsigned int waitForStop(void* stopEvent) {
    WaitForSingleObject(stopEvent, INFINITE);
    return 7;
}

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

DWORD exitCodeOf(HANDLE thread) {
    DWORD code = 0;
    GetExitCodeThread(thread, &code);
    return code;
}

} // namespace

static_assert(std::is_abstract_v<Threaded>);
static_assert(std::has_virtual_destructor_v<Threaded>);
static_assert(!std::is_copy_constructible_v<Threaded>);
static_assert(!std::is_copy_assignable_v<Threaded>);
static_assert(!std::is_copy_constructible_v<Worker>);

TEST(Threaded, HasTheBodyBehindTheDestructor) {
    using Operation = unsigned int (*)(Threaded*);
    Worker worker(endAtOnce);
    auto const* const table = *reinterpret_cast<Operation const* const*>(&worker);

    // The first two slots are the two forms of the destructor.
    EXPECT_EQ(7u, table[2](&worker));
}

TEST(Threaded, OwnEventIsTheHandleWithAllBitsSet) {
    EXPECT_EQ(INVALID_HANDLE_VALUE, Threaded::ownStopEvent());
}

TEST(Threaded, MakesItsOwnEventAsManualResetAndNotSignalled) {
    std::vector<void const*> pointers;
    std::vector<BOOL> flags;
    test::ImportHook<decltype(CreateEventW)> const hook(
        "CreateEventW",
        [&](LPSECURITY_ATTRIBUTES attributes, BOOL manual, BOOL signalled, LPCWSTR name) {
            pointers = {attributes, name};
            flags = {manual, signalled};
            return hook.original()(attributes, manual, signalled, name);
        });

    Worker const worker(endAtOnce);

    EXPECT_THAT(pointers, ElementsAre(nullptr, nullptr));
    EXPECT_THAT(flags, ElementsAre(TRUE, FALSE));
    EXPECT_EQ(1u, hook.calls());
    EXPECT_FALSE(isSignalled(worker.stopEvent()));
}

TEST(Threaded, TakesTheEventOfTheCaller) {
    auto const event = newEvent();
    test::FailingImport<decltype(CreateEventW)> const hook("CreateEventW", nullptr, 8);

    Worker const worker(endAtOnce, longTime, event.get());

    EXPECT_EQ(event.get(), worker.stopEvent());
    EXPECT_EQ(0u, hook.calls());
}

TEST(Threaded, TakesNullAsAnEventOfTheCaller) {
    test::FailingImport<decltype(CreateEventW)> const creates("CreateEventW", nullptr, 8);
    test::FailingImport<decltype(CloseHandle)> const closes("CloseHandle", TRUE, 0);

    { EXPECT_EQ(nullptr, Worker(endAtOnce, longTime, nullptr).stopEvent()); }

    EXPECT_EQ(0u, creates.calls());
    EXPECT_EQ(0u, closes.calls());
}

TEST(Threaded, DoesNotTestWhetherItsEventWasMade) {
    test::FailingImport<decltype(CreateEventW)> const hook("CreateEventW", nullptr, 8);
    ThreadStarts const starts;
    Worker worker(endAtOnce);

    worker.StartThread();

    EXPECT_EQ(nullptr, worker.stopEvent());
    EXPECT_EQ(1u, starts.count());
    EXPECT_TRUE(worker.join(INFINITE));
}

TEST(Threaded, StartsNothingByItself) {
    ThreadStarts const starts;

    { Worker const worker(endAtOnce); }

    EXPECT_EQ(0u, starts.count());
}

TEST(Threaded, StartsTheRuntimesThreadWithDefaults) {
    std::vector<void const*> pointers;
    std::vector<unsigned int> numbers;
    unsigned int (*entry)(void*) = nullptr;
    test::ImportHook<decltype(_beginthreadex)> const hook(
        "_beginthreadex",
        [&](void* security, unsigned int stackSize, unsigned int (*function)(void*), void* argument,
            unsigned int flags, unsigned int* id) -> std::uintptr_t {
            pointers = {security, argument, id};
            numbers = {stackSize, flags};
            entry = function;
            return 0;
        });
    Worker worker(endAtOnce);
    Threaded* const object = &worker;

    worker.StartThread();

    EXPECT_THAT(pointers, ElementsAre(nullptr, object, nullptr));
    EXPECT_THAT(numbers, ElementsAre(0u, 0u));
    ASSERT_NE(nullptr, entry);
    EXPECT_EQ(7u, entry(object));
}

TEST(Threaded, RunsTheBodyInAThreadOfItsOwn) {
    DWORD bodyThread = 0;
    Worker worker([&](void*) {
        bodyThread = GetCurrentThreadId();
        return 0u;
    });

    worker.StartThread();
    worker.WaitUntilThreadFinishes();

    EXPECT_NE(0u, bodyThread);
    EXPECT_NE(GetCurrentThreadId(), bodyThread);
}

TEST(Threaded, GivesTheBodysResultAsExitCode) {
    ThreadStarts const starts;
    Worker worker([](void*) { return 0xDEADBEEFu; });
    worker.StartThread();
    auto const thread = secondHandleTo(starts.last());

    worker.WaitUntilThreadFinishes();

    EXPECT_EQ(0xDEADBEEF, exitCodeOf(thread.get()));
}

TEST(Threaded, IsIdleAfterAFailedStart) {
    Worker worker(endAtOnce);
    test::FailingImport<decltype(_beginthreadex)> const hook("_beginthreadex", 0, 12);

    worker.StartThread();

    EXPECT_EQ(1u, hook.calls());
    EXPECT_TRUE(worker.join(0));
    worker.StopThread();
    EXPECT_FALSE(isSignalled(worker.stopEvent()));
}

TEST(Threaded, FailedSecondStartForgetsTheFirstThread) {
    ThreadStarts const starts;
    Worker worker(waitForStop);
    worker.StartThread();
    test::OwnedHandle const first(starts.last());
    {
        test::FailingImport<decltype(_beginthreadex)> const hook("_beginthreadex", 0, 12);
        worker.StartThread();
    }

    EXPECT_TRUE(worker.join(0));
    EXPECT_FALSE(isSignalled(first.get()));

    SetEvent(worker.stopEvent());
    EXPECT_TRUE(becomesSignalled(first.get()));
}

TEST(Threaded, SecondStartLosesTheFirstHandle) {
    ThreadStarts const starts;
    Worker worker(waitForStop);
    worker.StartThread();
    test::OwnedHandle const first(starts.last());
    auto const before = test::handleCount();

    worker.StartThread();

    EXPECT_EQ(before + 1, test::handleCount());
    EXPECT_NE(first.get(), starts.last());
    worker.StopThread();
    EXPECT_TRUE(isOpen(first.get()));
    EXPECT_TRUE(becomesSignalled(first.get()));
}

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

class ThreadedWait : public testing::TestWithParam<DWORD> {};

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

TEST(Threaded, RestartedBodyFindsTheStopEventStillSignalled) {
    ThreadStarts const starts;
    Worker worker(waitForStop);
    worker.StartThread();
    worker.StopThread();
    EXPECT_TRUE(isSignalled(worker.stopEvent()));

    worker.StartThread();

    EXPECT_EQ(2u, starts.count());
    EXPECT_TRUE(worker.join(longTime));
    EXPECT_TRUE(isSignalled(worker.stopEvent()));
}

TEST(Threaded, DestructorStopsAndThenClosesItsOwnEvent) {
    ThreadStarts const starts;
    auto worker = std::make_unique<Worker>(waitForStop, 54321);
    worker->StartThread();
    auto* const event = worker->stopEvent();
    ThreadCalls const calls;

    worker.reset();

    EXPECT_THAT(
        calls.calls(),
        ElementsAre(
            Call{"SetEvent", event}, Call{"WaitForSingleObject", starts.last(), 54321},
            Call{"CloseHandle", starts.last()}, Call{"CloseHandle", event}));
    EXPECT_FALSE(isOpen(event));
}

TEST(Threaded, DestructorLeavesTheEventOfTheCallerOpenAndSignalled) {
    auto const event = newEvent();
    {
        Worker worker(waitForStop, longTime, event.get());
        worker.StartThread();
    }

    EXPECT_TRUE(isOpen(event.get()));
    EXPECT_TRUE(isSignalled(event.get()));
}

TEST(Threaded, DestructorOfAnIdleObjectLeavesTheEventOfTheCallerAlone) {
    auto const event = newEvent();

    { Worker const worker(waitForStop, longTime, event.get()); }

    EXPECT_FALSE(isSignalled(event.get()));
}

TEST(Threaded, DestructorOfTheBaseStopsAThreadThatTheSubclassForgot) {
    class Forgetful : public Threaded {
      public:
        explicit Forgetful(HANDLE running)
            : Threaded(longTime, ownStopEvent()), m_running(running) {}

      private:
        unsigned int ThreadProcess() override {
            SetEvent(m_running);
            return waitForStop(stopEvent());
        }

        HANDLE m_running;
    };
    ThreadStarts const starts;
    auto const running = newEvent();
    test::OwnedHandle thread;
    {
        Forgetful forgetful(running.get());
        forgetful.StartThread();
        thread = secondHandleTo(starts.last());
        ASSERT_TRUE(becomesSignalled(running.get()));
    }

    EXPECT_TRUE(isSignalled(thread.get()));
    EXPECT_EQ(7u, exitCodeOf(thread.get()));
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

TEST(Threaded, ThousandStartsAndStopsLeaveNoHandleOpen) {
    { Worker(waitForStop).StartThread(); }
    test::HandleLeakCheck const check;

    for (int count = 0; count < 1000; ++count) {
        Worker worker(waitForStop);
        worker.StartThread();
        worker.StopThread();
    }
}

TEST(Threaded, TakesNoMemoryOfTheHeap) {
    Worker worker(waitForStop);
    test::AllocationCounter const counter;

    worker.StartThread();
    worker.StopThread();

    EXPECT_EQ(0u, counter.allocations());
}

namespace {

test::ChildAction const throwInBody(L"throw in the body of a thread", [](auto const&) {
    Worker worker([](void*) -> unsigned int { throw 1; });
    worker.StartThread();
    worker.WaitUntilThreadFinishes();
    return 0;
});

} // namespace

// By way of the runtime's own end, or as an exception that nobody has handled: which of the two
// depends on what the compiler makes of the thread's entry.
TEST(Threaded, ExceptionThatLeavesTheBodyEndsTheProcess) {
    EXPECT_THAT(throwInBody.start()->exitCode(), testing::AnyOf(3u, 97u));
}
