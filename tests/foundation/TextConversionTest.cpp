// How the code page conversions call the platform.

#include "foundation/Platform.h"
#include "foundation/Text.h"
#include "tests/support/ImportHook.h"

#include <gtest/gtest.h>

#include <cstring>

using namespace std::string_literals;
using namespace vrUtils::Strings;

TEST(NarrowToWide, AsksThePlatformForTheSystemsCodePage) {
    test::ImportHook hook(
        "MultiByteToWideChar",
        [](UINT page, DWORD flags, char const* text, int length, wchar_t* wide, int room) -> int {
            EXPECT_EQ(0u, page);
            EXPECT_EQ(0u, flags);
            EXPECT_EQ(0, std::memcmp("ab\0", text, 3));
            EXPECT_EQ(3, length);
            EXPECT_EQ(15, room);
            std::wmemcpy(wide, L"123456789012345", 15);
            return 15;
        });

    // A code page whose characters come to five units each fits as it is.
    EXPECT_EQ(L"123456789012345", narrowToWide("ab\0"s));
    EXPECT_EQ(1u, hook.calls());
}

TEST(NarrowToWide, FailedCallGivesNothing) {
    test::FailingImport<decltype(MultiByteToWideChar)> fails(
        "MultiByteToWideChar", 0, ERROR_NO_UNICODE_TRANSLATION);

    EXPECT_EQ(L"", narrowToWide("abc"));
    EXPECT_EQ(1u, fails.calls());
}

TEST(NarrowToWide, EmptyTextDoesNotReachThePlatform) {
    test::FailingImport<decltype(MultiByteToWideChar)> fails(
        "MultiByteToWideChar", 0, ERROR_INVALID_PARAMETER);

    narrowToWide("");

    EXPECT_EQ(0u, fails.calls());
}

TEST(WideToNarrow, AsksThePlatformForTheSystemsCodePage) {
    test::ImportHook hook(
        "WideCharToMultiByte",
        [](UINT page, DWORD flags, wchar_t const* text, int length, char* narrow, int room,
           char const* preset, BOOL* usedPreset) -> int {
            EXPECT_EQ(0u, page);
            EXPECT_EQ(0u, flags);
            EXPECT_EQ(0, std::wmemcmp(L"ab\0", text, 3));
            EXPECT_EQ(3, length);
            EXPECT_EQ(15, room);
            EXPECT_STREQ("_", preset);
            EXPECT_NE(nullptr, usedPreset);
            std::memcpy(narrow, "123456789012345", 15);
            return 15;
        });

    EXPECT_EQ("123456789012345", wideToNarrow(L"ab\0"s));
    EXPECT_EQ(1u, hook.calls());
}

TEST(WideToNarrow, FailedCallGivesNothing) {
    test::FailingImport<decltype(WideCharToMultiByte)> fails(
        "WideCharToMultiByte", 0, ERROR_INVALID_FLAGS);

    EXPECT_EQ("", wideToNarrow(L"abc"));
    EXPECT_EQ(1u, fails.calls());
}

TEST(WideToNarrow, EmptyTextDoesNotReachThePlatform) {
    test::FailingImport<decltype(WideCharToMultiByte)> fails(
        "WideCharToMultiByte", 0, ERROR_INVALID_PARAMETER);

    wideToNarrow(L"");

    EXPECT_EQ(0u, fails.calls());
}
