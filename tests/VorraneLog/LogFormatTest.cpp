#include "VorraneLog/LogFormat.h"

#include "tests/VorraneLog/PrivateMemory.h"
#include "tests/support/Campaign.h"

#include <gtest/gtest.h>

#include <cstdarg>
#include <cstdint>
#include <cstring>
#include <limits>
#include <ostream>
#include <string>
#include <string_view>

namespace {

std::string formatted(wchar_t const* format, ...) {
    VorraneLog::LogText line;
    std::va_list values;
    va_start(values, format);
    VorraneLog::appendFormatted(line, format, values);
    va_end(values);
    return std::string(line.view());
}

std::wstring repeated(std::wstring_view piece, int count) {
    std::wstring text;
    for (int index = 0; index < count; ++index)
        text += piece;
    return text;
}

bool endsWith(std::string const& text, std::string_view end) {
    return text.size() >= end.size() &&
           text.compare(text.size() - end.size(), end.size(), end) == 0;
}

struct NumberCase {
    wchar_t const* format;
    long long value;
    char const* expected;
};

std::ostream& operator<<(std::ostream& stream, NumberCase const& number) {
    return stream << number.expected;
}

class LogFormatNumber : public testing::TestWithParam<NumberCase> {};

class LogFormatCopied : public testing::TestWithParam<wchar_t const*> {};

} // namespace

TEST_P(LogFormatNumber, ReadsAsThePrintfRulesSay) {
    EXPECT_EQ(GetParam().expected, formatted(GetParam().format, GetParam().value));
}

INSTANTIATE_TEST_SUITE_P(
    Conversions, LogFormatNumber,
    testing::Values(
        NumberCase{L"%d", 42, "42"}, NumberCase{L"%d", -42, "-42"}, NumberCase{L"%d", 0, "0"},
        NumberCase{L"%i", -7, "-7"}, NumberCase{L"%u", 42, "42"},
        NumberCase{L"%u", -1, "4294967295"}, NumberCase{L"%x", 0xBEEF, "beef"},
        NumberCase{L"%X", 0xBEEF, "BEEF"}, NumberCase{L"%x", -1, "ffffffff"},
        NumberCase{L"%d", std::numeric_limits<int>::min(), "-2147483648"},
        NumberCase{L"%d", 0x1'0000'0001, "1"}));

INSTANTIATE_TEST_SUITE_P(
    Lengths, LogFormatNumber,
    testing::Values(
        NumberCase{L"%hd", 0x18000, "-32768"}, NumberCase{L"%hu", 0x1FFFF, "65535"},
        NumberCase{L"%hx", -1, "ffff"}, NumberCase{L"%ld", -5, "-5"},
        NumberCase{L"%lu", -1, "4294967295"}, NumberCase{L"%lx", 0x1'0000'00FF, "ff"},
        NumberCase{L"%lld", std::numeric_limits<long long>::min(), "-9223372036854775808"},
        NumberCase{L"%llu", -1, "18446744073709551615"},
        NumberCase{L"%llx", -1, "ffffffffffffffff"},
        NumberCase{L"%I64d", -9'000'000'000, "-9000000000"},
        NumberCase{L"%I64u", -1, "18446744073709551615"},
        NumberCase{L"%I64X", 0x7BCDEF0123456789, "7BCDEF0123456789"}));

INSTANTIATE_TEST_SUITE_P(
    FlagsWidthsAndPrecisions, LogFormatNumber,
    testing::Values(
        NumberCase{L"[%5d]", 42, "[   42]"}, NumberCase{L"[%-5d]", 42, "[42   ]"},
        NumberCase{L"[%05d]", -42, "[-0042]"}, NumberCase{L"[%-05d]", 42, "[42   ]"},
        NumberCase{L"[%2d]", 12345, "[12345]"}, NumberCase{L"[%+d]", 42, "[+42]"},
        NumberCase{L"[%+d]", -42, "[-42]"}, NumberCase{L"[% d]", 42, "[ 42]"},
        NumberCase{L"[% +d]", 42, "[+42]"}, NumberCase{L"[%+u]", 42, "[42]"},
        NumberCase{L"[%.5d]", -42, "[-00042]"}, NumberCase{L"[%8.5d]", 42, "[   00042]"},
        NumberCase{L"[%08.5d]", 42, "[   00042]"}, NumberCase{L"[%.0d]", 0, "[]"},
        NumberCase{L"[%.d]", 0, "[]"}, NumberCase{L"[%.0d]", 7, "[7]"},
        NumberCase{L"[%3.0d]", 0, "[   ]"}, NumberCase{L"[%#x]", 255, "[0xff]"},
        NumberCase{L"[%#X]", 255, "[0XFF]"}, NumberCase{L"[%#x]", 0, "[0]"},
        NumberCase{L"[%#d]", 5, "[5]"}, NumberCase{L"[%#08x]", 255, "[0x0000ff]"},
        NumberCase{L"0x%08lX", 0xC0FFEE, "0x00C0FFEE"}));

TEST(LogFormat, TextWithoutDirectivesIsCopied) {
    EXPECT_EQ("Creating Folder [C:\\Media]", formatted(L"Creating Folder [C:\\Media]"));
}

TEST(LogFormat, EmptyFormatGivesNothing) { EXPECT_EQ("", formatted(L"")); }

TEST(LogFormat, DoublePercentSignGivesOne) { EXPECT_EQ("100% of 7", formatted(L"100%% of %d", 7)); }

TEST(LogFormat, ValuesAreTakenInTheirOrder) {
    EXPECT_EQ(
        "remaining [1]MB of \"disk\", z, ff",
        formatted(L"remaining [%ld]MB of \"%s\", %c, %x", 1L, L"disk", L'z', 255));
}

TEST(LogFormat, MoreValuesThanRegistersCarry) {
    EXPECT_EQ("1 2 3 4 5 6 7 8", formatted(L"%d %d %d %d %d %d %d %d", 1, 2, 3, 4, 5, 6, 7, 8));
}

TEST(LogFormat, CharacterIsWide) { EXPECT_EQ("[\xC3\xA4]", formatted(L"[%c]", 0xE4)); }

TEST(LogFormat, CharacterFillsItsWidth) {
    EXPECT_EQ("[  z][z  ]", formatted(L"[%3c][%-3lc]", L'z', L'z'));
}

TEST(LogFormat, ZeroCharacterStaysVisible) { EXPECT_EQ("<U+0000>", formatted(L"%c", 0)); }

TEST(LogFormat, TextIsWideWithAndWithoutLength) {
    EXPECT_EQ("clip clip", formatted(L"%s %ls", L"clip", L"clip"));
}

TEST(LogFormat, TextFillsItsWidth) {
    EXPECT_EQ("[  clip][clip  ][clip]", formatted(L"[%6s][%-6s][%2s]", L"clip", L"clip", L"clip"));
}

TEST(LogFormat, PrecisionCutsAText) {
    EXPECT_EQ("[cl][][  cl]", formatted(L"[%.2s][%.0s][%4.2s]", L"clip", L"clip", L"clip"));
}

TEST(LogFormat, PrecisionIsAllThatIsReadOfAText) {
    test::PrivatePage const page;
    auto const text = page.lastCharacters(L"clip");

    EXPECT_EQ("clip", formatted(L"%.4s", text));
}

TEST(LogFormat, LongCommandLineIsCutAtItsPrecision) {
    std::wstring const commandLine(4000, L'x');

    EXPECT_EQ(std::string(500, 'x'), formatted(L"%.500s", commandLine.c_str()));
}

TEST(LogFormat, TextBeyondTheBoundIsCutVisibly) {
    std::wstring const text(VorraneLog::longestText + 1, L'x');

    auto const line = formatted(L"[%s]", text.c_str());

    EXPECT_EQ('[' + std::string(VorraneLog::longestText, 'x') + "(cut)]", line);
}

TEST(LogFormat, TextUpToTheBoundIsWhole) {
    std::wstring const text(VorraneLog::longestText - 1, L'x');

    EXPECT_EQ(std::string(text.size(), 'x'), formatted(L"%s", text.c_str()));
}

TEST(LogFormat, NullTextIsTold) {
    wchar_t const* const text = nullptr;

    EXPECT_EQ("[(null)][  (null)]", formatted(L"[%s][%8.2s]", text, text));
}

TEST(LogFormat, UnreadableTextIsTold) {
    test::PrivatePage const page;

    EXPECT_EQ("[(unreadable)]", formatted(L"[%s]", page.end()));
}

TEST(LogFormat, TextThatRunsIntoUnreadableMemoryEndsThere) {
    test::PrivatePage const page;
    auto const text = page.lastCharacters(L"half");

    EXPECT_EQ("[half(unreadable)]", formatted(L"[%s]", text));
}

TEST(LogFormat, NullFormatIsTold) { EXPECT_EQ("(null)", formatted(nullptr)); }

TEST(LogFormat, UnreadableFormatIsTold) {
    EXPECT_EQ("(unreadable)", formatted(reinterpret_cast<wchar_t const*>(0x10)));
}

TEST(LogFormat, FormatThatRunsIntoUnreadableMemoryEndsThere) {
    test::PrivatePage const page;
    auto const format = page.lastCharacters(L"%d files %");

    EXPECT_EQ("3 files %(unreadable)", formatted(format, 3));
}

TEST(LogFormat, FormatBeyondTheBoundIsCutVisibly) {
    std::wstring const format(VorraneLog::longestText + 1, L'x');

    EXPECT_EQ(std::string(VorraneLog::longestText, 'x') + "(cut)", formatted(format.c_str()));
}

TEST_P(LogFormatCopied, UnknownDirectiveIsCopiedAndTakesNoValue) {
    std::wstring const directive = GetParam();
    std::string copied;
    for (wchar_t const character : directive)
        copied += static_cast<char>(character);

    EXPECT_EQ(copied + " 7", formatted((directive + L" %d").c_str(), 7));
}

INSTANTIATE_TEST_SUITE_P(
    Unknown, LogFormatCopied,
    testing::Values(
        L"%n", L"%hn", L"%lln", L"%p", L"%f", L"%5.2f", L"%e", L"%g", L"%a", L"%o", L"%S", L"%C",
        L"%hs", L"%hc", L"%lls", L"%I64c", L"%hhd", L"%lhd", L"%Ld", L"%zu", L"%I32d", L"%Id",
        L"%*d", L"%.*s", L"%-.*d", L"%.-5d", L"%q", L"%$", L"%1$d", L"%-+ #0123.456", L"%l]"));

TEST(LogFormat, LonePercentSignAtTheEndIsCopied) { EXPECT_EQ("50%", formatted(L"50%")); }

TEST(LogFormat, UnfinishedDirectiveAtTheEndIsCopied) {
    EXPECT_EQ("%-08.3ll", formatted(L"%-08.3ll"));
}

TEST(LogFormat, WalkGoesOnWithTheCharacterThatBreaksADirective) {
    EXPECT_EQ("%l-7", formatted(L"%l-%d", 7));
    EXPECT_EQ("%57", formatted(L"%5%d", 7));
}

TEST(LogFormat, PercentSignInANameActsAsADirective) {
    EXPECT_EQ("Locking file [C:\\100ok\\a]", formatted(L"Locking file [C:\\100%s\\a]", L"ok"));
}

TEST(LogFormat, DirectivesBeyondTheBoundAreCopied) {
    auto const format = repeated(L"%c", VorraneLog::mostDirectives) + L"%c%%|";

    auto const line = formatted(
        format.c_str(), 'a', 'b', 'c', 'd', 'e', 'f', 'g', 'h', 'i', 'j', 'k', 'l', 'm', 'n', 'o',
        'p', 'q', 'r', 's', 't', 'u', 'v', 'w', 'x', 'y', 'z', '1', '2', '3', '4', '5', '6', '7');

    EXPECT_EQ("abcdefghijklmnopqrstuvwxyz123456%c%%|", line);
}

TEST(LogFormat, WidthIsBounded) {
    auto const line = formatted(L"%99999999999999999999d", 7);

    EXPECT_EQ(std::string(VorraneLog::widestField - 1, ' ') + '7', line);
}

TEST(LogFormat, PrecisionOfANumberIsBounded) {
    auto const line = formatted(L"%.18446744073709551615d", 7);

    EXPECT_EQ(std::string(VorraneLog::widestField - 1, '0') + '7', line);
}

TEST(LogFormat, PrecisionOfATextMayPassTheWidest) {
    std::wstring const text(2000, L'x');

    EXPECT_EQ(std::string(1500, 'x'), formatted(L"%.1500s", text.c_str()));
}

TEST(LogFormat, ControlCharactersOfAValueAreVisible) {
    EXPECT_EQ("[a<U+000D><U+000A>b]", formatted(L"[%s]", L"a\r\nb"));
}

TEST(LogFormat, LineOfManyLongTextsIsCutVisibly) {
    std::wstring const text(60000, L'x');
    auto const format = repeated(L"%s", 5);

    auto const line = formatted(
        format.c_str(), text.c_str(), text.c_str(), text.c_str(), text.c_str(), text.c_str());

    EXPECT_LE(line.size(), VorraneLog::LogText::mostBytes);
    EXPECT_GT(line.size(), VorraneLog::LogText::mostBytes - 256);
    EXPECT_TRUE(endsWith(line, "x(cut)"));
}

TEST(LogFormat, ValuesBeyondTheReadableStackAreZero) {
    test::PrivatePage const page;
    std::uint64_t const value = 42;
    auto* const lastSlot = page.end() - sizeof value;
    std::memcpy(lastSlot, &value, sizeof value);
    VorraneLog::LogText line;

    VorraneLog::appendFormatted(line, L"%d %d %s", lastSlot);

    EXPECT_EQ("42 0 (null)", line.view());
}

namespace {

// Formats are drawn from what directives are made of, so that most of them are nearly right.
std::wstring randomFormat(test::Campaign& campaign) {
    static std::wstring const alphabet =
        L"%%%%%%%%diuxXcsdiuxXcsnSfpqhlLI64*.-+ #0129\\\n\u00E4\u2028" + std::wstring{0xD83D};
    std::wstring format(campaign.below(40), L'\0');
    for (auto& character : format)
        character = alphabet[campaign.below(alphabet.size())];
    return format;
}

bool isOneSafeLine(std::string const& line) {
    for (char const byte : line)
        if (static_cast<unsigned char>(byte) < 0x20 || byte == 0x7F)
            return false;
    return line.size() <= VorraneLog::LogText::mostBytes;
}

std::uint64_t randomValue(test::Campaign& campaign) {
    return (std::uint64_t{campaign.random()()} << 32 | campaign.random()()) >> campaign.below(64);
}

} // namespace

TEST(LogFormat, StormOfFormatsWithoutValuesIsSurvived) {
    test::Campaign campaign(50'000);
    while (campaign.nextRound()) {
        auto const format = randomFormat(campaign);

        ASSERT_TRUE(isOneSafeLine(formatted(format.c_str()))) << campaign;
    }
}

TEST(LogFormat, StormOfFormatsWithHostileValuesIsSurvived) {
    test::Campaign campaign(50'000);
    test::PrivatePage const page;
    while (campaign.nextRound()) {
        auto const format = randomFormat(campaign);

        auto const line = formatted(
            format.c_str(), randomValue(campaign), L"text", randomValue(campaign), page.end() - 2,
            page.end(), ~randomValue(campaign), page.lastCharacters(L"x"), nullptr,
            randomValue(campaign));

        ASSERT_TRUE(isOneSafeLine(line)) << campaign;
    }
}
