#ifndef TESTS_PROCESS_STARTEDPROGRAMS_H
#define TESTS_PROCESS_STARTEDPROGRAMS_H

// What the library's children do that it no longer watches:
//
//     test::StartedPrograms started;
//     process.Execute();
//     EXPECT_TRUE(started.isRunning());
//
// It sees all programs that the library starts while it lives, and ends those that still run then.

#include "tests/support/ChildProcess.h"
#include "tests/support/ImportHook.h"
#include "tests/support/OwnedHandle.h"
#include "vrUtils/Process.h"

#include <tuple>
#include <vector>

namespace test {

class StartedPrograms {
  public:
    StartedPrograms()
        : m_hook("CreateProcessW", [this](auto... arguments) {
              auto const started = m_hook.original()(arguments...);
              if (started)
                  keep(std::get<9>(std::make_tuple(arguments...))->hProcess);
              return started;
          }) {}

    StartedPrograms(StartedPrograms const&) = delete;
    StartedPrograms& operator=(StartedPrograms const&) = delete;

    ~StartedPrograms() { endAll(); }

    std::size_t count() const noexcept { return m_processes.size(); }

    // Whether the last one still runs.
    bool isRunning() const { return !hasEnded(0); }

    // Waits for the end of the last one.
    // @return its exit code, or that of a process that runs
    DWORD exitCode() const {
        hasEnded(static_cast<DWORD>(std::chrono::milliseconds(ceiling).count()));
        DWORD code = STILL_ACTIVE;
        GetExitCodeProcess(last(), &code);
        return code;
    }

    // Ends all of them and forgets them.
    void endAll() {
        for (auto const& process : m_processes) {
            TerminateProcess(process.get(), 0);
            WaitForSingleObject(process.get(), INFINITE);
        }
        m_processes.clear();
    }

  private:
    // Throws std::out_of_range if nothing was started.
    HANDLE last() const { return m_processes.at(m_processes.size() - 1).get(); }

    bool hasEnded(DWORD milliseconds) const {
        return WaitForSingleObject(last(), milliseconds) == WAIT_OBJECT_0;
    }

    // The library closes its own handle.
    void keep(HANDLE process) {
        HANDLE copy = nullptr;
        DuplicateHandle(
            GetCurrentProcess(), process, GetCurrentProcess(), &copy, 0, FALSE,
            DUPLICATE_SAME_ACCESS);
        m_processes.emplace_back(copy);
    }

    std::vector<OwnedHandle> m_processes;
    ImportHook<decltype(CreateProcessW)> m_hook;
};

// Makes the child program of the tests what the process runs.
// @param arguments plain words, since nothing but blanks is quoted as the child understands it
inline void
addChild(vrUtils::Process::ExternalProcess& process, std::vector<std::wstring> const& arguments) {
    process.addArg(besideTestProgram(L"child_program.exe"));
    for (auto const& argument : arguments)
        process.addArg(argument);
}

// Seconds that become 0 milliseconds, since they wrap.
inline constexpr std::uint32_t noTimeAtAll = 0x20000000;

} // namespace test

#endif
