#include "tools/vrtool/TextTable.h"

#include "tests/support/Campaign.h"
#include "tools/vrtool/TextWidth.h"
#include "tools/vrtool/Utf8.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

using Align = TextTable::Align;
using Narrow = TextTable::Narrow;

constexpr auto noLimit = std::nullopt;

TextTable twoColumns(Narrow narrow) {
    return TextTable({{L"NAME", Align::left, narrow}, {L"BYTES", Align::right}});
}

} // namespace

TEST(TextTable, AlignsTextLeftAndNumbersRight) {
    auto table = twoColumns(Narrow::cut);
    table.addRow({L"a", L"1"});
    table.addRow({L"longer", L"1234567"});

    EXPECT_EQ(
        "NAME      BYTES\n"
        "a             1\n"
        "longer  1234567\n",
        table.text(noLimit));
}

TEST(TextTable, HasNoBlanksAtTheEndOfALine) {
    TextTable table({{L"A"}, {L"B"}});
    table.addRow({L"x", {}});
    table.addRow({L"y", L"long"});

    EXPECT_EQ("A  B\nx\ny  long\n", table.text(noLimit));
}

TEST(TextTable, IsShownInFullWhereItJustFits) {
    auto table = twoColumns(Narrow::cut);
    table.addRow({L"0123456789", L"12345"});

    EXPECT_EQ("NAME        BYTES\n0123456789  12345\n", table.text(17));
    EXPECT_EQ("NAME       BYTES\n0123456789 12345\n", table.text(16));
}

TEST(TextTable, CutsWithAnEllipsis) {
    auto table = twoColumns(Narrow::cut);
    table.addRow({L"0123456789", L"12345"});
    table.addRow({L"01234567", L"1"});

    EXPECT_EQ(
        "NAME     BYTES\n"
        "0123456\u2026 12345\n"
        "01234567     1\n",
        table.text(14));
}

TEST(TextTable, CutsTheWidestColumnFirst) {
    TextTable table({{L"A", Align::left, Narrow::cut}, {L"B", Align::left, Narrow::cut}});
    table.addRow({L"short", L"0123456789"});

    EXPECT_EQ("A     B\nshort 0123456\u2026\n", table.text(14));
}

TEST(TextTable, CutsNoColumnToLessThanFour) {
    auto table = twoColumns(Narrow::cut);
    table.addRow({L"0123456789", L"12345"});

    EXPECT_EQ("NAME BYTES\n012\u2026 12345\n", table.text(1));
}

TEST(TextTable, NeverCutsNumbers) {
    auto table = twoColumns(Narrow::keep);
    table.addRow({L"0123456789", L"12345"});

    EXPECT_EQ("NAME       BYTES\n0123456789 12345\n", table.text(5));
}

TEST(TextTable, WrapsBehindSeparators) {
    auto table = twoColumns(Narrow::wrap);
    table.addRow({L"C:\\Media\\clip.wav", L"1"});

    EXPECT_EQ("NAME       BYTES\nC:\\Media\\      1\nclip.wav\n", table.text(16));
}

TEST(TextTable, WrapsAnywhereWhereNoSeparatorIsNear) {
    auto table = twoColumns(Narrow::wrap);
    table.addRow({L"a 34567898abcdef", L"1"});

    EXPECT_EQ("NAME       BYTES\na 34567898     1\nabcdef\n", table.text(16));
}

TEST(TextTable, GivesColumnsALineOfTheirOwnAboveAndBelow) {
    TextTable table(
        {{L"PATH", Align::left, Narrow::ownLine},
         {L"NAME"},
         {L"FAILURE", Align::left, Narrow::ownLine}});
    table.addRow({L"C:\\Media\\a.wav", L"a", L"Missing RIFF tag"});
    table.addRow({L"C:\\Media\\b.wav", L"b", {}});

    EXPECT_EQ(
        "PATH            NAME  FAILURE\n"
        "C:\\Media\\a.wav  a     Missing RIFF tag\n"
        "C:\\Media\\b.wav  b\n",
        table.text(noLimit));
    EXPECT_EQ(
        "PATH\n"
        "  NAME\n"
        "  FAILURE\n"
        "C:\\Media\\a.wav\n"
        "  a\n"
        "  Missing RIFF tag\n"
        "C:\\Media\\b.wav\n"
        "  b\n",
        table.text(20));
}

TEST(TextTable, WrapsALineOfItsOwn) {
    TextTable table({{L"NAME"}, {L"FAILURE", Align::left, Narrow::ownLine}});
    table.addRow({L"a", L"0123456789"});

    EXPECT_EQ("  NAME\n  FAILU\n  RE\n  a\n  01234\n  56789\n", table.text(7));
}

TEST(TextTable, CountsWideCharactersAsTwoColumns) {
    auto table = twoColumns(Narrow::cut);
    table.addRow({L"\u65e5\u672c", L"1"});
    table.addRow({L"\U0001F3ACx", L"2"});

    EXPECT_EQ("NAME  BYTES\n\u65e5\u672c      1\n\U0001F3ACx       2\n", table.text(noLimit));
}

TEST(TextTable, CountsCombiningAccentsAsNone) {
    auto table = twoColumns(Narrow::cut);
    table.addRow({L"u\u0308ber", L"1"});

    EXPECT_EQ("NAME  BYTES\nu\u0308ber      1\n", table.text(noLimit));
}

TEST(TextTable, NeverCutsInsideASurrogatePair) {
    auto table = twoColumns(Narrow::cut);
    table.addRow({L"ab\U0001F3AC\U0001F3AC\U0001F3AC", L"1"});

    EXPECT_EQ("NAME  BYTES\nab\U0001F3AC\u2026     1\n", table.text(11));
}

TEST(TextTable, ShowsControlCharactersAsReplacements) {
    auto table = twoColumns(Narrow::cut);
    table.addRow({L"a\nb\x1b[2Jc\x7f\x9b", L"1"});

    EXPECT_EQ("NAME        BYTES\na\uFFFDb\uFFFD[2Jc\uFFFD\uFFFD      1\n", table.text(noLimit));
}

TEST(TextTable, ShowsLoneSurrogatesAsReplacements) {
    auto table = twoColumns(Narrow::cut);
    table.addRow({std::wstring(L"a") + wchar_t{0xD800}, L"1"});

    EXPECT_EQ("NAME  BYTES\na\uFFFD        1\n", table.text(noLimit));
}

TEST(TextTable, KeepsToItsWidthWithRandomTexts) {
    std::vector<std::wstring> const pieces{L"a", L"\\", L" ", L"\u65e5", L"\U0001F3AC", L"\u0308"};
    test::Campaign campaign(500);
    while (campaign.nextRound()) {
        TextTable table(
            {{L"PATH", Align::left, Narrow::ownLine},
             {L"CUT", Align::left, Narrow::cut},
             {L"WRAP", Align::left, Narrow::wrap},
             {L"FAILURE", Align::left, Narrow::ownLine}});
        for (int row = 0; row < 3; ++row) {
            std::vector<std::wstring> cells(4);
            for (auto& cell : cells)
                for (auto length = campaign.below(60); length > 0; --length)
                    cell += pieces[campaign.below(pieces.size())];
            table.addRow(cells);
        }
        auto const width = 11 + campaign.below(60);

        std::istringstream text(table.text(width));
        for (std::string line; std::getline(text, line);)
            ASSERT_LE(widthOf(fromUtf8(line)), width) << line << '\n' << campaign;
    }
}
