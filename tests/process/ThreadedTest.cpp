#include "vrUtils/Threads.h"

#include "foundation/Platform.h"
#include "tests/process/ThreadCalls.h"
#include "tests/process/Worker.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/ChildAction.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/OwnedHandle.h"

#include <gmock/gmock.h>

#include <memory>
#include <type_traits>
#include <vector>

using testing::ElementsAre;
using vrUtils::Threads::Threaded;

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
