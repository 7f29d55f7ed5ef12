// What the program shows on a real console.

#include "tools/vrtool/Console.h"
#include "foundation/Platform.h"
#include "tests/support/OwnedHandle.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/ScratchKey.h"
#include "tests/support/WideText.h"
#include "tests/vrtool/ToolRun.h"

#include <gtest/gtest.h>

namespace {

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
    test::OwnedHandle m_buffer;
};

} // namespace

TEST(VrtoolConsole, ShowsWideTextWhateverTheCodePage) {
    Screen const screen;
    ASSERT_TRUE(screen.isThere()) << "no console can be made here";

    auto const exitCode =
        test::runTool({L"path", L"C:\\\u00dcbung\\\u0416.wav"}, screen.handle(), screen.handle());

    EXPECT_EQ(0u, exitCode);
    EXPECT_EQ(L"PART", screen.line(0).substr(0, 4));
    EXPECT_NE(std::wstring::npos, screen.line(2).find(L"C:\\\u00dcbung\\\u0416.wav"))
        << "the third line names the whole path";
}

TEST(VrtoolConsole, KeepsToTheWidthOfTheScreen) {
    Screen const screen;
    ASSERT_TRUE(screen.isThere()) << "no console can be made here";

    test::runTool({L"path", std::wstring(300, L'x')}, screen.handle(), screen.handle());

    // Were a line too long, the console's break would move the following ones down and cut cells.
    EXPECT_EQ(L"type", screen.line(1).substr(0, 4));
    EXPECT_EQ(L"wholePath", screen.line(2).substr(0, 9));
    EXPECT_EQ(L"          ", screen.line(3).substr(0, 10));
    EXPECT_EQ(static_cast<std::size_t>(screen.columns()) - 1, screen.line(2).size());
}

TEST(VrtoolConsole, IsSharedWithTheRestoreThatHasATimeLimit) {
    Screen const screen;
    ASSERT_TRUE(screen.isThere()) << "no console can be made here";
    test::ScratchKey const key;
    test::ScratchFolder const folder;
    auto const header = "[HKEY_CURRENT_USER\\" + test::utf8(key.path()) + "\\]\n";
    auto const file = folder.write(L"a.reg", header + "\"a\"=\"b\"\n");

    auto const exitCode = test::runTool(
        {L"registry", L"restore", L"HKCU\\" + key.path(), file, L"--time-limit", L"20"},
        screen.handle(), screen.handle());

    EXPECT_EQ(0u, exitCode);
    EXPECT_EQ(L"Restored", screen.line(0).substr(0, 8));
}

TEST(VrtoolConsole, WidthThatIsAskedForGoesFirst) {
    Console console;

    console.setWidth(72);
    EXPECT_EQ(72u, console.width());
    console.setWidth(0);
    EXPECT_EQ(std::nullopt, console.width());
}
