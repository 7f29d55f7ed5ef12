#ifndef FOUNDATION_LOG_H
#define FOUNDATION_LOG_H

#include "VorraneLog/VorraneLog.h"

#include <string>

namespace vrUtils {

// The module name of the library's own log lines.
inline constexpr wchar_t logModule[] = L"vrUtils";

// Levels of the log; smaller is more severe.
namespace LogLevel {
inline constexpr char plannedEnd = 2;
inline constexpr char failure = 3;
inline constexpr char warning = 4;
inline constexpr char change = 5;
inline constexpr char information = 6;
inline constexpr char trace = 7;
} // namespace LogLevel

// Logs a composed text. The text is the format itself, so a percent sign in it acts as a directive;
// the log library is built to survive that.
void logComposed(char level, std::wstring const& text) noexcept;

// The same under a module name of the caller's.
void logComposed(char level, std::wstring const& module, std::wstring const& text) noexcept;

} // namespace vrUtils

#endif
