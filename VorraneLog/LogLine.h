#ifndef VORRANELOG_LOGLINE_H
#define VORRANELOG_LOGLINE_H

#include "VorraneLog/LogText.h"

namespace VorraneLog {

inline constexpr char mostSevereLevel = 0;
inline constexpr char leastSevereLevel = 7;

// The level itself, or the nearest one there is.
char withinLevels(char level) noexcept;

// Appends the columns between the time, which is set when the line is written, and the text.
void appendColumns(LogText& line, char level, wchar_t const* module) noexcept;

// Appends where in the source a debug line comes from.
void appendOrigin(LogText& line, wchar_t const* file, int sourceLine) noexcept;

} // namespace VorraneLog

#endif
