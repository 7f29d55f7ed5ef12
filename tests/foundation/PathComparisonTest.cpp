// Equality of paths, and the roots that they have in common.

#include "vrUtils/Path.h"

#include "PathProbes.h"

#include <gtest/gtest.h>

using vr::Path;

// --- equality -------------------------------------------------------------------------------------

TEST(Path, EqualsWithoutRegardToCase) {
    EXPECT_TRUE(Path::file(L"C:/Media/Clip.MXF") == Path::file(L"c:\\media\\clip.mxf"));
    EXPECT_FALSE(Path::file(L"C:/Media/Clip.MXF") != Path::file(L"c:\\media\\clip.mxf"));
}

TEST(Path, EqualsWithoutRegardToType) {
    EXPECT_TRUE(Path::file(L"C:/a.b") == Path::folder(L"C:/a.b"));
}

TEST(Path, EqualsByTheNormalForm) {
    EXPECT_TRUE(Path::folder(L"C:") == Path::folder(L"C:\\"));
    EXPECT_TRUE(Path::file(L"C:foo") == Path::file(L"C:\\foo"));
    EXPECT_TRUE(Path::file(L"/a//b") == Path::file(L"a\\b"));
    EXPECT_TRUE(Path() == Path::folder(L"\\"));
}

TEST(Path, DiffersByLengthOrCharacter) {
    EXPECT_FALSE(Path::folder(L"C:/a") == Path::folder(L"C:/a/"));
    EXPECT_FALSE(Path::folder(L"C:/a") == Path::folder(L"C:/b"));
    EXPECT_TRUE(Path::folder(L"C:/a") != Path::folder(L"C:/b"));
}

TEST(Path, CharactersBeyondTheLocaleDifferByCase) {
    EXPECT_FALSE(Path::file(L"\u00C9") == Path::file(L"\u00E9"));
    EXPECT_TRUE(Path::file(L"\u00C9") == Path::file(L"\u00C9"));
}

// --- common roots ---------------------------------------------------------------------------------

TEST(Path, HasACommonRootWithAFolderAbove) {
    EXPECT_TRUE(Path::file(L"C:/Media/a.b").hasCommonRoot(Path::folder(L"C:/Media/")));
    EXPECT_TRUE(Path::file(L"//h/s/a.b").hasCommonRoot(Path::folder(L"//h")));
}

TEST(Path, CommonRootHasNoRegardToCase) {
    EXPECT_TRUE(Path::file(L"C:/Media/a.b").hasCommonRoot(Path::folder(L"c:/mEDIA")));
}

TEST(Path, CommonRootIsOfTextNotOfFolders) {
    EXPECT_TRUE(Path::folder(L"C:/Media").hasCommonRoot(Path::folder(L"C:/Med")));
}

TEST(Path, CommonRootIsOfNormalForms) {
    EXPECT_TRUE(Path::file(L"/Media//a.b").hasCommonRoot(Path::folder(L"Media/")));
    EXPECT_TRUE(Path::folder(L"C:").hasCommonRoot(Path::folder(L"C:\\")));
}

TEST(Path, HasACommonRootWithTheEmptyPath) {
    EXPECT_TRUE(Path::file(L"C:/a").hasCommonRoot(Path()));
    EXPECT_TRUE(Path().hasCommonRoot(Path()));
    EXPECT_TRUE(Path::file(L"C:/a").hasCommonRoot(Path::folder(L"\\")));
}

TEST(Path, HasACommonRootWithItself) {
    auto const path = Path::file(L"C:/Media/a.b");

    EXPECT_TRUE(path.hasCommonRoot(path));
}

TEST(Path, HasNoCommonRootWithALongerPath) {
    EXPECT_FALSE(Path::folder(L"C:/Media").hasCommonRoot(Path::folder(L"C:/Media/")));
    EXPECT_FALSE(Path().hasCommonRoot(Path::folder(L"C:")));
}

TEST(Path, HasNoCommonRootWithAnotherPath) {
    EXPECT_FALSE(Path::file(L"C:/Media/a.b").hasCommonRoot(Path::folder(L"D:/Media")));
    EXPECT_FALSE(Path::file(L"C:/Media/a.b").hasCommonRoot(Path::folder(L"Media")));
}

TEST(Path, RemovesACommonRoot) {
    auto const path = Path::file(L"C:/Media/day/a.b");

    auto rest = path.removeCommonRoot(Path::folder(L"c:/media/"));

    EXPECT_EQ(LR"(day\a.b)", rest.str());
}

TEST(Path, WhatIsLeftMayBeginWithABackslash) {
    auto const path = Path::file(L"C:/Media/day/a.b");

    auto rest = path.removeCommonRoot(Path::folder(L"C:/Media"));

    EXPECT_EQ(LR"(day\a.b)", rest.str());
    EXPECT_EQ(LR"(\day\a.b)", enteredText(rest, Path::eFile));
}

TEST(Path, WhatIsLeftKeepsTheType) {
    auto const root = Path::folder(L"C:/Media/");

    auto const file = Path::file(L"C:/Media/day.1").removeCommonRoot(root);
    auto const folder = Path::folder(L"C:/Media/day.1").removeCommonRoot(root);

    EXPECT_EQ(L".1", file.components().extension());
    EXPECT_EQ(L"", folder.components().extension());
}

TEST(Path, RemovingItselfLeavesNothing) {
    auto const path = Path::file(L"C:/Media/a.b");

    EXPECT_TRUE(path.removeCommonRoot(path).empty());
}

TEST(Path, RemovingPartOfANameLeavesTheRestOfIt) {
    auto rest = Path::folder(L"C:/Media").removeCommonRoot(Path::folder(L"C:/Med"));

    EXPECT_EQ(L"ia", rest.str());
}

TEST(Path, RemovingAnEmptyPathGivesACopy) {
    auto const path = Path::file(L"C:foo");

    auto copy = path.removeCommonRoot(Path());

    EXPECT_EQ(L"C:foo", enteredText(copy, Path::eFile));
}

TEST(Path, RemovingAnotherPathGivesACopy) {
    auto const path = Path::file(L"C:foo");

    auto copy = path.removeCommonRoot(Path::folder(L"D:/"));

    EXPECT_EQ(L"C:foo", enteredText(copy, Path::eFile));
}

// Only an entered text of length zero counts as empty.
TEST(Path, RemovingABackslashGivesTheNormalForm) {
    auto const path = Path::file(L"C:foo");

    auto rest = path.removeCommonRoot(Path::folder(L"\\"));

    EXPECT_EQ(LR"(C:\foo)", enteredText(rest, Path::eFile));
}

TEST(Path, RemovingFromADetectedTextDetectsAgain) {
    Path path;
    path.modify(Path::eDetect).append(L"a/");

    auto const rest = path.removeCommonRoot(Path::folder(L"a/"));

    EXPECT_FALSE(isOfAFile(rest));
}
