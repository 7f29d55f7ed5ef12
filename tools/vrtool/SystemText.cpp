#include "tools/vrtool/SystemText.h"

#include "tools/vrtool/Platform.h"

#include <array>
#include <system_error>

std::wstring systemText(std::uint32_t error) {
    auto const number = L"error " + std::to_wstring(error);
    std::array<wchar_t, 512> buffer;
    DWORD const length = FormatMessageW(
        FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error, 0,
        buffer.data(), static_cast<DWORD>(buffer.size()), nullptr);
    std::wstring text(buffer.data(), length);
    text.erase(text.find_last_not_of(L" .\r\n") + 1);
    return text.empty() ? number : text + L" (" + number + L")";
}

std::wstring fullPath(std::wstring const& file) {
    // Asked with no room the platform tells how much it takes, the terminator included.
    DWORD const units = GetFullPathNameW(file.c_str(), 0, nullptr, nullptr);
    std::wstring path(units, L'\0');
    DWORD const written = GetFullPathNameW(file.c_str(), units, path.data(), nullptr);
    DWORD const error = GetLastError();
    if (written == 0 || written >= units)
        throw std::system_error(static_cast<int>(error), std::system_category(), "no file name");
    path.resize(written);
    return path;
}
