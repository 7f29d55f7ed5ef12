#ifndef TESTS_VRTOOL_KEYCONSOLE_H
#define TESTS_VRTOOL_KEYCONSOLE_H

#include "foundation/Platform.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/OwnedHandle.h"

namespace test {

// A console where Ctrl-C can be pressed: it reaches all programs that are started while the object
// lives, and harms the test itself in no way. One at a time.
class KeyConsole {
  public:
    KeyConsole() {
        FreeConsole();
        AllocConsole();
        SetConsoleCtrlHandler(seeKey, TRUE);
    }

    KeyConsole(KeyConsole const&) = delete;
    KeyConsole& operator=(KeyConsole const&) = delete;

    // The console stays: without one, each program that is started next would make its own.
    ~KeyConsole() { SetConsoleCtrlHandler(seeKey, FALSE); }

    // @return whether the key was sent
    bool send() const { return GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0) != 0; }

    // Waits until it has come to the test itself, unless something there takes it first.
    bool hasCome() const {
        auto const limit = std::chrono::milliseconds(ceiling).count();
        return WaitForSingleObject(seen(), static_cast<DWORD>(limit)) == WAIT_OBJECT_0;
    }

    bool press() const { return send() && hasCome(); }

  private:
    static HANDLE seen() {
        static OwnedHandle const event(CreateEventW(nullptr, FALSE, FALSE, nullptr));
        return event.get();
    }

    static BOOL WINAPI seeKey(DWORD) { return SetEvent(seen()); }
};

} // namespace test

#endif
