// `vrtool number` on real folders.

#include "tests/support/ScratchFolder.h"
#include "tests/support/WideText.h"
#include "tests/vrtool/ToolRun.h"

#include <gmock/gmock.h>

using testing::ElementsAre;

namespace {

class VrtoolNumber : public testing::Test {
  protected:
    test::ToolRun number(std::wstring const& limit) const {
        return test::runTool({L"number", L"--json", base, limit});
    }

    test::ScratchFolder const folder;
    std::wstring const base = folder.path() + L'\\';
};

} // namespace

TEST_F(VrtoolNumber, MakesTheFirstFolder) {
    auto const run = test::runTool({L"number", base, L"5000"});

    auto const text = test::utf8(base);
    EXPECT_EQ(
        "WHAT    VALUE\nbase    " + text + "\nlimit   5000\nnumber  1\nfolder  " + text + "1\n",
        run.out);
    EXPECT_EQ("", run.error);
    EXPECT_EQ(0u, run.exitCode);
    EXPECT_THAT(folder.names(), ElementsAre(L"1"));
}

TEST_F(VrtoolNumber, TakesAFolderThatHasRoom) {
    folder.write(LR"(1\a.mxf)", "a");

    auto const run = number(L"3");

    EXPECT_EQ(1, run.json()["number"].asInt());
    EXPECT_EQ(test::utf8(base) + '1', run.json()["folder"].asString());
    EXPECT_THAT(folder.names(), ElementsAre(L"1"));
}

TEST_F(VrtoolNumber, PassesAFullFolderOver) {
    folder.write(LR"(1\a.mxf)", "a");
    folder.write(LR"(1\b.mxf)", "b");

    auto const run = number(L"3");

    EXPECT_EQ(2, run.json()["number"].asInt());
    EXPECT_THAT(folder.names(), ElementsAre(L"1", L"2"));
    EXPECT_EQ(0u, run.exitCode);
}

TEST_F(VrtoolNumber, TakesTheBaseAsItStands) {
    auto const run = test::runTool({L"number", folder.file(L"Day"), L"10"});

    EXPECT_EQ(0u, run.exitCode);
    EXPECT_THAT(folder.names(), ElementsAre(L"Day1"));
}

TEST_F(VrtoolNumber, TellsThatAFolderCannotBeMade) {
    auto const run = test::runTool({L"number", L"--json", folder.file(LR"(missing\)"), L"10"});
    auto const document = run.json();

    EXPECT_EQ(1, document["number"].asInt());
    EXPECT_EQ("it cannot be made", document["failures"]["folder"].asString());
    EXPECT_EQ(5u, document.size());
    EXPECT_EQ(1u, run.exitCode);
    EXPECT_THAT(folder.names(), testing::IsEmpty());
}
