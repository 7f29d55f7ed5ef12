#include "VorraneLog/LogFormat.h"

#include "VorraneLog/ReadableMemory.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <string_view>

namespace VorraneLog {

namespace {

enum class Length { standard, half, wide, wider };

struct Directive {
    bool alignLeft = false;
    bool showPlus = false;
    bool showBlank = false;
    bool showPrefix = false;
    bool fillWithZeros = false;
    std::size_t width = 0;
    std::optional<std::size_t> precision;
    Length length = Length::standard;
    wchar_t conversion = 0;
};

// Reads one directive, from behind its percent sign on.
class DirectiveReader {
  public:
    explicit DirectiveReader(std::wstring_view text) : m_text(text) {}

    // Nothing if the directive is not one that is understood; rest() then begins with the character
    // that made it so.
    std::optional<Directive> read() {
        Directive directive;
        while (readFlag(directive)) {
        }
        directive.width = std::min(readNumber(), widestField);
        if (skip(L"."))
            directive.precision = readNumber();
        directive.length = readLength();
        if (m_text.empty() || !isUnderstood(directive.length, m_text[0]))
            return std::nullopt;
        directive.conversion = take();
        return directive;
    }

    std::wstring_view rest() const { return m_text; }

  private:
    static bool isUnderstood(Length length, wchar_t conversion) {
        constexpr std::wstring_view numbers = L"diuxX";
        constexpr std::wstring_view texts = L"cs";
        if (numbers.find(conversion) != std::wstring_view::npos)
            return true;
        return texts.find(conversion) != std::wstring_view::npos &&
               (length == Length::standard || length == Length::wide);
    }

    bool readFlag(Directive& directive) {
        if (skip(L"-"))
            return directive.alignLeft = true;
        if (skip(L"+"))
            return directive.showPlus = true;
        if (skip(L" "))
            return directive.showBlank = true;
        if (skip(L"#"))
            return directive.showPrefix = true;
        return skip(L"0") && (directive.fillWithZeros = true);
    }

    // The decimal number that stands next, 0 if there is none; kept from overflowing.
    std::size_t readNumber() {
        std::size_t number = 0;
        while (!m_text.empty() && m_text[0] >= L'0' && m_text[0] <= L'9')
            number = std::min(number * 10 + static_cast<std::size_t>(take() - L'0'), longestText);
        return number;
    }

    Length readLength() {
        if (skip(L"ll") || skip(L"I64"))
            return Length::wider;
        if (skip(L"l"))
            return Length::wide;
        return skip(L"h") ? Length::half : Length::standard;
    }

    bool skip(std::wstring_view expected) {
        if (m_text.substr(0, expected.size()) != expected)
            return false;
        m_text.remove_prefix(expected.size());
        return true;
    }

    wchar_t take() {
        wchar_t const taken = m_text[0];
        m_text.remove_prefix(1);
        return taken;
    }

    std::wstring_view m_text;
};

// The values behind a format, or what happens to be in their place on the stack. On this platform
// they stand in one row of slots, eight bytes each.
class Values {
  public:
    explicit Values(std::va_list values) noexcept : m_next(values) {}

    // 0 where the stack ends before the format does.
    std::uint64_t next() noexcept {
        std::uint64_t value = 0;
        if (!m_isProven) {
            m_isProven = true;
            m_left = readableBytes(m_next, mostDirectives * sizeof value);
        }
        if (m_left < sizeof value)
            return 0;
        std::memcpy(&value, m_next, sizeof value);
        m_next += sizeof value;
        m_left -= sizeof value;
        return value;
    }

  private:
    char const* m_next;
    std::size_t m_left = 0;
    bool m_isProven = false;
};

// Appends something `size` characters long, with blanks up to the width.
template <typename Append>
void appendField(
    LogText& line, Directive const& directive, std::size_t size, Append const& append) {
    auto const blanks = directive.width - std::min(directive.width, size);
    if (!directive.alignLeft)
        line.appendRepeated(' ', blanks);
    append();
    if (directive.alignLeft)
        line.appendRepeated(' ', blanks);
}

std::uint64_t magnitude(std::int64_t number) {
    auto const bits = static_cast<std::uint64_t>(number);
    return number < 0 ? 0 - bits : bits;
}

std::int64_t asSigned(std::uint64_t value, Length length) {
    switch (length) {
    case Length::half:
        return static_cast<std::int16_t>(value);
    case Length::wider:
        return static_cast<std::int64_t>(value);
    default:
        return static_cast<std::int32_t>(value);
    }
}

std::uint64_t asUnsigned(std::uint64_t value, Length length) {
    switch (length) {
    case Length::half:
        return static_cast<std::uint16_t>(value);
    case Length::wider:
        return value;
    default:
        return static_cast<std::uint32_t>(value);
    }
}

bool isSigned(wchar_t conversion) { return conversion == L'd' || conversion == L'i'; }

std::string_view signOf(Directive const& directive, bool isNegative) {
    if (isNegative)
        return "-";
    if (directive.showPlus)
        return "+";
    return directive.showBlank ? " " : "";
}

std::string_view prefixOf(Directive const& directive, std::uint64_t value) {
    if (!directive.showPrefix || value == 0)
        return "";
    return directive.conversion == L'X' ? "0X" : directive.conversion == L'x' ? "0x" : "";
}

// The digits of a number in the directive's base; none for a zero with the precision 0.
class Digits {
  public:
    Digits(Directive const& directive, std::uint64_t value) {
        if (value == 0 && directive.precision == 0U)
            return;
        bool const isHexadecimal = directive.conversion == L'x' || directive.conversion == L'X';
        auto const end =
            std::to_chars(
                m_digits.data(), m_digits.data() + m_digits.size(), value, isHexadecimal ? 16 : 10)
                .ptr;
        m_size = static_cast<std::size_t>(end - m_digits.data());
        if (directive.conversion == L'X')
            std::transform(m_digits.data(), end, m_digits.data(), [](char digit) {
                return digit >= 'a' ? static_cast<char>(digit - 'a' + 'A') : digit;
            });
    }

    std::string_view view() const { return {m_digits.data(), m_size}; }

  private:
    std::array<char, std::numeric_limits<std::uint64_t>::digits10 + 1> m_digits{};
    std::size_t m_size = 0;
};

// The zeros in front of the digits: up to the precision, or else to the width if the flag says so.
std::size_t zerosBefore(Directive const& directive, std::size_t leading, std::size_t digits) {
    if (directive.precision) {
        auto const wanted = std::min(*directive.precision, widestField);
        return wanted - std::min(wanted, digits);
    }
    if (!directive.fillWithZeros || directive.alignLeft)
        return 0;
    return directive.width - std::min(directive.width, leading + digits);
}

void appendNumber(LogText& line, Directive const& directive, std::uint64_t value) {
    std::string_view leading;
    if (isSigned(directive.conversion)) {
        auto const number = asSigned(value, directive.length);
        leading = signOf(directive, number < 0);
        value = magnitude(number);
    } else {
        value = asUnsigned(value, directive.length);
        leading = prefixOf(directive, value);
    }

    Digits const digits(directive, value);
    auto const zeros = zerosBefore(directive, leading.size(), digits.view().size());
    appendField(line, directive, leading.size() + zeros + digits.view().size(), [&] {
        line.appendAscii(leading);
        line.appendRepeated('0', zeros);
        line.appendAscii(digits.view());
    });
}

// What is shown behind the readable part of an untrusted text.
std::string_view endMark(ProvenText::End end) {
    switch (end) {
    case ProvenText::null:
        return "(null)";
    case ProvenText::unreadable:
        return "(unreadable)";
    case ProvenText::bound:
        return "(cut)";
    default:
        return "";
    }
}

void appendText(LogText& line, Directive const& directive, wchar_t const* text) {
    auto const most = std::min(directive.precision.value_or(longestText), longestText);
    auto const proven = provenText(text, most);
    // A precision is the caller's own wish to see no more.
    bool const isWished = proven.end == ProvenText::bound && directive.precision;
    auto const mark = isWished ? std::string_view() : endMark(proven.end);
    appendField(line, directive, proven.text.size() + mark.size(), [&] {
        line.append(proven.text);
        line.appendAscii(mark);
    });
}

wchar_t const* asPointer(std::uint64_t value) {
    wchar_t const* pointer = nullptr;
    static_assert(sizeof pointer == sizeof value);
    std::memcpy(&pointer, &value, sizeof pointer);
    return pointer;
}

void appendValue(LogText& line, Directive const& directive, std::uint64_t value) {
    if (directive.conversion == L's') {
        appendText(line, directive, asPointer(value));
    } else if (directive.conversion == L'c') {
        auto const character = static_cast<wchar_t>(value);
        appendField(line, directive, 1, [&] { line.append({&character, 1}); });
    } else {
        appendNumber(line, directive, value);
    }
}

// Appends a format that has been proven readable.
void appendWalked(LogText& line, std::wstring_view format, Values& values) {
    int taken = 0;
    auto percent = format.find(L'%');
    while (percent != std::wstring_view::npos && taken < mostDirectives) {
        line.append(format.substr(0, percent));
        format.remove_prefix(percent);
        DirectiveReader reader(format.substr(1));
        if (auto const directive = reader.read()) {
            appendValue(line, *directive, values.next());
            ++taken;
            format = reader.rest();
        } else if (format.substr(0, 2) == L"%%") {
            line.appendAscii("%");
            format.remove_prefix(2);
        } else {
            line.append(format.substr(0, format.size() - reader.rest().size()));
            format = reader.rest();
        }
        percent = format.find(L'%');
    }
    line.append(format);
}

} // namespace

void appendFormatted(LogText& line, wchar_t const* format, std::va_list values) noexcept {
    auto const proven = provenText(format, longestText);
    Values arguments(values);
    appendWalked(line, proven.text, arguments);
    line.appendAscii(endMark(proven.end));
}

void appendUntrusted(LogText& line, wchar_t const* text) noexcept {
    auto const proven = provenText(text, longestText);
    line.append(proven.text);
    line.appendAscii(endMark(proven.end));
}

} // namespace VorraneLog
