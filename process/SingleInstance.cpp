#include "vrUtils/SingleAppInstance.h"

#include "foundation/Platform.h"

#include <array>

namespace vrUtils::SingleAppInstance {

namespace {

HWND findWindow(std::wstring const& title) { return FindWindowW(nullptr, title.c_str()); }

// Whether the platform lets it come to the front is its own business.
void raise(HWND window) {
    BringWindowToTop(window);
    SetForegroundWindow(window);
}

bool isOfThisExecutable(HWND window) {
    std::array<wchar_t, MAX_PATH> buffer;
    auto const size = static_cast<DWORD>(buffer.size());
    auto units = GetWindowModuleFileNameW(window, buffer.data(), size);
    std::wstring const theirs(buffer.data(), units);
    units = GetModuleFileNameW(nullptr, buffer.data(), size);
    std::wstring const ours(buffer.data(), units);
    return theirs == ours;
}

} // namespace

bool BringWindowToFrontIfFound(std::wstring const& title) {
    auto* const window = findWindow(title);
    if (!window)
        return false;
    raise(window);
    return true;
}

SingleInstance::SingleInstance() = default;

SingleInstance& SingleInstance::operator=(SingleInstance const&) = default;

SingleInstance::~SingleInstance() {
    if (m_mutex)
        CloseHandle(m_mutex);
}

bool SingleInstance::isAnotherRunning(std::wstring const& name) {
    auto const mutexName = name + L" Startup Mutex";
    m_mutex = CreateMutexW(nullptr, TRUE, mutexName.c_str());
    auto const error = GetLastError();
    if (m_mutex && error != ERROR_ALREADY_EXISTS)
        return false;

    auto* const window = findWindow(name);
    if (window && isOfThisExecutable(window))
        raise(window);
    return true;
}

} // namespace vrUtils::SingleAppInstance
