#include "VorraneLog/LogLine.h"

#include "VorraneLog/LogFormat.h"
#include "foundation/Platform.h"

#include <algorithm>

namespace VorraneLog {

char withinLevels(char level) noexcept {
    return std::clamp(level, mostSevereLevel, leastSevereLevel);
}

void appendColumns(LogText& line, char level, wchar_t const* module) noexcept {
    line.appendNumber(withinLevels(level));
    line.appendAscii("\t");
    appendUntrusted(line, module);
    line.appendAscii("\t");
    line.appendNumber(GetCurrentProcessId());
    line.appendAscii("\t");
    line.appendNumber(GetCurrentThreadId());
    line.appendAscii("\t");
}

void appendOrigin(LogText& line, wchar_t const* file, int sourceLine) noexcept {
    line.appendAscii("[");
    appendUntrusted(line, file);
    line.appendAscii(":");
    line.appendNumber(sourceLine);
    line.appendAscii("] ");
}

} // namespace VorraneLog
