#ifndef VORRANELOG_VORRANELOG_H
#define VORRANELOG_VORRANELOG_H

/// @file
/// The system's log: two calls that are safe at any time, from any thread.
///
/// Levels run from 0 to 7, smaller being more severe: 2 a planned end of the process, 3 failure,
/// 4 warning, 5 notable change, 6 information, 7 trace. Lines go to a rotating UTF-8 file.

#if defined(VORRANELOG_BUILDING)
#define VORRANELOG_API __declspec(dllexport)
#else
#define VORRANELOG_API __declspec(dllimport)
#endif

extern "C" {

/// Writes one line.
/// @param level 0 to 7; see above
/// @param module name of the unit that logs
/// @param format printf-style format over wide strings: `%s` takes a wide string
VORRANELOG_API void
VL_WriteLog(char level, wchar_t const* module, wchar_t const* format, ...) noexcept;

/// Writes one line that tells where in the source it comes from.
/// @param file source name
/// @param line source line
VORRANELOG_API void VL_WriteDebugLog(
    char level, wchar_t const* module, wchar_t const* file, int line, wchar_t const* format,
    ...) noexcept;
}

#endif
