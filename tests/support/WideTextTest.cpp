#include "tests/support/WideText.h"

#include "tests/support/PathPrinter.h"

#include <gtest/gtest.h>

TEST(WideText, BecomesUtf8) {
    EXPECT_EQ("", test::utf8(L""));
    EXPECT_EQ("a\xC3\xA4\xF0\x9F\x8E\xAC", test::utf8(L"a\u00E4\U0001F3AC"));
    EXPECT_EQ(std::string("a\0b", 3), test::utf8(std::wstring_view(L"a\0b", 3)));
}

TEST(WideText, LoneSurrogateBecomesTheReplacementCharacter) {
    EXPECT_EQ("\xEF\xBF\xBD", test::utf8(L"\xD83C"));
}

TEST(WideText, ComesBackFromUtf8) {
    EXPECT_EQ(L"", test::fromUtf8(""));
    EXPECT_EQ(L"a\u00E4\U0001F3AC", test::fromUtf8("a\xC3\xA4\xF0\x9F\x8E\xAC"));
}

TEST(PathPrinter, ShowsTheNormalForm) {
    auto const path = vr::Path::file(L"C:/Media/M\u00FC.wav");

    EXPECT_EQ("\"C:\\Media\\M\xC3\xBC.wav\"", testing::PrintToString(path));
}
