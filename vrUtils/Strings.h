#ifndef VRUTILS_STRINGS_H
#define VRUTILS_STRINGS_H

/// @file
/// Text services for hosts: lines, URL escapes and four-character codes.
///
/// Nothing here keeps state; every function may be called from any thread. The cost of each grows
/// linearly with its text.

#include "vrUtils/vrUtilsApi.h"

#include <cstdint>
#include <list>
#include <string>

namespace vrUtils::Strings {

/// The lines of a text. Any run of carriage returns and line feeds is one break, and empty lines
/// do not reach the result: a text of breaks only gives an empty list.
VRUTILS_API std::list<std::wstring> BreakMultiLineString(std::wstring const& text);

/// Replaces each "%" and the two characters behind it by the byte they spell in hexadecimal. The
/// two are not validated: what cannot be read as a number gives byte 0, what can be read in part
/// gives that part. "+" stays "+". The result is raw bytes in the encoding of the URL.
/// @throws vrException 0x80E0609D "Invalid URL sequence" (source name "StringUtilities") if fewer
///         than two characters follow a "%"
VRUTILS_API std::string DecodeURL(std::string url);

/// The four bytes of a code, most significant first, each as the character of that number:
/// 0x52494646 gives "RIFF". Always four characters, zero characters included.
VRUTILS_API std::wstring FourCCToString(std::uint32_t code);

} // namespace vrUtils::Strings

#endif
