// `vrtool settings` as its users run it.

#include "tools/vrtool/SettingsCommand.h"
#include "tests/support/ImportHook.h"
#include "tests/support/OwnedHandle.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/WideText.h"
#include "tests/vrtool/SettingsKeys.h"
#include "tests/vrtool/ToolRun.h"
#include "tools/vrtool/Console.h"
#include "vrUtils/Registry.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

namespace Registry = vrUtils::Registry;

namespace {

constexpr char usage[] = "\n\nGive a setting another value\nUsage: vrtool settings set [OPTIONS] "
                         "NAME VALUE\n";

class VrtoolSettingsCommand : public test::SettingsKeys {
  protected:
    static test::ToolRun set(std::wstring const& name, std::wstring const& value) {
        return test::runTool({L"settings", L"set", name, value});
    }

    static test::ToolRun get(std::wstring const& name) {
        return test::runTool({L"settings", L"get", name});
    }

    static void expectRefusal(test::ToolRun const& run, std::string const& reason) {
        EXPECT_THAT(run.error, StartsWith("vrtool: " + reason + usage));
        EXPECT_EQ("", run.out);
        EXPECT_EQ(2u, run.exitCode);
    }
};

// Below a key that does not outlive the session no lasting one can be made.
class UnmakeableKey {
  public:
    UnmakeableKey(HKEY hive, wchar_t const* path) {
        HKEY key = nullptr;
        RegCreateKeyExW(
            hive, path, 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr, &key, nullptr);
        RegCloseKey(key);
    }
};

} // namespace

TEST_F(VrtoolSettingsCommand, ListsEverySettingInJson) {
    set(L"MaximumTransfers", L"4");
    set(L"InterplayWSHost", L"K\u00f6ln");
    set(L"MaxNumTransferRetries", L"-1");

    auto const run = test::runTool({L"settings", L"--json"});

    auto const rows = run.json();
    ASSERT_EQ(7u, rows.size());
    auto const rowIs = [&](unsigned number, char const* name, Json::Value const& value,
                           char const* type, char const* hive, wchar_t const* key,
                           char const* function) {
        Json::Value expected;
        expected["name"] = name;
        expected["value"] = value;
        expected["type"] = type;
        expected["hive"] = hive;
        expected["key"] = test::utf8(key);
        expected["function"] = function;
        expected["failure"] = Json::Value();
        EXPECT_EQ(expected.toStyledString(), rows[number].toStyledString());
    };
    auto const user = "HKEY_CURRENT_USER";
    auto const machine = "HKEY_LOCAL_MACHINE";
    auto const server = L"Software\\Vorrane\\Ostrel\\Server";
    auto const null = Json::Value();
    rowIs(0, "MaximumTransfers", 4, "REG_DWORD", user, server, "GetMaximumConcurrentTransfers");
    rowIs(1, "InterplayWSHost", "K\u00f6ln", "REG_SZ", machine, server, "GetInterplayWSAddress");
    rowIs(2, "InterplayAssetFilter", null, "REG_SZ", machine, server, "GetInterplayAssetFilter");
    rowIs(3, "InterplayIDFilter", null, "REG_SZ", machine, server, "GetInterplayIDNameFilter");
    rowIs(4, "MaxNumTransferRetries", -1, "REG_DWORD", machine, server, "GetNumJobRebmits");
    rowIs(
        5, "EngineCacheDepth", null, "REG_DWORD", machine,
        L"Software\\Vorrane\\Ostrel\\Server\\OstrelEngine", "GetEngineCacheDepth");
    rowIs(
        6, "Install", null, "REG_DWORD", machine,
        L"SOFTWARE\\Microsoft\\NET Framework Setup\\NDP\\v3.5", "IsDotNet35Installed");
    EXPECT_EQ(0u, run.exitCode);
}

TEST_F(VrtoolSettingsCommand, ListsEverySettingInTheTable) {
    set(L"MaximumTransfers", L"4");

    auto const run = test::runTool({L"settings"});

    auto const lines = run.lines();
    ASSERT_EQ(8u, lines.size());
    EXPECT_THAT(
        test::cellsOf(lines[0]),
        ElementsAre("NAME", "VALUE", "TYPE", "HIVE", "KEY", "FUNCTION", "FAILURE"));
    EXPECT_THAT(
        test::cellsOf(lines[1]),
        ElementsAre(
            "MaximumTransfers", "4", "REG_DWORD", "HKEY_CURRENT_USER",
            "Software\\Vorrane\\Ostrel\\Server", "GetMaximumConcurrentTransfers"));
    EXPECT_THAT(
        test::cellsOf(lines[2]), ElementsAre(
                                     "InterplayWSHost", "-", "REG_SZ", "HKEY_LOCAL_MACHINE",
                                     "Software\\Vorrane\\Ostrel\\Server", "GetInterplayWSAddress"));
    EXPECT_EQ(0u, run.exitCode);
}

TEST_F(VrtoolSettingsCommand, FitsATerminalOfEightyColumns) {
    auto const run = test::runTool({L"settings", L"--width", L"79"});

    ASSERT_FALSE(run.lines().empty());
    for (auto const& line : run.lines())
        EXPECT_LE(line.size(), 79u) << line;
}

TEST_F(VrtoolSettingsCommand, ShowsInTheRowThatAKeyCannotBeHad) {
    UnmakeableKey const key(HKEY_CURRENT_USER, L"Software\\Vorrane");

    auto const table = test::runTool({L"settings"});
    auto const json = test::runTool({L"settings", L"--json"});

    EXPECT_EQ("Unable to access registry", test::cellsOf(table.lines().at(1)).back());
    EXPECT_EQ("Unable to access registry", json.json()[0]["failure"].asString());
    EXPECT_EQ(Json::Value(), json.json()[0]["value"]);
    EXPECT_EQ(Json::Value(), json.json()[1]["failure"]);
    EXPECT_EQ(1u, table.exitCode);
    EXPECT_EQ(1u, json.exitCode);
}

TEST_F(VrtoolSettingsCommand, PrintsTheBareValueOfOne) {
    set(L"InterplayWSHost", L"  two  blanks ");
    set(L"engineCACHEdepth", L"4294967295");

    EXPECT_EQ("  two  blanks \n", get(L"interplaywshost").out);
    auto const number = get(L"EngineCacheDepth");
    EXPECT_EQ("4294967295\n", number.out);
    EXPECT_EQ("", number.error);
    EXPECT_EQ(0u, number.exitCode);
}

TEST_F(VrtoolSettingsCommand, SaysThatOneIsNotSet) {
    auto const run = get(L"maximumtransfers");

    EXPECT_EQ("", run.out);
    EXPECT_EQ(
        "vrtool: MaximumTransfers is not set: there is no readable REG_DWORD value of this name in "
        "HKEY_CURRENT_USER\\Software\\Vorrane\\Ostrel\\Server\n",
        run.error);
    EXPECT_EQ(1u, run.exitCode);
}

TEST_F(VrtoolSettingsCommand, SaysThatAKeyCannotBeHad) {
    UnmakeableKey const key(HKEY_CURRENT_USER, L"Software\\Vorrane");

    for (auto const& run : {get(L"MaximumTransfers"), set(L"MaximumTransfers", L"4")}) {
        EXPECT_EQ("vrtool: Unable to access registry\n", run.error);
        EXPECT_EQ(1u, run.exitCode);
    }
}

TEST_F(VrtoolSettingsCommand, SetsWithoutAWord) {
    auto const run = set(L"MAXIMUMTRANSFERS", L"4");

    EXPECT_EQ("", run.out + run.error);
    EXPECT_EQ(0u, run.exitCode);
    EXPECT_EQ(4u, Registry::GetMaximumConcurrentTransfers(1));
}

TEST_F(VrtoolSettingsCommand, SetsTheNamesOfItsOwnSubcommandsAndOptions) {
    for (auto const* text : {L"get", L"settings", L"inspect", L"[a,b]", L"++", L"", L"%s"}) {
        EXPECT_EQ(0u, set(L"InterplayWSHost", text).exitCode);
        EXPECT_EQ(text, Registry::GetInterplayWSAddress(L"none"));
    }
    test::runTool({L"settings", L"set", L"InterplayWSHost", L"--", L"--json"});
    EXPECT_EQ(L"--json", Registry::GetInterplayWSAddress({}));
}

TEST_F(VrtoolSettingsCommand, RefusesThePlatformsOwnSetting) {
    expectRefusal(
        set(L"install", L"1"), "NAME: Install is the platform's own and is not for setting");

    EXPECT_FALSE(Registry::IsDotNet35Installed());
}

TEST_F(VrtoolSettingsCommand, RefusesValuesOfAnotherForm) {
    expectRefusal(
        set(L"MaximumTransfers", L"many"),
        "VALUE: MaximumTransfers takes a number from 0 to 4294967295");
    expectRefusal(
        set(L"MaxNumTransferRetries", L"-2147483649"),
        "VALUE: MaxNumTransferRetries takes a number from -2147483648 to 4294967295");
    expectRefusal(
        set(L"InterplayWSHost", std::wstring(2048, L'x')),
        "VALUE: InterplayWSHost takes a text of at most 2047 characters");

    EXPECT_EQ(1u, Registry::GetMaximumConcurrentTransfers(1));
    EXPECT_EQ(L"none", Registry::GetInterplayWSAddress(L"none"));
}

TEST_F(VrtoolSettingsCommand, RefusesUnknownNames) {
    expectRefusal(set(L"[Transfers]", L"4"), "NAME: no setting has the name [Transfers]");
    EXPECT_EQ(2u, get(L"Transfers").exitCode);
}

TEST_F(VrtoolSettingsCommand, SaysThatAWriteDidNotTake) {
    CLI::App program;
    SettingsCommand command;
    command.join(program);
    program.parse({"4", "MaximumTransfers", "set", "settings"});
    test::FailingImport<decltype(RegSetValueExW)> const fails(
        "RegSetValueExW", ERROR_ACCESS_DENIED, ERROR_SUCCESS);
    Console console;

    EXPECT_EQ(1, command.run(console));
}
