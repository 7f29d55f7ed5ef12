#include "media/ExtendedRate.h"

#include "tests/media/ExtendedRateModel.h"
#include "tests/support/Campaign.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>

using test::modelOfExtendedRate;
using vrUtils::Parsing::extendedRate;

namespace {

using Field = std::array<unsigned char, 10>;

std::uint32_t rateOf(Field const& field) { return extendedRate(field.data()); }

// A field of its first two bytes and the eight that follow.
Field fieldOf(std::uint32_t beginning, std::uint64_t mantissa) {
    Field field{static_cast<unsigned char>(beginning >> 8), static_cast<unsigned char>(beginning)};
    for (std::size_t i = 0; i < 8; ++i)
        field[2 + i] = static_cast<unsigned char>(mantissa >> 8 * (7 - i));
    return field;
}

Field withBit(Field field, std::size_t bit) {
    field[bit / 8] ^= static_cast<unsigned char>(0x80 >> bit % 8);
    return field;
}

} // namespace

TEST(ExtendedRate, UsualRates) {
    EXPECT_EQ(44100u, rateOf({0x40, 0x0E, 0xAC, 0x44}));
    EXPECT_EQ(48000u, rateOf({0x40, 0x0E, 0xBB, 0x80}));
    EXPECT_EQ(96000u, rateOf({0x40, 0x0F, 0xBB, 0x80}));
    EXPECT_EQ(8000u, rateOf({0x40, 0x0B, 0xFA, 0x00}));
}

TEST(ExtendedRate, ZeroBytesAreTwo) { EXPECT_EQ(2u, rateOf({})); }

TEST(ExtendedRate, FractionIsDropped) {
    EXPECT_EQ(44100u, rateOf({0x40, 0x0E, 0xAC, 0x44, 0x80}));
    EXPECT_EQ(44100u, rateOf({0x40, 0x0E, 0xAC, 0x44, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}));
    EXPECT_EQ(2u, rateOf(fieldOf(0x4000, 0xBFFFFFFFFFFFFFFF)));
    EXPECT_EQ(3u, rateOf(fieldOf(0x4000, 0xC000000000000000)));
}

TEST(ExtendedRate, LeadingOneIsTakenForGranted) {
    EXPECT_EQ(44100u, rateOf({0x40, 0x0E, 0x2C, 0x44}));
}

TEST(ExtendedRate, SignIsTheTopBitOfTheSecondByte) {
    EXPECT_EQ(0u - 44100u, rateOf({0x40, 0x8E, 0xAC, 0x44}));
    EXPECT_EQ(0u - 44100u, rateOf({0x40, 0x8E, 0xAC, 0x44, 0xFF}));
}

TEST(ExtendedRate, TopBitOfTheFirstByteMeansNothing) {
    EXPECT_EQ(44100u, rateOf({0xC0, 0x0E, 0xAC, 0x44}));
}

TEST(ExtendedRate, TopBitOfTheSecondByteIsNoPartOfTheExponent) {
    // 1 in the format's normal form, which reads as a tiny negative number here.
    EXPECT_EQ(0u, rateOf({0x3F, 0xFF, 0x80}));
}

TEST(ExtendedRate, LastByteIsNotRead) {
    auto field = fieldOf(0x4000 + 61, 0xFFFFFFFFFFFFFF00);
    auto const rate = rateOf(field);

    field[9] = 0xFF;

    EXPECT_EQ(rate, rateOf(field));
}

TEST(ExtendedRate, LowBitsOfALargeNumberAreKept) {
    // 2^62 + 2^31 + 2^10, whose last bit of 53 is worth 2^10.
    EXPECT_EQ(0x80000400u, rateOf(fieldOf(0x4000 + 61, 0x8000000100000800)));
}

TEST(ExtendedRate, TwoToThePowerOf63AndMoreIsZero) {
    EXPECT_EQ(0xFFFFFC00u, rateOf(fieldOf(0x4000 + 61, 0xFFFFFFFFFFFFFFFF)));
    for (std::uint32_t exponent = 62; exponent < 0x80; ++exponent)
        EXPECT_EQ(0u, rateOf(fieldOf(0x4000 + exponent, 0xFFFFFFFFFFFFFFFF))) << exponent;
}

TEST(ExtendedRate, NegativeNumbersOf63BitsAreZeroBeyondTheirRange) {
    EXPECT_EQ(0x00000400u, rateOf(fieldOf(0x4080 + 61, 0xFFFFFFFFFFFFFFFF)));
    EXPECT_EQ(0u, rateOf(fieldOf(0x4080 + 62, 0x8000000000000000)));
    EXPECT_EQ(0u, rateOf(fieldOf(0x4080 + 62, 0xFFFFFFFFFFFFFFFF)));
}

TEST(ExtendedRate, InfinityIsZero) {
    // The exponent of all ones: 0x7F of the second byte, and 7 of the first byte's low bits.
    EXPECT_EQ(0u, rateOf(fieldOf(0x437F, 0)));
    EXPECT_EQ(0u, rateOf(fieldOf(0x43FF, 0)));
}

TEST(ExtendedRate, WhatIsNoNumberIsZero) {
    EXPECT_EQ(0u, rateOf(fieldOf(0x7FFF, 0xC000000000000000)));
    EXPECT_EQ(0u, rateOf(fieldOf(0x7FFF, 0xA000000000000001)));
    EXPECT_EQ(0u, rateOf(fieldOf(0x437F, 0x4000000000000000)));
}

TEST(ExtendedRate, EachBitAloneIsReadAsTheModelReadsIt) {
    Field const bases[] = {
        {}, fieldOf(0x400E, 0xAC44000000000000), fieldOf(0x4000 + 61, 0), fieldOf(0x4000 + 52, 0)};
    for (auto const& base : bases)
        for (std::size_t bit = 0; bit < 80; ++bit) {
            auto const field = withBit(base, bit);

            EXPECT_EQ(modelOfExtendedRate(field.data()), rateOf(field)) << "bit " << bit;
        }
}

TEST(ExtendedRate, EveryBeginningIsReadAsTheModelReadsIt) {
    for (std::uint32_t beginning = 0; beginning <= 0xFFFF; ++beginning)
        for (std::uint64_t const mantissa : {0x0ull, 0xAC44FEDCBA987654ull, ~0x0ull}) {
            auto const field = fieldOf(beginning, mantissa);

            ASSERT_EQ(modelOfExtendedRate(field.data()), rateOf(field)) << beginning;
        }
}

TEST(ExtendedRate, CampaignOfFieldsIsReadAsTheModelReadsThem) {
    test::Campaign campaign(100000);
    while (campaign.nextRound()) {
        Field field;
        for (auto& byte : field)
            byte = static_cast<unsigned char>(campaign.below(256));
        // Most exponents lead out of range; half of the fields get one that does not.
        if (campaign.below(2) == 0)
            field[0] = 0x40;

        ASSERT_EQ(modelOfExtendedRate(field.data()), rateOf(field)) << campaign;
    }
}
