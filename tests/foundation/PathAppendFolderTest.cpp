// `vr::Path::AppendFolderIfNotPresent`.

#include "vrUtils/Path.h"

#include <gtest/gtest.h>

using vr::Path;

TEST(PathAppendFolder, AppendsToAFolder) {
    auto path = Path::folder(L"C:/Media/");

    EXPECT_TRUE(path.AppendFolderIfNotPresent(L"day"));

    EXPECT_EQ(LR"(C:\Media\day)", path.str());
}

TEST(PathAppendFolder, AppendsToADriveAndToAHost) {
    auto drive = Path::folder(L"C:");
    auto host = Path::folder(L"//host");

    EXPECT_TRUE(drive.AppendFolderIfNotPresent(L"day"));
    EXPECT_TRUE(host.AppendFolderIfNotPresent(L"share"));

    EXPECT_EQ(LR"(C:\day)", drive.str());
    EXPECT_EQ(LR"(\\host\share)", host.str());
}

TEST(PathAppendFolder, AppendsToTheEmptyPath) {
    Path path;

    EXPECT_TRUE(path.AppendFolderIfNotPresent(L"day"));

    EXPECT_EQ(L"day", path.str());
}

TEST(PathAppendFolder, LeavesAFileAlone) {
    auto path = Path::file(L"C:/Media/clip.mxf");

    EXPECT_FALSE(path.AppendFolderIfNotPresent(L"day"));

    EXPECT_EQ(LR"(C:\Media\clip.mxf)", path.str());
}

TEST(PathAppendFolder, LeavesAFileOfOnlyAnExtensionAlone) {
    auto path = Path::file(L"C:/Media/.mxf");

    EXPECT_FALSE(path.AppendFolderIfNotPresent(L"day"));
}

TEST(PathAppendFolder, LeavesAnUnclosedFolderAlone) {
    auto path = Path::folder(L"C:/Media");

    EXPECT_FALSE(path.AppendFolderIfNotPresent(L"day"));

    EXPECT_EQ(LR"(C:\Media)", path.str());
}

TEST(PathAppendFolder, LeavesThePathAloneIfItEndsInTheFolder) {
    auto path = Path::folder(L"C:/Media/day/");

    EXPECT_FALSE(path.AppendFolderIfNotPresent(L"day"));

    EXPECT_EQ(LR"(C:\Media\day\)", path.str());
}

TEST(PathAppendFolder, ComparesWithoutTheSlashesAroundTheFolder) {
    for (auto const* folder : {L"day/", L"/day", L"\\/day\\/"}) {
        auto path = Path::folder(L"C:/Media/day/");

        EXPECT_FALSE(path.AppendFolderIfNotPresent(folder)) << testing::PrintToString(folder);
    }
}

TEST(PathAppendFolder, ComparesWithRegardToCase) {
    auto path = Path::folder(L"C:/Media/day/");

    EXPECT_TRUE(path.AppendFolderIfNotPresent(L"Day"));

    EXPECT_EQ(LR"(C:\Media\day\Day)", path.str());
}

TEST(PathAppendFolder, ComparesTheLastFolderOnly) {
    auto path = Path::folder(L"C:/day/Media/");

    EXPECT_TRUE(path.AppendFolderIfNotPresent(L"day"));

    EXPECT_EQ(LR"(C:\day\Media\day)", path.str());
}

TEST(PathAppendFolder, AppendsTheFolderWithItsSlashes) {
    auto path = Path::folder(L"C:/Media/");

    EXPECT_TRUE(path.AppendFolderIfNotPresent(L"/day/"));

    EXPECT_EQ(L"day", path.components().folders().back());
    EXPECT_EQ(LR"(C:\Media\day\)", path.str());
}

TEST(PathAppendFolder, AppendedFolderParsesAsAFileName) {
    auto path = Path::folder(L"C:/Media/");

    path.AppendFolderIfNotPresent(L"day.1");

    EXPECT_EQ(L"day", path.components().fileName());
    EXPECT_EQ(L".1", path.components().extension());
}

TEST(PathAppendFolder, SecondCallFindsANameAndDoesNothing) {
    auto path = Path::folder(L"C:/Media/");

    EXPECT_TRUE(path.AppendFolderIfNotPresent(L"day"));
    EXPECT_FALSE(path.AppendFolderIfNotPresent(L"night"));

    EXPECT_EQ(LR"(C:\Media\day)", path.str());
}

TEST(PathAppendFolder, SecondCallAppendsBehindAClosedFolder) {
    auto path = Path::folder(L"C:/Media/");

    EXPECT_TRUE(path.AppendFolderIfNotPresent(L"day/"));
    EXPECT_TRUE(path.AppendFolderIfNotPresent(L"night/"));

    EXPECT_EQ(LR"(C:\Media\day\night\)", path.str());
}

TEST(PathAppendFolder, FolderMayBePartOfThePathItself) {
    auto path = Path::folder(L"C:/a folder whose name stands on the heap/day/");

    EXPECT_TRUE(path.AppendFolderIfNotPresent(path.components().folders().front()));

    EXPECT_EQ(L"a folder whose name stands on the heap", path.components().fullName());
}

TEST(PathAppendFolder, EmptyFolderIsAppendedAsNothing) {
    auto path = Path::folder(L"C:/Media/");

    EXPECT_TRUE(path.AppendFolderIfNotPresent(L""));

    EXPECT_EQ(LR"(C:\Media\)", path.str());
}
