#include "config/DumpLine.h"

#include "tests/support/WideText.h"

#include <gtest/gtest.h>

#include <ostream>
#include <stdexcept>

using vrUtils::Registry::decodeHex;
using vrUtils::Registry::DumpLine;

namespace {

struct Split {
    std::wstring line;
    std::wstring name;
    std::wstring type;
    std::wstring data;
};

void PrintTo(Split const& split, std::ostream* stream) { *stream << test::utf8(split.line); }

class DumpLineParts : public testing::TestWithParam<Split> {};

using Bytes = std::vector<unsigned char>;

struct Decoded {
    std::wstring text;
    Bytes bytes;
};

void PrintTo(Decoded const& decoded, std::ostream* stream) { *stream << test::utf8(decoded.text); }

class DecodedHex : public testing::TestWithParam<Decoded> {};

} // namespace

TEST_P(DumpLineParts, AreTheExpectedOnes) {
    auto const& expected = GetParam();

    DumpLine const parts(expected.line);

    EXPECT_EQ(expected.name, parts.name);
    EXPECT_EQ(expected.type, parts.type);
    EXPECT_EQ(expected.data, parts.data);
}

INSTANTIATE_TEST_SUITE_P(
    WellFormed, DumpLineParts,
    testing::Values(
        Split{L"\"name\"=\"text\"", L"name", L"string", L"text"},
        Split{L"\"name\"=\"\"", L"name", L"string", L""},
        Split{L"\"\"=\"text\"", L"", L"string", L"text"},
        Split{L"\"name\"=dword:00001234", L"name", L"dword:", L"00001234"},
        Split{L"\"name\"=hex:0a,ff", L"name", L"hex:", L"0a,ff"},
        Split{L"\"name\"=hex:", L"name", L"hex:", L""},
        Split{L"\"name\"=hex(7):61,00", L"name", L"hex(7):", L"61,00"}));

INSTANTIATE_TEST_SUITE_P(
    WithoutEqualsSign, DumpLineParts,
    testing::Values(
        Split{L"", L"", L"", L""}, Split{L"\"name\"", L"", L"", L""},
        Split{L"hex:0a", L"", L"", L""}));

// The position of the sign less two is taken for the length of the name, and wraps.
INSTANTIATE_TEST_SUITE_P(
    WithAnEarlyEqualsSign, DumpLineParts,
    testing::Values(
        Split{L"=\"text\"", L"\"text\"", L"string", L"text"},
        Split{L"=dword:12", L"dword:12", L"dword:", L"12"},
        Split{L"a=\"text\"", L"=\"text\"", L"string", L"text"},
        Split{L"ab=\"text\"", L"", L"string", L"text"},
        Split{L"abc=\"text\"", L"b", L"string", L"text"}));

INSTANTIATE_TEST_SUITE_P(
    WithoutQuotes, DumpLineParts,
    testing::Values(
        Split{L"name=text", L"am", L"string", L"ex"}, Split{L"name=xy", L"am", L"string", L""},
        Split{L"name=x", L"am", L"string", L""}, Split{L"\"name\"=\"", L"name", L"string", L""}));

INSTANTIATE_TEST_SUITE_P(
    WithFurtherEqualsSigns, DumpLineParts,
    testing::Values(
        Split{L"\"a=b\"=\"text\"", L"", L"string", L"\"=\"text"},
        Split{L"\"ab=c\"=dword:12", L"a", L"c\"=dword:", L"12"},
        Split{L"\"name\"=\"a=b\"", L"name", L"string", L"a=b"}));

INSTANTIATE_TEST_SUITE_P(
    WithTypeWordsInTexts, DumpLineParts,
    testing::Values(
        Split{L"\"name\"=\"the hex file\"", L"name", L"\"the hex ", L"file\""},
        Split{L"\"name\"=\"swordword\"", L"name", L"\"swordword\"", L""},
        Split{L"\"name\"=\"hex(7):61\"", L"name", L"\"hex(7):", L"61\""},
        Split{L"\"name\"=\"HEX DWORD\"", L"name", L"string", L"HEX DWORD"},
        Split{L"\"hex dword\"=\"text\"", L"hex dword", L"string", L"text"}));

INSTANTIATE_TEST_SUITE_P(
    WithTypeWordsInOrderOfTheirRank, DumpLineParts,
    testing::Values(
        Split{L"\"name\"=hex:hex(7)x0a", L"name", L"hex:hex(7)x", L"0a"},
        Split{L"\"name\"=dword:hex:12", L"name", L"dword:hex:", L"12"},
        Split{L"\"name\"=dword:dword:12", L"name", L"dword:", L"dword:12"}));

INSTANTIATE_TEST_SUITE_P(
    OfOtherTypes, DumpLineParts,
    testing::Values(
        Split{L"\"name\"=hex(2):61,00", L"name", L"hex(", L"2):61,00"},
        Split{L"\"name\"=hex=0a", L"name", L"hex=", L"0a"},
        Split{L"\"name\"=hex", L"name", L"hex", L""},
        Split{L"\"name\"=hex(7)", L"name", L"hex(7)", L""},
        Split{L"\"name\"=dword", L"name", L"dword", L""}));

TEST(DumpLine, EndingAtItsEqualsSignIsOutOfRange) {
    EXPECT_THROW(DumpLine(L"\"name\"="), std::out_of_range);
    EXPECT_THROW(DumpLine(L"="), std::out_of_range);
}

TEST_P(DecodedHex, HasTheExpectedBytes) { EXPECT_EQ(GetParam().bytes, decodeHex(GetParam().text)); }

INSTANTIATE_TEST_SUITE_P(
    WellFormed, DecodedHex,
    testing::Values(
        Decoded{L"", {}}, Decoded{L"0a", {0x0A}}, Decoded{L"0a,ff", {0x0A, 0xFF}},
        Decoded{
            L"01,23,45,67,89,ab,cd,ef,AB,CD,EF",
            {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF, 0xAB, 0xCD, 0xEF}}));

// The neighbours of the digits in the character set, and digits of other scripts.
INSTANTIATE_TEST_SUITE_P(
    WithWrongDigits, DecodedHex,
    testing::Values(
        Decoded{L"/1,1:,`2,2g,@3,3G", {0x01, 0x10, 0x02, 0x20, 0x03, 0x30}}, Decoded{L"zz", {0x00}},
        Decoded{L"  ", {0x00}}, Decoded{L"\xFF11\xFF12", {0x00}},
        Decoded{L"\x0131\x0661", {0x00}}));

INSTANTIATE_TEST_SUITE_P(
    WithAnySeparator, DecodedHex,
    testing::Values(
        Decoded{
            L"0a;0b 0c\x2603"
            L"0d",
            {0x0A, 0x0B, 0x0C, 0x0D}},
        Decoded{L"0a,", {0x0A}}, Decoded{L"0a90b", {0x0A, 0x0B}}));

// What stands in a file for bytes that were written in decimal.
INSTANTIATE_TEST_SUITE_P(
    OfDecimalNumbers, DecodedHex,
    testing::Values(
        Decoded{L"10,255", {0x10, 0x25}}, Decoded{L"255,10", {0x25, 0x01}},
        Decoded{L"255,01", {0x25, 0x00}}));

TEST(DecodedHex, WithOneDigitInTheLastGroupIsOutOfRange) {
    EXPECT_THROW(decodeHex(L"0"), std::out_of_range);
    EXPECT_THROW(decodeHex(L"0a,b"), std::out_of_range);
    EXPECT_THROW(decodeHex(L"100,100"), std::out_of_range);
}
