#ifndef TOOLS_VRTOOL_EXITCODES_H
#define TOOLS_VRTOOL_EXITCODES_H

// What the program tells its caller when it ends; scripts rely on these numbers.
namespace ExitCode {

inline constexpr int success = 0;
// The task was carried out, but something in it failed: a path is missing, a file is broken, a
// program that was run ended with another code than 0.
inline constexpr int failure = 1;
// The arguments make no sense; nothing was done.
inline constexpr int wrongArguments = 2;
// A program that was run did not end in time.
inline constexpr int timedOut = 3;
// The user has called it off.
inline constexpr int cancelled = 4;
// The lock was not to be had; the program was not run.
inline constexpr int notLocked = 5;

} // namespace ExitCode

#endif
