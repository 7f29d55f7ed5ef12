#include "tests/vrtool/ToolRun.h"

#include "foundation/Platform.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/OwnedHandle.h"
#include "tests/support/ScratchFolder.h"

#include <memory>
#include <regex>
#include <sstream>
#include <stdexcept>

namespace {

test::OwnedHandle newFile(std::wstring const& path) {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    HANDLE const file = CreateFileW(
        path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS,
        FILE_ATTRIBUTE_NORMAL, nullptr);
    DWORD const error = GetLastError();
    if (file == INVALID_HANDLE_VALUE)
        throw test::platformFailure(error, "cannot make a file for the output");
    return test::OwnedHandle(file);
}

std::uint32_t
runWithFlags(std::vector<std::wstring> const& arguments, void* out, void* error, DWORD flags) {
    std::wstring line = test::quotedArgument(test::besideTestProgram(L"vrtool.exe"));
    for (auto const& argument : arguments)
        line += L' ' + test::quotedArgument(argument);
    STARTUPINFOW start{};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdOutput = out;
    start.hStdError = error;

    PROCESS_INFORMATION process;
    BOOL const started = CreateProcessW(
        nullptr, line.data(), nullptr, nullptr, TRUE, flags, nullptr, nullptr, &start, &process);
    DWORD const startError = GetLastError();
    if (!started)
        throw test::platformFailure(startError, "cannot start vrtool");
    test::OwnedHandle const thread(process.hThread);
    test::OwnedHandle const owner(process.hProcess);
    auto const limit = std::chrono::milliseconds(test::ceiling).count();
    if (WaitForSingleObject(owner.get(), static_cast<DWORD>(limit)) != WAIT_OBJECT_0) {
        TerminateProcess(owner.get(), 99);
        throw std::runtime_error("vrtool does not end");
    }
    DWORD exitCode = 0;
    GetExitCodeProcess(owner.get(), &exitCode);
    return exitCode;
}

test::ToolRun runIntoFiles(std::vector<std::wstring> const& arguments, DWORD flags) {
    test::ScratchFolder const folder;
    std::uint32_t exitCode = 0;
    {
        auto const out = newFile(folder.file(L"out"));
        auto const error = newFile(folder.file(L"error"));
        exitCode = runWithFlags(arguments, out.get(), error.get(), flags);
    }
    return {exitCode, folder.read(L"out"), folder.read(L"error")};
}

} // namespace

std::vector<std::string> test::ToolRun::lines() const {
    std::vector<std::string> lines;
    std::istringstream stream(out);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

Json::Value test::ToolRun::json() const {
    Json::Value document;
    std::string problems;
    Json::CharReaderBuilder const builder;
    std::unique_ptr<Json::CharReader> const reader(builder.newCharReader());
    if (!reader->parse(out.data(), out.data() + out.size(), &document, &problems))
        throw std::runtime_error(problems);
    return document;
}

// Without a console of its own, whose host would keep the files open longer than the program.
test::ToolRun test::runTool(std::vector<std::wstring> const& arguments) {
    return runIntoFiles(arguments, DETACHED_PROCESS);
}

test::ToolRun test::runToolInConsole(std::vector<std::wstring> const& arguments) {
    return runIntoFiles(arguments, 0);
}

std::uint32_t test::runTool(std::vector<std::wstring> const& arguments, void* out, void* error) {
    DWORD mode = 0;
    return runWithFlags(arguments, out, error, GetConsoleMode(out, &mode) ? 0 : DETACHED_PROCESS);
}

std::vector<std::string> test::cellsOf(std::string const& line) {
    static std::regex const gap("  +");
    return {std::sregex_token_iterator(line.begin(), line.end(), gap, -1), {}};
}
