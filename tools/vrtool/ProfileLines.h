#ifndef TOOLS_VRTOOL_PROFILELINES_H
#define TOOLS_VRTOOL_PROFILELINES_H

#include <cstddef>
#include <string>
#include <vector>

// A line of a profile (.ini) file, as the platform's profile functions see it.
struct ProfileLine {
    std::size_t number = 0;
    bool isHeader = false;
    // What stands between a header's brackets; any other line without the blanks at its ends and
    // those around its first equals sign.
    std::wstring text;
    // Whether the characters are the file's own: a dump has a byte for each, and for some of these
    // the code page has another character. True in a file with a byte order mark.
    bool isByteForByte = true;
};

// The lines of a file's content, comments and empty ones left out. Text without a byte order mark
// is read by the system's code page.
std::vector<ProfileLine> profileLines(std::vector<char> const& content);

#endif
