#include "tools/vrtool/CancelKey.h"

#include "tools/vrtool/Platform.h"

#include <atomic>
#include <system_error>

namespace {

// The console calls in a thread of its own.
std::atomic<HANDLE> pressed{nullptr};

BOOL WINAPI keepKey(DWORD key) {
    auto* const event = pressed.load();
    return (key == CTRL_C_EVENT || key == CTRL_BREAK_EVENT) && event && SetEvent(event);
}

} // namespace

CancelKey::CancelKey() : m_pressed(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {
    auto const error = GetLastError();
    if (!m_pressed)
        throw std::system_error(
            static_cast<int>(error), std::system_category(), "cannot wait for Ctrl-C");
    pressed = m_pressed;
    SetConsoleCtrlHandler(keepKey, TRUE);
}

CancelKey::~CancelKey() {
    SetConsoleCtrlHandler(keepKey, FALSE);
    pressed = nullptr;
    CloseHandle(m_pressed);
}

bool CancelKey::comesWithin(std::chrono::milliseconds time) const {
    return WaitForSingleObject(m_pressed, static_cast<DWORD>(time.count())) == WAIT_OBJECT_0;
}
