#ifndef TOOLS_VRTOOL_EXITCODES_H
#define TOOLS_VRTOOL_EXITCODES_H

// What the program tells its caller when it ends; scripts rely on these numbers.
namespace ExitCode {

inline constexpr int success = 0;
// The task was carried out, but something in it failed: a path is missing, a file is broken.
inline constexpr int failure = 1;
// The arguments make no sense; nothing was done.
inline constexpr int wrongArguments = 2;

} // namespace ExitCode

#endif
