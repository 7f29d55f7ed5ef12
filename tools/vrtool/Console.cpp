#include "tools/vrtool/Console.h"

#include "tools/vrtool/Platform.h"
#include "tools/vrtool/Utf8.h"

#include <algorithm>
#include <system_error>

namespace {

bool isConsole(HANDLE stream) {
    DWORD mode = 0;
    return GetConsoleMode(stream, &mode) != 0;
}

std::error_code lastError() {
    auto const number = GetLastError();
    return {static_cast<int>(number), std::system_category()};
}

// Older consoles refuse more than 64 KiB at once; a piece never ends inside a surrogate pair.
std::error_code writeToConsole(HANDLE console, std::wstring_view text) {
    constexpr std::size_t mostUnits = 8192;
    while (!text.empty()) {
        auto piece = text.substr(0, mostUnits);
        if (piece.size() < text.size() && (piece.back() & 0xFC00) == 0xD800)
            piece.remove_suffix(1);
        DWORD written = 0;
        if (!WriteConsoleW(
                console, piece.data(), static_cast<DWORD>(piece.size()), &written, nullptr))
            return lastError();
        text.remove_prefix(piece.size());
    }
    return {};
}

// A pipe may take less than it is offered.
std::error_code writeBytes(HANDLE stream, std::string_view bytes) {
    constexpr std::size_t mostBytes = 1 << 20;
    while (!bytes.empty()) {
        auto const offered = static_cast<DWORD>(std::min(bytes.size(), mostBytes));
        DWORD written = 0;
        if (!WriteFile(stream, bytes.data(), offered, &written, nullptr))
            return lastError();
        bytes.remove_prefix(written);
    }
    return {};
}

std::error_code write(HANDLE stream, std::string_view text) {
    return isConsole(stream) ? writeToConsole(stream, fromUtf8(text)) : writeBytes(stream, text);
}

} // namespace

Console::Console() {
    CONSOLE_SCREEN_BUFFER_INFO screen;
    if (!GetConsoleScreenBufferInfo(GetStdHandle(STD_OUTPUT_HANDLE), &screen))
        return;
    // A line that fills the last column makes the console begin another.
    auto const columns = screen.srWindow.Right - screen.srWindow.Left;
    setWidth(static_cast<std::size_t>(std::max(columns, 0)));
}

void Console::setWidth(std::size_t columns) {
    m_width = columns ? std::optional(columns) : std::nullopt;
}

void Console::out(std::string_view text) {
    if (auto const failure = write(GetStdHandle(STD_OUTPUT_HANDLE), text))
        throw std::system_error(failure, "cannot write the output");
}

void Console::error(std::string_view text) { write(GetStdHandle(STD_ERROR_HANDLE), text); }

bool Console::errorIsConsole() const { return isConsole(GetStdHandle(STD_ERROR_HANDLE)); }
