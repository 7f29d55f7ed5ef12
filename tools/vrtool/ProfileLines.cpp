#include "tools/vrtool/ProfileLines.h"

#include "tools/vrtool/Utf8.h"

#include <algorithm>
#include <string_view>

namespace {

constexpr wchar_t blanks[] = L" \t\r\n\v\f\x1A";

std::wstring wideText(std::string_view bytes, bool lowByteFirst) {
    std::wstring text;
    text.reserve(bytes.size() / 2);
    for (std::size_t index = 0; index + 1 < bytes.size(); index += 2) {
        auto const first = static_cast<unsigned char>(bytes[index]);
        auto const second = static_cast<unsigned char>(bytes[index + 1]);
        text += static_cast<wchar_t>(lowByteFirst ? second << 8 | first : first << 8 | second);
    }
    return text;
}

struct FileText {
    std::wstring text;
    bool hasMark;
};

FileText textOf(std::string_view bytes) {
    if (bytes.substr(0, 3) == "\xEF\xBB\xBF")
        return {fromUtf8(bytes.substr(3)), true};
    if (bytes.substr(0, 2) == "\xFF\xFE")
        return {wideText(bytes.substr(2), true), true};
    if (bytes.substr(0, 2) == "\xFE\xFF")
        return {wideText(bytes.substr(2), false), true};
    return {fromAnsi(bytes), false};
}

std::wstring_view trimmed(std::wstring_view text) {
    auto const start = std::min(text.find_first_not_of(blanks), text.size());
    return text.substr(start, text.find_last_not_of(blanks) + 1 - start);
}

bool hasWideCharacter(std::wstring_view line) {
    return std::any_of(line.begin(), line.end(), [](wchar_t unit) { return unit > 0xFF; });
}

ProfileLine lineOf(std::size_t number, std::wstring_view text) {
    ProfileLine line;
    line.number = number;
    auto const bracket = text.front() == L'[' ? text.rfind(L']') : text.npos;
    auto const equals = text.find(L'=');
    if (bracket != text.npos) {
        line.isHeader = true;
        line.text = text.substr(1, bracket - 1);
    } else if (equals != text.npos) {
        line.text = trimmed(text.substr(0, equals));
        line.text.append(1, L'=').append(trimmed(text.substr(equals + 1)));
    } else {
        line.text = text;
    }
    return line;
}

} // namespace

std::vector<ProfileLine> profileLines(std::vector<char> const& content) {
    auto const [text, hasMark] = textOf({content.data(), content.size()});
    std::vector<ProfileLine> lines;
    std::size_t number = 0;
    for (std::wstring_view rest = text; !rest.empty();) {
        auto const end = std::min(rest.find(L'\n'), rest.size());
        auto const line = trimmed(rest.substr(0, end));
        ++number;
        if (!line.empty() && line.front() != L';') {
            lines.push_back(lineOf(number, line));
            lines.back().isByteForByte = hasMark || !hasWideCharacter(line);
        }
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return lines;
}
