#include "VorraneLog/LogText.h"

#include "tests/support/ImportHook.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <utility>

using VorraneLog::LogText;

namespace {

std::string lineOf(std::wstring_view text) {
    LogText line;
    line.append(text);
    return std::string(line.view());
}

// What becomes of a text while the heap gives nothing.
std::string lineWithoutMemory(std::wstring const& text) {
    LogText line;
    {
        test::FailingImport<void*(void*, std::size_t)> noMemory(
            "realloc", nullptr, 0, test::everyCall, test::thisProgram());
        line.append(text);
    }
    return std::string(line.view());
}

class LogTextControl : public testing::TestWithParam<std::pair<wchar_t, char const*>> {};

} // namespace

TEST(LogText, AsciiStaysAsItIs) { EXPECT_EQ("C:\\a ~!", lineOf(L"C:\\a ~!")); }

TEST(LogText, UmlautsTakeTwoBytes) { EXPECT_EQ("\xC3\xA4\xDF\xBF", lineOf(L"\u00E4\u07FF")); }

TEST(LogText, OtherCharactersOfOneUnitTakeThreeBytes) {
    EXPECT_EQ("\xE0\xA0\x80\xE2\x82\xAC\xEF\xBF\xBF", lineOf(L"\u0800\u20AC\uFFFF"));
}

TEST(LogText, SurrogatePairTakesFourBytes) {
    EXPECT_EQ("\xF0\x9F\x8E\xAC\xF4\x8F\xBF\xBF", lineOf(L"\U0001F3AC\U0010FFFF"));
}

TEST(LogText, LoneSurrogatesAreReplaced) {
    std::wstring const text{L'a', 0xD83C, L'-', 0xDFAC, L'z', 0xDFAC, 0xD83C};

    EXPECT_EQ("a\xEF\xBF\xBD-\xEF\xBF\xBDz\xEF\xBF\xBD\xEF\xBF\xBD", lineOf(text));
}

TEST(LogText, NoPairIsMadeOfTwoTexts) {
    LogText line;
    line.append(std::wstring{0xD83C});
    line.append(std::wstring{0xDFAC});

    EXPECT_EQ("\xEF\xBF\xBD\xEF\xBF\xBD", line.view());
}

TEST_P(LogTextControl, IsShown) {
    EXPECT_EQ(GetParam().second, lineOf(std::wstring{GetParam().first}));
}

INSTANTIATE_TEST_SUITE_P(
    Characters, LogTextControl,
    testing::Values(
        std::pair(L'\0', "<U+0000>"), std::pair(L'\t', "<U+0009>"), std::pair(L'\n', "<U+000A>"),
        std::pair(L'\r', "<U+000D>"), std::pair(L'\x1B', "<U+001B>"),
        std::pair(L'\x1F', "<U+001F>"), std::pair(L'\x7F', "<U+007F>"),
        std::pair(L'\x85', "<U+0085>"), std::pair(L'\x9F', "<U+009F>"),
        std::pair(L'\x2028', "<U+2028>"), std::pair(L'\x2029', "<U+2029>"),
        std::pair(L'\xA0', "\xC2\xA0"), std::pair(L' ', " ")));

TEST(LogText, NumbersAreDecimal) {
    LogText line;
    line.appendNumber(-9'223'372'036'854'775'807 - 1);

    EXPECT_EQ("-9223372036854775808", line.view());
}

TEST(LogText, LongTextIsWhole) {
    std::wstring const text(100'000, L'x');

    EXPECT_EQ(std::string(100'000, 'x'), lineOf(text));
}

TEST(LogText, BoundCutsVisiblyAndForGood) {
    LogText line;
    line.append(std::wstring(LogText::mostBytes, L'x'));
    std::string const cut(line.view());

    line.append(L"y");
    line.appendNumber(1);

    EXPECT_EQ(cut, line.view());
    EXPECT_LE(cut.size(), LogText::mostBytes);
    EXPECT_EQ("x(cut)", cut.substr(cut.size() - 6));
}

TEST(LogText, PaddingEndsAtTheBound) {
    LogText line;

    line.appendRepeated('-', 1'000'000'000'000);

    EXPECT_LE(line.view().size(), LogText::mostBytes);
    EXPECT_EQ("-(cut)", line.view().substr(line.view().size() - 6));
}

TEST(LogText, ShortTextNeedsNoMemory) {
    EXPECT_EQ(std::string(1000, 'x'), lineWithoutMemory(std::wstring(1000, L'x')));
}

TEST(LogText, WithoutMemoryIsCutVisibly) {
    auto const line = lineWithoutMemory(std::wstring(5000, L'x'));

    EXPECT_GT(line.size(), 900U);
    EXPECT_LE(line.size(), 1024U);
    EXPECT_EQ("x(cut)", line.substr(line.size() - 6));
}

TEST(LogText, WithoutMemoryNoCharacterIsTorn) {
    auto const line = lineWithoutMemory(std::wstring(5000, L'\u20AC'));

    EXPECT_EQ(0U, (line.size() - 5) % 3);
    EXPECT_EQ("\xE2\x82\xAC(cut)", line.substr(line.size() - 8));
}
