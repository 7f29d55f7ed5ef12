#ifndef TESTS_VRTOOL_SCREEN_H
#define TESTS_VRTOOL_SCREEN_H

#include "foundation/Platform.h"
#include "tests/support/OwnedHandle.h"

#include <string>

namespace test {

// A console screen of 80 columns that a child can write to.
class Screen {
  public:
    Screen() {
        FreeConsole();
        AllocConsole();
        SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
        m_buffer.reset(CreateConsoleScreenBuffer(
            GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited,
            CONSOLE_TEXTMODE_BUFFER, nullptr));
    }
    Screen(Screen const&) = delete;
    Screen& operator=(Screen const&) = delete;
    ~Screen() { FreeConsole(); }

    void* handle() const { return m_buffer.get(); }

    bool isThere() const {
        DWORD mode = 0;
        return GetConsoleMode(m_buffer.get(), &mode) != 0;
    }

    short columns() const {
        CONSOLE_SCREEN_BUFFER_INFO info{};
        GetConsoleScreenBufferInfo(m_buffer.get(), &info);
        return static_cast<short>(info.srWindow.Right - info.srWindow.Left + 1);
    }

    // A line without the blanks at its end.
    std::wstring line(short number) const {
        std::wstring text(static_cast<std::size_t>(columns()), L' ');
        DWORD count = 0;
        ReadConsoleOutputCharacterW(
            m_buffer.get(), text.data(), static_cast<DWORD>(text.size()), {0, number}, &count);
        text.resize(count);
        return text.erase(text.find_last_not_of(L' ') + 1);
    }

  private:
    OwnedHandle m_buffer;
};

} // namespace test

#endif
