#include "vrUtils/ProcessWatchdog.h"

#include "foundation/Platform.h"
#include "tests/process/CallOrder.h"
#include "tests/process/ThreadCalls.h"
#include "tests/process/WatchLines.h"
#include "tests/support/ChildAction.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/OwnedHandle.h"

#include <gmock/gmock.h>

#include <chrono>
#include <future>
#include <string>
#include <vector>

using test::Logged;
using testing::ElementsAre;
using vrUtils::ProcessWatchdog::ProcessTerminator;

namespace {

// A process that would run for ever.
class Victim {
  public:
    Victim() {
        if (!m_process.waitForOutput("sleeping"))
            throw std::runtime_error("the child does not run");
    }

    std::uint32_t id() const { return m_process.id(); }

    bool isRunning() const { return m_process.isRunning(); }

    std::uint32_t exitCode() const { return m_process.exitCode(); }

  private:
    test::ChildProcess const m_process{{L"sleep"}};
};

// Tells when the thread of a watch has come to its grace period.
class GraceWatch {
  public:
    bool hasBegun() const { return becomesSignalled(m_begun.get()); }

  private:
    test::OwnedHandle m_begun = newEvent();
    test::ImportHook<decltype(WaitForSingleObject)> m_hook{
        "WaitForSingleObject", [this](HANDLE handle, DWORD milliseconds) {
            if (milliseconds == longGraceMs)
                SetEvent(m_begun.get());
            return m_hook.original()(handle, milliseconds);
        }};
};

test::ChildAction const signalEvent(L"signal an event", [](auto const& arguments) {
    test::OwnedHandle const event(OpenEventW(EVENT_MODIFY_STATE, FALSE, arguments.at(0).c_str()));
    return event && SetEvent(event.get()) ? 0 : 1;
});

} // namespace

static_assert(std::is_base_of_v<vrUtils::Threads::Threaded, ProcessTerminator>);
static_assert(std::has_virtual_destructor_v<ProcessTerminator>);
static_assert(!std::is_copy_constructible_v<ProcessTerminator>);

TEST(ProcessTerminator, HasItsVirtualOperationsInOrder) {
    using Request = void (*)(ProcessTerminator*);
    using RequestAndWait = bool (*)(ProcessTerminator*);
    test::LogRecorder const recorder;
    ProcessTerminator terminator(nobody, 0);
    auto const* const requests = *reinterpret_cast<Request const* const*>(&terminator);
    auto const* const waits = *reinterpret_cast<RequestAndWait const* const*>(&terminator);
    test::ImportHook<decltype(SetEvent)> const hook(
        "SetEvent", [&](HANDLE event) { return hook.original()(event); });

    // Behind the two forms of the destructor and the body.
    requests[3](&terminator);
    EXPECT_EQ(1u, hook.calls());
    EXPECT_TRUE(waits[4](&terminator));
    EXPECT_EQ(2u, hook.calls());
}

TEST(ProcessTerminator, MakesItsStopEventAndItsNamedEvent) {
    std::vector<std::wstring> names;
    std::vector<std::vector<BOOL>> flags;
    test::ImportHook<decltype(CreateEventW)> const hook(
        "CreateEventW",
        [&](LPSECURITY_ATTRIBUTES attributes, BOOL manual, BOOL signalled, LPCWSTR name) {
            names.emplace_back(name ? name : L"(none)");
            flags.push_back({manual, signalled, attributes != nullptr});
            return hook.original()(attributes, manual, signalled, name);
        });
    test::LogRecorder const recorder;

    ProcessTerminator const terminator(nobody, 0);

    EXPECT_THAT(names, ElementsAre(L"(none)", eventNameOf(nobody)));
    EXPECT_THAT(
        flags, ElementsAre(ElementsAre(TRUE, FALSE, FALSE), ElementsAre(FALSE, FALSE, FALSE)));
}

TEST(ProcessTerminator, NamesTheEventByTheUnsignedId) {
    test::LogRecorder const recorder;
    ProcessTerminator const terminator(0xFFFFFFFF, longGrace);

    test::OwnedHandle const event(OpenEventW(SYNCHRONIZE, FALSE, L"terminate_4294967295"));

    EXPECT_TRUE(event);
}

TEST(ProcessTerminator, LogsTheIdAsASignedNumber) {
    test::LogRecorder const recorder;

    { ProcessTerminator const terminator(0xFFFFFFFF, longGrace); }

    EXPECT_THAT(
        recorder.texts(), testing::Contains(std::wstring(L"Started process -1 terminator")));
}

TEST(ProcessTerminator, IsRunningAsSoonAsItIsBuilt) {
    ThreadStarts const starts;
    test::LogRecorder const recorder;

    ProcessTerminator terminator(nobody, longGrace);

    EXPECT_EQ(1u, starts.count());
    EXPECT_FALSE(terminator.join(0));
    EXPECT_TRUE(recorder.waitForLines(2, test::ceiling));
    EXPECT_THAT(recorder.lines(), ElementsAre(started(nobody), waiting(nobody)));
}

TEST(ProcessTerminator, DestructionAtOnceKillsNothing) {
    Victim const victim;
    test::LogRecorder const recorder;

    { ProcessTerminator const terminator(victim.id(), 0); }

    EXPECT_TRUE(victim.isRunning());
    EXPECT_THAT(
        recorder.lines(), ElementsAre(
                              started(victim.id()), waiting(victim.id()), abandoning(victim.id()),
                              ended(victim.id())));
}

TEST(ProcessTerminator, KillsWhenItIsAsked) {
    Victim const victim;
    test::LogRecorder const recorder;
    ProcessTerminator terminator(victim.id(), 0);

    EXPECT_TRUE(terminator.RequestTerminationAndWait());

    EXPECT_EQ(0u, victim.exitCode());
    auto const failed = testing::StartsWith(
        L"Failed to terminate process " + std::to_wstring(victim.id()) + L" (error 0x");
    EXPECT_THAT(
        recorder.lines(),
        ElementsAre(
            started(victim.id()), waiting(victim.id()), terminating(victim.id()),
            debugLine(Logged(4, testing::Matcher<std::wstring>(failed))), ended(victim.id())));
}

TEST(ProcessTerminator, KillsNotBeforeTheGracePeriodIsOver) {
    Victim const victim;
    test::LogRecorder const recorder;
    ProcessTerminator terminator(victim.id(), 1);
    auto const start = std::chrono::steady_clock::now();

    terminator.RequestTerminationAndWait();

    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(990));
    EXPECT_EQ(0u, victim.exitCode());
}

TEST(ProcessTerminator, KillsWhenAnotherProcessSignalsTheEvent) {
    Victim const victim;
    test::LogRecorder const recorder;
    ProcessTerminator terminator(victim.id(), 0);

    EXPECT_EQ(0u, signalEvent.start({eventNameOf(victim.id())})->exitCode());

    EXPECT_TRUE(terminator.join(INFINITE));
    EXPECT_EQ(0u, victim.exitCode());
}

TEST(ProcessTerminator, StopInTheGracePeriodKillsNothing) {
    Victim const victim;
    test::LogRecorder const recorder;
    GraceWatch const grace;
    {
        ProcessTerminator terminator(victim.id(), longGrace);
        terminator.RequestTermination();
        ASSERT_TRUE(grace.hasBegun());
    }

    EXPECT_TRUE(victim.isRunning());
    EXPECT_THAT(
        recorder.lines(), ElementsAre(
                              started(victim.id()), waiting(victim.id()), abandoning(victim.id()),
                              ended(victim.id())));
}

TEST(ProcessTerminator, WaitsForTheTriggerFirstAndTheStopSecond) {
    std::vector<HANDLE> events;
    std::vector<DWORD> numbers;
    test::ImportHook<decltype(WaitForMultipleObjects)> const hook(
        "WaitForMultipleObjects",
        [&](DWORD count, HANDLE const* handles, BOOL all, DWORD milliseconds) {
            events.assign(handles, handles + count);
            numbers = {static_cast<DWORD>(all), milliseconds};
            return hook.original()(count, handles, all, milliseconds);
        });
    test::LogRecorder const recorder;
    ThreadCalls const calls;
    {
        ProcessTerminator terminator(nobody, 0);
        terminator.RequestTerminationAndWait();
    }

    ASSERT_EQ(2u, events.size());
    EXPECT_EQ((Call{"SetEvent", events[0]}), calls.calls().front());
    EXPECT_EQ((Call{"CloseHandle", events[1]}), calls.calls().back());
    EXPECT_THAT(numbers, ElementsAre(FALSE, INFINITE));
}

// With both signalled the watch sees the trigger, and then the stop at once.
TEST(ProcessTerminator, TriggerWinsOverTheStopAndIsThenAbandoned) {
    Victim const victim;
    DWORD result = WAIT_FAILED;
    bool triggerIsLeft = true;
    test::ImportHook<decltype(WaitForMultipleObjects)> const hook(
        "WaitForMultipleObjects",
        [&](DWORD count, HANDLE const* handles, BOOL all, DWORD milliseconds) {
            SetEvent(handles[1]);
            SetEvent(handles[0]);
            result = hook.original()(count, handles, all, milliseconds);
            triggerIsLeft = isSignalled(handles[0]);
            return result;
        });
    test::LogRecorder const recorder;

    { ProcessTerminator(victim.id(), longGrace).WaitUntilThreadFinishes(); }

    EXPECT_EQ(WAIT_OBJECT_0, result);
    EXPECT_FALSE(triggerIsLeft);
    EXPECT_TRUE(victim.isRunning());
    EXPECT_THAT(
        recorder.lines(), ElementsAre(
                              started(victim.id()), waiting(victim.id()), abandoning(victim.id()),
                              ended(victim.id())));
}

TEST(ProcessTerminator, OneSignalWakesOneOfTwoWatchers) {
    test::LogRecorder const recorder;
    {
        ProcessTerminator first(nobody, 0);
        ProcessTerminator const second(nobody, 0);
        first.RequestTermination();
        // Two lines of each, and the two last ones of the watcher that is woken.
        ASSERT_TRUE(recorder.waitForLines(6, test::ceiling));
    }

    auto const lines = recorder.lines();
    EXPECT_EQ(8u, lines.size());
    EXPECT_THAT(lines, testing::Contains(openFailed(ERROR_INVALID_PARAMETER)).Times(1));
    EXPECT_THAT(lines, testing::Contains(abandoning(nobody)).Times(1));
    EXPECT_THAT(lines, testing::Contains(ended(nobody)).Times(2));
}

TEST(ProcessTerminator, JoinsAnEventThatExists) {
    test::OwnedHandle const event(CreateEventW(nullptr, FALSE, FALSE, eventNameOf(nobody).c_str()));
    test::LogRecorder const recorder;
    ProcessTerminator terminator(nobody, 0);

    SetEvent(event.get());

    EXPECT_TRUE(terminator.join(INFINITE));
    EXPECT_THAT(recorder.lines(), testing::Contains(openFailed(ERROR_INVALID_PARAMETER)));
}

TEST(ProcessTerminator, SignalThatNobodyConsumedWakesTheNextWatcher) {
    test::LogRecorder const recorder;
    ProcessTerminator first(nobody, 0);
    first.RequestTerminationAndWait();

    first.RequestTermination();
    EXPECT_TRUE(first.join(0));
    EXPECT_EQ(4u, recorder.lines().size());

    EXPECT_TRUE(ProcessTerminator(nobody, 0).join(INFINITE));
    EXPECT_THAT(recorder.lines(), testing::Contains(openFailed(ERROR_INVALID_PARAMETER)).Times(2));
}

TEST(ProcessTerminator, SignalIsConsumedByTheWatcherItWakes) {
    test::LogRecorder const recorder;
    ProcessTerminator terminator(nobody, 0);

    terminator.RequestTerminationAndWait();

    test::OwnedHandle const event(OpenEventW(SYNCHRONIZE, FALSE, eventNameOf(nobody).c_str()));
    ASSERT_TRUE(event);
    EXPECT_FALSE(isSignalled(event.get()));
}

TEST(ProcessTerminator, OpensTheProcessOnlyToTerminateIt) {
    std::vector<DWORD> arguments;
    test::ImportHook const hook("OpenProcess", [&](DWORD access, BOOL inherit, DWORD id) -> HANDLE {
        arguments = {access, static_cast<DWORD>(inherit), id};
        SetLastError(ERROR_ACCESS_DENIED);
        return nullptr;
    });
    test::LogRecorder const recorder;
    ProcessTerminator terminator(nobody, 0);

    EXPECT_TRUE(terminator.RequestTerminationAndWait());

    EXPECT_THAT(arguments, ElementsAre(PROCESS_TERMINATE, FALSE, nobody));
    EXPECT_THAT(
        recorder.lines(),
        ElementsAre(
            started(nobody), waiting(nobody), openFailed(ERROR_ACCESS_DENIED), ended(nobody)));
}

TEST(ProcessTerminator, FindsThatAProcessNeverWas) {
    test::LogRecorder const recorder;
    ProcessTerminator terminator(nobody, 0);

    EXPECT_TRUE(terminator.RequestTerminationAndWait());

    EXPECT_THAT(
        recorder.lines(),
        ElementsAre(
            started(nobody), waiting(nobody), openFailed(ERROR_INVALID_PARAMETER), ended(nobody)));
}

TEST(ProcessTerminator, RequestAndWaitEndsWhenAnotherThreadStopsTheObject) {
    Victim const victim;
    test::LogRecorder const recorder;
    GraceWatch const grace;
    ProcessTerminator terminator(victim.id(), longGrace);

    auto waiter =
        std::async(std::launch::async, [&] { return terminator.RequestTerminationAndWait(); });
    ASSERT_TRUE(grace.hasBegun());
    terminator.StopThread();

    EXPECT_TRUE(waiter.get());
    EXPECT_TRUE(victim.isRunning());
    EXPECT_THAT(recorder.lines(), testing::Contains(abandoning(victim.id())));
}

TEST(ProcessTerminator, WatchesLeaveNoHandleOpen) {
    test::LogRecorder const recorder;
    {
        Victim const firstUse;
        ProcessTerminator(firstUse.id(), 0).RequestTerminationAndWait();
    }
    test::HandleLeakCheck const check;
    // Within the check, since what reads its output opens handles of its own until it ends.
    Victim const victim;

    { ProcessTerminator const abandoned(victim.id(), 0); }
    { ProcessTerminator(nobody, 0).RequestTerminationAndWait(); }
    { ProcessTerminator(victim.id(), 0).RequestTerminationAndWait(); }
}
