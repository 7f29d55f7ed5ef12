#include "foundation/Message.h"

#include "GroupingLocale.h"

#include <gtest/gtest.h>

#include <cstdint>

using namespace std::string_literals;
using vrUtils::composeMessage;

TEST(Message, PutsThePiecesInReadingOrder) {
    EXPECT_EQ(
        L"ReadFile failed on \"a.b\" - error 5 of 10",
        composeMessage("ReadFile failed on \"", L"a.b"s, L"\" - error ", 5, " of ", 10u));
}

TEST(Message, OfEmptyPiecesIsEmpty) { EXPECT_EQ(L"", composeMessage("", L"", L""s)); }

TEST(Message, WritesAPathInItsNormalForm) {
    auto const path = vr::Path::file(L"C:foo//a.b");

    EXPECT_EQ(LR"([C:foo\a.b])", composeMessage(L"[", path, L"]"));
}

TEST(Message, LeavesThePathAsItWas) {
    auto path = vr::Path::file(L"C:foo");

    EXPECT_EQ(LR"(C:\foo)", composeMessage(path));
    EXPECT_EQ(L"C:foo", path.modify(vr::Path::eFile).get());
}

TEST(Message, WritesNumbersInDecimal) {
    EXPECT_EQ(L"4294967295", composeMessage(std::uint32_t{0xFFFFFFFF}));
    EXPECT_EQ(L"18446744073709551615", composeMessage(std::uint64_t{0xFFFFFFFFFFFFFFFF}));
    EXPECT_EQ(L"-2147483648", composeMessage(std::int32_t{-2147483647 - 1}));
    EXPECT_EQ(L"1234567", composeMessage(1234567ul));
}

TEST(Message, WritesNumbersInHexadecimalWhereItIsSwitched) {
    EXPECT_EQ(
        L"SetEvent failed (error 0xab)",
        composeMessage("SetEvent failed (error 0x", std::hex, 0xAB, ")"));
}

TEST(Message, HexadecimalEndsWithTheMessage) {
    composeMessage(std::hex, 10);

    EXPECT_EQ(L"10", composeMessage(10));
}

TEST(Message, DoesNotGroupDigitsInAHostsLocale) {
    GroupingLocale const locale;

    auto const message = composeMessage(1234567);

    EXPECT_EQ(L"1234567", message);
}

TEST(Message, TakesTextAsItIs) {
    EXPECT_EQ(L"%s%n a\0b\xD800"s, composeMessage("%s%n ", L"a\0b\xD800"s));
}
