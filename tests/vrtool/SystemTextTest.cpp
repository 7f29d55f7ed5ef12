#include "tools/vrtool/SystemText.h"
#include "foundation/Platform.h"
#include "tests/support/ScratchFolder.h"
#include "tests/vrtool/WorkingFolder.h"

#include <gtest/gtest.h>

#include <system_error>

TEST(VrtoolSystemText, IsOneLineWithTheNumberBehindIt) {
    auto const text = systemText(ERROR_ACCESS_DENIED);

    EXPECT_EQ(text.npos, text.find_first_of(L"\r\n"));
    EXPECT_EQ(L" (error 5)", text.substr(text.size() - 10));
    EXPECT_GT(text.size(), 11u);
    EXPECT_NE(L'.', text[text.size() - 11]);
}

TEST(VrtoolSystemText, IsTheNumberAloneWhereThePlatformHasNoText) {
    EXPECT_EQ(L"error 3735928559", systemText(0xDEADBEEF));
}

TEST(VrtoolFullPath, BeginsWithTheCurrentFolder) {
    test::ScratchFolder const folder;
    test::WorkingFolder const inside(folder.path());

    EXPECT_EQ(folder.file(L"a.reg"), fullPath(L"a.reg"));
}

TEST(VrtoolFullPath, KeepsAFullName) {
    auto const path = L"C:\\" + std::wstring(300, L'x') + L"\\a b.reg";

    EXPECT_EQ(path, fullPath(path));
    EXPECT_EQ(L"\\\\server\\share\\a.reg", fullPath(L"\\\\server\\share\\a.reg"));
}

TEST(VrtoolFullPath, FailsWithoutAName) { EXPECT_THROW(fullPath({}), std::system_error); }
