#include "foundation/Text.h"

#include "foundation/Platform.h"

#include <algorithm>
#include <cwctype>

namespace vrUtils::Strings {

namespace {

// Room for the longest form that any code page gives one character.
constexpr std::size_t unitsForEach = 5;

bool isAscii(wchar_t character) { return character < 0x80; }

wchar_t lowered(wchar_t character) {
    // Every locale agrees on these, and the runtime's function costs far more than the test.
    if (isAscii(character))
        return character >= L'A' && character <= L'Z' ? static_cast<wchar_t>(character + 32)
                                                      : character;
    return static_cast<wchar_t>(std::towlower(character));
}

} // namespace

std::wstring trim(std::wstring const& text, std::wstring_view set) {
    auto const first = text.find_first_not_of(set);
    if (first == std::wstring::npos)
        return {};
    auto const last = text.find_last_not_of(set);
    return text.substr(first, last - first + 1);
}

std::wstring trimSlashes(std::wstring const& text) { return trim(text, slashes); }

std::wstring toBackslashes(std::wstring text) {
    std::replace(text.begin(), text.end(), L'/', L'\\');
    return text;
}

std::string toBackslashes(std::string text) {
    std::replace(text.begin(), text.end(), '/', '\\');
    return text;
}

std::wstring toForwardSlashes(std::wstring text) {
    std::replace(text.begin(), text.end(), L'\\', L'/');
    return text;
}

std::wstring toLower(std::wstring const& text) {
    std::wstring result(text);
    std::transform(result.begin(), result.end(), result.begin(), lowered);
    return result;
}

bool equalLowered(std::wstring_view left, std::wstring_view right) {
    return left.size() == right.size() &&
           std::equal(left.begin(), left.end(), right.begin(), [](wchar_t one, wchar_t other) {
               return one == other || lowered(one) == lowered(other);
           });
}

std::list<std::wstring> splitOnChar(std::wstring_view text, wchar_t separator) {
    std::list<std::wstring> pieces;
    auto const end = text.end();
    for (auto piece = text.begin(); piece != end;) {
        auto const pieceEnd = std::find(piece, end, separator);
        if (pieceEnd != piece)
            pieces.emplace_back(piece, pieceEnd);
        piece = pieceEnd == end ? end : pieceEnd + 1;
    }
    return pieces;
}

std::wstring joinWithTrailing(std::list<std::wstring> const& pieces, std::wstring_view separator) {
    std::wstring joined;
    for (auto const& piece : pieces)
        joined.append(piece).append(separator);
    return joined;
}

std::wstring narrowToWide(std::string const& text) {
    if (text.empty())
        return {};
    std::wstring result(text.size() * unitsForEach, L'\0');
    int const count = MultiByteToWideChar(
        CP_ACP, 0, text.data(), static_cast<int>(text.size()), result.data(),
        static_cast<int>(result.size()));
    result.resize(static_cast<std::size_t>(count));
    return result;
}

std::string wideToNarrow(std::wstring const& text) {
    if (text.empty())
        return {};
    std::string result(text.size() * unitsForEach, '\0');
    BOOL usedDefault = FALSE;
    int const count = WideCharToMultiByte(
        CP_ACP, 0, text.data(), static_cast<int>(text.size()), result.data(),
        static_cast<int>(result.size()), "_", &usedDefault);
    result.resize(static_cast<std::size_t>(count));
    return result;
}

std::wstring_view upToZero(std::wstring_view text) {
    // Twice as fast here as the view's own search, which calls the runtime.
    auto const zero = std::find(text.begin(), text.end(), L'\0');
    return text.substr(0, static_cast<std::size_t>(zero - text.begin()));
}

} // namespace vrUtils::Strings
