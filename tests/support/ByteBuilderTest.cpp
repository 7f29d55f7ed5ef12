#include "tests/support/ByteBuilder.h"

#include <gtest/gtest.h>

using test::ByteBuilder;
using test::Bytes;

namespace {

Bytes part(Bytes const& bytes, std::size_t start, std::size_t count) {
    auto const first = bytes.begin() + static_cast<std::ptrdiff_t>(start);
    return {first, first + static_cast<std::ptrdiff_t>(count)};
}

Bytes of(std::string_view text) { return {text.begin(), text.end()}; }

} // namespace

TEST(ByteBuilder, WritesWordsInBothOrders) {
    EXPECT_EQ((Bytes{0x34, 0x12}), ByteBuilder().little16(0x1234).bytes());
    EXPECT_EQ((Bytes{0x12, 0x34}), ByteBuilder().big16(0x1234).bytes());
    EXPECT_EQ((Bytes{0x78, 0x56, 0x34, 0x92}), ByteBuilder().little32(0x92345678).bytes());
    EXPECT_EQ((Bytes{0x92, 0x34, 0x56, 0x78}), ByteBuilder().big32(0x92345678).bytes());
}

TEST(ByteBuilder, AddsPieceAfterPiece) {
    auto const builder = ByteBuilder().byte(1).text("ab").raw({2, 3}).repeat(9, 2);

    EXPECT_EQ((Bytes{1, 'a', 'b', 2, 3, 9, 9}), builder.bytes());
    EXPECT_EQ(7u, builder.size());
}

TEST(ByteBuilder, KeepsZerosInTexts) {
    EXPECT_EQ((Bytes{'a', 0, 'b'}), ByteBuilder().text(std::string_view("a\0b", 3)).bytes());
}

TEST(ByteBuilder, ExtendedNumbersOfKnownRates) {
    EXPECT_EQ((test::ExtendedBytes{0x40, 0x0E, 0xAC, 0x44}), test::extended(44100));
    EXPECT_EQ((test::ExtendedBytes{0x40, 0x0E, 0xBB, 0x80}), test::extended(48000));
    EXPECT_EQ((test::ExtendedBytes{0x3F, 0xFF, 0x80}), test::extended(1));
    EXPECT_EQ(
        (test::ExtendedBytes{0x40, 0x1E, 0xFF, 0xFF, 0xFF, 0xFF}), test::extended(0xFFFFFFFF));
    EXPECT_EQ(test::ExtendedBytes{}, test::extended(0));
}

TEST(ByteBuilder, WavHeadOfOneFormatChunk) {
    auto const head = test::wavHead(44100, 16);

    EXPECT_EQ(
        ByteBuilder()
            .text("RIFF")
            .little32(40)
            .text("WAVEfmt ")
            .little32(16)
            .little16(1)
            .little16(2)
            .little32(44100)
            .little32(176400)
            .little16(4)
            .little16(16)
            .text("data")
            .little32(4)
            .repeat(0, 4)
            .bytes(),
        head);
}

TEST(ByteBuilder, AiffHeadOfOneFormatChunk) {
    auto const head = test::aiffHead(test::extended(48000), 24);

    EXPECT_EQ(
        ByteBuilder()
            .text("FORM")
            .big32(42)
            .text("AIFFCOMM")
            .big32(18)
            .big16(2)
            .big32(1000)
            .big16(24)
            .raw({0x40, 0x0E, 0xBB, 0x80})
            .repeat(0, 6)
            .text("data")
            .big32(4)
            .repeat(0, 4)
            .bytes(),
        head);
}

TEST(ByteBuilder, HeadWithAnOddChunkAhead) {
    auto const head = test::wavHead(44100, 16, {{{"odd ", {1, 2, 3}}}});

    EXPECT_EQ(ByteBuilder().text("odd ").little32(3).raw({1, 2, 3}).bytes(), part(head, 12, 11));
    EXPECT_EQ(of("fmt "), part(head, 23, 4));
}

TEST(ByteBuilder, HeadThatEndsWithItsFormatChunk) {
    EXPECT_EQ(36u, test::wavHead(44100, 16, {{}, {}}).size());
    EXPECT_EQ(38u, test::aiffHead(test::extended(44100), 16, {{}, {}}).size());
}

TEST(ByteBuilder, HeadWithLyingLengths) {
    test::HeadLayout layout;
    layout.before = {{"LIST", {1, 2}, 0xFFFFFFF0}};
    layout.formatLength = 0x7FFFFFFF;

    auto const head = test::wavHead(44100, 16, layout);

    EXPECT_EQ(ByteBuilder().little32(0xFFFFFFF0).bytes(), part(head, 16, 4));
    EXPECT_EQ(ByteBuilder().little32(0x7FFFFFFF).bytes(), part(head, 26, 4));
}

TEST(ByteBuilder, HeadWithOtherNames) {
    test::HeadLayout layout;
    layout.first = "RIFX";
    layout.form = "AIFC";

    auto const head = test::aiffHead(test::extended(44100), 16, layout);

    EXPECT_EQ(of("RIFX"), part(head, 0, 4));
    EXPECT_EQ(of("AIFC"), part(head, 8, 4));
}
