#include "vrUtils/Crashing.h"

#include "foundation/Platform.h"
#include "tests/process/CallOrder.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/ChildAction.h"
#include "tests/support/ImportHook.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/ScratchFolder.h"

#include <gmock/gmock.h>

#include <cstdio>
#include <cstdlib>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

using namespace vrUtils::Crashing;
using test::Logged;
using testing::AllOf;
using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;

namespace {

// The name is a value of the line, not a part of the format.
testing::Matcher<test::LogLine const&>
namedLine(int level, std::wstring const& before, std::wstring const& name) {
    return AllOf(
        test::LoggedFormat(level, before + L" \"%s\""),
        Field("values", &test::LogLine::values, ElementsAre(Field(&test::LogValue::text, name))),
        Field("file", &test::LogLine::file, std::nullopt));
}

auto priming(std::wstring const& name) { return namedLine(5, L"Priming crash for", name); }

auto defusing(std::wstring const& name) { return namedLine(5, L"Defusing crash for", name); }

auto planned(std::wstring const& name) { return namedLine(2, L"Planned crash at", name); }

// Each test has a point of its own, and nothing is primed for the next one.
class Crashing : public testing::Test {
  protected:
    ~Crashing() override {
        defuseCrash(m_point);
        defuseCrash(L"");
    }

    std::wstring const m_point = L"Point A";
    test::LogRecorder m_recorder;
};

} // namespace

TEST_F(Crashing, NothingIsPrimedAtFirst) { EXPECT_FALSE(shouldCrash(m_point)); }

TEST_F(Crashing, PrimedPointIsToCrash) {
    primeCrash(m_point);

    EXPECT_TRUE(shouldCrash(m_point));
    EXPECT_FALSE(shouldCrash(L"Point B"));
    EXPECT_FALSE(shouldCrash(L"Point"));
}

TEST_F(Crashing, CaseDoesNotCount) {
    primeCrash(L"poINT a");

    EXPECT_TRUE(shouldCrash(L"POINT A"));
    EXPECT_TRUE(shouldCrash(L"point a"));
    defuseCrash(L"Point A");
    EXPECT_FALSE(shouldCrash(L"poINT a"));
}

TEST_F(Crashing, PrimingTwiceIsUndoneByOneDefusing) {
    primeCrash(m_point);
    primeCrash(L"POINT A");

    defuseCrash(m_point);

    EXPECT_FALSE(shouldCrash(m_point));
}

TEST_F(Crashing, DefusingLeavesOtherPoints) {
    primeCrash(m_point);
    primeCrash(L"Point B");

    defuseCrash(L"Point B");

    EXPECT_TRUE(shouldCrash(m_point));
}

TEST_F(Crashing, EmptyNameIsAPoint) {
    EXPECT_FALSE(shouldCrash(L""));

    primeCrash(L"");

    EXPECT_TRUE(shouldCrash(L""));
    EXPECT_FALSE(shouldCrash(m_point));
    EXPECT_THAT(m_recorder.lines(), ElementsAre(priming(L"")));
}

TEST_F(Crashing, LinesShowTheNameInTheCallersCase) {
    primeCrash(L"Point A");
    primeCrash(L"POINT a");
    defuseCrash(L"point A");

    EXPECT_THAT(
        m_recorder.lines(),
        ElementsAre(priming(L"Point A"), priming(L"POINT a"), defusing(L"point A")));
}

TEST_F(Crashing, DefusingAnUnprimedPointIsLogged) {
    defuseCrash(m_point);

    EXPECT_THAT(m_recorder.lines(), ElementsAre(defusing(m_point)));
}

TEST_F(Crashing, AskingIsNotLogged) {
    primeCrash(m_point);
    m_recorder.clear();

    EXPECT_TRUE(shouldCrash(m_point));

    EXPECT_THAT(m_recorder.lines(), ElementsAre());
}

TEST_F(Crashing, PercentSignsInNamesAreNoDirectives) {
    primeCrash(L"100%s %n");
    defuseCrash(L"100%s %n");

    EXPECT_THAT(m_recorder.lines(), ElementsAre(priming(L"100%s %n"), defusing(L"100%s %n")));
}

TEST_F(Crashing, UnprimedPointDoesNothing) {
    primeCrash(L"Point B");
    m_recorder.clear();
    test::ImportHook const sleeps("Sleep", [](DWORD) {});
    test::FailingImport<decltype(TerminateProcess)> const ends("TerminateProcess", FALSE, 5);

    crashIfRequired(m_point);

    EXPECT_EQ(0u, sleeps.calls() + ends.calls());
    EXPECT_THAT(m_recorder.lines(), ElementsAre());
    defuseCrash(L"Point B");
}

TEST_F(Crashing, CrashLogsThenSleepsThenEndsTheProcess) {
    primeCrash(m_point);
    m_recorder.clear();
    CallOrder order;
    std::size_t linesBefore = 0;
    test::ImportHook const sleeps("Sleep", [&](DWORD milliseconds) {
        linesBefore = m_recorder.lines().size();
        order.add({"Sleep", nullptr, milliseconds});
    });
    test::ImportHook const ends("TerminateProcess", [&](HANDLE process, UINT code) -> BOOL {
        order.add({"TerminateProcess", process, code});
        return FALSE;
    });

    crashIfRequired(L"POINT A");

    EXPECT_EQ(1u, linesBefore);
    EXPECT_THAT(
        order.calls(),
        ElementsAre(Call{"Sleep", nullptr, 100}, Call{"TerminateProcess", GetCurrentProcess(), 1}));
    EXPECT_THAT(m_recorder.lines(), ElementsAre(planned(L"POINT A")));
}

// The process that cannot be ended goes on, and the point stays primed.
TEST_F(Crashing, PointStaysPrimedWhenTheProcessDoesNotEnd) {
    primeCrash(m_point);
    test::ImportHook const sleeps("Sleep", [](DWORD) {});
    test::FailingImport<decltype(TerminateProcess)> const ends(
        "TerminateProcess", FALSE, 5, test::everyCall);

    crashIfRequired(m_point);
    crashIfRequired(m_point);

    EXPECT_EQ(2u, ends.calls());
    EXPECT_TRUE(shouldCrash(m_point));
}

TEST_F(Crashing, FailedAllocationChangesNothing) {
    std::wstring const point(100, L'P');

    auto const failed = test::failEachAllocation([&] {
        try {
            primeCrash(point);
        } catch (std::bad_alloc const&) {
            EXPECT_FALSE(shouldCrash(point));
            throw;
        }
    });

    EXPECT_GT(failed, 0u);
    EXPECT_TRUE(shouldCrash(point));
    defuseCrash(point);
}

struct NamedCall {
    char const* name;
    void (*call)(std::wstring const&);

    friend std::ostream& operator<<(std::ostream& stream, NamedCall const& named) {
        return stream << named.name;
    }
};

class CrashingAllocation : public testing::TestWithParam<NamedCall> {};

INSTANTIATE_TEST_SUITE_P(
    , CrashingAllocation,
    testing::Values(
        NamedCall{"Defuse", defuseCrash}, NamedCall{"CrashIfRequired", crashIfRequired},
        NamedCall{"Should", [](std::wstring const& name) { shouldCrash(name); }}),
    [](auto const& tested) { return std::string(tested.param.name); });

TEST_P(CrashingAllocation, FailureComesOutAndTheLockIsFree) {
    test::LogRecorder const recorder;
    std::wstring const point(100, L'P');

    EXPECT_GT(test::failEachAllocation([&] { GetParam().call(point); }), 0u);

    EXPECT_FALSE(shouldCrash(point));
}

TEST_F(Crashing, ThreadsMayPrimeAndPassAtTheSameTime) {
    test::ImportHook const sleeps("Sleep", [](DWORD) {});
    test::FailingImport<decltype(TerminateProcess)> const ends(
        "TerminateProcess", FALSE, 5, test::everyCall);
    std::vector<std::thread> threads;

    for (int number = 0; number < 4; ++number)
        threads.emplace_back([number] {
            auto const own = L"Point " + std::to_wstring(number);
            for (int round = 0; round < 300; ++round) {
                primeCrash(own);
                crashIfRequired(own);
                defuseCrash(own);
            }
        });
    for (auto& thread : threads)
        thread.join();

    // Each saw its own point primed, every time.
    EXPECT_EQ(4u * 300u, ends.calls());
    EXPECT_FALSE(shouldCrash(L"Point 0"));
}

namespace {

// What the points are by the time of each line, one letter for each line.
std::string& primedAtLines() {
    static std::string letters;
    return letters;
}

void askAtLine(char, wchar_t const*, wchar_t const*, ...) noexcept {
    primedAtLines() += shouldCrash(L"point") ? 'y' : 'n';
}

// Asking from a line would wait for ever if the lock were held.
test::ChildAction const askAtEachLine(L"ask at each line", [](auto const&) {
    test::ImportPatch const log(
        "VL_WriteLog", reinterpret_cast<test::ImportPatch::Function>(&askAtLine),
        test::moduleUnderTest());
    test::FailingImport<decltype(TerminateProcess)> const ends("TerminateProcess", FALSE, 5);
    primeCrash(L"point");
    primeCrash(L"point");
    crashIfRequired(L"point");
    defuseCrash(L"point");
    defuseCrash(L"point");
    std::puts(primedAtLines().c_str());
    return 0;
});

class Witness {
  public:
    explicit Witness(char const* name) : m_name(name) {}

    Witness(Witness const&) = delete;
    Witness& operator=(Witness const&) = delete;

    ~Witness() { say(m_name); }

    // Past the streams of the runtime, which may be gone.
    static void say(std::string const& text) {
        DWORD count = 0;
        WriteFile(
            GetStdHandle(STD_OUTPUT_HANDLE), text.data(), static_cast<DWORD>(text.size()), &count,
            nullptr);
    }

  private:
    char const* m_name;
};

// Passes a point, which is primed if there is a second argument, among all that a process leaves
// behind.
test::ChildAction const passPoint(L"pass a crash point", [](auto const& arguments) {
    static Witness const lasting("static object\n");
    Witness const local("local object\n");
    std::atexit([] { Witness::say("atexit\n"); });
    std::fputs("unwritten\n", stdout);
    Witness::say("started\n");
    if (arguments.size() > 1)
        primeCrash(arguments.at(1));
    crashIfRequired(arguments.at(0));
    return 7;
});

test::ChildStart loggingTo(std::wstring const& file) {
    test::ChildStart start;
    start.environment = {{L"VORRANELOG_FILE", file}, {L"VORRANELOG_LEVEL", L"7"}};
    return start;
}

} // namespace

TEST(CrashingProcess, LinesComeBeforeTheChangeAndOutsideTheLock) {
    auto const child = askAtEachLine.start();

    // Primed twice, passed, defused twice.
    EXPECT_EQ("nyyyn\r\n", child->output());
    EXPECT_EQ(0u, child->exitCode());
}

TEST(CrashingProcess, EndsWithOneAndCleansNothingUp) {
    auto const child = passPoint.start({L"a", L"A"});

    EXPECT_EQ(1u, child->exitCode());
    EXPECT_EQ("started\n", child->output());
}

TEST(CrashingProcess, CleansUpWhereThePointIsNotPrimed) {
    auto const child = passPoint.start({L"a", L"b"});

    EXPECT_EQ(7u, child->exitCode());
    for (auto const* witness : {"started", "local object", "atexit", "static object", "unwritten"})
        EXPECT_THAT(child->output(), HasSubstr(witness));
}

TEST(CrashingProcess, LeavesItsLineInTheLog) {
    test::ScratchFolder const folder;
    auto const child = passPoint.start({L"Point A", L"POINT A"}, loggingTo(folder.file(L"a.log")));

    EXPECT_EQ(1u, child->exitCode());
    auto const log = folder.read(L"a.log");
    EXPECT_THAT(log, HasSubstr("Priming crash for \"POINT A\""));
    EXPECT_THAT(log, HasSubstr("Planned crash at \"Point A\""));
}
