#include "files/LegalFilename.h"

#include <gtest/gtest.h>

using vrUtils::Files::withEscapes;
using vrUtils::Files::withoutIllegalCharacters;

// The public operation runs one pass behind the other, and the escapes of the second never show.

TEST(LegalFilenamePasses, FirstGivesDashesAlone) {
    EXPECT_EQ(L"-a~-\u00E4-", withoutIllegalCharacters(L"~a~:\u00E4\x1F"));
}

TEST(LegalFilenamePasses, FirstTakesAnEmptyName) { EXPECT_EQ(L"", withoutIllegalCharacters(L"")); }

TEST(LegalFilenamePasses, SecondEscapesEachReservedCharacter) {
    for (bool const asciiOnly : {false, true}) {
        EXPECT_EQ(L"a%5Cb", withEscapes(L"a\\b", asciiOnly));
        EXPECT_EQ(L"a%2Fb", withEscapes(L"a/b", asciiOnly));
        EXPECT_EQ(L"a%3Ab", withEscapes(L"a:b", asciiOnly));
        EXPECT_EQ(L"a%2Ab", withEscapes(L"a*b", asciiOnly));
        EXPECT_EQ(L"a%3Fb", withEscapes(L"a?b", asciiOnly));
        EXPECT_EQ(L"a%3Cb", withEscapes(L"a<b", asciiOnly));
        EXPECT_EQ(L"a%3Eb", withEscapes(L"a>b", asciiOnly));
        EXPECT_EQ(L"a%7Cb", withEscapes(L"a|b", asciiOnly));
        EXPECT_EQ(L"a%22b", withEscapes(L"a\"b", asciiOnly));
    }
}

TEST(LegalFilenamePasses, SecondEscapesATildeThatIsTheWholeName) {
    EXPECT_EQ(L"%7E", withEscapes(L"~", false));
    EXPECT_EQ(L"%7E", withEscapes(L"~", true));
}

TEST(LegalFilenamePasses, SecondKeepsATildeBesideAnythingElse) {
    EXPECT_EQ(L"~a", withEscapes(L"~a", false));
    EXPECT_EQ(L"~~", withEscapes(L"~~", true));
}

TEST(LegalFilenamePasses, SecondKeepsControlCharactersUnlessAsciiIsWanted) {
    EXPECT_EQ(
        L"a\x1F"
        L"b",
        withEscapes(
            L"a\x1F"
            L"b",
            false));
    EXPECT_EQ(
        L"a~b", withEscapes(
                    L"a\x1F"
                    L"b",
                    true));
    EXPECT_EQ(L"a b", withEscapes(L"a b", true));
}

TEST(LegalFilenamePasses, SecondKeepsPrintableAsciiAlone) {
    EXPECT_EQ(L"a\x7E~~", withEscapes(L"a\x7E\x7F\xFFFF", true));
}

TEST(LegalFilenamePasses, SecondTakesAnEmptyName) { EXPECT_EQ(L"", withEscapes(L"", true)); }
