#include "tools/vrtool/ElapsedLine.h"

#include "tools/vrtool/Console.h"

#include <algorithm>

namespace {

std::string twoDigits(std::chrono::seconds::rep number) {
    return (number < 10 ? "0" : "") + std::to_string(number);
}

} // namespace

ElapsedLine::ElapsedLine(Console& console)
    : m_console(console.errorIsConsole() ? &console : nullptr) {}

ElapsedLine::~ElapsedLine() {
    if (!m_shown.empty())
        write({});
}

void ElapsedLine::show(std::chrono::seconds elapsed) {
    auto const text = "Running for " + clockText(elapsed) + ", Ctrl-C ends the wait";
    if (m_console && text != m_shown)
        write(text);
}

// Over what stands there, to its end; the cursor goes back to where the next line is to begin.
void ElapsedLine::write(std::string const& text) {
    auto const rest = m_shown.size() - std::min(m_shown.size(), text.size());
    m_console->error('\r' + text + std::string(rest, ' ') + '\r');
    m_shown = text;
}

std::string clockText(std::chrono::seconds time) {
    auto const seconds = time.count() % 60;
    auto const minutes = time.count() / 60 % 60;
    auto const hours = time.count() / 3600;
    auto const text =
        (hours ? twoDigits(minutes) : std::to_string(minutes)) + ':' + twoDigits(seconds);
    return hours ? std::to_string(hours) + ':' + text : text;
}
