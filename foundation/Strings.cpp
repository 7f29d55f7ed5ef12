#include "vrUtils/Strings.h"

#include "foundation/FailureCodes.h"
#include "foundation/Text.h"
#include "vrUtils/vrException.h"

#include <algorithm>
#include <cstdlib>

namespace vrUtils::Strings {

namespace {

// An object rather than a function, since only that is sure to be inlined where it is searched for.
constexpr auto isLineBreak = [](wchar_t character) {
    return character == L'\r' || character == L'\n';
};

// The pair is not validated: the runtime's reading of whatever stands there is what counts. Two
// proper digits, which is what nearly every URL holds, need no call.
char byteOfPair(char first, char second) {
    auto const high = hexDigit(first);
    auto const low = hexDigit(second);
    if (high >= 0 && low >= 0)
        return static_cast<char>(high * 16 + low);
    char const pair[] = {first, second, '\0'};
    return static_cast<char>(std::strtol(pair, nullptr, 16));
}

} // namespace

std::list<std::wstring> BreakMultiLineString(std::wstring const& text) {
    std::list<std::wstring> lines;
    for (auto line = text.begin(); line != text.end();) {
        auto const lineBreak = std::find_if(line, text.end(), isLineBreak);
        if (lineBreak != line)
            lines.emplace_back(line, lineBreak);
        line = std::find_if_not(lineBreak, text.end(), isLineBreak);
    }
    return lines;
}

std::string DecodeURL(std::string url) {
    // The decoded text never overtakes the one it is read from, so one string holds both.
    auto decoded = std::find(url.begin(), url.end(), '%');
    for (auto position = decoded; position != url.end(); ++decoded) {
        if (*position != '%') {
            *decoded = *position++;
            continue;
        }
        if (url.end() - position < 3)
            throw vrException(
                "StringUtilities", __LINE__, L"Invalid URL sequence", MalformedUrlEscape);
        *decoded = byteOfPair(position[1], position[2]);
        position += 3;
    }
    url.erase(decoded, url.end());
    return url;
}

std::wstring FourCCToString(std::uint32_t code) {
    std::wstring text;
    for (int shift = 24; shift >= 0; shift -= 8)
        text.push_back(static_cast<wchar_t>((code >> shift) & 0xFF));
    return text;
}

} // namespace vrUtils::Strings
