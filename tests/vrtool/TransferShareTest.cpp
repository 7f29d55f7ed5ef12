// `vrtool transfer` to a share.

#include "tests/support/ScratchFolder.h"
#include "tests/support/ScratchShare.h"
#include "tests/support/WideText.h"
#include "tests/vrtool/ToolRun.h"

#include "foundation/Platform.h"

#include <gmock/gmock.h>

#include <string>

using testing::HasSubstr;

namespace {

class VrtoolTransferShare : public testing::Test {
  protected:
    test::ScratchFolder const scratch;
    std::wstring const file = scratch.write(L"a.mxf", "media");
    test::ScratchShare const share;
};

std::string contentOf(std::wstring const& file) {
    HANDLE const handle = CreateFileW(
        file.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    char bytes[1000];
    DWORD count = 0;
    ReadFile(handle, bytes, sizeof bytes, &count, nullptr);
    CloseHandle(handle);
    return {bytes, count};
}

} // namespace

TEST_F(VrtoolTransferShare, TakesAFileAndItsMessage) {
    auto const run = test::runTool({L"transfer", file, share.path() + L"\\day 1"});

    EXPECT_EQ(0u, run.exitCode) << run.error;
    EXPECT_EQ(
        "To " + test::utf8(share.path()) + "\\day 1\\, on another machine", run.lines().at(0));
    EXPECT_EQ("media", contentOf(share.path() + L"\\day 1\\a.mxf"));
    EXPECT_THAT(
        contentOf(share.path() + L"\\day 1\\messages\\a.mxf.xml"),
        HasSubstr("<index>" + test::utf8(share.path()) + "\\PFR-INDEX\\day 1\\a.mov</index>"));
}

TEST_F(VrtoolTransferShare, TakesAFileAtItsRoot) {
    auto const run = test::runTool({L"transfer", file, share.path()});

    EXPECT_EQ(0u, run.exitCode) << run.error;
    EXPECT_EQ("media", contentOf(share.path() + L"\\a.mxf"));
}

TEST_F(VrtoolTransferShare, ReplacesAFile) {
    test::runTool({L"transfer", file, share.path()});
    scratch.write(L"a.mxf", "brand-new");

    auto const run = test::runTool({L"transfer", file, share.path(), L"--replace"});

    EXPECT_EQ(0u, run.exitCode) << run.error;
    EXPECT_EQ("brand-new", contentOf(share.path() + L"\\a.mxf"));
    EXPECT_EQ(INVALID_FILE_ATTRIBUTES, GetFileAttributesW((share.path() + L"\\Recovery").c_str()));
}

TEST_F(VrtoolTransferShare, IsASourceAsWell) {
    test::runTool({L"transfer", file, share.path() + L"\\day 1"});

    auto const run = test::runTool({L"transfer", share.path() + L"\\day 1", scratch.file(L"to")});

    EXPECT_EQ(0u, run.exitCode) << run.error;
    EXPECT_EQ("media", scratch.read(L"to\\day 1\\a.mxf"));
}
