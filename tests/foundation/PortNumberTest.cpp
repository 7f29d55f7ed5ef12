#include "foundation/PortNumber.h"

#include "GroupingLocale.h"
#include "RandomText.h"

#include <gtest/gtest.h>

#include <limits>
#include <locale>
#include <sstream>
#include <string>

using vrUtils::portNumber;

namespace {

constexpr std::uint32_t preset = 4711;

// A stream of its own for every text.
std::uint32_t streamed(std::wstring const& text) {
    std::wistringstream stream(text);
    stream.imbue(std::locale::classic());
    std::uint32_t number = 0;
    if (stream >> number)
        return number;
    auto const largest = std::numeric_limits<std::uint32_t>::max();
    return number == largest ? largest : preset;
}

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

TEST(PortNumber, ReadsEveryLengthOfNumberAsAStreamDoes) {
    for (std::size_t length = 0; length <= 24; ++length)
        for (wchar_t const digit : {L'0', L'1', L'4', L'9'})
            for (auto const* before : {L"", L"0", L"+", L"-", L" "}) {
                auto const text = before + std::wstring(length, digit);
                EXPECT_EQ(streamed(text), portNumber(text, preset)) << testing::PrintToString(text);
            }
}

TEST(PortNumber, AgreesWithAStreamAboutRandomText) {
    test::Campaign campaign(20000);
    RandomText<wchar_t> before(L" \t\r+-", campaign);
    RandomText<wchar_t> digits(L"0123456789", campaign);
    RandomText<wchar_t> behind(L"059 .,:xeL+-\u0661\u00b2", campaign);
    while (campaign.nextRound()) {
        auto const text = before.upTo(2) + digits.upTo(12) + behind.upTo(3);

        ASSERT_EQ(streamed(text), portNumber(text, preset))
            << testing::PrintToString(text) << ' ' << campaign;
    }
}
