#ifndef TESTS_PROCESS_FAKEPROGRAM_H
#define TESTS_PROCESS_FAKEPROGRAM_H

// A program that only seems to run, so that a test decides what each wait for it answers, and no
// test waits for the time to pass:
//
//     test::FakeProgram program;
//     program.waitAnswers = {WAIT_TIMEOUT};
//     ExternalProcess(L"name", 5, L"Module").Execute();
//     EXPECT_THAT(program.waits(), ElementsAre(5000u));

#include "tests/support/ImportHook.h"

#include <deque>
#include <optional>
#include <string>
#include <vector>

namespace test {

// What the platform was given to start a program.
struct StartCall {
    wchar_t const* application = nullptr;
    wchar_t const* lineAddress = nullptr;
    std::wstring line;
    bool hasAttributes = false;
    BOOL inheritsHandles = FALSE;
    DWORD flags = 0;
    // Up to its end, which is two zeros in a row, both included.
    std::optional<std::wstring> environment;
    std::optional<std::wstring> folder;
    STARTUPINFOW startup{};
    PROCESS_INFORMATION process{};
};

// While it lives, the library starts nothing else.
class FakeProgram {
  public:
    FakeProgram();
    FakeProgram(FakeProgram const&) = delete;
    FakeProgram& operator=(FakeProgram const&) = delete;

    // What the waits answer, in order; behind the last one the program has ended.
    std::deque<DWORD> waitAnswers;
    DWORD exitCode = 0;

    // Each start, each wait's milliseconds and each handle that was closed, in order.
    std::vector<StartCall> const& starts() const noexcept { return m_starts; }

    std::vector<DWORD> const& waits() const noexcept { return m_waits; }

    std::vector<HANDLE> const& closed() const noexcept { return m_closed; }

    // How often the exit code was asked for.
    unsigned exitCodeQuestions() const noexcept { return m_exitCode.calls(); }

    // The two handles that the last start gave, which are real ones.
    HANDLE process() const noexcept { return m_process.hProcess; }

    HANDLE thread() const noexcept { return m_process.hThread; }

  private:
    BOOL start(StartCall call, wchar_t* line, PROCESS_INFORMATION* process);
    DWORD wait(HANDLE handle, DWORD milliseconds);

    PROCESS_INFORMATION m_process{};
    std::vector<StartCall> m_starts;
    std::vector<DWORD> m_waits;
    std::vector<HANDLE> m_closed;
    ImportHook<decltype(CreateProcessW)> m_start;
    ImportHook<decltype(WaitForSingleObject)> m_wait;
    ImportHook<decltype(GetExitCodeProcess)> m_exitCode;
    ImportHook<decltype(CloseHandle)> m_close;
};

} // namespace test

#endif
