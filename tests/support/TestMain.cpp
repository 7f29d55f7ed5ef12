// The main function of every test program.

#include "foundation/Platform.h"

#include <winsock2.h>

#include "tests/support/ChildAction.h"

#include <gmock/gmock.h>

#include <cstdio>

namespace {

// A crash ends the process at once with a code of its own, and says so: without this the exit
// status of a crashed test can be that of a success.
LONG WINAPI endAtFatalException(EXCEPTION_POINTERS* exception) {
    std::fprintf(stderr, "fatal exception %lx\n", exception->ExceptionRecord->ExceptionCode);
    std::fflush(stderr);
    TerminateProcess(GetCurrentProcess(), 97);
    return EXCEPTION_EXECUTE_HANDLER;
}

// The library's function that only throws, by the name under which the DLL exports it.
constexpr char throwingExport[] = "_ZN7vrUtils15throwUnsetValueEv";

// The first throw of each module opens handles that stay, and so does what the test framework first
// keeps for a thread; tests that count handles start after all of them.
void openLastingHandles() {
    try {
        auto const library = GetModuleHandleW(L"vrUtils.dll");
        if (auto const throwing = library ? GetProcAddress(library, throwingExport) : nullptr)
            throwing();
        throw 0;
    } catch (...) {
        SCOPED_TRACE("");
    }
}

} // namespace

int main(int count, char** arguments) {
    SetUnhandledExceptionFilter(endAtFatalException);
    WSADATA sockets;
    WSAStartup(MAKEWORD(2, 2), &sockets);
    if (auto const result = test::ChildAction::runRequested())
        return *result;

    testing::InitGoogleMock(&count, arguments);
    openLastingHandles();
    int const result = RUN_ALL_TESTS();
    WSACleanup();
    if (result == 0 && !GTEST_FLAG_GET(list_tests))
        std::puts("all tests of this program passed");
    return result;
}
