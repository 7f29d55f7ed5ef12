// `vrtool index` and `vrtool archive`, the one the other's way back.

#include "tests/vrtool/ToolRun.h"

#include <gmock/gmock.h>

TEST(VrtoolIndex, ShowsTheIndexPath) {
    auto const run = test::runTool({L"index", LR"(\\arc\vault\2011\clip.take.mxf)"});

    EXPECT_EQ(
        R"(WHAT         VALUE
archivePath  \\arc\vault\2011\clip.take.mxf
indexPath    \\arc\vault\PFR-INDEX\2011\clip.take.mov
)",
        run.out);
    EXPECT_EQ("", run.error);
    EXPECT_EQ(0u, run.exitCode);
}

TEST(VrtoolIndex, TellsProgramsTheSame) {
    auto const run = test::runTool({L"index", L"--json", L"D:/vault/clip"});
    auto const document = run.json();

    EXPECT_EQ(R"(D:\vault\clip)", document["archivePath"].asString());
    EXPECT_EQ(R"(D:\PFR-INDEX\vault\clip.mov)", document["indexPath"].asString());
    EXPECT_EQ(3u, document.size());
    EXPECT_EQ(0u, run.exitCode);
}

TEST(VrtoolArchive, ShowsTheArchivePath) {
    auto const run =
        test::runTool({L"archive", LR"(\\arc\vault\PFR-INDEX\2011\clip.mov)", L".mxf"});

    EXPECT_EQ(
        R"(WHAT         VALUE
indexPath    \\arc\vault\PFR-INDEX\2011\clip.mov
archivePath  \\arc\vault\2011\clip.mxf
)",
        run.out);
    EXPECT_EQ("", run.error);
    EXPECT_EQ(0u, run.exitCode);
}

TEST(VrtoolArchive, AddsNoDotToTheExtension) {
    auto const run = test::runTool({L"archive", L"--json", LR"(\\arc\PFR-INDEX\clip.mov)", L"mxf"});

    EXPECT_EQ(R"(\\arc\clipmxf)", run.json()["archivePath"].asString());
    EXPECT_EQ(0u, run.exitCode);
}

class VrtoolArchiveRefusal : public testing::TestWithParam<std::wstring> {};

TEST_P(VrtoolArchiveRefusal, NamesThePath) {
    auto const run = test::runTool({L"archive", GetParam(), L".mxf"});

    std::string const path(GetParam().begin(), GetParam().end());
    EXPECT_EQ(
        "vrtool: no index path: \"" + path +
            "\"; one has a host, the extension \".mov\" and a folder \"PFR-INDEX\"\n",
        run.error);
    EXPECT_EQ("", run.out);
    EXPECT_EQ(1u, run.exitCode);
}

INSTANTIATE_TEST_SUITE_P(
    VrtoolArchive, VrtoolArchiveRefusal,
    testing::Values(
        LR"(D:\PFR-INDEX\x.mov)", LR"(\\a\b\PFR-INDEX\x.MOV)", LR"(\\a\b\pfr-index\x.mov)",
        LR"(\\a\b\x.mov)"));
