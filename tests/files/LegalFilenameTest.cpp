#include "vrUtils/Files/FileQueries.h"

#include "tests/files/FailsWith.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/Campaign.h"

#include <gtest/gtest.h>

#include <string>

using namespace vrUtils::Files;

namespace {

std::wstring legal(std::wstring const& source) {
    std::wstring result = L"before";
    GenerateLegalFilename(source, result, false);
    return result;
}

std::wstring legalAscii(std::wstring const& source) {
    std::wstring result = L"before";
    GenerateLegalFilename(source, result, true);
    return result;
}

// What any character but a tilde becomes, wherever it stands.
wchar_t expected(wchar_t character, bool asciiOnly) {
    if (character < 32 || std::wstring(L"\\/:*?<>|\"").find(character) != std::wstring::npos)
        return L'-';
    return asciiOnly && character >= 127 ? L'~' : character;
}

} // namespace

TEST(LegalFilename, LegalNameStays) {
    EXPECT_EQ(L"Clip 01 (new).mxf", legal(L"Clip 01 (new).mxf"));
    EXPECT_EQ(L"Clip 01 (new).mxf", legalAscii(L"Clip 01 (new).mxf"));
}

TEST(LegalFilename, DeviceNamesAndClosingDotsStay) {
    EXPECT_EQ(L"CON", legal(L"CON"));
    EXPECT_EQ(L"nul.mxf", legalAscii(L"nul.mxf"));
    EXPECT_EQ(L"clip. ", legal(L"clip. "));
    EXPECT_EQ(L"..", legal(L".."));
}

TEST(LegalFilename, EachReservedCharacterBecomesADash) {
    EXPECT_EQ(L"a---------b", legal(L"a\\/:*?<>|\"b"));
    EXPECT_EQ(L"a---------b", legalAscii(L"a\\/:*?<>|\"b"));
}

TEST(LegalFilename, ReservedCharactersAtBothEndsBecomeDashes) { EXPECT_EQ(L"-a-", legal(L":a:")); }

TEST(LegalFilename, TildeInFrontBecomesADash) {
    EXPECT_EQ(L"-a", legal(L"~a"));
    EXPECT_EQ(L"-a", legalAscii(L"~a"));
    EXPECT_EQ(L"-~a", legal(L"~~a"));
}

TEST(LegalFilename, TildeElsewhereStays) {
    EXPECT_EQ(L"a~1.mxf", legal(L"a~1.mxf"));
    EXPECT_EQ(L"a~", legalAscii(L"a~"));
}

TEST(LegalFilename, TildeAloneBecomesADashBeforeItCouldBeEscaped) {
    EXPECT_EQ(L"-", legal(L"~"));
    EXPECT_EQ(L"-", legalAscii(L"~"));
}

TEST(LegalFilename, ReservedCharacterInFrontOfATildeKeepsTheTilde) {
    EXPECT_EQ(L"-~", legal(L":~"));
}

TEST(LegalFilename, ControlCharactersBecomeDashesAndNeverTildes) {
    EXPECT_EQ(L"a--b", legal(L"a\x1F\nb"));
    EXPECT_EQ(L"a--b", legalAscii(L"a\x1F\nb"));
}

TEST(LegalFilename, ZeroInsideIsAControlCharacter) {
    EXPECT_EQ(L"a-b", legal(std::wstring(L"a\0b", 3)));
}

TEST(LegalFilename, AsciiOnlyTurnsTheRestIntoTildes) {
    EXPECT_EQ(L"a~~~b", legalAscii(L"a\x7F\x80\u4E2Db"));
    EXPECT_EQ(
        L"a\x7E"
        L"b",
        legalAscii(L"a\x7E"
                   L"b"));
}

TEST(LegalFilename, AsciiOnlyMayGiveATildeInFront) { EXPECT_EQ(L"~a", legalAscii(L"\u00E4a")); }

TEST(LegalFilename, AsciiOnlyGivesATildeForANameOfOneCharacter) {
    EXPECT_EQ(L"~", legalAscii(L"\u00E4"));
}

TEST(LegalFilename, OtherwiseTheRestStays) {
    EXPECT_EQ(L"a\x7F\x80\u4E2Db", legal(L"a\x7F\x80\u4E2Db"));
}

TEST(LegalFilename, CharacterOutsideTheBasicPlaneBecomesTwoTildes) {
    EXPECT_EQ(
        L"a~~b", legalAscii(L"a\xD83D\xDE00"
                            L"b"));
    EXPECT_EQ(
        L"a\xD83D\xDE00"
        L"b",
        legal(L"a\xD83D\xDE00"
              L"b"));
}

TEST(LegalFilename, HalfACharacterCountsAsOne) {
    EXPECT_EQ(
        L"a~b", legalAscii(L"a\xD83D"
                           L"b"));
    EXPECT_EQ(
        L"a\xDE00"
        L"b",
        legal(L"a\xDE00"
              L"b"));
}

TEST(LegalFilename, PercentSignsStay) {
    EXPECT_EQ(L"%s%n%d%5C", legal(L"%s%n%d%5C"));
    EXPECT_EQ(L"%s%n%d%5C", legalAscii(L"%s%n%d%5C"));
}

TEST(LegalFilename, EveryCharacterFollowsTheTable) {
    for (unsigned value = 0; value <= 0xFFFF; ++value) {
        auto const character = static_cast<wchar_t>(value);
        std::wstring const source{L'a', character, L'b'};
        ASSERT_EQ((std::wstring{L'a', expected(character, false), L'b'}), legal(source)) << value;
        ASSERT_EQ((std::wstring{L'a', expected(character, true), L'b'}), legalAscii(source))
            << value;
    }
}

TEST(LegalFilename, EmptySourceIsRefused) {
    std::wstring result = L"before";

    EXPECT_THAT(
        [&] { GenerateLegalFilename(L"", result, false); },
        FailsWith(L"GenerateLegalFilename failed as the source file name was empty"));

    EXPECT_EQ(L"before", result);
}

TEST(LegalFilename, ResultMayBeTheSource) {
    std::wstring name = L"~a:\u00E4";

    GenerateLegalFilename(name, name, true);

    EXPECT_EQ(L"-a-~", name);
}

TEST(LegalFilename, SourceMayBeOfAnyLength) {
    for (std::size_t const length : {300u, 4'000u, 32'767u})
        EXPECT_EQ(std::wstring(length, L'-'), legal(std::wstring(length, L'?')));
}

TEST(LegalFilename, SecondRunOnRandomNamesChangesNothing) {
    test::Campaign campaign(2000);
    while (campaign.nextRound()) {
        std::wstring source(1 + campaign.below(20), L'\0');
        for (auto& character : source)
            character = static_cast<wchar_t>(campaign.below(140));

        auto const once = legal(source);

        ASSERT_EQ(once, legal(once)) << campaign;
    }
}

TEST(LegalFilename, FailedAllocationLeavesTheResult) {
    std::wstring const source(100, L':');

    auto const failed = test::failEachAllocation([&] {
        std::wstring result = L"before";
        try {
            GenerateLegalFilename(source, result, true);
        } catch (std::bad_alloc const&) {
            EXPECT_EQ(L"before", result);
            throw;
        }
    });

    EXPECT_LT(0u, failed);
}
