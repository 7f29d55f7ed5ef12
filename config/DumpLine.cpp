#include "config/DumpLine.h"

#include "foundation/Text.h"

#include <algorithm>

namespace vrUtils::Registry {

namespace {

// The longer words first: the second stands in the first.
constexpr wchar_t const* typeWords[] = {L"hex(7)", L"hex", L"dword"};

int digitOrZero(wchar_t character) { return std::max(Strings::hexDigit(character), 0); }

} // namespace

DumpLine::DumpLine(std::wstring const& line) {
    auto const equals = line.find(L'=');
    if (equals == std::wstring::npos)
        return;

    // The quotes are taken for granted; a sign at the very beginning lets the name run to the end.
    name = line.substr(1, equals - 2);

    // The words count wherever they stand, even in a string's text.
    for (std::wstring const word : typeWords) {
        auto const found = line.find(word, equals);
        if (found == std::wstring::npos)
            continue;
        auto const dataStart = std::min(found + word.size() + 1, line.size());
        type = line.substr(equals + 1, dataStart - equals - 1);
        data = line.substr(dataStart);
        return;
    }

    type = L"string";
    data = line.substr(equals + 2, line.size() - equals - 3);
}

std::vector<unsigned char> decodeHex(std::wstring const& text) {
    constexpr std::size_t charactersForEach = 3;
    std::vector<unsigned char> bytes;
    bytes.reserve(text.size() / charactersForEach + 1);
    for (std::size_t position = 0; position < text.size(); position += charactersForEach) {
        auto const high = digitOrZero(text[position]);
        auto const low = digitOrZero(text.at(position + 1));
        bytes.push_back(static_cast<unsigned char>(high * 16 + low));
    }
    return bytes;
}

} // namespace vrUtils::Registry
