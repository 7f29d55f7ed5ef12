#include "vrUtils/ProcessWatchdog.h"

#include "foundation/Platform.h"
#include "tests/process/CallOrder.h"
#include "tests/process/ThreadCalls.h"
#include "tests/process/WatchLines.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/OwnedHandle.h"
#include "tests/support/WideText.h"

#include <gmock/gmock.h>

#include <atomic>
#include <memory>
#include <string>
#include <vector>

using test::Logged;
using testing::ElementsAre;
using vrUtils::ProcessWatchdog::ProcessTerminator;

namespace {

// Answers the wait for the two events, so that a test need not make it happen.
using EventWait = test::FailingImport<decltype(WaitForMultipleObjects)>;

// Stands in for the process and for its end, and keeps what is done to it.
class PretendedKill {
  public:
    PretendedKill(BOOL result, DWORD error) : m_result(result), m_error(error) {}

    HANDLE process() const { return m_process; }

    CallOrder order;

  private:
    BOOL m_result;
    DWORD m_error;
    // An event takes the place of the process, since it can be closed as well.
    HANDLE m_process = newEvent().release();
    test::ImportHook<HANDLE(DWORD, BOOL, DWORD)> m_open{
        "OpenProcess", [this](DWORD, BOOL, DWORD) { return m_process; }};
    test::ImportHook<decltype(TerminateProcess)> m_terminate{
        "TerminateProcess", [this](HANDLE process, UINT code) {
            order.add({"TerminateProcess", process, code});
            SetLastError(m_error);
            return m_result;
        }};
};

} // namespace

TEST(ProcessTerminator, TakesASuccessfulKillForAFailure) {
    PretendedKill const kill(TRUE, 0xBEEF);
    test::LogRecorder const recorder;

    ProcessTerminator(nobody, 0).RequestTerminationAndWait();

    EXPECT_THAT(
        recorder.lines(), ElementsAre(
                              started(nobody), waiting(nobody), terminating(nobody),
                              failedToTerminate(nobody, L"beef"), ended(nobody)));
}

TEST(ProcessTerminator, TakesAFailedKillForASuccess) {
    PretendedKill const kill(FALSE, 5);
    test::LogRecorder const recorder;

    ProcessTerminator(nobody, 0).RequestTerminationAndWait();

    EXPECT_THAT(
        recorder.lines(), ElementsAre(
                              started(nobody), waiting(nobody), terminating(nobody),
                              terminated(nobody), ended(nobody)));
}

class ProcessTerminatorKill : public testing::TestWithParam<BOOL> {};

INSTANTIATE_TEST_SUITE_P(WithResult, ProcessTerminatorKill, testing::Values(TRUE, FALSE));

TEST_P(ProcessTerminatorKill, HasExitCodeZeroAndClosesTheProcess) {
    PretendedKill const kill(GetParam(), 5);
    test::LogRecorder const recorder;
    ProcessTerminator terminator(nobody, 0);

    terminator.RequestTerminationAndWait();

    EXPECT_THAT(kill.order.calls(), ElementsAre(Call{"TerminateProcess", kill.process(), 0}));
    EXPECT_FALSE(isOpen(kill.process()));
}

namespace {

// A debugger that is or is not there, and what the log has by the time it is broken into.
class Debugger {
  public:
    Debugger(bool present, test::LogRecorder const& recorder)
        : m_present("IsDebuggerPresent", present, 0),
          m_break("DebugBreak", [this, &recorder] { m_texts = recorder.texts(); }) {}

    unsigned breaks() const { return m_break.calls(); }

    std::vector<std::wstring> const& textsAtBreak() const { return m_texts; }

  private:
    std::vector<std::wstring> m_texts;
    test::FailingImport<BOOL()> m_present;
    test::ImportHook<void()> m_break;
};

} // namespace

TEST(ProcessTerminator, BreaksIntoADebuggerBeforeTheLineOfTheKill) {
    PretendedKill const kill(TRUE, 5);
    test::LogRecorder const recorder;
    Debugger const debugger(true, recorder);

    ProcessTerminator(nobody, 0).RequestTerminationAndWait();

    EXPECT_EQ(1u, debugger.breaks());
    EXPECT_EQ(3u, debugger.textsAtBreak().size());
    EXPECT_THAT(recorder.lines(), testing::Contains(failedToTerminate(nobody, L"5")));
}

TEST(ProcessTerminator, BreaksIntoNoDebuggerThatIsNotThere) {
    PretendedKill const kill(TRUE, 5);
    test::LogRecorder const recorder;
    Debugger const debugger(false, recorder);

    ProcessTerminator(nobody, 0).RequestTerminationAndWait();

    EXPECT_EQ(0u, debugger.breaks());
}

TEST(ProcessTerminator, BreaksIntoNoDebuggerOnTheOtherResult) {
    PretendedKill const kill(FALSE, 5);
    test::LogRecorder const recorder;
    Debugger const debugger(true, recorder);

    ProcessTerminator(nobody, 0).RequestTerminationAndWait();

    EXPECT_EQ(0u, debugger.breaks());
}

class ProcessTerminatorWait : public testing::TestWithParam<std::pair<DWORD, std::wstring>> {};

INSTANTIATE_TEST_SUITE_P(
    , ProcessTerminatorWait,
    testing::Values(
        std::pair(2, L"2"), std::pair(WAIT_ABANDONED, L"80"), std::pair(WAIT_TIMEOUT, L"102"),
        std::pair(WAIT_FAILED, L"ffffffff")),
    [](auto const& tested) { return test::utf8(tested.param.second); });

TEST_P(ProcessTerminatorWait, UnexpectedReturnEndsTheWatch) {
    EventWait const wait("WaitForMultipleObjects", GetParam().first, 6);
    test::LogRecorder const recorder;
    Debugger const debugger(false, recorder);

    ProcessTerminator(nobody, 0).WaitUntilThreadFinishes();

    EXPECT_THAT(
        recorder.lines(),
        ElementsAre(
            started(nobody), waiting(nobody), unexpectedReturn(GetParam().second), ended(nobody)));
    EXPECT_EQ(0u, debugger.breaks());
}

TEST(ProcessTerminator, BreaksIntoADebuggerBeforeTheLineOfAnUnexpectedReturn) {
    EventWait const wait("WaitForMultipleObjects", WAIT_FAILED, 6);
    test::LogRecorder const recorder;
    Debugger const debugger(true, recorder);

    ProcessTerminator(nobody, 0).WaitUntilThreadFinishes();

    EXPECT_EQ(1u, debugger.breaks());
    EXPECT_EQ(2u, debugger.textsAtBreak().size());
}

TEST(ProcessTerminator, StopIsAnExpectedReturn) {
    EventWait const wait("WaitForMultipleObjects", WAIT_OBJECT_0 + 1, 0);
    test::LogRecorder const recorder;

    ProcessTerminator(nobody, 0).WaitUntilThreadFinishes();

    EXPECT_THAT(
        recorder.lines(),
        ElementsAre(started(nobody), waiting(nobody), abandoning(nobody), ended(nobody)));
}

namespace {

// Answers the wait of the grace period, and keeps how long it was to be.
class GraceAnswer {
  public:
    explicit GraceAnswer(DWORD result) : m_result(result) {}

    HANDLE event() const { return m_event; }

    DWORD milliseconds() const { return m_milliseconds; }

  private:
    DWORD m_result;
    DWORD m_owner = GetCurrentThreadId();
    std::atomic<HANDLE> m_event = nullptr;
    std::atomic<DWORD> m_milliseconds = 12345;
    test::ImportHook<decltype(WaitForSingleObject)> m_hook{
        "WaitForSingleObject", [this](HANDLE handle, DWORD milliseconds) {
            if (GetCurrentThreadId() == m_owner)
                return m_hook.original()(handle, milliseconds);
            m_event = handle;
            m_milliseconds = milliseconds;
            return m_result;
        }};
};

} // namespace

class ProcessTerminatorGrace : public testing::TestWithParam<std::pair<std::uint32_t, DWORD>> {};

INSTANTIATE_TEST_SUITE_P(
    , ProcessTerminatorGrace,
    testing::Values(
        std::pair(0u, 0u), std::pair(1u, 1000u), std::pair(4294967u, 4294967000u),
        std::pair(4294968u, 704u), std::pair(0xFFFFFFFFu, 4294966296u)));

TEST_P(ProcessTerminatorGrace, IsInMillisecondsOf32Bits) {
    GraceAnswer const grace(WAIT_OBJECT_0);
    test::LogRecorder const recorder;

    ProcessTerminator(nobody, GetParam().first).RequestTerminationAndWait();

    EXPECT_EQ(GetParam().second, grace.milliseconds());
}

TEST(ProcessTerminator, WaitsForTheStopInTheGracePeriod) {
    GraceAnswer const grace(WAIT_OBJECT_0);
    HANDLE stopEvent = nullptr;
    test::ImportHook<decltype(WaitForMultipleObjects)> const hook(
        "WaitForMultipleObjects",
        [&](DWORD count, HANDLE const* handles, BOOL all, DWORD milliseconds) {
            stopEvent = handles[1];
            return hook.original()(count, handles, all, milliseconds);
        });
    test::LogRecorder const recorder;

    ProcessTerminator(nobody, 0).RequestTerminationAndWait();

    EXPECT_NE(nullptr, stopEvent);
    EXPECT_EQ(stopEvent, grace.event());
}

class ProcessTerminatorGraceResult : public testing::TestWithParam<DWORD> {};

INSTANTIATE_TEST_SUITE_P(
    OtherThanTimeout, ProcessTerminatorGraceResult,
    testing::Values(WAIT_OBJECT_0, 1u, WAIT_ABANDONED, WAIT_FAILED));

TEST_P(ProcessTerminatorGraceResult, AbandonsTheKill) {
    GraceAnswer const grace(GetParam());
    test::FailingImport<HANDLE(DWORD, BOOL, DWORD)> const opens("OpenProcess", nullptr, 5);
    test::LogRecorder const recorder;

    ProcessTerminator(nobody, 0).RequestTerminationAndWait();

    EXPECT_EQ(0u, opens.calls());
    EXPECT_THAT(
        recorder.lines(),
        ElementsAre(started(nobody), waiting(nobody), abandoning(nobody), ended(nobody)));
}

// A mutex of that name stands in the way of the event.
TEST(ProcessTerminator, FailsWhereItsEventCannotBeMade) {
    test::OwnedHandle const mutex(CreateMutexW(nullptr, FALSE, eventNameOf(nobody).c_str()));
    ThreadStarts const starts;
    test::LogRecorder const recorder;
    test::HandleLeakCheck const check;

    EXPECT_EQ(L"CreateEvent failed", failureOf([] { ProcessTerminator(nobody, 0); }));

    EXPECT_EQ(0u, starts.count());
    EXPECT_THAT(recorder.lines(), ElementsAre());
}

TEST(ProcessTerminator, WatchesNothingWithoutAStopEvent) {
    test::FailingImport<decltype(CreateEventW)> const hook("CreateEventW", nullptr, 8);
    test::LogRecorder const recorder;
    Debugger const debugger(false, recorder);

    ProcessTerminator(nobody, 0).WaitUntilThreadFinishes();

    EXPECT_THAT(
        recorder.lines(),
        ElementsAre(
            started(nobody), waiting(nobody), unexpectedReturn(L"ffffffff"), ended(nobody)));
}

TEST(ProcessTerminator, WatchesNothingWhereNoThreadCanBeStarted) {
    test::LogRecorder const recorder;
    { ProcessTerminator const first(nobody, 0); }
    test::FailingImport<decltype(_beginthreadex)> const hook("_beginthreadex", 0, 12);
    test::HandleLeakCheck const check;

    EXPECT_TRUE(ProcessTerminator(nobody, 0).RequestTerminationAndWait());

    EXPECT_EQ(1u, hook.calls());
    EXPECT_EQ(4u, recorder.lines().size());
}

TEST(ProcessTerminator, TellsWhyItCannotSignal) {
    test::LogRecorder const recorder;
    ProcessTerminator terminator(nobody, longGrace);
    test::FailingImport<decltype(SetEvent)> const hook("SetEvent", FALSE, 0x1AF);

    EXPECT_EQ(
        L"SetEvent failed (error 0x1af)", failureOf([&] { terminator.RequestTermination(); }));
}

TEST(ProcessTerminator, DoesNotWaitForWhatItCannotSignal) {
    test::LogRecorder const recorder;
    ProcessTerminator terminator(nobody, longGrace);
    test::FailingImport<decltype(SetEvent)> const hook("SetEvent", FALSE, 6);

    EXPECT_EQ(
        L"SetEvent failed (error 0x6)", failureOf([&] { terminator.RequestTerminationAndWait(); }));

    EXPECT_FALSE(terminator.join(0));
}

TEST(ProcessTerminator, DestructorStopsBeforeItClosesItsEvent) {
    HANDLE trigger = nullptr;
    HANDLE stop = nullptr;
    test::ImportHook<decltype(WaitForMultipleObjects)> const hook(
        "WaitForMultipleObjects",
        [&](DWORD count, HANDLE const* handles, BOOL all, DWORD milliseconds) {
            trigger = handles[0];
            stop = handles[1];
            return hook.original()(count, handles, all, milliseconds);
        });
    ThreadStarts const starts;
    test::LogRecorder const recorder;
    auto terminator = std::make_unique<ProcessTerminator>(nobody, 0);
    ThreadCalls const calls;

    terminator.reset();

    EXPECT_THAT(
        calls.calls(), ElementsAre(
                           Call{"SetEvent", stop}, Call{"WaitForSingleObject", starts.last(), 1000},
                           Call{"CloseHandle", starts.last()}, Call{"CloseHandle", trigger},
                           Call{"CloseHandle", stop}));
}

TEST(ProcessTerminator, DestructorKillsAThreadThatHangsInTheKill) {
    auto const inTheKill = newEvent();
    test::ImportHook<HANDLE(DWORD, BOOL, DWORD)> const opens(
        "OpenProcess", [&](DWORD, BOOL, DWORD) -> HANDLE {
            SetEvent(inTheKill.get());
            for (;;)
                Sleep(INFINITE);
        });
    ThreadStarts const starts;
    test::LogRecorder const recorder;
    auto terminator = std::make_unique<ProcessTerminator>(nobody, 0);
    terminator->RequestTermination();
    ASSERT_TRUE(becomesSignalled(inTheKill.get()));
    auto const thread = secondHandleTo(starts.last());

    terminator.reset();

    EXPECT_TRUE(becomesSignalled(thread.get()));
    EXPECT_THAT(recorder.lines(), ElementsAre(started(nobody), waiting(nobody)));
}

TEST(ProcessTerminator, SaysThatItsEventCouldNotBeClosed) {
    test::LogRecorder const recorder;
    // The thread is closed first, and the stop event last.
    test::ImportHook<decltype(CloseHandle)> const hook("CloseHandle", [&](HANDLE handle) -> BOOL {
        hook.original()(handle);
        SetLastError(0xABC);
        return hook.calls() != 2;
    });

    { ProcessTerminator const terminator(nobody, 0); }

    EXPECT_EQ(3u, hook.calls());
    EXPECT_THAT(
        recorder.lines(), ElementsAre(
                              started(nobody), waiting(nobody), abandoning(nobody), ended(nobody),
                              debugLine(Logged(4, L"CloseHandle failed (error 0xabc)"))));
}

TEST(ProcessTerminator, RequestAndWaitMakesTheVirtualRequest) {
    class Reporting : public ProcessTerminator {
      public:
        using ProcessTerminator::ProcessTerminator;

        void RequestTermination() override {
            ++requests;
            ProcessTerminator::RequestTermination();
        }

        int requests = 0;
    };
    test::LogRecorder const recorder;
    Reporting terminator(nobody, 0);

    EXPECT_TRUE(terminator.RequestTerminationAndWait());

    EXPECT_EQ(1, terminator.requests);
}

TEST(ProcessTerminator, RequestAndWaitWaitsWithoutLimit) {
    ThreadStarts const starts;
    test::LogRecorder const recorder;
    ProcessTerminator terminator(nobody, 0);
    std::vector<Call> joins;
    DWORD const owner = GetCurrentThreadId();
    test::ImportHook<decltype(WaitForSingleObject)> const hook(
        "WaitForSingleObject", [&](HANDLE handle, DWORD milliseconds) {
            if (GetCurrentThreadId() == owner)
                joins.push_back({"join", handle, milliseconds});
            return hook.original()(handle, milliseconds);
        });

    terminator.RequestTerminationAndWait();

    EXPECT_THAT(joins, ElementsAre(Call{"join", starts.last(), INFINITE}));
    EXPECT_FALSE(isOpen(starts.last()));
}

TEST(ProcessTerminator, RequestAndWaitGivesWhatTheJoinGives) {
    test::LogRecorder const recorder;
    ProcessTerminator terminator(nobody, longGrace);
    DWORD const owner = GetCurrentThreadId();
    test::ImportHook<decltype(WaitForSingleObject)> const hook(
        "WaitForSingleObject", [&](HANDLE handle, DWORD milliseconds) -> DWORD {
            if (GetCurrentThreadId() == owner && milliseconds == INFINITE)
                return WAIT_TIMEOUT;
            return hook.original()(handle, milliseconds);
        });

    EXPECT_FALSE(terminator.RequestTerminationAndWait());
}

TEST(ProcessTerminator, FailedAllocationLeavesNothingBehind) {
    test::LogRecorder const recorder;
    { ProcessTerminator const terminator(nobody, 0); }
    test::HandleLeakCheck const check;
    ThreadStarts const starts;

    auto const failed = test::failEachAllocation([] { ProcessTerminator(nobody, 0); });

    EXPECT_GT(failed, 0u);
    EXPECT_EQ(1u, starts.count());
}

TEST(ProcessTerminator, FailedAllocationOfTheMessageComesOut) {
    test::LogRecorder const recorder;
    ProcessTerminator terminator(nobody, longGrace);
    test::FailingImport<decltype(SetEvent)> const hook("SetEvent", FALSE, 6);
    test::AllocationCounter counter;

    // The first one is for the exception itself, for which the runtime has a reserve.
    counter.failAt(2);
    EXPECT_THROW(terminator.RequestTermination(), std::bad_alloc);

    counter.failNone();
    EXPECT_FALSE(terminator.join(0));
}
