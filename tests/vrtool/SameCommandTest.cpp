// `vrtool same` as its users run it.

#include "tests/vrtool/ToolRun.h"

#include <gmock/gmock.h>

using testing::HasSubstr;

TEST(VrtoolSame, SaysYesForTwoNamesOfOneMachine) {
    auto const run = test::runTool({L"same", L"--json", LR"(\\localhost\share\)", L"C:\\a.mxf"});
    auto const document = run.json();

    EXPECT_EQ(Json::Value(true), document["sameMachine"]);
    EXPECT_EQ("localhost", document["firstHost"].asString());
    EXPECT_TRUE(document.isMember("secondHost") && document["secondHost"].isNull());
    EXPECT_NE(0u, document["firstAddresses"].size());
    EXPECT_EQ(document["firstAddresses"], document["secondAddresses"]);
    EXPECT_EQ(5u, document.size());
    EXPECT_EQ(0u, run.exitCode);
}

TEST(VrtoolSame, EndsTheTableWithTheAnswer) {
    auto const run = test::runTool({L"same", L"C:\\a", L"D:\\b"});

    EXPECT_THAT(run.out, HasSubstr("\nsameMachine      yes\n"));
    EXPECT_EQ("", run.error);
    EXPECT_EQ(0u, run.exitCode);
}

TEST(VrtoolSame, ShowsBothListsOfAddressesIfTheAnswerIsNo) {
    auto const run = test::runTool({L"same", LR"(\\192.0.2.99\a\b)", LR"(\\192.0.2.98:80\a\b)"});

    EXPECT_EQ(
        R"(WHAT             VALUE
firstHost        192.0.2.99
firstAddresses   192.0.2.99
secondHost       192.0.2.98
secondAddresses  192.0.2.98
sameMachine      no
)",
        run.out);
    EXPECT_EQ("", run.error);
    EXPECT_EQ(1u, run.exitCode);
}

TEST(VrtoolSame, SaysNoForAHostWithoutAnAddressAndItself) {
    auto const run =
        test::runTool({L"same", L"--json", LR"(\\a.invalid\a\b)", LR"(\\a.invalid\a\b)"});

    EXPECT_EQ(Json::Value(false), run.json()["sameMachine"]);
    EXPECT_EQ(Json::Value(Json::arrayValue), run.json()["firstAddresses"]);
    EXPECT_EQ(1u, run.exitCode);
}
