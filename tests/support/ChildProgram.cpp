// The program that tests start where they need another process. Its first argument names what it
// does; what it does not know ends with code 64. It ends by itself after 30 seconds.

#include "tests/support/LimitedLife.h"
#include "tests/support/WideText.h"

#include <cwchar>
#include <map>
#include <string>
#include <vector>

namespace {

using Arguments = std::vector<std::wstring>;
using Action = int (*)(Arguments const&);

void writeTo(DWORD stream, std::string const& text) {
    DWORD written = 0;
    WriteFile(
        GetStdHandle(stream), text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
}

void print(std::wstring const& text) { writeTo(STD_OUTPUT_HANDLE, test::utf8(text) + "\n"); }

// exit CODE
int exitWith(Arguments const& arguments) {
    return static_cast<int>(std::stoul(arguments.at(0), nullptr, 0));
}

// echo TEXT...: each text on a line of its own
int echo(Arguments const& arguments) {
    for (auto const& argument : arguments)
        print(argument);
    return 0;
}

// complain TEXT...: the same on standard error
int complain(Arguments const& arguments) {
    for (auto const& argument : arguments)
        writeTo(STD_ERROR_HANDLE, test::utf8(argument) + "\n");
    return 0;
}

// flood COUNT: so many bytes
int flood(Arguments const& arguments) {
    writeTo(STD_OUTPUT_HANDLE, std::string(std::stoul(arguments.at(0)), 'x'));
    return 0;
}

// environment NAME...: the values, or that there are none
int environment(Arguments const& arguments) {
    for (auto const& name : arguments) {
        wchar_t const* const value = _wgetenv(name.c_str());
        print(value ? L"=" + std::wstring(value) : L"unset");
    }
    return 0;
}

// variables: all of the environment, in its order
int variables(Arguments const&) {
    wchar_t* const block = GetEnvironmentStringsW();
    for (wchar_t const* entry = block; *entry; entry += std::wcslen(entry) + 1)
        print(entry);
    FreeEnvironmentStringsW(block);
    return 0;
}

// command: the command line as it came
int command(Arguments const&) {
    print(GetCommandLineW());
    return 0;
}

// folder: the working directory
int folder(Arguments const&) {
    std::wstring path(GetCurrentDirectoryW(0, nullptr), L'\0');
    path.resize(GetCurrentDirectoryW(static_cast<DWORD>(path.size()), path.data()));
    print(path);
    return 0;
}

// wait EVENT: until the named event is set
int waitForEvent(Arguments const& arguments) {
    HANDLE const event = OpenEventW(SYNCHRONIZE, FALSE, arguments.at(0).c_str());
    if (!event)
        return 1;
    print(L"waiting");
    WaitForSingleObject(event, INFINITE);
    CloseHandle(event);
    return 0;
}

// hold FILE: keeps the file open, shared with nobody
int hold(Arguments const& arguments) {
    HANDLE const file = CreateFileW(
        arguments.at(0).c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return 1;
    print(L"holding");
    Sleep(INFINITE);
    CloseHandle(file);
    return 0;
}

// spin: busy for ever
int spin(Arguments const&) {
    print(L"spinning");
    for (unsigned volatile turns = 0;; turns = turns + 1) {
    }
}

// sleep: idle for ever
int sleep(Arguments const&) {
    print(L"sleeping");
    Sleep(INFINITE);
    return 0;
}

// crash: ends with the exception of an access to memory that is none
int crash(Arguments const&) {
    RaiseException(EXCEPTION_ACCESS_VIOLATION, 0, 0, nullptr);
    return 0;
}

int carryOut(Arguments const& words);

// into FILE ACTION ARGUMENT...: any other action, with the standard output in a new file
int into(Arguments const& arguments) {
    HANDLE const file = CreateFileW(
        arguments.at(0).c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS, 0,
        nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return 1;
    SetStdHandle(STD_OUTPUT_HANDLE, file);
    int const result = carryOut({arguments.begin() + 1, arguments.end()});
    CloseHandle(file);
    return result;
}

int carryOut(Arguments const& words) {
    static std::map<std::wstring, Action> const actions{
        {L"exit", exitWith}, {L"echo", echo},       {L"complain", complain},
        {L"flood", flood},   {L"command", command}, {L"environment", environment},
        {L"folder", folder}, {L"hold", hold},       {L"variables", variables},
        {L"into", into},     {L"spin", spin},       {L"wait", waitForEvent},
        {L"sleep", sleep},   {L"crash", crash},
    };
    auto const action = words.empty() ? actions.end() : actions.find(words.front());
    if (action == actions.end())
        return 64;
    return action->second({words.begin() + 1, words.end()});
}

} // namespace

int wmain(int count, wchar_t** arguments) {
    test::limitLife();
    return carryOut({arguments + 1, arguments + count});
}
