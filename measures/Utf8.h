#ifndef MEASURES_UTF8_H
#define MEASURES_UTF8_H

#include <string>

namespace vrUtils {

// What is no text, such as half a surrogate pair, becomes U+FFFD.
std::string wideToUtf8(std::wstring const& text);
std::wstring utf8ToWide(std::string const& text);

} // namespace vrUtils

#endif
