#include "tests/support/ChildProcess.h"

#include "tests/support/WideText.h"

#include <cwctype>
#include <stdexcept>

namespace test {

namespace {

// Names of variables are one name whatever their case.
struct WithoutCase {
    bool operator()(std::wstring const& left, std::wstring const& right) const {
        return _wcsicmp(left.c_str(), right.c_str()) < 0;
    }
};

struct EnvironmentCloser {
    void operator()(wchar_t* block) const noexcept { FreeEnvironmentStringsW(block); }
};

// The variables of this process and the additions, as a block for the platform.
std::wstring environmentWith(std::map<std::wstring, std::wstring> const& additions) {
    std::map<std::wstring, std::wstring, WithoutCase> variables;
    std::unique_ptr<wchar_t, EnvironmentCloser> const own(GetEnvironmentStringsW());
    for (wchar_t const* entry = own.get(); *entry; entry += std::wcslen(entry) + 1) {
        std::wstring const text = entry;
        // A name may begin with an equals sign: the platform keeps the folder of each drive so.
        auto const end = text.find(L'=', 1);
        variables[text.substr(0, end)] = text.substr(end + 1);
    }
    for (auto const& [name, value] : additions)
        variables[name] = value;

    std::wstring block;
    for (auto const& [name, value] : variables)
        block.append(name).append(1, L'=').append(value).append(1, L'\0');
    return block.append(1, L'\0');
}

std::wstring
commandLineOf(std::wstring const& program, std::vector<std::wstring> const& arguments) {
    auto line = quotedArgument(program);
    for (auto const& argument : arguments)
        line.append(1, L' ').append(quotedArgument(argument));
    return line;
}

struct Pipe {
    OwnedHandle readEnd;
    OwnedHandle writeEnd;
};

// A pipe whose write end a child inherits.
Pipe newPipe() {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    HANDLE readEnd = nullptr;
    HANDLE writeEnd = nullptr;
    if (!CreatePipe(&readEnd, &writeEnd, &inherited, 0)) {
        DWORD const error = GetLastError();
        throw platformFailure(error, "cannot make a pipe");
    }
    SetHandleInformation(readEnd, HANDLE_FLAG_INHERIT, 0);
    return {OwnedHandle(readEnd), OwnedHandle(writeEnd)};
}

PROCESS_INFORMATION startProcess(
    std::wstring const& program, std::vector<std::wstring> const& arguments,
    ChildStart const& start, HANDLE output) {
    auto line = commandLineOf(program, arguments);
    auto environment = environmentWith(start.environment);
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = start.input;
    startup.hStdOutput = output;
    startup.hStdError = output;
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(
            program.c_str(), line.data(), nullptr, nullptr, TRUE, CREATE_UNICODE_ENVIRONMENT,
            environment.data(), start.folder.empty() ? nullptr : start.folder.c_str(), &startup,
            &process)) {
        DWORD const error = GetLastError();
        throw platformFailure(error, "cannot start " + utf8(program));
    }
    return process;
}

} // namespace

ChildProcess::ChildProcess(std::vector<std::wstring> const& arguments, ChildStart const& start) {
    // A pipe that another child inherits too ends only with that one: one start at a time.
    static std::mutex startMutex;
    std::lock_guard const lock(startMutex);

    auto pipe = newPipe();
    auto const program =
        start.program.empty() ? besideTestProgram(L"child_program.exe") : start.program;
    auto const process = startProcess(program, arguments, start, pipe.writeEnd.get());
    OwnedHandle const thread(process.hThread);
    m_process.reset(process.hProcess);
    m_id = process.dwProcessId;
    m_outputEnd = std::move(pipe.readEnd);
    m_reader = std::thread([this] { readOutput(); });
}

ChildProcess::~ChildProcess() {
    if (isRunning())
        kill();
    m_reader.join();
}

bool ChildProcess::wait(std::chrono::milliseconds time) const {
    return WaitForSingleObject(m_process.get(), static_cast<DWORD>(time.count())) == WAIT_OBJECT_0;
}

void ChildProcess::kill(std::uint32_t exitCode) {
    TerminateProcess(m_process.get(), exitCode);
    wait();
}

std::uint32_t ChildProcess::exitCode() const {
    if (!wait())
        throw std::runtime_error("a child process has not ended");
    DWORD code = 0;
    GetExitCodeProcess(m_process.get(), &code);
    return code;
}

std::string ChildProcess::output() const {
    std::unique_lock lock(m_mutex);
    if (!m_changed.wait_for(lock, ceiling, [this] { return m_outputEnded; }))
        throw std::runtime_error("the output of a child process has not ended");
    return m_output;
}

std::string ChildProcess::outputSoFar() const {
    std::lock_guard const lock(m_mutex);
    return m_output;
}

bool ChildProcess::waitForOutput(std::string const& text, std::chrono::milliseconds time) const {
    auto const isThere = [&] { return m_output.find(text) != std::string::npos; };
    std::unique_lock lock(m_mutex);
    m_changed.wait_for(lock, time, [&] { return m_outputEnded || isThere(); });
    return isThere();
}

void ChildProcess::readOutput() {
    char buffer[4096];
    DWORD count = 0;
    // The end of the pipe is a failure of the read.
    while (ReadFile(m_outputEnd.get(), buffer, sizeof buffer, &count, nullptr)) {
        std::lock_guard const lock(m_mutex);
        m_output.append(buffer, count);
        m_changed.notify_all();
    }
    std::lock_guard const lock(m_mutex);
    m_outputEnded = true;
    m_changed.notify_all();
}

std::wstring testProgram() {
    std::wstring path(32768, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    return path;
}

std::wstring besideTestProgram(std::wstring const& name) {
    auto const path = testProgram();
    return path.substr(0, path.rfind(L'\\') + 1) + name;
}

std::wstring quotedArgument(std::wstring const& argument) {
    if (!argument.empty() && argument.find_first_of(L" \t\n\v\"") == std::wstring::npos)
        return argument;
    std::wstring text = L"\"";
    std::size_t backslashes = 0;
    for (auto const character : argument) {
        // Backslashes count twice ahead of a quotation mark, and only there.
        if (character == L'"')
            text.append(backslashes + 1, L'\\');
        backslashes = character == L'\\' ? backslashes + 1 : 0;
        text += character;
    }
    return text.append(backslashes, L'\\').append(1, L'"');
}

} // namespace test
