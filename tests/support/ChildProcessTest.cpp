#include "tests/support/ChildProcess.h"

#include "tests/support/ChildAction.h"
#include "tests/support/HandleCount.h"
#include "tests/support/LimitedLife.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/WideText.h"

#include <gmock/gmock.h>

#include <cstdio>
#include <optional>

using test::ChildProcess;

namespace {

// The error of an exclusive open of a file, 0 if it succeeds.
DWORD errorOfOpen(std::wstring const& path) {
    test::OwnedHandle const handle(
        CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    DWORD const error = GetLastError();
    return handle.get() == INVALID_HANDLE_VALUE ? error : 0;
}

test::ChildAction const tellArguments(L"tell arguments", [](auto const& arguments) {
    for (auto const& argument : arguments)
        std::printf("<%s>", test::utf8(argument).c_str());
    return 77;
});

test::ChildAction const crash(L"crash", [](auto const&) {
    RaiseException(EXCEPTION_ACCESS_VIOLATION, 0, 0, nullptr);
    return 0;
});

test::ChildAction const sleepForEver(L"sleep for ever", [](auto const&) {
    Sleep(INFINITE);
    return 0;
});

} // namespace

TEST(ChildProcess, GivesTheExitCodeInFull) {
    EXPECT_EQ(0u, ChildProcess({L"exit", L"0"}).exitCode());
    EXPECT_EQ(0x80E06025u, ChildProcess({L"exit", L"0x80E06025"}).exitCode());
}

TEST(ChildProcess, UnknownActionEndsWithACodeOfItsOwn) {
    EXPECT_EQ(64u, ChildProcess({L"no such action"}).exitCode());
    EXPECT_EQ(64u, ChildProcess({}).exitCode());
}

TEST(ChildProcess, CapturesBothStreams) {
    EXPECT_EQ("one\ntwo\n", ChildProcess({L"echo", L"one", L"two"}).output());
    EXPECT_EQ("wrong\n", ChildProcess({L"complain", L"wrong"}).output());
}

TEST(ChildProcess, CapturesMoreThanAPipeHolds) {
    EXPECT_EQ(std::string(1000000, 'x'), ChildProcess({L"flood", L"1000000"}).output());
}

TEST(ChildProcess, ArgumentsArriveAsTheyAre) {
    std::vector<std::wstring> const arguments{L"",       L"a b",          L"\"",
                                              L"a\"b c", L"C:\\folder\\", L"C:\\a folder\\",
                                              L"\\\"\\", L"a\\\\b \\\\",  L"\u00E4\U0001F3AC",
                                              L"%PATH%", L"tab\there"};
    std::vector<std::wstring> all{L"echo"};
    all.insert(all.end(), arguments.begin(), arguments.end());

    std::string expected;
    for (auto const& argument : arguments)
        expected += test::utf8(argument) + "\n";

    EXPECT_EQ(expected, ChildProcess(all).output());
}

TEST(ChildProcess, QuotesOnlyWhatNeedsIt) {
    EXPECT_EQ(L"C:\\plain\\", test::quotedArgument(L"C:\\plain\\"));
    EXPECT_EQ(L"\"\"", test::quotedArgument(L""));
    EXPECT_EQ(L"\"a b\\\\\"", test::quotedArgument(L"a b\\"));
    EXPECT_EQ(L"\"a\\\\\\\"b\"", test::quotedArgument(L"a\\\"b"));
}

TEST(ChildProcess, AddsToTheEnvironment) {
    test::ChildStart start;
    start.environment = {{L"VRUTILS_NEW", L"n\u00E4w"}, {L"path", L"replaced"}};

    ChildProcess const child({L"environment", L"VRUTILS_NEW", L"PATH", L"windir"}, start);

    EXPECT_THAT(child.output(), testing::MatchesRegex("=n\xC3\xA4w\n=replaced\n=.+\n"));
}

TEST(ChildProcess, LeavesTheEnvironmentOfTheTestAlone) {
    test::ChildStart start;
    start.environment = {{L"VRUTILS_NEW", L"new"}};
    ChildProcess const changed({L"exit", L"0"}, start);

    EXPECT_EQ("unset\n", ChildProcess({L"environment", L"VRUTILS_NEW"}).output());
}

TEST(ChildProcess, ListsItsVariables) {
    test::ChildStart start;
    start.environment = {{L"VRUTILS_NEW", L"new"}};

    EXPECT_THAT(
        ChildProcess({L"variables"}, start).output(), testing::HasSubstr("\nVRUTILS_NEW=new\n"));
}

TEST(ChildProcess, PutsItsOutputIntoAFile) {
    test::ScratchFolder const folder;
    ChildProcess const child({L"into", folder.file(L"out.txt"), L"echo", L"one", L"two"});

    EXPECT_EQ(0u, child.exitCode());
    EXPECT_EQ("", child.output());
    EXPECT_EQ("one\ntwo\n", folder.read(L"out.txt"));
}

TEST(ChildProcess, GivesTheResultOfWhatItPutsIntoAFile) {
    EXPECT_EQ(7u, ChildProcess({L"into", L"NUL", L"exit", L"7"}).exitCode());
    EXPECT_EQ(64u, ChildProcess({L"into", L"NUL"}).exitCode());
}

TEST(ChildProcess, RunsInTheGivenFolder) {
    test::ScratchFolder const folder;
    test::ChildStart start;
    start.folder = folder.path();

    EXPECT_EQ(test::utf8(folder.path()) + "\n", ChildProcess({L"folder"}, start).output());
}

TEST(ChildProcess, ProgramThatIsMissingIsRefused) {
    test::ChildStart start;
    start.program = L"C:\\no such program.exe";

    EXPECT_THROW(ChildProcess({}, start), std::system_error);
}

TEST(ChildProcess, WaitsForAnEvent) {
    auto const name = L"vrUtilsTests-" + std::to_wstring(GetCurrentProcessId());
    test::OwnedHandle const event(CreateEventW(nullptr, TRUE, FALSE, name.c_str()));
    ChildProcess const child({L"wait", name});
    ASSERT_TRUE(child.waitForOutput("waiting"));
    EXPECT_TRUE(child.isRunning());

    SetEvent(event.get());

    EXPECT_EQ(0u, child.exitCode());
}

TEST(ChildProcess, HoldsAFileUntilItIsKilled) {
    test::ScratchFolder const folder;
    auto const file = folder.write(L"held.txt", "");
    ChildProcess child({L"hold", file});
    ASSERT_TRUE(child.waitForOutput("holding"));
    EXPECT_EQ(DWORD{ERROR_SHARING_VIOLATION}, errorOfOpen(file));

    child.kill();

    EXPECT_EQ(0u, errorOfOpen(file));
}

TEST(ChildProcess, KillGivesItsExitCode) {
    ChildProcess child({L"spin"});

    child.kill(0x12345678);

    EXPECT_FALSE(child.isRunning());
    EXPECT_EQ(0x12345678u, child.exitCode());
}

TEST(ChildProcess, DestructorKills) {
    std::optional<ChildProcess> child(std::in_place, std::vector<std::wstring>{L"sleep"});
    test::OwnedHandle const process(OpenProcess(SYNCHRONIZE, FALSE, child->id()));

    child.reset();

    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(process.get(), 0));
}

TEST(ChildProcess, WaitEndsWithTheTime) {
    ChildProcess const child({L"sleep"});

    EXPECT_FALSE(child.wait(std::chrono::milliseconds(20)));
}

TEST(ChildProcess, OutputThatCannotComeAnyMoreIsNotWaitedFor) {
    ChildProcess const child({L"echo", L"this"});

    EXPECT_FALSE(child.waitForOutput("that"));
    EXPECT_TRUE(child.waitForOutput("this"));
}

TEST(ChildProcess, ShowsTheOutputSoFar) {
    ChildProcess const child({L"sleep"});

    ASSERT_TRUE(child.waitForOutput("\n"));

    EXPECT_EQ("sleeping\n", child.outputSoFar());
}

TEST(ChildProcess, KeepsTheOutputOfAKilledProcess) {
    ChildProcess child({L"spin"});
    ASSERT_TRUE(child.waitForOutput("spinning"));

    child.kill();

    EXPECT_EQ("spinning\n", child.output());
}

TEST(ChildProcess, CrashEndsWithItsExceptionCode) {
    EXPECT_EQ(0xC0000005u, ChildProcess({L"crash"}).exitCode());
}

TEST(ChildProcess, EndsByItselfWhenItLivesTooLong) {
    test::ChildStart start;
    start.environment = {{L"VRUTILS_CHILD_SECONDS", L"0"}};

    EXPECT_EQ(test::outlived, ChildProcess({L"spin"}, start).exitCode());
}

TEST(ChildProcess, LeavesNoHandleOpen) {
    // The runtime keeps what it has made for a thread for the next one. One that has just ended may not
    // have given it back yet, so that two have to be there.
    {
        ChildProcess const first({L"exit", L"0"});
        ChildProcess const second({L"exit", L"0"});
    }
    test::HandleLeakCheck const check;

    ChildProcess child({L"sleep"});
    EXPECT_THROW(ChildProcess({}, {L"C:\\no such program.exe", {}, {}}), std::system_error);
}

TEST(ChildAction, RunsInAProcessOfItsOwn) {
    auto const child = tellArguments.start({L"a b", L"\u00E4"});

    EXPECT_EQ(77u, child->exitCode());
    EXPECT_EQ("<a b><\xC3\xA4>", child->output());
    EXPECT_NE(GetCurrentProcessId(), child->id());
}

TEST(ChildAction, CrashEndsWithTheCodeOfAFatalException) {
    auto const child = crash.start();

    EXPECT_EQ(97u, child->exitCode());
    EXPECT_THAT(child->output(), testing::HasSubstr("fatal exception c0000005"));
}

TEST(ChildAction, UnknownActionEndsWithACodeOfItsOwn) {
    test::ChildStart start;
    start.program = test::testProgram();

    EXPECT_EQ(64u, ChildProcess({L"--child-action", L"no such action"}, start).exitCode());
}

TEST(ChildAction, EndsByItselfWhenItLivesTooLong) {
    test::ChildStart start;
    start.environment = {{L"VRUTILS_CHILD_SECONDS", L"0"}};

    EXPECT_EQ(test::outlived, sleepForEver.start({}, start)->exitCode());
}
