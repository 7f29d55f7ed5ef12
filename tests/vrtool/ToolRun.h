#ifndef TESTS_VRTOOL_TOOLRUN_H
#define TESTS_VRTOOL_TOOLRUN_H

#include <json/json.h>

#include <cstdint>
#include <string>
#include <vector>

namespace test {

// What vrtool has done with its arguments.
struct ToolRun {
    std::uint32_t exitCode;
    std::string out;
    std::string error;

    // The lines of standard output.
    std::vector<std::string> lines() const;

    // Standard output as a document; throws std::runtime_error if it is none.
    Json::Value json() const;
};

// Runs the program to its end, its output going to files as in a pipe.
ToolRun runTool(std::vector<std::wstring> const& arguments);

// The same in the console of the test, which the programs that vrtool starts then share, with its
// outputs. They must have ended with it.
ToolRun runToolInConsole(std::vector<std::wstring> const& arguments);

// Runs the program with these handles, which it inherits, as its standard output and error.
// @return the exit code
std::uint32_t runTool(std::vector<std::wstring> const& arguments, void* out, void* error);

// The cells of a table's row that is not cut, which two blanks or more separate.
std::vector<std::string> cellsOf(std::string const& line);

} // namespace test

#endif
