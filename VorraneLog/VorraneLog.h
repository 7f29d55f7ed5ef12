#ifndef VORRANELOG_VORRANELOG_H
#define VORRANELOG_VORRANELOG_H

/// @file
/// The system's log: two calls that are safe at any time, from any thread.
///
/// **Levels** run from 0 to 7, smaller being more severe: 2 a planned end of the process, 3
/// failure, 4 warning, 5 notable change, 6 information, 7 trace. A level outside counts as the
/// nearest one.
///
/// **File.** One rotating UTF-8 file for each process, by default `Vorrane\Log\PROGRAM.log` in the
/// common application data folder. A process whose file is in use by another takes `PROGRAM-2.log`,
/// and so on. At 10 MiB the file becomes `PROGRAM.1.log`; five old files are kept. A line has six
/// columns with a tab between them, and ends in CR LF:
///
///     2024-05-01 12:34:56.789  6  vrUtils  4711  815  Available disk-space [52]MB, required [7]MB
///     local time               |  module   |     |    text; after `[file:line] ` in debug lines
///                              level       process and thread
///
/// **Environment**, read at the first call of the process:
/// - `VORRANELOG_LEVEL`: a digit from 0 to 7. Lines of greater levels are left out. Anything else
///   means 6.
/// - `VORRANELOG_FILE`: full path of the file. Missing folders are made.
///
/// **Formats** follow the printf rules for wide strings. Understood are `d i u x X c s %`, the
/// flags `- + # 0` and blank, width, precision, and the lengths `h l ll I64` (on `c` and `s` only
/// `l`).
/// `%s` and `%c` are wide. Whatever else follows a percent sign is copied as it stands and takes no
/// value, `*`, `%n`, `%S`, `%hs` and `%f` among it.
///
/// **Safety.** No format harms the process, with too few values and with bad pointers too: memory
/// is proven readable before it is read, a pointer shows as `(null)` or `(unreadable)` otherwise.
/// Only memory that another thread frees meanwhile is beyond this. A format has no more than 32
/// directives, the rest is copied; a width or a number's precision no more than 1,024 characters, a
/// text 65,536, a line 256 KiB: `(cut)` shows where more was. Control characters show as
/// `<U+000A>`, so that no text forges a line or a column; lone surrogates become U+FFFD.
///
/// **Failures** never reach the caller. A line that cannot be written is dropped, and counted in a
/// line that follows as soon as writing succeeds again; the file is tried again every five seconds.
///
/// **Threads.** The calls may be made during static construction and destruction and from the entry
/// points of DLLs; the log stays loaded until the process ends. Lines never mix. Each is handed to
/// the system before the call returns, so a killed process loses none. A thread that is killed
/// while it writes does not block the others. `GetLastError` and `errno` stay as they were.

#if defined(VORRANELOG_BUILDING)
#define VORRANELOG_API __declspec(dllexport)
#else
/// Stands in front of the functions that leave the log library.
#define VORRANELOG_API __declspec(dllimport)
#endif

extern "C" {

/// Writes one line.
/// @param level 0 to 7; see above
/// @param module name of the unit that logs
/// @param format printf-style format over wide strings: `%s` takes a wide string
VORRANELOG_API void
VL_WriteLog(char level, wchar_t const* module, wchar_t const* format, ...) noexcept;

/// Writes one line that tells where in the source it comes from, otherwise as VL_WriteLog().
/// @param file source name
/// @param line source line
VORRANELOG_API void VL_WriteDebugLog(
    char level, wchar_t const* module, wchar_t const* file, int line, wchar_t const* format,
    ...) noexcept;
}

#endif
