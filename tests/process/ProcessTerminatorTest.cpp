#include "vrUtils/ProcessWatchdog.h"

#include "foundation/Platform.h"
#include "tests/process/CallOrder.h"
#include "tests/process/ThreadCalls.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/ChildAction.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/OwnedHandle.h"
#include "tests/support/WideText.h"

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <string>
#include <vector>

using test::Logged;
using test::LoggedFormat;
using testing::AllOf;
using testing::ElementsAre;
using testing::Field;
using testing::Gt;
using testing::Matcher;
using testing::Optional;
using vrUtils::ProcessWatchdog::ProcessTerminator;

namespace {

using LineMatcher = Matcher<test::LogLine const&>;

// No process has ever had this id, and no other process of these tests watches it.
std::uint32_t const nobody = 0x7F000000 + GetCurrentProcessId();

// A grace period that no test is to use up, and the same in milliseconds.
constexpr std::uint32_t longGrace = 1000;
constexpr DWORD longGraceMs = 1000000;

std::wstring eventNameOf(std::uint32_t processId) {
    return L"terminate_" + std::to_wstring(processId);
}

// The lines of a watch, in which the id stands as a signed number.
LineMatcher
idLine(int level, wchar_t const* before, std::uint32_t processId, wchar_t const* after) {
    auto const id = std::to_wstring(static_cast<std::int32_t>(processId));
    return AllOf(
        Logged(level, before + id + after), Field("file", &test::LogLine::file, std::nullopt));
}

LineMatcher started(std::uint32_t id) { return idLine(6, L"Started process ", id, L" terminator"); }

LineMatcher waiting(std::uint32_t id) {
    return idLine(7, L"Waiting to terminate process ", id, L" or adandon this thread...");
}

LineMatcher terminating(std::uint32_t id) { return idLine(7, L"Terminating process ", id, L"..."); }

LineMatcher terminated(std::uint32_t id) { return idLine(5, L"Terminated process ", id, L""); }

LineMatcher abandoning(std::uint32_t id) {
    return idLine(7, L"Abandoning process ", id, L" terminator");
}

LineMatcher ended(std::uint32_t id) { return idLine(7, L"End of process ", id, L" terminator"); }

// A debug line tells its place as well.
LineMatcher debugLine(LineMatcher const& line) {
    return AllOf(
        line, Field("file", &test::LogLine::file, Optional(std::wstring(L"Process"))),
        Field("line", &test::LogLine::line, Optional(Gt(0))));
}

LineMatcher failedToTerminate(std::uint32_t id, std::wstring const& error) {
    return debugLine(Logged(
        4, L"Failed to terminate process " + std::to_wstring(id) + L" (error 0x" + error +
               L"), abandoning terminator"));
}

// The first number that this line shows is the error.
LineMatcher openFailed(std::uint32_t error) {
    return debugLine(AllOf(
        LoggedFormat(4, L"OpenProcess with id %d failed (error 0x%x), abandoning terminator"),
        testing::Truly([error](test::LogLine const& line) {
            return static_cast<std::uint32_t>(line.values.at(0).word) == error;
        })));
}

LineMatcher unexpectedReturn(std::wstring const& result) {
    return debugLine(
        Logged(4, L"Unexpected return from WaitForMultipleObjects (0x" + result + L")"));
}

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

// Answers the wait for the two events, so that a test need not make it happen.
using EventWait = test::FailingImport<decltype(WaitForMultipleObjects)>;

std::wstring messageOf(vrException const& failure) {
    EXPECT_EQ(0x80004005u, failure.code());
    EXPECT_EQ(L"Process", failure.file());
    EXPECT_GT(failure.line(), 0u);
    return failure.message();
}

template <typename Action>
std::wstring failureOf(Action action) {
    try {
        action();
    } catch (vrException const& failure) {
        return messageOf(failure);
    }
    return L"(no failure)";
}

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

namespace {

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
    Victim const victim;
    test::LogRecorder const recorder;
    { ProcessTerminator(nobody, 0).RequestTerminationAndWait(); }
    test::HandleLeakCheck const check;

    { ProcessTerminator const abandoned(victim.id(), 0); }
    { ProcessTerminator(nobody, 0).RequestTerminationAndWait(); }
    { ProcessTerminator(victim.id(), 0).RequestTerminationAndWait(); }
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
