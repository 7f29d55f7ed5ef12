#ifndef TOOLS_VRTOOL_COMMANDLINE_H
#define TOOLS_VRTOOL_COMMANDLINE_H

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

// The way of the arguments from the platform's wide command line through the parser, which takes
// UTF-8. The parser gives a meaning of its own to `[a,b]` and `++`, which are good file names; such
// arguments pass it under a mark.
namespace CommandLine {

// The arguments of this process behind the program's name, in the order the parser wants: last
// first.
std::vector<std::string> arguments();

// What was given for an option, as it was typed.
std::vector<std::wstring> valuesOf(CLI::Option const& option);

// The first text that was given for an option; empty if none was.
std::wstring textOf(CLI::Option const& option);

// A text of the parser's, without the marks.
std::string readable(std::string text);

} // namespace CommandLine

#endif
