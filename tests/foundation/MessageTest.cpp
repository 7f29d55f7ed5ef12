#include "foundation/Message.h"

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

namespace {

struct ThousandsWithPoint : std::numpunct<wchar_t> {
    wchar_t do_thousands_sep() const override { return L'.'; }
    std::string do_grouping() const override { return "\3"; }
};

} // namespace

TEST(Message, DoesNotGroupDigitsInAHostsLocale) {
    auto const before =
        std::locale::global(std::locale(std::locale::classic(), new ThousandsWithPoint));

    auto const message = composeMessage(1234567);

    std::locale::global(before);
    EXPECT_EQ(L"1234567", message);
}

TEST(Message, TakesTextAsItIs) {
    EXPECT_EQ(L"%s%n a\0b\xD800"s, composeMessage("%s%n ", L"a\0b\xD800"s));
}
