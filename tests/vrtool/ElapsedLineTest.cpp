#include "tools/vrtool/ElapsedLine.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/ScratchFolder.h"
#include "tests/vrtool/Screen.h"
#include "tests/vrtool/ToolRun.h"
#include "tools/vrtool/Console.h"

#include <gtest/gtest.h>

#include <future>

using namespace std::chrono_literals;

namespace {

// Standard error goes elsewhere for the life of the object.
class ErrorTo {
  public:
    explicit ErrorTo(HANDLE handle) : m_before(GetStdHandle(STD_ERROR_HANDLE)) {
        SetStdHandle(STD_ERROR_HANDLE, handle);
    }
    ErrorTo(ErrorTo const&) = delete;
    ErrorTo& operator=(ErrorTo const&) = delete;
    ~ErrorTo() { SetStdHandle(STD_ERROR_HANDLE, m_before); }

  private:
    HANDLE m_before;
};

// Asks again until it is so, no longer than the ceiling.
template <typename Question>
bool becomesTrue(Question const& question) {
    auto const end = std::chrono::steady_clock::now() + test::ceiling;
    while (!question() && std::chrono::steady_clock::now() < end)
        std::this_thread::yield();
    return question();
}

} // namespace

TEST(VrtoolElapsedLine, ShowsHoursOnlyWhereThereAreSome) {
    EXPECT_EQ("0:00", clockText(0s));
    EXPECT_EQ("0:59", clockText(59s));
    EXPECT_EQ("1:00", clockText(60s));
    EXPECT_EQ("59:59", clockText(3599s));
    EXPECT_EQ("1:00:00", clockText(3600s));
    EXPECT_EQ("1:01:09", clockText(3669s));
    EXPECT_EQ("100:00:00", clockText(360000s));
}

TEST(VrtoolElapsedLine, IsWrittenOverOnTheTerminal) {
    test::Screen const screen;
    ASSERT_TRUE(screen.isThere()) << "no console can be made here";
    ErrorTo const redirected(screen.handle());
    Console console;
    ElapsedLine line(console);

    line.show(3600s);
    EXPECT_EQ(L"Running for 1:00:00, Ctrl-C ends the wait", screen.line(0));
    line.show(65s);
    EXPECT_EQ(L"Running for 1:05, Ctrl-C ends the wait", screen.line(0));
}

TEST(VrtoolElapsedLine, LeavesAnEmptyLineToWhatFollows) {
    test::Screen const screen;
    ASSERT_TRUE(screen.isThere()) << "no console can be made here";
    ErrorTo const redirected(screen.handle());
    Console console;

    { ElapsedLine(console).show(5s); }
    EXPECT_EQ(L"", screen.line(0));
    console.error("next");

    EXPECT_EQ(L"next", screen.line(0));
}

TEST(VrtoolElapsedLine, IsWrittenToTerminalsOnly) {
    test::ScratchFolder const folder;
    test::OwnedHandle file(CreateFileW(
        folder.file(L"error").c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_NEW, 0,
        nullptr));
    {
        ErrorTo const redirected(file.get());
        Console console;
        ElapsedLine(console).show(5s);
    }
    file.reset();

    EXPECT_EQ("", folder.read(L"error"));
}

TEST(VrtoolElapsedLine, StandsThereWhileAProgramRuns) {
    test::Screen const screen;
    ASSERT_TRUE(screen.isThere()) << "no console can be made here";
    test::ScratchFolder const folder;
    auto const name = L"vrtool-elapsed-" + std::to_wstring(GetCurrentProcessId());
    test::OwnedHandle const event(CreateEventW(nullptr, TRUE, FALSE, name.c_str()));

    auto running = std::async(std::launch::async, [&] {
        return test::runTool(
            {L"run", L"--poll", L"20", L"--", test::besideTestProgram(L"child_program.exe"),
             L"into", folder.file(L"out"), L"wait", name},
            screen.handle(), screen.handle());
    });
    bool const isShown = becomesTrue([&] { return screen.line(0).find(L"Running for 0:0") == 0; });
    SetEvent(event.get());

    EXPECT_TRUE(isShown) << test::ceiling.count() << " s are over";
    EXPECT_EQ(0u, running.get());
    EXPECT_EQ(L"", screen.line(0));
}
