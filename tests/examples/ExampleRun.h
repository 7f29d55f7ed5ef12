#ifndef TESTS_EXAMPLES_EXAMPLERUN_H
#define TESTS_EXAMPLES_EXAMPLERUN_H

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace test {

// A program of examples/, and the lines of its output that show that it did what it teaches, in
// their order. Other lines may stand between them.
struct Example {
    std::string name;
    std::vector<std::string> lines;

    friend void PrintTo(Example const& example, std::ostream* stream) { *stream << example.name; }
};

// What an example has done when it was run with a temporary folder and a log file of its own.
struct ExampleRun {
    std::uint32_t exitCode;
    std::string output;
    // What it has left in the temporary folder.
    std::vector<std::wstring> leftBehind;

    // The first of these lines that does not stand in the output behind the ones in front of it;
    // empty if all do.
    std::string firstMissing(std::vector<std::string> const& lines) const;
};

ExampleRun runExample(std::string const& name, std::vector<std::wstring> const& arguments = {});

// Runs the example, and expects that it ends well, says its lines and leaves no file.
void expectLesson(Example const& example);

} // namespace test

#endif
