// With the service manager of the machine, and services of the tests' own under the known names.

#include "vrUtils/OstrelServer.h"

#include "tests/support/HandleCount.h"
#include "tests/support/ScratchService.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

using namespace vrUtils::OstrelServer;

namespace {

constexpr wchar_t syncName[] = L"OstrelSync";
constexpr wchar_t engineName[] = L"Ostrel Engine Server";
constexpr wchar_t indexName[] = L"vrUtilsTests-index";

// Takes its services away, and sees to it that they are gone.
class OstrelServerMachine : public testing::Test {
  protected:
    void TearDown() override {
        m_service.reset();
        for (auto const* const name : {syncName, engineName, indexName})
            EXPECT_FALSE(test::ScratchService::exists(name));
    }

    test::ScratchService&
    makeService(std::wstring const& name, test::ServiceStart const& start = {}) {
        return m_service.emplace(name, start);
    }

  private:
    std::optional<test::ScratchService> m_service;
};

} // namespace

TEST_F(OstrelServerMachine, MissingServicesAreUnknown) {
    EXPECT_EQ(Unknown, TestSyncStatus());
    EXPECT_EQ(Unknown, TestEngineStatus());
    EXPECT_EQ(L"", GetSyncServiceUserName());
}

TEST_F(OstrelServerMachine, MissingServicesCannotBeStarted) {
    EXPECT_FALSE(StartSyncService());
    EXPECT_FALSE(StartEngineService());
    EXPECT_FALSE(StartIndexService(indexName));
}

TEST_F(OstrelServerMachine, MissingServicesCannotBeStopped) {
    EXPECT_FALSE(StopSyncService());
    EXPECT_FALSE(StopEngineService());
    EXPECT_FALSE(StopIndexService(indexName));
}

TEST_F(OstrelServerMachine, ServiceWithoutANameCannotBeOpened) {
    EXPECT_FALSE(StartIndexService(L""));
    EXPECT_FALSE(StopIndexService(L""));
}

TEST_F(OstrelServerMachine, ServiceThatWasNeverStartedIsStopped) {
    makeService(syncName);

    EXPECT_EQ(Stopped, TestSyncStatus());
    EXPECT_EQ(Unknown, TestEngineStatus());
}

TEST_F(OstrelServerMachine, SyncServiceIsStartedAndStopped) {
    auto const& service = makeService(syncName);

    EXPECT_TRUE(StartSyncService());
    ASSERT_TRUE(service.waitUntil(L"running"));
    EXPECT_EQ(Running, TestSyncStatus());

    EXPECT_TRUE(StopSyncService());
    ASSERT_TRUE(service.waitUntil(L"stopped"));
    EXPECT_EQ(Stopped, TestSyncStatus());
}

TEST_F(OstrelServerMachine, EngineServiceIsStartedAndStopped) {
    auto const& service = makeService(engineName);

    EXPECT_TRUE(StartEngineService());
    ASSERT_TRUE(service.waitUntil(L"running"));
    EXPECT_EQ(Running, TestEngineStatus());

    EXPECT_TRUE(StopEngineService());
    ASSERT_TRUE(service.waitUntil(L"stopped"));
    EXPECT_EQ(Stopped, TestEngineStatus());
}

TEST_F(OstrelServerMachine, IndexServiceIsThatOfTheGivenName) {
    auto const& service = makeService(indexName);

    EXPECT_TRUE(StartIndexService(indexName));
    ASSERT_TRUE(service.waitUntil(L"running"));
    EXPECT_EQ(DWORD{SERVICE_RUNNING}, service.state());

    EXPECT_TRUE(StopIndexService(indexName));
    ASSERT_TRUE(service.waitUntil(L"stopped"));
    EXPECT_EQ(DWORD{SERVICE_STOPPED}, service.state());
}

TEST_F(OstrelServerMachine, ServiceThatRunsCannotBeStartedAgain) {
    makeService(syncName).run();

    EXPECT_FALSE(StartSyncService());
    EXPECT_EQ(Running, TestSyncStatus());
}

TEST_F(OstrelServerMachine, DisabledServiceCannotBeStarted) {
    test::ServiceStart start;
    start.type = SERVICE_DISABLED;
    makeService(engineName, start);

    EXPECT_FALSE(StartEngineService());
}

TEST_F(OstrelServerMachine, StopOfAStoppedServiceSucceeds) {
    makeService(engineName);

    EXPECT_TRUE(StopEngineService());
    EXPECT_EQ(Stopped, TestEngineStatus());
}

TEST_F(OstrelServerMachine, PausedServiceIsStopped) {
    auto& service = makeService(syncName);
    service.run();

    service.pause();
    // What the inquiry finds here it takes for its own.
    SetLastError(0);

    EXPECT_EQ(DWORD{SERVICE_PAUSED}, service.state());
    EXPECT_EQ(Stopped, TestSyncStatus());
}

// This platform refuses the inquiry with another error than 1052.
TEST_F(OstrelServerMachine, StartingServiceThatRefusesOtherwiseIsStopped) {
    test::ServiceStart start;
    start.isSlow = true;
    auto& service = makeService(syncName, start);
    EXPECT_TRUE(StartSyncService());
    ASSERT_TRUE(service.waitUntil(L"starting"));

    EXPECT_EQ(Stopped, TestSyncStatus());

    service.go();
    EXPECT_EQ(Running, TestSyncStatus());
}

TEST_F(OstrelServerMachine, AccountIsThatOfTheSystemAtFirst) {
    makeService(syncName);

    EXPECT_EQ(L"LocalSystem", GetSyncServiceUserName());
}

TEST_F(OstrelServerMachine, AccountIsThatOfTheRegistration) {
    test::ServiceStart start;
    start.account = L"NT AUTHORITY\\LocalService";
    makeService(syncName, start);

    EXPECT_EQ(L"NT AUTHORITY\\LocalService", GetSyncServiceUserName());
}

TEST_F(OstrelServerMachine, NothingIsLeftOpen) {
    auto const& service = makeService(syncName);
    StartSyncService();
    ASSERT_TRUE(service.waitUntil(L"running"));
    test::HandleLeakCheck const check;

    for (int round = 0; round < 20; ++round) {
        TestSyncStatus();
        TestEngineStatus();
        StartSyncService();
        StartEngineService();
        StopEngineService();
        GetSyncServiceUserName();
    }
    StopSyncService();
    ASSERT_TRUE(service.waitUntil(L"stopped"));
}
