#include "tools/vrtool/TransferProgress.h"

#include "tools/vrtool/Console.h"
#include "tools/vrtool/ElapsedLine.h"
#include "tools/vrtool/TextWidth.h"
#include "tools/vrtool/Utf8.h"

#include <algorithm>
#include <array>

namespace {

constexpr std::size_t barLength = 20;
constexpr auto terminalPause = std::chrono::milliseconds(100);
constexpr auto plainPause = std::chrono::seconds(5);

std::string rightAligned(std::string const& text, std::size_t width) {
    return std::string(width - std::min(width, text.size()), ' ') + text;
}

// Whole shares; a file of no bytes is done from the start.
std::uint64_t shareOf(std::uint64_t done, std::uint64_t size, std::uint64_t whole) {
    return size == 0 ? whole
                     : static_cast<std::uint64_t>(
                           static_cast<double>(done) / static_cast<double>(size) *
                           static_cast<double>(whole));
}

} // namespace

TransferProgress::TransferProgress(Console& console, std::wstring const& name, std::uint64_t size)
    : m_console(console), m_name(name), m_size(size) {
    m_next += terminalPause;
}

TransferProgress::~TransferProgress() {
    if (m_columns > 0)
        write({});
}

void TransferProgress::show(std::uint64_t done) {
    auto const now = Clock::now();
    if (now < m_next)
        return;
    // Not asked before, since most files are done by now.
    auto const isTerminal = m_console.errorIsConsole();
    if (!isTerminal && now < m_start + plainPause) {
        m_next = m_start + plainPause;
        return;
    }
    auto const elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(now - m_start);
    auto const line = progressLine(m_name, done, m_size, elapsed);
    if (isTerminal) {
        write(line);
        m_next = now + terminalPause;
    } else {
        m_console.error(toUtf8(line) + '\n');
        m_next = now + plainPause;
    }
}

// Over what stands there, to its end; the cursor goes back to where the next line is to begin.
void TransferProgress::write(std::wstring const& line) {
    auto const room = m_console.width().value_or(80) - 1;
    auto const shown = line.substr(0, unitsWithin(line, room));
    auto const columns = widthOf(shown);
    auto const rest = m_columns - std::min(m_columns, columns);
    m_console.error('\r' + toUtf8(shown) + std::string(rest, ' ') + '\r');
    m_columns = columns;
}

std::string bytesText(std::uint64_t bytes) {
    constexpr std::array<char const*, 4> units = {" B", " KB", " MB", " GB"};
    std::size_t unit = 0;
    // Four digits tell more than one with a coarser unit.
    while (bytes >= 10240 && unit + 1 < units.size()) {
        bytes /= 1024;
        ++unit;
    }
    return std::to_string(bytes) + units[unit];
}

std::wstring progressLine(
    std::wstring const& name, std::uint64_t done, std::uint64_t size,
    std::chrono::milliseconds elapsed) {
    done = std::min(done, size);
    auto const filled = static_cast<std::size_t>(shareOf(done, size, barLength));
    auto const seconds = std::max(0.001, static_cast<double>(elapsed.count()) / 1000);
    auto const rate = static_cast<double>(done) / seconds;
    auto const left = rate > 0 ? static_cast<double>(size - done) / rate : 0;
    auto const figures =
        '[' + std::string(filled, '#') + std::string(barLength - filled, ' ') + "] " +
        rightAligned(std::to_string(shareOf(done, size, 100)), 3) + " %  " + bytesText(done) +
        " of " + bytesText(size) + "  " + bytesText(static_cast<std::uint64_t>(rate)) + "/s  " +
        clockText(std::chrono::seconds(static_cast<std::int64_t>(left))) + " left  ";
    return fromUtf8(figures) + name;
}
