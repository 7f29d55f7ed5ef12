#ifndef TESTS_STORAGE_DIALOGUSER_H
#define TESTS_STORAGE_DIALOGUSER_H

// Somebody who chooses the first item of the next folder dialog of this thread, and presses a
// button, as soon as it is shown:
//
//     test::DialogUser const user(IDOK);
//     EXPECT_TRUE(BrowseForFolder({}, L"Where to?", &result, nullptr));
//     EXPECT_EQ(L"Where to?", user.title());
//
// One that is never shown, or stays, is closed after the ceiling.

#include "foundation/Platform.h"
#include "tests/support/ChildProcess.h"

#include <commctrl.h>

#include <array>
#include <chrono>
#include <stdexcept>
#include <string>

namespace test {

class DialogUser {
  public:
    // @param button the one that is pressed: IDOK or IDCANCEL
    explicit DialogUser(WPARAM button)
        : m_button(button),
          m_hook(SetWindowsHookExW(WH_CBT, seeWindow, nullptr, GetCurrentThreadId())),
          m_timer(SetTimer(nullptr, 0, timeLimit(), giveUp)) {
        if (!m_hook || !m_timer)
            throw std::runtime_error("dialogs cannot be watched: is there a display?");
        s_current = this;
    }

    DialogUser(DialogUser const&) = delete;
    DialogUser& operator=(DialogUser const&) = delete;

    ~DialogUser() {
        KillTimer(nullptr, m_timer);
        UnhookWindowsHookEx(m_hook);
    }

    bool hasSeenDialog() const noexcept { return m_dialog != nullptr; }

    // The line above the tree.
    std::wstring const& title() const noexcept { return m_title; }

  private:
    // The shell's numbers for the tree and the line above it.
    static constexpr int treeId = 14145;
    static constexpr int titleId = 14146;

    static UINT timeLimit() {
        return static_cast<UINT>(std::chrono::milliseconds(ceiling).count());
    }

    static bool isDialog(HWND window) {
        std::array<wchar_t, 16> name{};
        GetClassNameW(window, name.data(), static_cast<int>(name.size()));
        return std::wstring(L"#32770") == name.data();
    }

    static LRESULT CALLBACK seeWindow(int what, WPARAM window, LPARAM details) {
        auto* const shown = reinterpret_cast<HWND>(window);
        if (what == HCBT_ACTIVATE && isDialog(shown))
            s_current->use(shown);
        return CallNextHookEx(nullptr, what, window, details);
    }

    // A dialog becomes the active window once it has filled itself. The button is pressed by a
    // message, which waits until the dialog looks for its user.
    void use(HWND dialog) {
        if (m_dialog)
            return;
        m_dialog = dialog;
        std::array<wchar_t, 256> title{};
        GetDlgItemTextW(dialog, titleId, title.data(), static_cast<int>(title.size()));
        m_title = title.data();
        auto* const tree = GetDlgItem(dialog, treeId);
        SendMessageW(
            tree, TVM_SELECTITEM, TVGN_CARET, SendMessageW(tree, TVM_GETNEXTITEM, TVGN_ROOT, 0));
        PostMessageW(dialog, WM_COMMAND, m_button, 0);
    }

    static BOOL CALLBACK cancelDialog(HWND window, LPARAM) {
        if (isDialog(window))
            PostMessageW(window, WM_COMMAND, IDCANCEL, 0);
        return TRUE;
    }

    static void CALLBACK giveUp(HWND, UINT, UINT_PTR, DWORD) {
        EnumThreadWindows(GetCurrentThreadId(), cancelDialog, 0);
    }

    inline static DialogUser* s_current = nullptr;
    WPARAM m_button;
    HWND m_dialog = nullptr;
    std::wstring m_title;
    HHOOK m_hook;
    UINT_PTR m_timer;
};

} // namespace test

#endif
