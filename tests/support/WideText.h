#ifndef TESTS_SUPPORT_WIDETEXT_H
#define TESTS_SUPPORT_WIDETEXT_H

// How wide texts and paths look in the output of a failed test. The framework prints wide strings
// itself, with escapes for what is not ASCII; of a path it would only print the bytes.

#include <ostream>
#include <string>
#include <string_view>

namespace vr {

class Path;

// Found by the framework wherever it prints a path. A test that compares paths must include this
// header, or it prints their bytes.
void PrintTo(Path const& path, std::ostream* stream);

} // namespace vr

namespace test {

// The text in UTF-8; a lone surrogate comes out as U+FFFD.
std::string utf8(std::wstring_view text);

} // namespace test

#endif
