#ifndef FILES_LEGALFILENAME_H
#define FILES_LEGALFILENAME_H

#include <string>
#include <string_view>

namespace vrUtils::Files {

// The two passes of `GenerateLegalFilename`.

// Puts "-" in the place of each character that no file name may hold, and of a tilde in front.
std::wstring withoutIllegalCharacters(std::wstring_view name);

// Writes the characters that no file name may hold as escapes, and with `asciiOnly` all that is not
// printable ASCII as tildes. Behind the first pass only the tildes are ever seen; the escapes serve
// names that have not been through it.
std::wstring withEscapes(std::wstring_view name, bool asciiOnly);

} // namespace vrUtils::Files

#endif
