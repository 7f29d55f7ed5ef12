// `vrtool services` with the service manager of the machine, and services of the tests' own under
// the known names.

#include "tools/vrtool/ServicesCommand.h"
#include "tests/support/ImportHook.h"
#include "tests/support/ScratchService.h"
#include "tests/vrtool/RunHere.h"

#include <gmock/gmock.h>

using testing::ElementsAre;

namespace {

constexpr wchar_t syncName[] = L"OstrelSync";
constexpr wchar_t engineName[] = L"Ostrel Engine Server";
constexpr wchar_t otherName[] = L"vrtoolTests %s index";

class VrtoolServices : public testing::Test {
  protected:
    static test::ToolRun start(std::wstring const& name) {
        return test::runTool({L"services", L"start", name});
    }

    static test::ToolRun stop(std::wstring const& name) {
        return test::runTool({L"services", L"stop", name});
    }

    static void expectSuccess(test::ToolRun const& run, std::string const& text) {
        EXPECT_EQ(text, run.out);
        EXPECT_EQ("", run.error);
        EXPECT_EQ(0u, run.exitCode);
    }

    static void expectFailure(test::ToolRun const& run, std::string const& text) {
        EXPECT_EQ("", run.out);
        EXPECT_EQ("vrtool: " + text, run.error);
        EXPECT_EQ(1u, run.exitCode);
    }
};

Json::Value
row(char const* name, char const* service, char const* status, Json::Value const& account) {
    Json::Value row;
    row["name"] = name;
    row["service"] = service;
    row["status"] = status;
    row["account"] = account;
    return row;
}

Json::Value rows(Json::Value const& sync, Json::Value const& engine) {
    Json::Value rows(Json::arrayValue);
    rows.append(sync);
    rows.append(engine);
    return rows;
}

} // namespace

TEST_F(VrtoolServices, ShowsMissingOnesAsUnknown) {
    auto const table = test::runTool({L"services"});
    auto const json = test::runTool({L"services", L"--json"});

    EXPECT_EQ(
        "NAME    SERVICE               STATUS   ACCOUNT\n"
        "sync    OstrelSync            unknown  -\n"
        "engine  Ostrel Engine Server  unknown  -\n",
        table.out);
    EXPECT_EQ(0u, table.exitCode);
    EXPECT_EQ(
        rows(
            row("sync", "OstrelSync", "unknown", {}),
            row("engine", "Ostrel Engine Server", "unknown", {})),
        json.json());
    EXPECT_EQ(0u, json.exitCode);
}

TEST_F(VrtoolServices, ShowsEachStatusAndTheAccount) {
    test::ServiceStart asLocal;
    asLocal.account = L"NT AUTHORITY\\LocalService";
    test::ScratchService const sync(syncName, asLocal);
    test::ScratchService engine(engineName);
    engine.run();

    auto const table = test::runTool({L"services"});
    auto const json = test::runTool({L"services", L"--json"});

    EXPECT_THAT(
        test::cellsOf(table.lines().at(1)),
        ElementsAre("sync", "OstrelSync", "stopped", "NT AUTHORITY\\LocalService"));
    EXPECT_THAT(
        test::cellsOf(table.lines().at(2)),
        ElementsAre("engine", "Ostrel Engine Server", "running", "-"));
    EXPECT_EQ(
        rows(
            row("sync", "OstrelSync", "stopped", "NT AUTHORITY\\LocalService"),
            row("engine", "Ostrel Engine Server", "running", {})),
        json.json());
}

TEST_F(VrtoolServices, StartsAndStopsTheSyncService) {
    test::ScratchService const service(syncName);

    expectSuccess(
        start(L"sync"), "The service sync was handed to the service manager to be started.\n");
    ASSERT_TRUE(service.waitUntil(L"running"));
    EXPECT_EQ("running", test::runTool({L"services", L"--json"}).json()[0]["status"].asString());

    expectSuccess(stop(L"sync"), "The service sync was asked to stop.\n");
    ASSERT_TRUE(service.waitUntil(L"stopped"));
}

TEST_F(VrtoolServices, StartsAndStopsTheEngineService) {
    test::ScratchService const service(engineName);

    EXPECT_EQ(0u, start(L"engine").exitCode);
    ASSERT_TRUE(service.waitUntil(L"running"));
    EXPECT_EQ(0u, stop(L"engine").exitCode);
    ASSERT_TRUE(service.waitUntil(L"stopped"));
}

TEST_F(VrtoolServices, StartsAndStopsAnyOtherByItsName) {
    test::ScratchService const service(otherName);

    expectSuccess(
        start(otherName),
        "The service vrtoolTests %s index was handed to the service manager to be started.\n");
    ASSERT_TRUE(service.waitUntil(L"running"));
    expectSuccess(stop(otherName), "The service vrtoolTests %s index was asked to stop.\n");
    ASSERT_TRUE(service.waitUntil(L"stopped"));
}

TEST_F(VrtoolServices, SaysThatAMissingOneCannotBeStartedOrStopped) {
    for (std::string const name : {"sync", "engine", "vrtoolTests-none", ""}) {
        std::wstring const wide(name.begin(), name.end());
        expectFailure(
            start(wide), "the service " + name +
                             " was not started: it is missing, disabled or running already, or the "
                             "rights are missing\n");
        expectFailure(
            stop(wide),
            "the service " + name + " cannot be asked to stop: it is missing, or the rights are\n");
    }
}

TEST_F(VrtoolServices, SaysThatOneThatRunsIsNotStartedAgain) {
    test::ScratchService service(syncName);
    service.run();

    EXPECT_EQ(1u, start(L"sync").exitCode);
    EXPECT_EQ(DWORD{SERVICE_RUNNING}, service.state());
}

TEST_F(VrtoolServices, TakesTheStopOfAStoppedOne) {
    test::ScratchService const service(engineName);

    EXPECT_EQ(0u, stop(L"engine").exitCode);
}

// The library takes the last error from before for the service's own.
TEST_F(VrtoolServices, ShowsAPausedOneAsStoppedWhateverWasBefore) {
    test::ScratchService const sync(syncName);
    test::ScratchService engine(engineName);
    engine.run();
    engine.pause();
    test::FailingImport<decltype(QueryServiceConfigW)> const leavesAnError(
        "QueryServiceConfigW", FALSE, ERROR_INVALID_SERVICE_CONTROL);

    auto const run = test::runHere<ServicesCommand>("services", {"--json"});

    EXPECT_EQ(1u, leavesAnError.calls());
    EXPECT_EQ("stopped", run.json()[1]["status"].asString());
}
