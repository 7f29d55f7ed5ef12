// `vrtool where` as its users run it.

#include "tests/support/AbsentKey.h"
#include "tests/support/WideText.h"
#include "tests/vrtool/ToolRun.h"
#include "vrUtils/Files/MachineIdentity.h"

#include <gtest/gtest.h>

namespace {

// A path without a host is on this computer.
std::string addressOfThisComputer() {
    auto const host = vrUtils::Files::resolveHostInPathToIPAddresses(vr::Path::file(L"a"))
                          .front()
                          .components()
                          .host();
    return test::utf8(host.substr(2, host.size() - 3));
}

// Whoever asks for a local path leaves the key of the drive mappings behind.
class VrtoolWhere : public testing::Test {
  private:
    test::AbsentKey const m_product{HKEY_LOCAL_MACHINE, L"Software\\Vorrane"};
};

} // namespace

TEST_F(VrtoolWhere, FindsAPathOnThisMachine) {
    auto const run = test::runTool({L"where", LR"(\\localhost\share\a.mxf)"});

    EXPECT_EQ(
        R"(WHAT             VALUE
path             \\localhost\share\a.mxf
host             localhost
addresses        )" +
            addressOfThisComputer() + R"(
thisMachine      yes
localPath        \\localhost\share\a.mxf
resolution       unchanged
connectionShare  \\localhost\share
)",
        run.out);
    EXPECT_EQ("", run.error);
    EXPECT_EQ(0u, run.exitCode);
}

TEST_F(VrtoolWhere, TellsProgramsTheSame) {
    auto const run = test::runTool({L"where", L"--json", L"C:/Media/a.mxf"});
    auto const document = run.json();

    EXPECT_EQ(R"(C:\Media\a.mxf)", document["path"].asString());
    EXPECT_TRUE(document.isMember("host") && document["host"].isNull());
    EXPECT_EQ(addressOfThisComputer(), document["addresses"][0].asString());
    EXPECT_EQ(Json::Value(true), document["thisMachine"]);
    EXPECT_EQ(R"(C:\Media\a.mxf)", document["localPath"].asString());
    EXPECT_EQ("unchanged", document["resolution"].asString());
    EXPECT_TRUE(document["connectionShare"].isNull());
    EXPECT_EQ(7u, document.size());
    EXPECT_EQ(0u, run.exitCode);
}

TEST_F(VrtoolWhere, SaysThatAHostHasNoAddressBelowAllThatIsKnown) {
    auto const run = test::runTool({L"where", L"--json", LR"(\\media01.invalid:80\share\a\)"});
    auto const document = run.json();

    EXPECT_EQ("media01.invalid", document["host"].asString());
    EXPECT_EQ(Json::Value(Json::arrayValue), document["addresses"]);
    EXPECT_EQ(Json::Value(false), document["thisMachine"]);
    EXPECT_EQ(R"(\\media01.invalid:80\share)", document["connectionShare"].asString());
    EXPECT_EQ("vrtool: no address for the host \"media01.invalid\"\n", run.error);
    EXPECT_EQ(1u, run.exitCode);
}

TEST_F(VrtoolWhere, FindsARelativePathOnNoMachine) {
    auto const run = test::runTool({L"where", L"--json", L"a\\b.mxf"});

    EXPECT_EQ(Json::Value(false), run.json()["thisMachine"]);
    EXPECT_EQ(addressOfThisComputer(), run.json()["addresses"][0].asString());
    EXPECT_EQ(0u, run.exitCode);
}

TEST_F(VrtoolWhere, NeedsABackslashBehindAShare) {
    auto const run = test::runTool({L"where", L"--json", LR"(\\localhost\share)"});

    EXPECT_EQ(R"(\\localhost\)", run.json()["connectionShare"].asString());
    EXPECT_EQ(0u, run.exitCode);
}

TEST_F(VrtoolWhere, TakesAnEmptyText) {
    auto const run = test::runTool({L"where", L"--json", {}});

    EXPECT_EQ("", run.json()["path"].asString());
    EXPECT_EQ("", run.json()["localPath"].asString());
    EXPECT_EQ(Json::Value(false), run.json()["thisMachine"]);
    EXPECT_EQ(0u, run.exitCode);
}
