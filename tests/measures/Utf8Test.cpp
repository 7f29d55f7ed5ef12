#include "measures/Utf8.h"

#include "foundation/Platform.h"
#include "tests/support/ImportHook.h"

#include <gtest/gtest.h>

using vrUtils::utf8ToWide;
using vrUtils::wideToUtf8;

struct Text {
    char const* name;
    std::wstring wide;
    std::string bytes;
};

void PrintTo(Text const& text, std::ostream* stream) { *stream << text.name; }

class Utf8Texts : public testing::TestWithParam<Text> {};

TEST_P(Utf8Texts, GoThereAndBack) {
    EXPECT_EQ(GetParam().bytes, wideToUtf8(GetParam().wide));
    EXPECT_EQ(GetParam().wide, utf8ToWide(GetParam().bytes));
}

INSTANTIATE_TEST_SUITE_P(
    Utf8, Utf8Texts,
    testing::Values(
        Text{"Empty", {}, {}}, Text{"Ascii", L"BytesRead", "BytesRead"},
        Text{"Umlaut", L"\u00fc", "\xC3\xBC"}, Text{"ThreeBytes", L"\u20ac", "\xE2\x82\xAC"},
        Text{"Emoji", L"\U0001F3AC", "\xF0\x9F\x8E\xAC"},
        Text{"Null", std::wstring(L"a\0b", 3), std::string("a\0b", 3)},
        Text{"LastOfThePlane", L"\xFFFF", "\xEF\xBF\xBF"},
        Text{
            "Long", std::wstring(100000, L'\u20ac'),
            [] {
                std::string bytes;
                for (int index = 0; index < 100000; ++index)
                    bytes += "\xE2\x82\xAC";
                return bytes;
            }()}),
    [](auto const& test) { return test.param.name; });

TEST(Utf8, HalfASurrogatePairBecomesTheReplacementCharacter) {
    EXPECT_EQ("a\xEF\xBF\xBD", wideToUtf8(L"a\xD83C"));
    EXPECT_EQ(
        "\xEF\xBF\xBD"
        "a",
        wideToUtf8(L"\xDFAC"
                   L"a"));
}

TEST(Utf8, BytesThatAreNoTextBecomeTheReplacementCharacter) {
    EXPECT_EQ(
        L"a\uFFFDb", utf8ToWide("a\xFF"
                                "b"));
}

TEST(Utf8, EachWayIsOneCallOfThePlatformWithTheCodePage) {
    std::vector<UINT> pages;
    test::ImportHook<decltype(WideCharToMultiByte)> const narrowing(
        "WideCharToMultiByte", [&](UINT page, auto... others) {
            pages.push_back(page);
            return narrowing.original()(page, others...);
        });
    test::ImportHook<decltype(MultiByteToWideChar)> const widening(
        "MultiByteToWideChar", [&](UINT page, auto... others) {
            pages.push_back(page);
            return widening.original()(page, others...);
        });

    EXPECT_EQ(L"\u20ac", utf8ToWide(wideToUtf8(L"\u20ac")));

    EXPECT_EQ((std::vector<UINT>{65001, 65001}), pages);
}

TEST(Utf8, EmptyTextAsksNobody) {
    test::FailingImport<decltype(WideCharToMultiByte)> const narrowing(
        "WideCharToMultiByte", 0, 87);
    test::FailingImport<decltype(MultiByteToWideChar)> const widening("MultiByteToWideChar", 0, 87);

    EXPECT_EQ("", wideToUtf8({}));
    EXPECT_EQ(L"", utf8ToWide({}));

    EXPECT_EQ(0u, narrowing.calls() + widening.calls());
}

TEST(Utf8, WhatThePlatformRefusesIsEmpty) {
    test::FailingImport<decltype(WideCharToMultiByte)> const narrowing(
        "WideCharToMultiByte", 0, 87);
    test::FailingImport<decltype(MultiByteToWideChar)> const widening("MultiByteToWideChar", 0, 87);

    EXPECT_EQ("", wideToUtf8(L"a"));
    EXPECT_EQ(L"", utf8ToWide("a"));
}
