#ifndef TOOLS_VRTOOL_UTF8_H
#define TOOLS_VRTOOL_UTF8_H

#include <string>
#include <string_view>

// The library speaks wide text; the command-line parser, JSON and the program's output are UTF-8. A
// half of a surrogate pair that stands alone becomes U+FFFD.

std::string toUtf8(std::wstring_view text);
std::wstring fromUtf8(std::string_view text);

// What is in the system's ANSI code page.
std::wstring fromAnsi(std::string_view text);

#endif
