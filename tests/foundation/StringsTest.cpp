#include "vrUtils/Strings.h"

#include "vrUtils/vrException.h"

#include "RandomText.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>

using namespace std::string_literals;
using namespace vrUtils::Strings;

using Lines = std::list<std::wstring>;

// --- BreakMultiLineString -------------------------------------------------------------------------

TEST(BreakMultiLineString, EmptyTextHasNoLines) { EXPECT_EQ(Lines{}, BreakMultiLineString(L"")); }

TEST(BreakMultiLineString, TextWithoutBreaksIsOneLine) {
    EXPECT_EQ(Lines{L"one line"}, BreakMultiLineString(L"one line"));
}

TEST(BreakMultiLineString, EitherCharacterBreaks) {
    EXPECT_EQ((Lines{L"a", L"b"}), BreakMultiLineString(L"a\nb"));
    EXPECT_EQ((Lines{L"a", L"b"}), BreakMultiLineString(L"a\rb"));
    EXPECT_EQ((Lines{L"a", L"b"}), BreakMultiLineString(L"a\r\nb"));
}

TEST(BreakMultiLineString, AnyRunIsOneBreak) {
    EXPECT_EQ((Lines{L"a", L"b", L"c"}), BreakMultiLineString(L"a\r\n\r\nb\n\n\r\r\nc"));
}

TEST(BreakMultiLineString, LeadingBreaksGiveNoLine) {
    EXPECT_EQ((Lines{L"a", L"b"}), BreakMultiLineString(L"\r\n\na\nb"));
}

TEST(BreakMultiLineString, TrailingBreaksGiveNoLine) {
    EXPECT_EQ((Lines{L"a", L"b"}), BreakMultiLineString(L"a\nb\r\n\n"));
}

TEST(BreakMultiLineString, BreaksOnlyGiveNoLines) {
    EXPECT_EQ(Lines{}, BreakMultiLineString(L"\r\n\r\n"));
    EXPECT_EQ(Lines{}, BreakMultiLineString(L"\n"));
}

TEST(BreakMultiLineString, OtherWhiteSpaceDoesNotBreak) {
    EXPECT_EQ((Lines{L" a\tb ", L"\v\f\x2028"}), BreakMultiLineString(L" a\tb \n\v\f\x2028"));
}

TEST(BreakMultiLineString, BlankLineIsALine) {
    EXPECT_EQ((Lines{L"a", L" ", L"b"}), BreakMultiLineString(L"a\n \nb"));
}

TEST(BreakMultiLineString, ZeroCharactersStay) {
    EXPECT_EQ((Lines{L"a\0b"s, L"\0"s}), BreakMultiLineString(L"a\0b\n\0"s));
}

TEST(BreakMultiLineString, LongLinesAreNotCut) {
    std::wstring const line(100000, L'x');

    EXPECT_EQ((Lines{line, line}), BreakMultiLineString(line + L"\r\n" + line));
}

namespace {

// The rules, one after the other, on a copy that gets shorter.
Lines linesByTheRules(std::wstring copy) {
    Lines result;
    auto found = copy.find_first_of(L"\r\n");
    while (found != std::wstring::npos) {
        auto const before = copy.substr(0, found);
        if (!before.empty())
            result.push_back(before);
        copy = copy.substr(found);
        auto const next = copy.find_first_not_of(L"\r\n");
        if (next == std::wstring::npos) {
            copy.clear();
            break;
        }
        copy = copy.substr(next);
        found = copy.find_first_of(L"\r\n");
    }
    if (!copy.empty())
        result.push_back(copy);
    return result;
}

} // namespace

TEST(BreakMultiLineString, AgreesWithTheRulesOnRandomTexts) {
    test::Campaign campaign(100000);
    RandomText<wchar_t> texts(L"\r\n\r\na b", campaign);
    while (campaign.nextRound()) {
        auto const text = texts.upTo(12);

        ASSERT_EQ(linesByTheRules(text), BreakMultiLineString(text))
            << testing::PrintToString(text);
    }
}

// --- DecodeURL ------------------------------------------------------------------------------------

TEST(DecodeURL, TextWithoutEscapesIsUnchanged) {
    EXPECT_EQ("http://host:80/a b?c=d&e#f", DecodeURL("http://host:80/a b?c=d&e#f"));
    EXPECT_EQ("", DecodeURL(""));
}

TEST(DecodeURL, DecodesEscapes) {
    EXPECT_EQ("a b/c", DecodeURL("a%20b%2fc"));
    EXPECT_EQ("a b/c", DecodeURL("a%20b%2Fc"));
}

TEST(DecodeURL, DecodesEscapesSideBySide) { EXPECT_EQ("AAB", DecodeURL("%41%41%42")); }

TEST(DecodeURL, DecodesAnEscapeAtTheVeryEnd) { EXPECT_EQ("aA", DecodeURL("a%41")); }

TEST(DecodeURL, PlusStays) { EXPECT_EQ("a+b", DecodeURL("a+b")); }

TEST(DecodeURL, GivesRawBytes) { EXPECT_EQ("\xC3\xA9\xFF", DecodeURL("%C3%A9%ff")); }

TEST(DecodeURL, BytesBeyondAsciiStay) { EXPECT_EQ("\xC3\xA9 ", DecodeURL("\xC3\xA9%20")); }

TEST(DecodeURL, EscapeOfZeroStaysInTheResult) { EXPECT_EQ("a\0b"s, DecodeURL("a%00b")); }

TEST(DecodeURL, ZeroBytesOfTheTextStay) { EXPECT_EQ("a\0bA"s, DecodeURL("a\0b%41"s)); }

TEST(DecodeURL, UnreadablePairGivesZero) {
    EXPECT_EQ("a\0b"s, DecodeURL("a%zzb"));
    EXPECT_EQ("\0"s, DecodeURL("%g1"));
}

TEST(DecodeURL, PairReadableInPartGivesThatPart) {
    EXPECT_EQ("\x01", DecodeURL("%1g"));
    EXPECT_EQ("\x01", DecodeURL("% 1"));
    EXPECT_EQ("\x01", DecodeURL("%+1"));
    EXPECT_EQ("\xFF", DecodeURL("%-1"));
    EXPECT_EQ("\0"s, DecodeURL("%0x"));
}

TEST(DecodeURL, PercentSignBelongsToThePairBeforeIt) { EXPECT_EQ("\0"s + "1", DecodeURL("%%41")); }

TEST(DecodeURL, DecodedPercentSignIsNotReadAgain) { EXPECT_EQ("%41", DecodeURL("%2541")); }

TEST(DecodeURL, ReadsEveryPairAsTheRuntimeDoes) {
    for (int high = 0; high < 256; ++high)
        for (int low = 0; low < 256; ++low) {
            char const pair[] = {static_cast<char>(high), static_cast<char>(low), '\0'};
            auto const byte = static_cast<char>(std::strtol(pair, nullptr, 16) & 0xFF);

            ASSERT_EQ(std::string(1, byte), DecodeURL("%" + std::string(pair, 2)))
                << high << ' ' << low;
        }
}

TEST(DecodeURL, TakesItsTextByValue) {
    auto url = std::string(1000, 'a') + "%41";

    EXPECT_EQ(std::string(1000, 'a') + "A", DecodeURL(url));
    EXPECT_EQ(std::string(1000, 'a') + "%41", url);
}

namespace {

void expectInvalidSequence(std::string const& url) {
    try {
        DecodeURL(url);
        ADD_FAILURE() << "nothing thrown for " << testing::PrintToString(url);
    } catch (vrException const& failure) {
        EXPECT_EQ(0x80E0609Du, failure.code());
        EXPECT_EQ(L"Invalid URL sequence", failure.message());
        EXPECT_EQ(L"StringUtilities", failure.file());
        EXPECT_LT(0u, failure.line());
    }
}

} // namespace

TEST(DecodeURL, ThrowsIfThePairIsMissing) { expectInvalidSequence("a%"); }

TEST(DecodeURL, ThrowsIfThePairIsCut) { expectInvalidSequence("a%4"); }

TEST(DecodeURL, ThrowsOnAPercentSignAlone) { expectInvalidSequence("%"); }

TEST(DecodeURL, ThrowsIfOnlyAPercentSignFollows) { expectInvalidSequence("%%"); }

TEST(DecodeURL, ThrowsBehindWholeEscapes) { expectInvalidSequence("%41%42%4"); }

namespace {

// The rules, one after the other; nothing stands for the failure.
std::optional<std::string> decodedByTheRules(std::string const& url) {
    std::string result;
    std::size_t position = 0;
    auto percent = url.find('%', position);
    while (percent != std::string::npos) {
        result += url.substr(position, percent - position);
        position = percent + 3;
        if (position > url.size())
            return std::nullopt;
        auto const number = std::strtol(url.substr(percent + 1, 2).c_str(), nullptr, 16);
        result += static_cast<char>(static_cast<unsigned char>(number & 0xFF));
        percent = url.find('%', position);
    }
    return result + url.substr(position);
}

std::optional<std::string> decoded(std::string const& url) {
    try {
        return DecodeURL(url);
    } catch (vrException const&) {
        return std::nullopt;
    }
}

} // namespace

TEST(DecodeURL, AgreesWithTheRulesOnRandomTexts) {
    using namespace std::string_view_literals;
    test::Campaign campaign(200000);
    RandomText<char> texts("%%%%%%%019aAfFgxX +-\t\0\xE9"sv, campaign);
    while (campaign.nextRound()) {
        auto const url = texts.upTo(10);

        ASSERT_EQ(decodedByTheRules(url), decoded(url)) << testing::PrintToString(url);
    }
}

// --- FourCCToString -------------------------------------------------------------------------------

TEST(FourCCToString, WritesTheMostSignificantByteFirst) {
    EXPECT_EQ(L"RIFF", FourCCToString(0x52494646));
    EXPECT_EQ(L"fmt ", FourCCToString(0x666D7420));
}

TEST(FourCCToString, KeepsZeroBytes) {
    EXPECT_EQ(L"\0\0\0\0"s, FourCCToString(0));
    EXPECT_EQ(L"a\0b\0"s, FourCCToString(0x61006200));
}

TEST(FourCCToString, HighBytesAreTheCharactersOfThatNumber) {
    EXPECT_EQ(L"\u0080\u0099\u00E9\u00FF", FourCCToString(0x8099E9FF));
}
