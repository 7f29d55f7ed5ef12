#ifndef TESTS_SUPPORT_CHILDPROCESS_H
#define TESTS_SUPPORT_CHILDPROCESS_H

// Another process, for what must happen in one: holding a file, waiting for ever, crashing.
//
//     test::ChildProcess child({L"hold", path});
//     ASSERT_TRUE(child.waitForOutput("holding"));
//     ...
//     child.kill();
//
// The program is `child_program.exe` beside the test program, unless another one is named; see
// ChildProgram.cpp for what it can do. To run code of the test program itself in a process of its
// own, see ChildAction.h.

#include "tests/support/OwnedHandle.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace test {

// Longer than anything takes, shorter than a child lives.
inline constexpr std::chrono::seconds ceiling{20};

// How a child is started, where not as usual.
struct ChildStart {
    // Full path; if empty, the child program.
    std::wstring program = {};
    // Variables that the child has beside those of the test, or with another value.
    std::map<std::wstring, std::wstring> environment = {};
    // If empty, that of the test.
    std::wstring folder = {};
    // Standard input, which the child inherits; none if null.
    HANDLE input = nullptr;
};

// Killed by the destructor if it still runs then. Its own children are not.
class ChildProcess {
  public:
    // Throws std::system_error if the program cannot be started.
    // @param arguments quoted as far as necessary, so that they arrive as they are
    explicit ChildProcess(std::vector<std::wstring> const& arguments, ChildStart const& start = {});
    ChildProcess(ChildProcess const&) = delete;
    ChildProcess& operator=(ChildProcess const&) = delete;
    ~ChildProcess();

    std::uint32_t id() const noexcept { return m_id; }

    HANDLE handle() const noexcept { return m_process.get(); }

    // Waits for the end of the process.
    // @return whether it came within the time
    bool wait(std::chrono::milliseconds time = ceiling) const;

    bool isRunning() const { return !wait(std::chrono::milliseconds(0)); }

    // Ends the process with this exit code, and waits until it has ended.
    void kill(std::uint32_t exitCode = 99);

    // The exit code in full; waits for the end of the process, up to the ceiling, beyond which it
    // throws std::runtime_error.
    std::uint32_t exitCode() const;

    // All that the process writes to standard output and standard error, as it comes. Waits until
    // both are closed, by its end and that of the processes it has handed them to; throws
    // std::runtime_error beyond the ceiling.
    std::string output() const;

    // What has come of it so far.
    std::string outputSoFar() const;

    // Waits until the text stands in the output.
    // @return whether it did within the time; false too as soon as nothing more can come
    bool waitForOutput(std::string const& text, std::chrono::milliseconds time = ceiling) const;

  private:
    void readOutput();

    std::uint32_t m_id = 0;
    OwnedHandle m_process;
    OwnedHandle m_outputEnd;
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_changed;
    std::string m_output;
    bool m_outputEnded = false;
    std::thread m_reader;
};

// The full path of the program that runs the tests, and that of another one beside it.
std::wstring testProgram();
std::wstring besideTestProgram(std::wstring const& name);

// The argument as it stands in a command line: in quotes, if it would not arrive otherwise.
std::wstring quotedArgument(std::wstring const& argument);

} // namespace test

#endif
