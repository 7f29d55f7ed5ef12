// `vrtool watch` and `vrtool terminate` as their users run them.

#include "tools/vrtool/WatchCommand.h"
#include "foundation/Platform.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/OwnedHandle.h"
#include "tests/vrtool/KeyConsole.h"
#include "tests/vrtool/RunHere.h"
#include "tools/vrtool/TerminateCommand.h"

#include <gmock/gmock.h>

using testing::MatchesRegex;

namespace {

std::wstring idOf(test::ChildProcess const& process) { return std::to_wstring(process.id()); }

std::string nameOf(test::ChildProcess const& process) {
    return "process " + std::to_string(process.id());
}

// `vrtool watch` over another process, started and at work.
class Watch {
  public:
    Watch(test::ChildProcess const& watched, std::wstring const& grace)
        : m_tool({L"watch", idOf(watched), L"--grace", grace}, vrtool()),
          m_isAtWork(m_tool.waitForOutput("Watching " + nameOf(watched) + ".\n")) {}

    bool isAtWork() const { return m_isAtWork; }

    test::ChildProcess const* operator->() const { return &m_tool; }

    // What it says behind its first line.
    std::string verdict() const {
        auto const text = m_tool.output();
        return text.substr(text.find('\n') + 1);
    }

  private:
    static test::ChildStart vrtool() {
        test::ChildStart start;
        start.program = test::besideTestProgram(L"vrtool.exe");
        return start;
    }

    test::ChildProcess m_tool;
    bool m_isAtWork;
};

test::ToolRun terminate(test::ChildProcess const& process) {
    return test::runTool({L"terminate", idOf(process)});
}

// No process has an id that is no multiple of 4.
constexpr wchar_t nobody[] = L"2147483643";

} // namespace

TEST(VrtoolWatch, KillsAHungProcessOnceItIsAskedFor) {
    test::ChildProcess const hung({L"sleep"});
    Watch const watch(hung, L"0");
    ASSERT_TRUE(watch.isAtWork());
    ASSERT_TRUE(hung.isRunning());

    auto const request = terminate(hung);

    EXPECT_EQ("Asked for the end of " + nameOf(hung) + ".\n", request.out);
    EXPECT_EQ(0u, request.exitCode);
    EXPECT_EQ(0u, hung.exitCode());
    EXPECT_EQ(0u, watch->exitCode());
    EXPECT_EQ("Killed " + nameOf(hung) + ".\n", watch.verdict());
}

TEST(VrtoolWatch, KillsNotBeforeTheGraceIsOver) {
    test::ChildProcess const hung({L"spin"});
    Watch const watch(hung, L"2");
    ASSERT_TRUE(watch.isAtWork());
    auto const begin = std::chrono::steady_clock::now();

    terminate(hung);

    EXPECT_TRUE(hung.wait());
    EXPECT_LE(std::chrono::seconds(2), std::chrono::steady_clock::now() - begin);
    EXPECT_EQ(0u, watch->exitCode());
}

TEST(VrtoolWatch, EndsWithAProcessThatEndsByItself) {
    test::ChildProcess ending({L"sleep"});
    Watch const watch(ending, L"20");
    ASSERT_TRUE(watch.isAtWork());

    ending.kill();

    EXPECT_EQ(0u, watch->exitCode());
    EXPECT_EQ("The " + nameOf(ending) + " has ended by itself.\n", watch.verdict());
}

TEST(VrtoolWatch, EndsWithAProcessThatUsesItsGrace) {
    test::ChildProcess ending({L"sleep"});
    Watch const watch(ending, L"1000");
    ASSERT_TRUE(watch.isAtWork());
    terminate(ending);

    ending.kill();

    EXPECT_EQ(0u, watch->exitCode());
    EXPECT_EQ("The " + nameOf(ending) + " has ended by itself.\n", watch.verdict());
}

TEST(VrtoolWatch, IsCalledOffByCtrlC) {
    test::ChildProcess const watched({L"sleep"});
    test::KeyConsole const console;
    Watch const watch(watched, L"0");
    ASSERT_TRUE(watch.isAtWork());

    ASSERT_TRUE(console.press());

    EXPECT_EQ(4u, watch->exitCode());
    EXPECT_EQ("The watch over " + nameOf(watched) + " is called off.\n", watch.verdict());
    EXPECT_TRUE(watched.isRunning());
    EXPECT_EQ(1u, terminate(watched).exitCode);
}

TEST(VrtoolWatch, IsCalledOffInTheGrace) {
    test::ChildProcess const watched({L"sleep"});
    test::KeyConsole const console;
    Watch const watch(watched, L"1000");
    ASSERT_TRUE(watch.isAtWork());
    ASSERT_EQ(0u, terminate(watched).exitCode);

    ASSERT_TRUE(console.press());

    EXPECT_EQ(4u, watch->exitCode());
    EXPECT_TRUE(watched.isRunning());
}

TEST(VrtoolWatch, SaysThatThereIsNoSuchProcess) {
    auto const run = test::runTool({L"watch", nobody, L"--grace", L"0"});

    EXPECT_THAT(
        run.error, MatchesRegex("vrtool: process 2147483643 cannot be watched: .*error 87.*\n"));
    EXPECT_EQ("", run.out);
    EXPECT_EQ(1u, run.exitCode);
}

TEST(VrtoolWatch, SaysThatTheKillFailed) {
    test::ChildProcess const watched({L"sleep"});
    auto const event = L"terminate_" + idOf(watched);
    test::OwnedHandle const signalled(CreateEventW(nullptr, FALSE, TRUE, event.c_str()));
    test::FailingImport<decltype(OpenProcess)> const fails(
        "OpenProcess", nullptr, ERROR_ACCESS_DENIED);

    auto const run =
        test::runHere<WatchCommand>("watch", {"0", "--grace", std::to_string(watched.id())});

    EXPECT_EQ("vrtool: " + nameOf(watched) + " could not be killed\n", run.error);
    EXPECT_EQ(1u, run.exitCode);
    EXPECT_TRUE(watched.isRunning());
}

TEST(VrtoolTerminate, SaysThatNobodyWatches) {
    test::ChildProcess const unwatched({L"sleep"});

    auto const run = terminate(unwatched);

    EXPECT_EQ("vrtool: nobody watches over " + nameOf(unwatched) + '\n', run.error);
    EXPECT_EQ("", run.out);
    EXPECT_EQ(1u, run.exitCode);
    EXPECT_TRUE(unwatched.isRunning());
}

TEST(VrtoolTerminate, SaysThatTheEventIsNone) {
    test::OwnedHandle const other(CreateMutexW(nullptr, FALSE, L"terminate_2147483643"));

    auto const run = test::runTool({L"terminate", nobody});

    EXPECT_THAT(
        run.error,
        MatchesRegex("vrtool: the event terminate_2147483643 cannot be signalled: .*error 6.*\n"));
    EXPECT_EQ(1u, run.exitCode);
}

TEST(VrtoolTerminate, ReachesWhateverWaitsForTheEvent) {
    test::OwnedHandle const event(CreateEventW(nullptr, FALSE, FALSE, L"terminate_2147483643"));

    auto const run = test::runTool({L"terminate", nobody});

    EXPECT_EQ(0u, run.exitCode);
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(event.get(), 0));
}

TEST(VrtoolTerminate, SaysThatTheSignalFailed) {
    test::OwnedHandle const event(CreateEventW(nullptr, FALSE, FALSE, L"terminate_2147483643"));
    test::FailingImport<decltype(SetEvent)> const fails(
        "SetEvent", FALSE, ERROR_ACCESS_DENIED, test::everyCall, test::thisProgram());

    auto const run = test::runHere<TerminateCommand>("terminate", {"2147483643"});

    EXPECT_THAT(
        run.error,
        MatchesRegex("vrtool: the event terminate_2147483643 cannot be signalled: .*error 5.*\n"));
    EXPECT_EQ(1u, run.exitCode);
}

TEST(VrtoolTerminate, LeavesNoHandleOpen) {
    test::OwnedHandle const event(CreateEventW(nullptr, FALSE, FALSE, L"terminate_2147483643"));
    test::runHere<TerminateCommand>("terminate", {"2147483643"});
    test::HandleLeakCheck const check;

    test::runHere<TerminateCommand>("terminate", {"2147483643"});
}
