#include "files/LegalFilename.h"

#include "foundation/Platform.h"
#include "vrUtils/Files/FileQueries.h"
#include "vrUtils/vrException.h"

#include <algorithm>

namespace vrUtils::Files {

namespace {

constexpr std::wstring_view reserved = L"\\/:*?<>|\"";

bool isControl(wchar_t character) { return character < 32; }

bool isIllegal(wchar_t character) {
    return isControl(character) || reserved.find(character) != std::wstring_view::npos;
}

// The escape of a reserved character; empty for any other.
std::wstring_view escapeOf(wchar_t character) {
    switch (character) {
    case L'\\':
        return L"%5C";
    case L'/':
        return L"%2F";
    case L':':
        return L"%3A";
    case L'*':
        return L"%2A";
    case L'?':
        return L"%3F";
    case L'<':
        return L"%3C";
    case L'>':
        return L"%3E";
    case L'|':
        return L"%7C";
    case L'"':
        return L"%22";
    default:
        return {};
    }
}

} // namespace

std::wstring withoutIllegalCharacters(std::wstring_view name) {
    std::wstring result(name);
    std::replace_if(result.begin(), result.end(), isIllegal, L'-');
    if (!result.empty() && result.front() == L'~')
        result.front() = L'-';
    return result;
}

std::wstring withEscapes(std::wstring_view name, bool asciiOnly) {
    if (name == L"~")
        return L"%7E";

    std::wstring result;
    result.reserve(name.size());
    for (auto const character : name) {
        if (auto const escape = escapeOf(character); !escape.empty())
            result += escape;
        else if (asciiOnly && (isControl(character) || character >= 127))
            result += L'~';
        else
            result += character;
    }
    return result;
}

void GenerateLegalFilename(std::wstring const& source, std::wstring& result, bool asciiOnly) {
    if (source.empty())
        throw vrException(
            __LINE__, L"GenerateLegalFilename failed as the source file name was empty");

    // Assigned at the end, since the result may be the source itself.
    result = withEscapes(withoutIllegalCharacters(source), asciiOnly);
}

} // namespace vrUtils::Files
