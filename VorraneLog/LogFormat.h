#ifndef VORRANELOG_LOGFORMAT_H
#define VORRANELOG_LOGFORMAT_H

// The log's own walk over a format. Composed texts come in as formats too, so every format is taken
// for hostile: neither it nor the values that it asks for are trusted.

#include "VorraneLog/LogText.h"

#include <cstdarg>
#include <cstddef>

namespace VorraneLog {

// Directives that take a value; what follows the last of them is copied.
inline constexpr int mostDirectives = 32;
// Greatest width, and greatest precision of a number.
inline constexpr std::size_t widestField = 1024;
// Characters read through one pointer: the system's longest name twice over.
inline constexpr std::size_t longestText = 65536;

// Appends the format with its values. Directives that are not understood are copied and take no
// value; values that are not there read as 0.
void appendFormatted(LogText& line, wchar_t const* format, std::va_list values) noexcept;

// Appends the text at an untrusted pointer, or "(null)", "(unreadable)"; "(cut)" follows a text
// that is longer than the bound.
void appendUntrusted(LogText& line, wchar_t const* text) noexcept;

} // namespace VorraneLog

#endif
