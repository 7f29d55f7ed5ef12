#ifndef TOOLS_VRTOOL_CHILDRUN_H
#define TOOLS_VRTOOL_CHILDRUN_H

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// Another program, for what may never end.

// The full path of this program.
std::wstring thisProgram();

// Runs a program to its end, but no longer than the limit: then the program is ended, and so it is
// if this one ends first. It has the standard input and outputs of this program.
// @param arguments quoted as far as necessary, so that they arrive as they are
// @return the program's exit code; none if it did not end by itself
// @throws std::system_error if it cannot be started
std::optional<std::uint32_t> runWithin(
    std::chrono::milliseconds limit, std::wstring const& program,
    std::vector<std::wstring> const& arguments);

#endif
