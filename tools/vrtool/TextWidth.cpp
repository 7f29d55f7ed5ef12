#include "tools/vrtool/TextWidth.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace {

struct Range {
    std::uint32_t first;
    std::uint32_t last;
};

// The ranges by which the standard's own formatting library estimates widths.
constexpr Range wideRanges[] = {
    {0x1100, 0x115F},   {0x2329, 0x232A},   {0x2E80, 0x303E},   {0x3040, 0xA4CF},
    {0xAC00, 0xD7A3},   {0xF900, 0xFAFF},   {0xFE10, 0xFE19},   {0xFE30, 0xFE6F},
    {0xFF00, 0xFF60},   {0xFFE0, 0xFFE6},   {0x1F300, 0x1F64F}, {0x1F900, 0x1F9FF},
    {0x20000, 0x2FFFD}, {0x30000, 0x3FFFD},
};

struct Character {
    std::size_t units;
    std::size_t columns;
};

bool isHighSurrogate(wchar_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool isLowSurrogate(wchar_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

std::size_t columnsOf(std::uint32_t character) {
    bool const combining = character >= 0x300 && character <= 0x36F;
    if (combining)
        return 0;
    bool const wide =
        std::any_of(std::begin(wideRanges), std::end(wideRanges), [&](Range const& range) {
            return character >= range.first && character <= range.last;
        });
    return wide ? 2 : 1;
}

Character firstCharacter(std::wstring_view text) {
    std::uint32_t const unit = text[0];
    if (text.size() < 2 || !isHighSurrogate(text[0]) || !isLowSurrogate(text[1]))
        return {1, columnsOf(unit)};
    return {2, columnsOf(0x10000 + ((unit - 0xD800) << 10) + (text[1] - 0xDC00u))};
}

} // namespace

std::size_t widthOf(std::wstring_view text) {
    std::size_t columns = 0;
    while (!text.empty()) {
        Character const next = firstCharacter(text);
        columns += next.columns;
        text.remove_prefix(next.units);
    }
    return columns;
}

std::size_t unitsWithin(std::wstring_view text, std::size_t columns) {
    std::size_t units = 0;
    while (units < text.size()) {
        Character const next = firstCharacter(text.substr(units));
        if (next.columns > columns)
            break;
        columns -= next.columns;
        units += next.units;
    }
    return units;
}
