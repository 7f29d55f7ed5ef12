#include "foundation/Text.h"

#include "RandomText.h"

#include <gtest/gtest.h>

#include <cwctype>

using namespace std::string_literals;
using namespace vrUtils::Strings;

using Pieces = std::list<std::wstring>;

// --- trim -----------------------------------------------------------------------------------------

TEST(Trim, RemovesWhiteSpaceFromBothEnds) { EXPECT_EQ(L"a b", trim(L" \n\r\ta b\t\r\n ")); }

TEST(Trim, TextWithoutWhiteSpaceAtItsEndsIsUnchanged) { EXPECT_EQ(L"a \n b", trim(L"a \n b")); }

TEST(Trim, TextOfTheSetOnlyIsEmpty) {
    EXPECT_EQ(L"", trim(L" \n\r\t "));
    EXPECT_EQ(L"", trim(L"xyx", L"xy"));
}

TEST(Trim, EmptyTextIsEmpty) { EXPECT_EQ(L"", trim(L"")); }

TEST(Trim, OneCharacterStays) { EXPECT_EQ(L"a", trim(L" a ")); }

TEST(Trim, OtherWhiteSpaceStays) {
    EXPECT_EQ(L"\va\f", trim(L"\va\f"));
    EXPECT_EQ(L"\u00A0a\u3000", trim(L"\u00A0a\u3000"));
}

TEST(Trim, ZeroCharactersStay) { EXPECT_EQ(L"\0a\0"s, trim(L" \0a\0 "s)); }

TEST(Trim, TakesAnotherSet) { EXPECT_EQ(L" a ", trim(L"\" a \"", L"\"")); }

TEST(Trim, EmptySetChangesNothing) { EXPECT_EQ(L" a ", trim(L" a ", L"")); }

TEST(TrimSlashes, RemovesBothKindsInAnyMix) {
    EXPECT_EQ(LR"(a/\b)", trimSlashes(LR"(/\\/a/\b\/)"));
}

TEST(TrimSlashes, StopsAtABlank) { EXPECT_EQ(LR"( \a/ )", trimSlashes(LR"(\ \a/ /)")); }

TEST(TrimSlashes, SlashesOnlyGiveNothing) { EXPECT_EQ(L"", trimSlashes(LR"(\/\/)")); }

// --- slashes --------------------------------------------------------------------------------------

TEST(ToBackslashes, TurnsEveryForwardSlash) { EXPECT_EQ(LR"(\\a\b\)", toBackslashes(L"//a\\b/"s)); }

TEST(ToBackslashes, TurnsNarrowText) { EXPECT_EQ(R"(\\a\b\)", toBackslashes("//a\\b/"s)); }

// The second byte of a double-byte character may look like a backslash; bytes count, not characters.
TEST(ToBackslashes, TurnsNarrowTextByteByByte) {
    EXPECT_EQ("\x83\\\xE9\\", toBackslashes("\x83\\\xE9/"s));
}

TEST(ToBackslashes, TextWithoutSlashesIsUnchanged) {
    EXPECT_EQ(L"a\0|b"s, toBackslashes(L"a\0|b"s));
    EXPECT_EQ(L"", toBackslashes(L""s));
    EXPECT_EQ("", toBackslashes(""s));
}

TEST(ToBackslashes, TurnsBehindAZero) { EXPECT_EQ(L"\0\\"s, toBackslashes(L"\0/"s)); }

TEST(ToBackslashes, LeavesItsSourceAlone) {
    auto const source = L"a/b"s;

    toBackslashes(source);

    EXPECT_EQ(L"a/b", source);
}

TEST(ToForwardSlashes, TurnsEveryBackslash) {
    EXPECT_EQ(L"//a/b/", toForwardSlashes(LR"(\\a/b\)"));
}

TEST(IsSlash, KnowsBothKinds) {
    EXPECT_TRUE(isSlash(L'/'));
    EXPECT_TRUE(isSlash(L'\\'));
    EXPECT_FALSE(isSlash(L'|'));
    EXPECT_FALSE(isSlash(L'\0'));
}

TEST(HexDigit, GivesTheValueInBothCases) {
    for (int value = 0; value < 16; ++value) {
        EXPECT_EQ(value, hexDigit("0123456789abcdef"[value]));
        EXPECT_EQ(value, hexDigit(L"0123456789ABCDEF"[value]));
    }
}

TEST(HexDigit, AnyOtherCharacterHasNone) {
    for (auto const character : {'/', ':', '@', 'G', '`', 'g', ' ', '\0', '\xB1'})
        EXPECT_EQ(-1, hexDigit(character)) << testing::PrintToString(character);
    // Digits of other scripts, and characters whose low byte is a digit's.
    for (auto const character : {L'\u0661', L'\uFF11', L'\u0131', L'\u0141'})
        EXPECT_EQ(-1, hexDigit(character)) << testing::PrintToString(character);
}

// --- case -----------------------------------------------------------------------------------------

TEST(ToLower, LowersLatinLetters) { EXPECT_EQ(L"abc[xyz]@{", toLower(L"ABC[XYZ]@{")); }

TEST(ToLower, KeepsTheLength) {
    EXPECT_EQ(L"a\0b"s, toLower(L"A\0B"s));
    EXPECT_EQ(L"", toLower(L""));
}

TEST(ToLower, CharactersBeyondTheLocaleStay) {
    EXPECT_EQ(L"\u00C9\u0410\u0130\xD801", toLower(L"\u00C9\u0410\u0130\xD801"));
}

TEST(ToLower, LowersEveryCharacterAsTheRuntimeDoes) {
    for (unsigned code = 0; code <= 0xFFFF; ++code) {
        auto const character = static_cast<wchar_t>(code);
        std::wstring const expected(1, static_cast<wchar_t>(std::towlower(character)));

        ASSERT_EQ(expected, toLower(std::wstring(1, character))) << code;
    }
}

TEST(EqualLowered, HasNoRegardToCase) {
    EXPECT_TRUE(equalLowered(L"Media\\CLIP", L"mEDIA\\clip"));
    EXPECT_TRUE(equalLowered(L"", L""));
}

TEST(EqualLowered, LengthsMustAgree) {
    EXPECT_FALSE(equalLowered(L"a", L"ab"));
    EXPECT_FALSE(equalLowered(L"ab", L"a"));
    EXPECT_FALSE(equalLowered(L"", L"a"));
}

TEST(EqualLowered, AgreesWithLoweredTexts) {
    test::Campaign campaign(100000);
    RandomText<wchar_t> texts(L"aAzZ[@{\u00C9\u00E9", campaign);
    while (campaign.nextRound()) {
        auto const left = texts.upTo(2);
        auto const right = texts.upTo(2);

        ASSERT_EQ(toLower(left) == toLower(right), equalLowered(left, right))
            << testing::PrintToString(left) << ' ' << testing::PrintToString(right);
    }
}

// --- split and join -------------------------------------------------------------------------------

TEST(SplitOnChar, GivesThePieces) {
    EXPECT_EQ((Pieces{L"a", L"b c", L"d"}), splitOnChar(L"a:b c:d", L':'));
}

TEST(SplitOnChar, TextWithoutTheCharacterIsOnePiece) {
    EXPECT_EQ(Pieces{L"abc"}, splitOnChar(L"abc", L':'));
}

TEST(SplitOnChar, EmptyTextHasNoPieces) { EXPECT_EQ(Pieces{}, splitOnChar(L"", L':')); }

TEST(SplitOnChar, EmptyPiecesVanish) {
    EXPECT_EQ((Pieces{L"a", L"b"}), splitOnChar(L"::a:::b::", L':'));
}

TEST(SplitOnChar, SeparatorsOnlyGiveNoPieces) { EXPECT_EQ(Pieces{}, splitOnChar(L":::", L':')); }

TEST(SplitOnChar, ZeroMaySeparate) {
    EXPECT_EQ((Pieces{L"a", L"b"}), splitOnChar(L"a\0b\0"s, L'\0'));
    EXPECT_EQ(Pieces{L"a\0b"s}, splitOnChar(L"a\0b"s, L':'));
}

namespace {

Pieces piecesByTheRules(std::wstring const& text, wchar_t separator) {
    Pieces pieces;
    std::size_t start = 0;
    for (std::size_t position = 0; position < text.size(); ++position) {
        if (text[position] != separator)
            continue;
        auto const piece = text.substr(start, position - start);
        if (!piece.empty())
            pieces.push_back(piece);
        start = position + 1;
    }
    auto const remains = text.substr(start);
    if (!remains.empty())
        pieces.push_back(remains);
    return pieces;
}

} // namespace

TEST(SplitOnChar, AgreesWithTheRulesOnRandomTexts) {
    test::Campaign campaign(100000);
    RandomText<wchar_t> texts(L"::ab", campaign);
    while (campaign.nextRound()) {
        auto const text = texts.upTo(10);

        ASSERT_EQ(piecesByTheRules(text, L':'), splitOnChar(text, L':'))
            << testing::PrintToString(text);
    }
}

TEST(JoinWithTrailing, SeparatorFollowsEveryPiece) {
    EXPECT_EQ(L"a, b, ", joinWithTrailing({L"a", L"b"}, L", "));
    EXPECT_EQ(L"a\\", joinWithTrailing({L"a"}, L"\\"));
}

TEST(JoinWithTrailing, EmptyListGivesNothing) { EXPECT_EQ(L"", joinWithTrailing({}, L"\\")); }

TEST(JoinWithTrailing, EmptyPiecesGetTheirSeparatorToo) {
    EXPECT_EQ(L";a;", joinWithTrailing({L"", L"a"}, L";"));
}

TEST(JoinWithTrailing, EmptySeparatorJoinsAlone) {
    EXPECT_EQ(L"ab", joinWithTrailing({L"a", L"b"}, L""));
}

// --- code page ------------------------------------------------------------------------------------

TEST(NarrowToWide, EmptyTextIsEmpty) { EXPECT_EQ(L"", narrowToWide("")); }

TEST(NarrowToWide, ReadsTheSystemsCodePage) {
    EXPECT_EQ(L"abc \u20AC\u00E9\u0160", narrowToWide("abc \x80\xE9\x8A"));
}

TEST(NarrowToWide, ZeroCharactersStay) { EXPECT_EQ(L"\0a\0"s, narrowToWide("\0a\0"s)); }

TEST(NarrowToWide, LongTextIsNotCut) {
    EXPECT_EQ(std::wstring(100000, L'\u00E9'), narrowToWide(std::string(100000, '\xE9')));
}

TEST(WideToNarrow, EmptyTextIsEmpty) { EXPECT_EQ("", wideToNarrow(L"")); }

TEST(WideToNarrow, WritesTheSystemsCodePage) {
    EXPECT_EQ("abc \x80\xE9\x8A", wideToNarrow(L"abc \u20AC\u00E9\u0160"));
}

TEST(WideToNarrow, WhatThePageLacksTurnsIntoUnderscores) {
    EXPECT_EQ("a_b_", wideToNarrow(L"a\u4E2Db\u0416"));
}

TEST(WideToNarrow, SurrogatesTurnIntoOneUnderscoreEach) {
    EXPECT_EQ("__", wideToNarrow(L"\xD83D\xDE00"));
    EXPECT_EQ(
        "_a_", wideToNarrow(L"\xD83D"
                            L"a\xDE00"));
}

// No flag forbids it: where the page has a letter that looks alike, that one is taken.
TEST(WideToNarrow, LettersThatLookAlikeAreTaken) { EXPECT_EQ("A8", wideToNarrow(L"\u0100\u221E")); }

TEST(WideToNarrow, ZeroCharactersStay) { EXPECT_EQ("\0a\0"s, wideToNarrow(L"\0a\0"s)); }

TEST(WideToNarrow, LongTextIsNotCut) {
    EXPECT_EQ(std::string(100000, '_'), wideToNarrow(std::wstring(100000, L'\u4E2D')));
}

TEST(CodePage, EveryByteComesBack) {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte)
        bytes.push_back(static_cast<char>(byte));

    EXPECT_EQ(256u, narrowToWide(bytes).size());
    EXPECT_EQ(bytes, wideToNarrow(narrowToWide(bytes)));
}

// --- up to zero -----------------------------------------------------------------------------------

TEST(UpToZero, EndsAtTheFirstZero) {
    EXPECT_EQ(L"a", upToZero(L"a\0b\0"s));
    EXPECT_EQ(L"", upToZero(L"\0b"s));
}

TEST(UpToZero, TextWithoutZeroIsWhole) {
    EXPECT_EQ(L"ab", upToZero(L"ab"));
    EXPECT_EQ(L"", upToZero(L""));
}
