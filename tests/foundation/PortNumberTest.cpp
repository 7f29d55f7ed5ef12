#include "foundation/PortNumber.h"

#include "GroupingLocale.h"

#include <gtest/gtest.h>

using vrUtils::portNumber;

namespace {

constexpr std::uint32_t preset = 4711;

} // namespace

TEST(PortNumber, ReadsADecimalNumber) {
    EXPECT_EQ(0u, portNumber(L"0", preset));
    EXPECT_EQ(8080u, portNumber(L"8080", preset));
    EXPECT_EQ(60772u, portNumber(L"+60772", preset));
}

TEST(PortNumber, TextThatBeginsWithNoNumberGivesThePreset) {
    for (auto const* text : {L"", L" ", L"abc", L"x80", L"-", L"+", L"- 1", L".5", L"\u0661"})
        EXPECT_EQ(preset, portNumber(text, preset)) << testing::PrintToString(text);
}

TEST(PortNumber, PresetMayBeAnyNumber) {
    EXPECT_EQ(0u, portNumber(L"abc", 0));
    EXPECT_EQ(0xFFFFFFFFu, portNumber(L"abc", 0xFFFFFFFF));
}

TEST(PortNumber, SkipsBlanksBeforeTheNumber) { EXPECT_EQ(7u, portNumber(L" \t\r\n7", preset)); }

TEST(PortNumber, IgnoresWhatFollowsTheNumber) {
    EXPECT_EQ(80u, portNumber(L"80abc", preset));
    EXPECT_EQ(80u, portNumber(L"80 81", preset));
    EXPECT_EQ(0u, portNumber(L"0x10", preset));
    EXPECT_EQ(1u, portNumber(L"1.9", preset));
}

TEST(PortNumber, LeadingZerosAreNotOctal) { EXPECT_EQ(10u, portNumber(L"010", preset)); }

TEST(PortNumber, KeepsWhatThirtyTwoBitsHold) {
    EXPECT_EQ(65536u, portNumber(L"65536", preset));
    EXPECT_EQ(0xFFFFFFFEu, portNumber(L"4294967294", preset));
    EXPECT_EQ(0xFFFFFFFFu, portNumber(L"4294967295", preset));
}

TEST(PortNumber, NumberTooLargeGivesTheLargest) {
    EXPECT_EQ(0xFFFFFFFFu, portNumber(L"4294967296", preset));
    EXPECT_EQ(0xFFFFFFFFu, portNumber(L"99999999999999999999999999", preset));
}

TEST(PortNumber, MinusSignWrapsTheNumberAround) {
    EXPECT_EQ(0xFFFFFFFFu, portNumber(L"-1", preset));
    EXPECT_EQ(0xFFFFFFB0u, portNumber(L"-80", preset));
    EXPECT_EQ(0u, portNumber(L"-0", preset));
}

TEST(PortNumber, HasNoRegardToTheHostsLocale) {
    GroupingLocale const locale;

    auto const number = portNumber(L"1.000", preset);

    EXPECT_EQ(1u, number);
}
