#ifndef TESTS_DOCS_PAGEBLOCKS_H
#define TESTS_DOCS_PAGEBLOCKS_H

#include "tests/support/ChildProcess.h"
#include "tests/support/WideText.h"

#include <fstream>
#include <stdexcept>
#include <string>

namespace test {

// What stands in a page between two lines, without them; a copy of the page lies beside the program.
inline std::string
pageBlock(std::string const& page, std::string const& firstLine, std::string const& lastLine) {
    std::ifstream file(utf8(besideTestProgram(L"data\\docs\\")) + page);
    std::string block;
    bool isInside = false;
    for (std::string line; std::getline(file, line);) {
        if (isInside && line == lastLine)
            return block;
        if (isInside)
            block += line + '\n';
        isInside = isInside || line == firstLine;
    }
    throw std::runtime_error(page + " has no such block");
}

} // namespace test

#endif
