#include "tools/vrtool/ChildRun.h"

#include "tools/vrtool/OwnedHandle.h"

#include <system_error>

namespace {

[[noreturn]] void fail(DWORD error, char const* what) {
    throw std::system_error(static_cast<int>(error), std::system_category(), what);
}

// An argument as the platform's own splitter takes it: quotes have a backslash in front, and
// backslashes count twice where they stand before a quote.
std::wstring quotedArgument(std::wstring const& argument) {
    std::wstring text = L"\"";
    std::size_t backslashes = 0;
    for (auto const unit : argument) {
        if (unit == L'"')
            text.append(backslashes + 1, L'\\');
        backslashes = unit == L'\\' ? backslashes + 1 : 0;
        text += unit;
    }
    return text.append(backslashes, L'\\') + L'"';
}

// One of this program's standard handles, for a child to inherit; null if there is none.
OwnedHandle forChild(DWORD stream) {
    auto* const own = GetStdHandle(stream);
    HANDLE inherited = nullptr;
    if (own && own != INVALID_HANDLE_VALUE)
        DuplicateHandle(
            GetCurrentProcess(), own, GetCurrentProcess(), &inherited, 0, TRUE,
            DUPLICATE_SAME_ACCESS);
    return OwnedHandle(inherited);
}

bool isConsole(OwnedHandle const& stream) {
    DWORD mode = 0;
    return GetConsoleMode(stream.get(), &mode) != 0;
}

// Ends its programs when the last handle is closed, by whatever end of this program.
OwnedHandle endingJob() {
    OwnedHandle job(CreateJobObjectW(nullptr, nullptr));
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    SetInformationJobObject(job.get(), JobObjectExtendedLimitInformation, &limits, sizeof limits);
    return job;
}

// Starts a program in a job.
OwnedHandle start(std::wstring const& program, std::wstring line, HANDLE job) {
    auto const input = forChild(STD_INPUT_HANDLE);
    auto const output = forChild(STD_OUTPUT_HANDLE);
    auto const error = forChild(STD_ERROR_HANDLE);
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = input.get();
    startup.hStdOutput = output.get();
    startup.hStdError = error.get();

    // Without a console to share, it must not get one of its own, whose host would keep the outputs
    // open longer than the program.
    bool const sharesConsole = isConsole(input) || isConsole(output) || isConsole(error);
    DWORD const flags = CREATE_SUSPENDED | (sharesConsole ? 0 : DETACHED_PROCESS);
    PROCESS_INFORMATION process;
    BOOL const started = CreateProcessW(
        program.c_str(), line.data(), nullptr, nullptr, TRUE, flags, nullptr, nullptr, &startup,
        &process);
    DWORD const startError = GetLastError();
    if (!started)
        fail(startError, "cannot start a program");
    OwnedHandle owner(process.hProcess);
    OwnedHandle const thread(process.hThread);
    // Refused where this program is in a job itself and the platform has no jobs within jobs; the
    // limit holds all the same.
    AssignProcessToJobObject(job, owner.get());
    ResumeThread(thread.get());
    return owner;
}

} // namespace

std::wstring thisProgram() {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        DWORD const length =
            GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
        DWORD const error = GetLastError();
        if (length == 0)
            fail(error, "this program has no name");
        if (length < path.size()) {
            path.resize(length);
            return path;
        }
        path.resize(2 * path.size());
    }
}

std::optional<std::uint32_t> runWithin(
    std::chrono::milliseconds limit, std::wstring const& program,
    std::vector<std::wstring> const& arguments) {
    std::wstring line = quotedArgument(program);
    for (auto const& argument : arguments)
        line += L' ' + quotedArgument(argument);
    auto const job = endingJob();
    auto const process = start(program, line, job.get());

    if (WaitForSingleObject(process.get(), static_cast<DWORD>(limit.count())) != WAIT_OBJECT_0) {
        TerminateProcess(process.get(), 1);
        WaitForSingleObject(process.get(), INFINITE);
        return std::nullopt;
    }
    DWORD exitCode = 0;
    GetExitCodeProcess(process.get(), &exitCode);
    return exitCode;
}
