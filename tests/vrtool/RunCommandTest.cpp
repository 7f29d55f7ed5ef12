// `vrtool run` as its users run it.

#include "tools/vrtool/RunCommand.h"
#include "foundation/Platform.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/OwnedHandle.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/WideText.h"
#include "tests/vrtool/KeyConsole.h"
#include "tests/vrtool/RunHere.h"

#include <gmock/gmock.h>

#include <regex>

using testing::HasSubstr;

namespace {

std::wstring const program = test::besideTestProgram(L"child_program.exe");
std::string const failed = "vrtool: " + test::utf8(program) +
                           " failed: it could not be started, or ended with another code than 0\n";

using Words = std::vector<std::wstring>;

Words commandOf(Words const& options, Words const& child) {
    Words all{L"run"};
    all.insert(all.end(), options.begin(), options.end());
    all.insert(all.end(), {L"--", program});
    all.insert(all.end(), child.begin(), child.end());
    return all;
}

test::ToolRun run(Words const& options, Words const& child) {
    return test::runToolInConsole(commandOf(options, child));
}

// The process that a line of vrtool says runs on. It is ended with the object.
class LeftBehind {
  public:
    explicit LeftBehind(std::string const& text) {
        std::smatch found;
        if (std::regex_search(text, found, std::regex("runs on as process (\\d+)\n")))
            m_process.reset(OpenProcess(
                SYNCHRONIZE | PROCESS_TERMINATE, FALSE,
                static_cast<DWORD>(std::stoul(found[1].str()))));
    }
    LeftBehind(LeftBehind const&) = delete;
    LeftBehind& operator=(LeftBehind const&) = delete;

    ~LeftBehind() {
        TerminateProcess(m_process.get(), 99);
        WaitForSingleObject(m_process.get(), 20000);
    }

    bool isRunning() const { return WaitForSingleObject(m_process.get(), 0) == WAIT_TIMEOUT; }

  private:
    test::OwnedHandle m_process;
};

// vrtool, with its output to be waited for. What it leaves behind must end before the object goes.
std::unique_ptr<test::ChildProcess> startTool(Words const& options, Words const& child) {
    test::ChildStart start;
    start.program = test::besideTestProgram(L"vrtool.exe");
    return std::make_unique<test::ChildProcess>(commandOf(options, child), start);
}

class VrtoolRun : public testing::Test {
  protected:
    test::KeyConsole const console;
};

} // namespace

TEST_F(VrtoolRun, EndsWithNothingToSayWhenTheProgramSucceeds) {
    auto const result = run({L"--timeout", L"20", L"--poll", L"1"}, {L"exit", L"0"});

    EXPECT_EQ(0u, result.exitCode);
    EXPECT_EQ("", result.out + result.error);
}

TEST_F(VrtoolRun, SaysThatTheProgramFailed) {
    for (auto const* code : {L"1", L"2", L"256", L"4294967295"}) {
        auto const result = run({}, {L"exit", code});
        EXPECT_EQ(1u, result.exitCode) << test::utf8(code);
        EXPECT_EQ(failed, result.error);
    }
}

TEST_F(VrtoolRun, SaysThatTheProgramIsMissing) {
    auto const result = test::runToolInConsole({L"run", L"--", L"no such \u00fc%s.exe"});

    EXPECT_EQ(1u, result.exitCode);
    EXPECT_EQ(
        "vrtool: no such \xC3\xBC%s.exe failed: it could not be started, or ended with another "
        "code than 0\n",
        result.error);
}

TEST_F(VrtoolRun, LeavesALateProgramAloneAndNamesItsProcess) {
    auto const tool = startTool({L"--timeout", L"1", L"--poll", L"50"}, {L"sleep"});

    ASSERT_TRUE(tool->waitForOutput("runs on as process "));
    LeftBehind const left(tool->outputSoFar());
    EXPECT_EQ(3u, tool->exitCode());
    EXPECT_THAT(
        tool->outputSoFar(), HasSubstr(
                                 "vrtool: " + test::utf8(program) +
                                 " did not end within 1 second, and runs on as process "));
    EXPECT_TRUE(left.isRunning());
}

// The library calls a limit over that whole polls have exceeded: two of them, and not one.
TEST_F(VrtoolRun, CountsTheTimeInPolls) {
    auto const begin = std::chrono::steady_clock::now();

    auto const tool = startTool({L"--timeout", L"1", L"--poll", L"1000"}, {L"sleep"});

    ASSERT_TRUE(tool->waitForOutput("runs on as process "));
    LeftBehind const left(tool->outputSoFar());
    EXPECT_EQ(3u, tool->exitCode());
    EXPECT_LE(std::chrono::seconds(2), std::chrono::steady_clock::now() - begin);
}

TEST_F(VrtoolRun, HandsTheArgumentsOverAsTheLibraryQuotesThem) {
    auto const result =
        run({}, {L"echo", L"two words", L"  trimmed ", L"[a,b]", L"++", L"--", L"--timeout", L"-x",
                 L"\u00fc\U0001F3AC", L"a&b"});

    EXPECT_EQ(
        "two words\ntrimmed\n[a,b]\n++\n--\n--timeout\n-x\n\xC3\xBC\xF0\x9F\x8E\xAC\na&b\n",
        result.out);
    EXPECT_EQ(0u, result.exitCode);
}

TEST_F(VrtoolRun, GivesTheProgramTheVariablesAndNoOthers) {
    auto const result =
        run({L"--env", L"ONE=a=b c", L"--env", L"TWO=[x]", L"--env", L"EMPTY="},
            {L"environment", L"ONE", L"TWO", L"PATH"});

    EXPECT_EQ("=a=b c\n=[x]\nunset\n", result.out);
}

TEST_F(VrtoolRun, LeavesTheProgramItsVariablesOtherwise) {
    SetEnvironmentVariableW(L"VRTOOL_RUN_TEST", L"inherited");

    auto const result = run({}, {L"environment", L"VRTOOL_RUN_TEST"});

    SetEnvironmentVariableW(L"VRTOOL_RUN_TEST", nullptr);
    EXPECT_EQ("=inherited\n", result.out);
}

TEST_F(VrtoolRun, StartsTheProgramInTheFolder) {
    test::ScratchFolder const folder;

    EXPECT_EQ(test::utf8(folder.path()) + '\n', run({L"--cwd", folder.path()}, {L"folder"}).out);
}

TEST_F(VrtoolRun, FailsInAFolderThatIsMissing) {
    auto const result = run({L"--cwd", L"C:\\no such folder"}, {L"exit", L"0"});

    EXPECT_EQ(1u, result.exitCode);
    EXPECT_EQ(failed, result.error);
}

TEST_F(VrtoolRun, IsCancelledByCtrlCAndKillsNothing) {
    auto const tool = startTool({L"--poll", L"20"}, {L"deaf"});
    ASSERT_TRUE(tool->waitForOutput("deaf"));

    ASSERT_TRUE(console.press());

    EXPECT_EQ(4u, tool->exitCode());
    ASSERT_TRUE(tool->waitForOutput("runs on as process "));
    LeftBehind const left(tool->outputSoFar());
    EXPECT_TRUE(left.isRunning());
    EXPECT_THAT(
        tool->outputSoFar(),
        HasSubstr("vrtool: " + test::utf8(program) + " was cancelled, and runs on as process "));
}

TEST_F(VrtoolRun, IsCancelledByCtrlCThatEndsTheProgramToo) {
    auto const tool = startTool({L"--poll", L"60000"}, {L"break"});
    ASSERT_TRUE(tool->waitForOutput("breakable"));

    ASSERT_TRUE(console.press());

    EXPECT_EQ(4u, tool->exitCode());
    EXPECT_THAT(tool->output(), HasSubstr(" was cancelled, and has ended meanwhile\n"));
}

TEST_F(VrtoolRun, WaitsAMomentForTheKeyThatEndedTheProgram) {
    test::ImportHook<decltype(CreateProcessW)> const pressesAndFails(
        "CreateProcessW", [this](auto...) -> BOOL {
            console.send();
            return FALSE;
        });

    auto const result = test::runHere<RunCommand>("run", {"program", "--"});

    EXPECT_EQ("vrtool: program was cancelled, and has ended meanwhile\n", result.error);
    EXPECT_EQ(4u, result.exitCode);
}

TEST_F(VrtoolRun, LeavesNoHandleOpen) {
    test::runHere<RunCommand>("run", {"0", "exit", test::utf8(program), "--"});
    test::HandleLeakCheck const check;

    test::runHere<RunCommand>("run", {"0", "exit", test::utf8(program), "--"});
}
