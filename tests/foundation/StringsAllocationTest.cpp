// What the text services cost in allocations, and what comes of a failed one.

#include "vrUtils/Strings.h"

#include "tests/support/AllocationCounter.h"

#include <gtest/gtest.h>

using test::AllocationCounter;
using namespace vrUtils::Strings;

TEST(StringsAllocation, DecodingUsesTheMemoryOfTheTextItIsGiven) {
    auto url = std::string(1000, 'a') + "%20" + std::string(1000, 'b');
    AllocationCounter const counter;

    auto const decoded = DecodeURL(std::move(url));

    EXPECT_EQ(0u, counter.allocations());
    EXPECT_EQ(2001u, decoded.size());
}

TEST(StringsAllocation, EachLineCostsItselfAlone) {
    std::wstring const text = L"1234567\r\n12345678\r\n\r\n1\n";
    AllocationCounter const counter;

    auto const lines = BreakMultiLineString(text);

    EXPECT_EQ(3u + 1u, counter.allocations());
    EXPECT_EQ(3u, lines.size());
}

TEST(StringsAllocation, EachFailureComesOut) {
    std::wstring const text = L"a line that needs the heap\nand another one that does\n";

    auto const inLines = test::failEachAllocation([&] { BreakMultiLineString(text); });

    EXPECT_EQ(4u, inLines);
}
