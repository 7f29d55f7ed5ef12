#include "VorraneLog/LogText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>

namespace VorraneLog {

namespace {

constexpr std::string_view cutMark = "(cut)";
constexpr char32_t replacement = 0xFFFD;

bool isPlain(wchar_t unit) { return unit >= 0x20 && unit < 0x7F; }

bool isHighSurrogate(wchar_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }

bool isLowSurrogate(wchar_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

// The C0 and C1 controls with the delete character, and the two separators that viewers take for
// the end of a line.
bool isControl(char32_t codePoint) {
    return codePoint < 0x20 || (codePoint >= 0x7F && codePoint < 0xA0) || codePoint == 0x2028 ||
           codePoint == 0x2029;
}

// Takes the first character off the text.
char32_t takeCodePoint(std::wstring_view& text) {
    wchar_t const first = text[0];
    text.remove_prefix(1);
    if (isHighSurrogate(first) && !text.empty() && isLowSurrogate(text[0])) {
        char32_t const low = text[0];
        text.remove_prefix(1);
        return 0x10000 + ((static_cast<char32_t>(first) - 0xD800) << 10) + (low - 0xDC00);
    }
    return isHighSurrogate(first) || isLowSurrogate(first) ? replacement : first;
}

} // namespace

void LogText::append(std::wstring_view text) noexcept {
    while (!text.empty() && !m_isCut) {
        std::array<char, 128> run;
        std::size_t length = 0;
        while (length < run.size() && length < text.size() && isPlain(text[length])) {
            run[length] = static_cast<char>(text[length]);
            ++length;
        }
        appendAscii({run.data(), length});
        text.remove_prefix(length);
        if (!text.empty() && !isPlain(text[0]))
            appendCodePoint(takeCodePoint(text));
    }
}

void LogText::appendAscii(std::string_view text) noexcept { appendBytes(text); }

void LogText::appendBytes(std::string_view text) noexcept {
    if (m_isCut || text.empty())
        return;
    auto const needed = m_size + text.size() + cutMark.size();
    if (needed > mostBytes || (needed > m_capacity && !grow(needed))) {
        cut();
        return;
    }
    std::memcpy(bytes() + m_size, text.data(), text.size());
    m_size += text.size();
}

void LogText::appendNumber(long long number) noexcept {
    std::array<char, 24> digits;
    auto const end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    appendAscii({digits.data(), static_cast<std::size_t>(end - digits.data())});
}

void LogText::appendRepeated(char character, std::size_t count) noexcept {
    for (; count > 0 && !m_isCut; --count)
        appendAscii({&character, 1});
}

void LogText::appendCodePoint(char32_t codePoint) noexcept {
    auto const lead = [codePoint](unsigned mark, unsigned shift) {
        return static_cast<char>(mark | (codePoint >> shift));
    };
    auto const trail = [codePoint](unsigned shift) {
        return static_cast<char>(0x80U | ((codePoint >> shift) & 0x3FU));
    };
    if (isControl(codePoint)) {
        appendVisibly(codePoint);
    } else if (codePoint < 0x800) {
        std::array<char, 2> const bytes{lead(0xC0, 6), trail(0)};
        appendBytes({bytes.data(), bytes.size()});
    } else if (codePoint < 0x10000) {
        std::array<char, 3> const bytes{lead(0xE0, 12), trail(6), trail(0)};
        appendBytes({bytes.data(), bytes.size()});
    } else {
        std::array<char, 4> const bytes{lead(0xF0, 18), trail(12), trail(6), trail(0)};
        appendBytes({bytes.data(), bytes.size()});
    }
}

void LogText::appendVisibly(char32_t control) noexcept {
    std::array<char, 8> form{'<', 'U', '+', '0', '0', '0', '0', '>'};
    for (std::size_t digit = 6; digit >= 3; --digit, control >>= 4)
        form[digit] = "0123456789ABCDEF"[control & 0xF];
    appendAscii({form.data(), form.size()});
}

// The plain C functions: where the heap is exhausted this runtime may end the process as it
// raises bad_alloc.
bool LogText::grow(std::size_t needed) noexcept {
    auto const capacity = std::max(needed, 2 * m_capacity);
    auto* const memory = static_cast<char*>(std::realloc(m_grown.get(), capacity));
    if (memory == nullptr)
        return false;
    if (!m_grown)
        std::memcpy(memory, m_inside.data(), m_size);
    static_cast<void>(m_grown.release());
    m_grown.reset(memory);
    m_capacity = capacity;
    return true;
}

// Room for the mark is always kept.
void LogText::cut() noexcept {
    m_isCut = true;
    std::memcpy(bytes() + m_size, cutMark.data(), cutMark.size());
    m_size += cutMark.size();
}

} // namespace VorraneLog
