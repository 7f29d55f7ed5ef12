#ifndef TESTS_SUPPORT_WIDETEXT_H
#define TESTS_SUPPORT_WIDETEXT_H

// Wide texts for the narrow output of tests.

#include <string>
#include <string_view>

namespace test {

// The text in UTF-8; a lone surrogate comes out as U+FFFD.
std::string utf8(std::wstring_view text);

// The wide text of UTF-8.
std::wstring fromUtf8(std::string_view text);

} // namespace test

#endif
