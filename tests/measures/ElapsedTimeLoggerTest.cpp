#include "vrUtils/Performance.h"

#include "foundation/Platform.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/ChildAction.h"
#include "tests/support/ImportHook.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/WideText.h"

#include <gmock/gmock.h>

#include <cstdio>
#include <deque>
#include <optional>
#include <type_traits>

using test::Logged;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using vrUtils::Performance::ElapsedTimeLogger;

namespace {

std::int64_t ticksPerMillisecond() {
    LARGE_INTEGER frequency;
    QueryPerformanceFrequency(&frequency);
    return frequency.QuadPart / 1000;
}

// The counter's answers, one after the other; the last one stays.
class Ticks {
  public:
    explicit Ticks(std::deque<std::int64_t> answers)
        : m_answers(std::move(answers)), m_hook("QueryPerformanceCounter", [this](auto* ticks) {
              ticks->QuadPart = m_answers.front();
              if (m_answers.size() > 1)
                  m_answers.pop_front();
              return TRUE;
          }) {}

    unsigned calls() const { return m_hook.calls(); }

  private:
    std::deque<std::int64_t> m_answers;
    test::ImportHook<decltype(QueryPerformanceCounter)> m_hook;
};

std::vector<test::LogLine> linesOf(std::deque<std::int64_t> answers) {
    test::LogRecorder const recorder;
    Ticks const ticks(std::move(answers));
    { ElapsedTimeLogger const timing(L"Transcoder"); }
    return recorder.lines();
}

// The frequency is asked for once, so that another one takes another process.
class Frequency {
  public:
    explicit Frequency(std::int64_t frequency)
        : m_hook("QueryPerformanceFrequency", [frequency](auto* answer) {
              answer->QuadPart = frequency;
              return TRUE;
          }) {}

    unsigned calls() const { return m_hook.calls(); }

  private:
    test::ImportHook<decltype(QueryPerformanceFrequency)> m_hook;
};

// Arguments: the frequency, and the counter's two answers.
test::ChildAction const timing(L"timing", [](auto const& arguments) {
    Frequency const frequency(std::stoll(arguments.at(0)));
    for (auto const& line : linesOf({std::stoll(arguments.at(1)), std::stoll(arguments.at(2))}))
        std::puts(test::utf8(line.text()).c_str());
    std::fflush(stdout);
    return 0;
});

std::string lineAt(std::int64_t frequency, std::int64_t start, std::int64_t end) {
    auto const child =
        timing.start({std::to_wstring(frequency), std::to_wstring(start), std::to_wstring(end)});
    return child->output();
}

test::ChildAction const threeTimings(L"three timings", [](auto const&) {
    Frequency const frequency(10000000);
    for (int time = 0; time < 3; ++time)
        ElapsedTimeLogger(L"Transcoder");
    return static_cast<int>(frequency.calls());
});

test::ChildAction const firstTiming(L"first timing", [](auto const&) {
    std::string order;
    test::ImportHook<decltype(QueryPerformanceFrequency)> const frequency(
        "QueryPerformanceFrequency", [&](auto* answer) {
            order += 'f';
            return frequency.original()(answer);
        });
    test::ImportHook<decltype(QueryPerformanceCounter)> const counter(
        "QueryPerformanceCounter", [&](auto* answer) {
            order += 'c';
            return counter.original()(answer);
        });
    { ElapsedTimeLogger const first(L"Transcoder"); }
    std::puts(order.c_str());
    return 0;
});

} // namespace

static_assert(std::has_virtual_destructor_v<ElapsedTimeLogger>);
static_assert(!std::is_default_constructible_v<ElapsedTimeLogger>);
static_assert(std::is_copy_constructible_v<ElapsedTimeLogger>);
static_assert(std::is_copy_assignable_v<ElapsedTimeLogger>);
static_assert(
    sizeof(ElapsedTimeLogger) == sizeof(void*) + sizeof(std::int64_t) + sizeof(std::wstring));

TEST(ElapsedTimeLogger, LogsItsLifeInWholeMilliseconds) {
    auto const millisecond = ticksPerMillisecond();

    auto const lines = linesOf({5, 5 + 1500 * millisecond + millisecond - 1});

    EXPECT_THAT(lines, ElementsAre(Logged(7, L"Elapsed time : 1500", L"Transcoder")));
}

TEST(ElapsedTimeLogger, LessThanAMillisecondIsZero) {
    auto const lines = linesOf({5, 5 + ticksPerMillisecond() - 1});

    EXPECT_THAT(lines, ElementsAre(Logged(7, L"Elapsed time : 0", L"Transcoder")));
}

TEST(ElapsedTimeLogger, AWholeMillisecondIsOne) {
    auto const lines = linesOf({5, 5 + ticksPerMillisecond()});

    EXPECT_THAT(lines, ElementsAre(Logged(7, L"Elapsed time : 1", L"Transcoder")));
}

TEST(ElapsedTimeLogger, LogsTheLowThirtyTwoBits) {
    auto const millisecond = ticksPerMillisecond();

    auto const most = linesOf({0, 0xFFFFFFFF * millisecond});
    auto const beyond = linesOf({0, (0x100000000 + 7) * millisecond});

    EXPECT_THAT(most, ElementsAre(Logged(7, L"Elapsed time : 4294967295", L"Transcoder")));
    EXPECT_THAT(beyond, ElementsAre(Logged(7, L"Elapsed time : 7", L"Transcoder")));
}

TEST(ElapsedTimeLogger, AClockThatRunsBackwardsWraps) {
    auto const millisecond = ticksPerMillisecond();

    auto const part = linesOf({millisecond, 1});
    auto const whole = linesOf({millisecond, 0});

    EXPECT_THAT(part, ElementsAre(Logged(7, L"Elapsed time : 0", L"Transcoder")));
    EXPECT_THAT(whole, ElementsAre(Logged(7, L"Elapsed time : 4294967295", L"Transcoder")));
}

TEST(ElapsedTimeLogger, ReallyMeasures) {
    test::LogRecorder const recorder;
    auto const start = GetTickCount64();
    {
        ElapsedTimeLogger const timer(L"Transcoder");
        while (GetTickCount64() < start + 100)
            SwitchToThread();
    }
    auto const atMost = GetTickCount64() - start + 20;

    auto const text = recorder.texts().at(0);
    auto const milliseconds = std::stoull(text.substr(text.rfind(L' ')));
    EXPECT_LE(80u, milliseconds);
    EXPECT_GE(atMost, milliseconds);
}

TEST(ElapsedTimeLogger, DividesTheFrequencyFirst) {
    // 1999 ticks a second are one tick a millisecond, not two.
    EXPECT_EQ("Elapsed time : 1500\r\n", lineAt(1999, 0, 1500));
    EXPECT_EQ("Elapsed time : 1500\r\n", lineAt(1000, 0, 1500));
    EXPECT_EQ("Elapsed time : 749\r\n", lineAt(2000, 1, 1500));
}

TEST(ElapsedTimeLogger, KeepsItsArithmeticAtSixtyFourBits) {
    EXPECT_EQ("Elapsed time : 3000\r\n", lineAt(10000000000000, 0, 30000000000000));
}

TEST(ElapsedTimeLogger, HasNoGuardAgainstAClockOfLessThanAThousandTicks) {
    auto const child = timing.start({L"999", L"0", L"1"});

    // The platform's code for a division by zero, and how a build ends that does so at whatever is
    // undefined.
    EXPECT_THAT(
        child->output(), testing::AnyOf(
                             testing::HasSubstr("fatal exception c0000094"),
                             testing::HasSubstr("fatal exception c000001d")));
}

TEST(ElapsedTimeLogger, AsksForTheFrequencyOnceForTheProcess) {
    EXPECT_EQ(1u, threeTimings.start()->exitCode());
}

TEST(ElapsedTimeLogger, AsksForTheFrequencyBeforeItReadsTheCounter) {
    auto const child = firstTiming.start();

    EXPECT_EQ("fcc\r\n", child->output());
}

TEST(ElapsedTimeLogger, ReadsTheCounterAsTheLastStep) {
    std::wstring const module = L"a name that needs the heap";
    test::AllocationCounter const allocations;
    std::optional<unsigned> made;
    test::ImportHook<decltype(QueryPerformanceCounter)> const hook(
        "QueryPerformanceCounter", [&](auto* answer) {
            if (!made)
                made = allocations.allocations();
            return hook.original()(answer);
        });

    ElapsedTimeLogger const timer(module);

    EXPECT_EQ(1u, made) << "the copy of the name";
    EXPECT_EQ(1u, allocations.allocations());
}

TEST(ElapsedTimeLogger, CostsTwoReadsOfTheCounter) {
    Ticks const ticks({0});

    { ElapsedTimeLogger const timer(L"Transcoder"); }

    EXPECT_EQ(2u, ticks.calls());
}

TEST(ElapsedTimeLogger, DoesNotTestTheResultOfTheCounter) {
    test::LogRecorder const recorder;
    auto const millisecond = ticksPerMillisecond();
    std::int64_t now = 0;
    test::ImportHook<decltype(QueryPerformanceCounter)> const hook(
        "QueryPerformanceCounter", [&](auto* answer) {
            answer->QuadPart = now += millisecond;
            return FALSE;
        });

    { ElapsedTimeLogger const timer(L"Transcoder"); }

    EXPECT_THAT(recorder.texts(), ElementsAre(L"Elapsed time : 1"));
}

TEST(ElapsedTimeLogger, TextIsTheFormatWithoutValues) {
    auto const lines = linesOf({0});

    ASSERT_EQ(1u, lines.size());
    EXPECT_EQ(L"Elapsed time : 0", lines.front().format);
    EXPECT_THAT(lines.front().values, IsEmpty());
    EXPECT_FALSE(lines.front().file);
}

TEST(ElapsedTimeLogger, EachLogsUnderItsOwnName) {
    test::LogRecorder const recorder;
    Ticks const ticks({0});

    {
        ElapsedTimeLogger const first(L"100%s \u00fc");
        ElapsedTimeLogger const second(L"");
    }

    EXPECT_THAT(
        recorder.lines(),
        ElementsAre(
            Logged(7, L"Elapsed time : 0", L""), Logged(7, L"Elapsed time : 0", L"100%s \u00fc")));
}

TEST(ElapsedTimeLogger, CopyReportsTooFromTheSameMoment) {
    auto const millisecond = ticksPerMillisecond();
    test::LogRecorder const recorder;
    // Only the original reads the counter when it begins.
    Ticks const ticks({0, 3 * millisecond, 5 * millisecond});

    {
        ElapsedTimeLogger const original(L"Transcoder");
        ElapsedTimeLogger const copy(original);
    }

    EXPECT_THAT(
        recorder.lines(), ElementsAre(
                              Logged(7, L"Elapsed time : 3", L"Transcoder"),
                              Logged(7, L"Elapsed time : 5", L"Transcoder")));
}

TEST(ElapsedTimeLogger, AssignmentTakesOverMomentAndName) {
    auto const millisecond = ticksPerMillisecond();
    test::LogRecorder const recorder;
    Ticks const ticks({0, 2 * millisecond, 10 * millisecond});

    {
        ElapsedTimeLogger const first(L"first");
        ElapsedTimeLogger second(L"second");
        second = first;
    }

    EXPECT_THAT(
        recorder.lines(),
        ElementsAre(
            Logged(7, L"Elapsed time : 10", L"first"), Logged(7, L"Elapsed time : 10", L"first")));
}

TEST(ElapsedTimeLogger, LineIsLostForWantOfMemory) {
    test::LogRecorder const recorder;
    test::AllocationCounter allocations;
    std::optional<ElapsedTimeLogger> timer(L"short");

    allocations.failAt(1);
    timer.reset();

    EXPECT_THAT(recorder.lines(), IsEmpty());
    EXPECT_LE(1u, allocations.allocations());
}

TEST(ElapsedTimeLogger, FailedCopyOfTheNameComesOut) {
    std::wstring const module = L"a name that needs the heap";

    // What began may end: its line needs memory too, and is lost then.
    test::AllocationCounter allocations;
    allocations.failAt(1);

    EXPECT_THROW(ElapsedTimeLogger{module}, std::bad_alloc);
}
