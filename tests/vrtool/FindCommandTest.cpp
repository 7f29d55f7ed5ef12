// `vrtool find`, which knows machines by other names.

#include "tools/vrtool/FindCommand.h"

#include "tests/support/ImportHook.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/WideText.h"
#include "tests/vrtool/RunHere.h"
#include "tests/vrtool/ToolRun.h"

#include <winsock2.h>

#include <gmock/gmock.h>

#include <system_error>

TEST(VrtoolFind, TellsOfAFileThatIsThere) {
    test::ScratchFolder const folder;
    auto const file = folder.write(L"Clip.mxf", "a");

    auto const run = test::runTool({L"find", file});

    auto const text = test::utf8(file);
    EXPECT_EQ(
        "WHAT       VALUE\npath       " + text + "\nfoundAs    " + text + "\nlastTried  " + text +
            "\nexists     yes\n",
        run.out);
    EXPECT_EQ("", run.error);
    EXPECT_EQ(0u, run.exitCode);
}

TEST(VrtoolFind, FindsAFileUnderAnotherNameOfItsMachine) {
    test::ImportHook<decltype(GetFileAttributesExW)> const disk(
        "GetFileAttributesExW", [](wchar_t const* path, GET_FILEEX_INFO_LEVELS, void*) -> BOOL {
            return path == std::wstring(LR"(\\localhost\share\clip.mxf)");
        });

    auto const run =
        test::runHere<FindCommand>("find", {"--json", R"(\\LocalHostAB\share\Clip.mxf)"});
    auto const document = run.json();

    EXPECT_EQ(R"(\\LocalHostAB\share\Clip.mxf)", document["path"].asString());
    EXPECT_EQ(R"(\\localhost\share\clip.mxf)", document["foundAs"].asString());
    EXPECT_EQ(R"(\\localhost\share\clip.mxf)", document["lastTried"].asString());
    EXPECT_EQ(Json::Value(true), document["exists"]);
    EXPECT_EQ(0u, run.exitCode);
}

TEST(VrtoolFind, TellsWhatItTriedLast) {
    auto const run = test::runTool({L"find", LR"(\\LocalHostABC\no share\Clip.mxf)"});

    EXPECT_EQ(
        R"(WHAT       VALUE
path       \\LocalHostABC\no share\Clip.mxf
foundAs    -
lastTried  \\localhost\no share\clip.mxf
exists     no
)",
        run.out);
    EXPECT_EQ(1u, run.exitCode);
}

// Some platforms have a name service without it.
TEST(VrtoolFind, NeedsTheSocketLayer) {
    test::FailingImport<decltype(WSAStartup)> const fails(
        "WSAStartup", WSASYSNOTREADY, 0, 1, test::thisProgram());

    EXPECT_THROW(test::runHere<FindCommand>("find", {R"(C:\a.mxf)"}), std::system_error);
}

TEST(VrtoolFind, LeavesALocalPathAsItIs) {
    auto const run = test::runTool({L"find", L"--json", LR"(C:\No Such\Clip.mxf)"});
    auto const document = run.json();

    EXPECT_EQ(R"(C:\No Such\Clip.mxf)", document["lastTried"].asString());
    EXPECT_TRUE(document.isMember("foundAs") && document["foundAs"].isNull());
    EXPECT_EQ(Json::Value(false), document["exists"]);
    EXPECT_EQ(5u, document.size());
    EXPECT_EQ(1u, run.exitCode);
}
