#ifndef FOUNDATION_TEXT_H
#define FOUNDATION_TEXT_H

// Text helpers of the library's own, not exported.

#include <list>
#include <string>
#include <string_view>

namespace vrUtils::Strings {

inline constexpr std::wstring_view whiteSpace = L" \n\r\t";
inline constexpr std::wstring_view slashes = L"\\/";

inline bool isSlash(wchar_t character) { return character == L'\\' || character == L'/'; }

// The value of a hexadecimal digit; -1 for any other character.
template <typename Character>
constexpr int hexDigit(Character character) {
    if (character >= '0' && character <= '9')
        return character - '0';
    if (character >= 'a' && character <= 'f')
        return character - 'a' + 10;
    if (character >= 'A' && character <= 'F')
        return character - 'A' + 10;
    return -1;
}

// The text without the characters of the set at both its ends.
std::wstring trim(std::wstring const& text, std::wstring_view set = whiteSpace);

// The text without backslashes and forward slashes at both its ends.
std::wstring trimSlashes(std::wstring const& text);

// Every forward slash becomes a backslash.
std::wstring toBackslashes(std::wstring text);
std::string toBackslashes(std::string text);

// Every backslash becomes a forward slash.
std::wstring toForwardSlashes(std::wstring text);

// The runtime's lower-casing of each character: beyond ASCII it depends on the host's locale.
std::wstring toLower(std::wstring const& text);

// Whether the two texts are equal once lower-cased.
bool equalLowered(std::wstring_view left, std::wstring_view right);

// The pieces between the separators; empty pieces never reach the list.
std::list<std::wstring> splitOnChar(std::wstring_view text, wchar_t separator);

// Every piece followed by the separator, the last one too.
std::wstring joinWithTrailing(std::list<std::wstring> const& pieces, std::wstring_view separator);

// Conversion through the system's ANSI code page. What the page lacks turns into "_"; a text that
// cannot be converted at all gives the empty string.
std::wstring narrowToWide(std::string const& text);
std::string wideToNarrow(std::wstring const& text);

// The text up to its first zero character, as a callee that reads a terminated text sees it.
std::wstring_view upToZero(std::wstring_view text);

} // namespace vrUtils::Strings

#endif
