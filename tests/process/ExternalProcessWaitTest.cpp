#include "vrUtils/Process/ExternalProcess.h"

#include "foundation/Platform.h"
#include "tests/process/FakeProgram.h"
#include "tests/process/StartedPrograms.h"

#include <gmock/gmock.h>

#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

using namespace vrUtils::Process;
using testing::ElementsAre;

namespace {

// What a callback is asked, and what it answers.
class Watcher : public ExternalProcessCallback {
  public:
    void OnPoll() override {
        asked.push_back("poll");
        if (throwsOnPoll)
            throw std::runtime_error("the poll failed");
    }

    bool ShouldCancel() override {
        asked.push_back("cancel?");
        if (throwsOnQuestion)
            throw std::runtime_error("the question failed");
        return ++questions == cancelsAt;
    }

    std::vector<std::string> asked;
    unsigned questions = 0;
    unsigned cancelsAt = 0;
    bool throwsOnPoll = false;
    bool throwsOnQuestion = false;
};

class ExternalProcessWait : public testing::Test {
  protected:
    // The program outlives so many waits.
    void outlive(std::size_t waits) { m_program.waitAnswers.assign(waits, WAIT_TIMEOUT); }

    std::int32_t block(std::uint32_t timeoutSeconds) {
        return ExternalProcess(L"name", timeoutSeconds, L"").Execute();
    }

    std::int32_t poll(std::uint32_t timeoutSeconds, std::uint32_t pollIntervalMs) {
        return ExternalProcess(L"name", timeoutSeconds, L"", &m_watcher, pollIntervalMs).Execute();
    }

    bool bothHandlesAreClosed() const {
        return testing::Value(
            m_program.closed(),
            testing::UnorderedElementsAre(m_program.process(), m_program.thread()));
    }

    test::FakeProgram m_program;
    Watcher m_watcher;
};

struct Timeout {
    std::uint32_t seconds;
    std::uint32_t milliseconds;
};

class ExternalProcessTimeout : public testing::TestWithParam<Timeout> {};

INSTANTIATE_TEST_SUITE_P(
    , ExternalProcessTimeout,
    testing::Values(
        Timeout{0, INFINITE}, Timeout{0xFFFFFFFF, INFINITE}, Timeout{1, 1000}, Timeout{5, 5000},
        Timeout{4294967, 4294967000}, Timeout{4294968, 704}, Timeout{test::noTimeAtAll, 0},
        Timeout{0xFFFFFFFE, 0xFFFFF830}));

// With real programs.
class ExternalProcessExitCode : public testing::TestWithParam<wchar_t const*> {};

INSTANTIATE_TEST_SUITE_P(
    , ExternalProcessExitCode, testing::Values(L"1", L"256", L"0xC0000005", L"0xFFFFFFFF"));

// An event that a program waits for before it ends.
class ExternalProcessRunsOn : public testing::Test {
  protected:
    void addWaitingChild(ExternalProcess& process) {
        test::addChild(process, {L"into", L"NUL", L"wait", m_name});
    }

    // Whether the program runs until it is allowed to end, and then ends by itself.
    testing::AssertionResult runsToItsOwnEnd() {
        if (!m_started.isRunning())
            return testing::AssertionFailure() << "it has ended";
        SetEvent(m_event.get());
        if (auto const code = m_started.exitCode())
            return testing::AssertionFailure() << "it ended with " << code;
        return testing::AssertionSuccess();
    }

    std::wstring const m_name = L"vrUtilsTests-goes-on-" + std::to_wstring(GetCurrentProcessId());
    test::OwnedHandle const m_event{CreateEventW(nullptr, TRUE, FALSE, m_name.c_str())};
    test::StartedPrograms m_started;
    Watcher m_watcher;
};

} // namespace

static_assert(ExternalProcessTimedOut == static_cast<std::int32_t>(0x82000001));
static_assert(ExternalProcessFailed == static_cast<std::int32_t>(0x82000002));
static_assert(ExternalProcessCancelled == 0x00E08005);
static_assert(ExternalProcessTimedOut < 0 && ExternalProcessFailed < 0);
static_assert(ExternalProcessCancelled > 0, "a test of the sign takes it for a success");
static_assert(std::is_abstract_v<ExternalProcessCallback>);
static_assert(std::has_virtual_destructor_v<ExternalProcessCallback>);
static_assert(std::is_copy_constructible_v<Watcher> && std::is_copy_assignable_v<Watcher>);

TEST_P(ExternalProcessTimeout, IsTheLengthOfTheOnlyWait) {
    test::FakeProgram const program;

    EXPECT_EQ(0, ExternalProcess(L"name", GetParam().seconds, L"").Execute());

    EXPECT_THAT(program.waits(), ElementsAre(GetParam().milliseconds));
}

TEST_P(ExternalProcessExitCode, OtherThanZeroIsAFailure) {
    ExternalProcess process(L"name", 20, L"");
    test::addChild(process, {L"exit", GetParam()});

    EXPECT_EQ(ExternalProcessFailed, process.Execute());
}

TEST(ExternalProcessExit, CodeZeroIsASuccess) {
    ExternalProcess process(L"name", 20, L"");
    test::addChild(process, {L"exit", L"0"});

    EXPECT_EQ(0, process.Execute());
}

TEST(ExternalProcessExit, IsSeenByThePollingWaitToo) {
    Watcher watcher;
    ExternalProcess succeeds(L"name", 20, L"", &watcher, 20000);
    test::addChild(succeeds, {L"exit", L"0"});
    ExternalProcess fails(L"name", 20, L"", &watcher, 20000);
    test::addChild(fails, {L"exit", L"256"});

    EXPECT_EQ(0, succeeds.Execute());
    EXPECT_EQ(ExternalProcessFailed, fails.Execute());

    EXPECT_THAT(watcher.asked, testing::IsEmpty());
}

TEST_F(ExternalProcessWait, IsLateWhenTheWaitTimesOut) {
    outlive(1);

    EXPECT_EQ(ExternalProcessTimedOut, block(1));

    EXPECT_TRUE(bothHandlesAreClosed());
    EXPECT_EQ(0u, m_program.exitCodeQuestions());
}

TEST_F(ExternalProcessWait, IsLateWhenTheWaitFails) {
    m_program.waitAnswers = {WAIT_FAILED};

    EXPECT_EQ(ExternalProcessTimedOut, block(1));

    EXPECT_TRUE(bothHandlesAreClosed());
}

TEST_F(ExternalProcessWait, IsLateWhenTheWaitAnswersAnythingElse) {
    m_program.waitAnswers = {WAIT_ABANDONED};

    EXPECT_EQ(ExternalProcessTimedOut, block(0));
}

TEST_F(ExternalProcessWait, ExitCodeThatCannotBeReadIsReplacedByTheLastError) {
    test::FailingImport<decltype(GetExitCodeProcess)> const fails(
        "GetExitCodeProcess", FALSE, ERROR_ACCESS_DENIED);

    EXPECT_EQ(ExternalProcessFailed, block(0));

    EXPECT_TRUE(bothHandlesAreClosed());
}

TEST_F(ExternalProcessWait, ExitCodeThatCannotBeReadWithoutAnErrorIsASuccess) {
    m_program.exitCode = 1;
    test::FailingImport<decltype(GetExitCodeProcess)> const fails(
        "GetExitCodeProcess", FALSE, ERROR_SUCCESS);

    EXPECT_EQ(0, block(0));
}

TEST_F(ExternalProcessWait, PollAsksToCancelFirst) {
    outlive(2);

    EXPECT_EQ(0, poll(0, 250));

    EXPECT_THAT(m_watcher.asked, ElementsAre("cancel?", "poll", "cancel?", "poll"));
    EXPECT_THAT(m_program.waits(), ElementsAre(250u, 250u, 250u));
    EXPECT_TRUE(bothHandlesAreClosed());
}

TEST_F(ExternalProcessWait, PollIsLeftOutWhereTheProgramHasEnded) {
    m_program.exitCode = 3;

    EXPECT_EQ(ExternalProcessFailed, poll(1, 250));

    EXPECT_THAT(m_watcher.asked, testing::IsEmpty());
    EXPECT_TRUE(bothHandlesAreClosed());
}

TEST_F(ExternalProcessWait, CancelEndsTheWaitWithoutAPoll) {
    outlive(10);
    m_watcher.cancelsAt = 2;

    EXPECT_EQ(ExternalProcessCancelled, poll(0, 250));

    EXPECT_THAT(m_watcher.asked, ElementsAre("cancel?", "poll", "cancel?"));
    EXPECT_EQ(2u, m_program.waits().size());
    EXPECT_EQ(0u, m_program.exitCodeQuestions());
    EXPECT_TRUE(bothHandlesAreClosed());
}

TEST_F(ExternalProcessWait, CancelGoesBeforeTheTimeLimit) {
    outlive(10);
    m_watcher.cancelsAt = 3;

    EXPECT_EQ(ExternalProcessCancelled, poll(1, 500));
}

TEST_F(ExternalProcessWait, IsLateOnlyBeyondTheLimit) {
    outlive(10);

    EXPECT_EQ(ExternalProcessTimedOut, poll(1, 500));

    EXPECT_THAT(
        m_watcher.asked, ElementsAre("cancel?", "poll", "cancel?", "poll", "cancel?", "poll"));
    EXPECT_EQ(3u, m_program.waits().size());
    EXPECT_EQ(0u, m_program.exitCodeQuestions());
    EXPECT_TRUE(bothHandlesAreClosed());
}

TEST_F(ExternalProcessWait, IsLateAfterOneIntervalLongerThanTheLimit) {
    outlive(10);

    EXPECT_EQ(ExternalProcessTimedOut, poll(1, 1001));

    EXPECT_THAT(m_watcher.asked, ElementsAre("cancel?", "poll"));
}

TEST_F(ExternalProcessWait, FailedPollWaitCountsAsAnInterval) {
    m_program.waitAnswers.assign(10, WAIT_FAILED);

    EXPECT_EQ(ExternalProcessTimedOut, poll(1, 1000));

    EXPECT_THAT(m_watcher.asked, ElementsAre("cancel?", "poll", "cancel?", "poll"));
}

TEST_F(ExternalProcessWait, IsNeverLateWithoutALimit) {
    for (auto const unlimited : {0u, 0xFFFFFFFFu}) {
        outlive(1000);

        EXPECT_EQ(0, poll(unlimited, 0x10000000));

        EXPECT_TRUE(m_program.waitAnswers.empty());
    }
}

TEST_F(ExternalProcessWait, IsNeverLateWithAnIntervalOfZero) {
    outlive(1000);

    EXPECT_EQ(0, poll(test::noTimeAtAll, 0));

    EXPECT_EQ(1000u, m_watcher.questions);
    EXPECT_EQ(std::vector<DWORD>(1001, 0), m_program.waits());
}

TEST_F(ExternalProcessWait, IntervalBeyondALimitOfZeroIsLate) {
    outlive(1);

    EXPECT_EQ(ExternalProcessTimedOut, poll(test::noTimeAtAll, 1));
}

TEST_F(ExternalProcessWait, SumOfTheIntervalsWraps) {
    outlive(100);

    // The sum is 0x80000000 and 0 by turns, and never beyond the limit of 0xFFFFFED8.
    EXPECT_EQ(0, poll(4294967, 0x80000000));

    EXPECT_EQ(100u, m_watcher.questions);
}

TEST_F(ExternalProcessWait, CallbackIsAskedOnTheThreadOfTheCaller) {
    class Threads : public ExternalProcessCallback {
      public:
        void OnPoll() override { ids.push_back(GetCurrentThreadId()); }

        bool ShouldCancel() override {
            ids.push_back(GetCurrentThreadId());
            return false;
        }

        std::vector<DWORD> ids;
    } threads;
    outlive(1);

    EXPECT_EQ(0, ExternalProcess(L"name", 0, L"", &threads, 250).Execute());

    EXPECT_THAT(threads.ids, ElementsAre(GetCurrentThreadId(), GetCurrentThreadId()));
}

TEST_F(ExternalProcessWait, ExceptionOfTheQuestionReachesTheCaller) {
    outlive(10);
    m_watcher.throwsOnQuestion = true;

    EXPECT_THROW(poll(1, 500), std::runtime_error);

    EXPECT_THAT(m_watcher.asked, ElementsAre("cancel?"));
    EXPECT_TRUE(bothHandlesAreClosed());
}

TEST_F(ExternalProcessWait, ExceptionOfThePollReachesTheCaller) {
    outlive(10);
    m_watcher.throwsOnPoll = true;

    EXPECT_THROW(poll(1, 500), std::runtime_error);

    EXPECT_THAT(m_watcher.asked, ElementsAre("cancel?", "poll"));
    EXPECT_TRUE(bothHandlesAreClosed());
}

TEST_F(ExternalProcessWait, IsLeftOutByTheThirdKind) {
    m_program.exitCode = 1;

    EXPECT_EQ(0, ExternalProcess(L"name", L"").Execute());

    EXPECT_THAT(m_program.waits(), testing::IsEmpty());
    EXPECT_EQ(0u, m_program.exitCodeQuestions());
    EXPECT_TRUE(bothHandlesAreClosed());
}

TEST_F(ExternalProcessWait, StaysOfItsKindAfterAnAssignment) {
    outlive(10);
    ExternalProcess process(L"name", 1, L"");
    process = ExternalProcess(L"name", 2, L"", &m_watcher, 2001);

    EXPECT_EQ(ExternalProcessTimedOut, process.Execute());

    EXPECT_THAT(m_watcher.asked, ElementsAre("cancel?", "poll"));
    process = ExternalProcess(L"name", L"");
    EXPECT_EQ(0, process.Execute());
}

TEST(ExternalProcessCallback, HasItsVirtualOperationsInOrder) {
    class Counter : public ExternalProcessCallback {
      public:
        void OnPoll() override { ++polls; }

        bool ShouldCancel() override { return true; }

        unsigned polls = 0;
    } counter;
    ExternalProcessCallback* const callback = &counter;
    using Poll = void (*)(ExternalProcessCallback*);
    using Question = bool (*)(ExternalProcessCallback*);
    auto const* const table = *reinterpret_cast<void* const* const*>(callback);

    // The first two slots are the two forms of the destructor.
    reinterpret_cast<Poll>(table[2])(callback);

    EXPECT_EQ(1u, counter.polls);
    EXPECT_TRUE(reinterpret_cast<Question>(table[3])(callback));
}

TEST_F(ExternalProcessRunsOn, AfterATimeOut) {
    ExternalProcess process(L"name", test::noTimeAtAll, L"");
    addWaitingChild(process);

    EXPECT_EQ(ExternalProcessTimedOut, process.Execute());

    EXPECT_TRUE(runsToItsOwnEnd());
}

TEST_F(ExternalProcessRunsOn, AfterATimeOutOfThePollingWait) {
    ExternalProcess process(L"name", test::noTimeAtAll, L"", &m_watcher, 1);
    addWaitingChild(process);

    EXPECT_EQ(ExternalProcessTimedOut, process.Execute());

    EXPECT_TRUE(runsToItsOwnEnd());
}

TEST_F(ExternalProcessRunsOn, AfterACancel) {
    m_watcher.cancelsAt = 1;
    ExternalProcess process(L"name", 0, L"", &m_watcher, 0);
    addWaitingChild(process);

    EXPECT_EQ(ExternalProcessCancelled, process.Execute());

    EXPECT_TRUE(runsToItsOwnEnd());
}

TEST_F(ExternalProcessRunsOn, AfterAStartThatDoesNotWait) {
    ExternalProcess process(L"name", L"");
    addWaitingChild(process);

    EXPECT_EQ(0, process.Execute());

    EXPECT_TRUE(runsToItsOwnEnd());
}

TEST_F(ExternalProcessRunsOn, AfterTheObjectHasGone) {
    {
        ExternalProcess process(L"name", L"");
        addWaitingChild(process);
        EXPECT_EQ(0, process.Execute());
    }

    EXPECT_TRUE(runsToItsOwnEnd());
}

TEST_F(ExternalProcessRunsOn, WhileItIsPolled) {
    class EndsTheProgram : public Watcher {
      public:
        explicit EndsTheProgram(HANDLE event) : m_event(event) {}

        void OnPoll() override { SetEvent(m_event); }

      private:
        HANDLE m_event;
    } watcher(m_event.get());
    ExternalProcess process(L"name", 0, L"", &watcher, 1);
    addWaitingChild(process);

    EXPECT_EQ(0, process.Execute());

    EXPECT_FALSE(m_started.isRunning());
    EXPECT_FALSE(watcher.asked.empty());
}
