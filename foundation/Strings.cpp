#include "vrUtils/Strings.h"

#include "foundation/FailureCodes.h"
#include "vrUtils/vrException.h"

#include <cstdlib>
#include <string_view>

namespace vrUtils::Strings {

namespace {

constexpr std::wstring_view lineBreaks = L"\r\n";

int hexDigit(char character) {
    if (character >= '0' && character <= '9')
        return character - '0';
    if (character >= 'a' && character <= 'f')
        return character - 'a' + 10;
    if (character >= 'A' && character <= 'F')
        return character - 'A' + 10;
    return -1;
}

// The pair is not validated: the runtime's reading of whatever stands there is what counts. Two
// proper digits, which is what nearly every URL holds, need no call.
char byteOfPair(char first, char second) {
    int const high = hexDigit(first);
    int const low = hexDigit(second);
    if (high >= 0 && low >= 0)
        return static_cast<char>(high * 16 + low);
    char const pair[] = {first, second, '\0'};
    return static_cast<char>(std::strtol(pair, nullptr, 16));
}

} // namespace

std::list<std::wstring> BreakMultiLineString(std::wstring const& text) {
    std::list<std::wstring> lines;
    std::wstring_view rest(text);
    auto lineBreak = rest.find_first_of(lineBreaks);
    while (lineBreak != std::wstring_view::npos) {
        if (lineBreak > 0)
            lines.emplace_back(rest.substr(0, lineBreak));
        auto const nextLine = rest.find_first_not_of(lineBreaks, lineBreak);
        rest = nextLine == std::wstring_view::npos ? std::wstring_view() : rest.substr(nextLine);
        lineBreak = rest.find_first_of(lineBreaks);
    }
    if (!rest.empty())
        lines.emplace_back(rest);
    return lines;
}

std::string DecodeURL(std::string url) {
    std::string decoded;
    decoded.reserve(url.size());
    std::size_t position = 0;
    for (auto percent = url.find('%'); percent != std::string::npos;
         percent = url.find('%', position)) {
        decoded.append(url, position, percent - position);
        position = percent + 3;
        if (position > url.size())
            throw vrException(
                "StringUtilities", __LINE__, L"Invalid URL sequence", MalformedUrlEscape);
        decoded.push_back(byteOfPair(url[percent + 1], url[percent + 2]));
    }
    decoded.append(url, position, std::string::npos);
    return decoded;
}

std::wstring FourCCToString(std::uint32_t code) {
    std::wstring text;
    for (int shift = 24; shift >= 0; shift -= 8)
        text.push_back(static_cast<wchar_t>((code >> shift) & 0xFF));
    return text;
}

} // namespace vrUtils::Strings
