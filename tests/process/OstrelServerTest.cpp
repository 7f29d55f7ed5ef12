// With a service manager that answers as each test wants it to.

#include "vrUtils/OstrelServer.h"

#include "foundation/Platform.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/ImportHook.h"
#include "tests/support/LogRecorder.h"

#include <winsvc.h>

#include <gmock/gmock.h>

#include <string>
#include <vector>

using namespace vrUtils::OstrelServer;
using testing::ElementsAre;

namespace {

// What the platform was asked, in order, under names that are short.
using Calls = std::vector<std::wstring>;

class FakeManager {
  public:
    bool managerOpens = true;
    bool serviceOpens = true;
    BOOL startAnswer = TRUE;
    // The answer of a control, the state that it leaves (0 for the one that was there), and the last
    // error behind it.
    BOOL controlAnswer = TRUE;
    DWORD state = 0;
    DWORD error = ERROR_SUCCESS;

    Calls const& calls() const noexcept { return m_calls; }

    std::vector<DWORD> const& rights() const noexcept { return m_rights; }

    // The state in the structure that the last control was given.
    DWORD presetState() const noexcept { return m_presetState; }

  private:
    static SC_HANDLE manager() { return reinterpret_cast<SC_HANDLE>(0x10); }

    static SC_HANDLE service() { return reinterpret_cast<SC_HANDLE>(0x20); }

    void tell(std::wstring const& call, SC_HANDLE handle) {
        auto const* const name = handle == manager()   ? L" manager"
                                 : handle == service() ? L" service"
                                                       : L" something else";
        m_calls.push_back(call + name);
    }

    SC_HANDLE openManager(wchar_t const* machine, wchar_t const* database, DWORD rights) {
        m_calls.push_back(machine || database ? L"open another manager" : L"open manager");
        m_rights.push_back(rights);
        return managerOpens ? manager() : nullptr;
    }

    SC_HANDLE openService(SC_HANDLE handle, wchar_t const* name, DWORD rights) {
        tell(L"open [" + std::wstring(name) + L"] of", handle);
        m_rights.push_back(rights);
        return serviceOpens ? service() : nullptr;
    }

    BOOL start(SC_HANDLE handle, DWORD count, wchar_t const** arguments) {
        tell(count || arguments ? L"start with arguments" : L"start", handle);
        return startAnswer;
    }

    BOOL control(SC_HANDLE handle, DWORD number, SERVICE_STATUS* status) {
        tell(L"control " + std::to_wstring(number), handle);
        m_presetState = status->dwCurrentState;
        if (state)
            status->dwCurrentState = state;
        SetLastError(error);
        return controlAnswer;
    }

    Calls m_calls;
    std::vector<DWORD> m_rights;
    DWORD m_presetState = 0;
    test::ImportHook<decltype(OpenSCManagerW)> const m_openManager{
        "OpenSCManagerW", [this](auto... arguments) { return openManager(arguments...); }};
    test::ImportHook<decltype(OpenServiceW)> const m_openService{
        "OpenServiceW", [this](auto... arguments) { return openService(arguments...); }};
    test::ImportHook<decltype(CloseServiceHandle)> const m_close{
        "CloseServiceHandle", [this](SC_HANDLE handle) {
            tell(L"close", handle);
            return TRUE;
        }};
    test::ImportHook<decltype(StartServiceW)> const m_start{
        "StartServiceW", [this](auto... arguments) { return start(arguments...); }};
    test::ImportHook<decltype(ControlService)> const m_control{
        "ControlService", [this](auto... arguments) { return control(arguments...); }};
};

// An operation with a bool for its result.
struct Operation {
    char const* name;
    bool (*call)();
    wchar_t const* service;
    wchar_t const* request;
};

bool startIndex() { return StartIndexService(L"an index"); }

bool stopIndex() { return StopIndexService(L"an index"); }

Operation const operations[] = {
    {"StartSync", StartSyncService, L"OstrelSync", L"start service"},
    {"StartEngine", StartEngineService, L"Ostrel Engine Server", L"start service"},
    {"StartIndex", startIndex, L"an index", L"start service"},
    {"StopSync", StopSyncService, L"OstrelSync", L"control 1 service"},
    {"StopEngine", StopEngineService, L"Ostrel Engine Server", L"control 1 service"},
    {"StopIndex", stopIndex, L"an index", L"control 1 service"},
};

class OstrelServerOperation : public testing::TestWithParam<Operation> {
  protected:
    std::wstring openCall() const {
        return std::wstring(L"open [") + GetParam().service + L"] of manager";
    }

    FakeManager m_manager;
};

INSTANTIATE_TEST_SUITE_P(
    , OstrelServerOperation, testing::ValuesIn(operations),
    [](auto const& tested) { return std::string(tested.param.name); });

struct Inquiry {
    char const* name;
    Status (*call)();
    wchar_t const* service;
};

class OstrelServerInquiry : public testing::TestWithParam<Inquiry> {
  protected:
    FakeManager m_manager;
};

INSTANTIATE_TEST_SUITE_P(
    , OstrelServerInquiry,
    testing::Values(
        Inquiry{"Sync", TestSyncStatus, L"OstrelSync"},
        Inquiry{"Engine", TestEngineStatus, L"Ostrel Engine Server"}),
    [](auto const& tested) { return std::string(tested.param.name); });

// How a service answers the inquiry, and what that counts as.
struct Answer {
    BOOL answered;
    DWORD state;
    DWORD error;
    Status status;
};

class OstrelServerAnswer : public testing::TestWithParam<Answer> {};

constexpr DWORD untouched = 0;
constexpr DWORD refused = ERROR_INVALID_SERVICE_CONTROL;

INSTANTIATE_TEST_SUITE_P(
    OfAServiceThatRuns, OstrelServerAnswer,
    testing::Values(
        Answer{1, SERVICE_RUNNING, 0, Running}, Answer{1, SERVICE_RUNNING, 1062, Running},
        Answer{1, SERVICE_RUNNING, refused, Running}, Answer{0, SERVICE_RUNNING, refused, Running},
        Answer{2, SERVICE_RUNNING, refused, Running}, Answer{0, SERVICE_RUNNING, 0, Stopped},
        Answer{0, SERVICE_RUNNING, 1061, Stopped}, Answer{2, SERVICE_RUNNING, 0, Stopped},
        Answer{-1, SERVICE_RUNNING, 0, Stopped}));

INSTANTIATE_TEST_SUITE_P(
    OfAServiceThatStarts, OstrelServerAnswer,
    testing::Values(
        Answer{0, SERVICE_START_PENDING, refused, Running},
        Answer{1, SERVICE_START_PENDING, refused, Running},
        Answer{2, SERVICE_START_PENDING, refused, Running},
        Answer{1, SERVICE_START_PENDING, 0, Stopped}, Answer{1, SERVICE_START_PENDING, 5, Stopped},
        Answer{0, SERVICE_START_PENDING, 1061, Stopped}));

INSTANTIATE_TEST_SUITE_P(
    OfAServiceInAnotherState, OstrelServerAnswer,
    testing::Values(
        Answer{0, untouched, 1062, Stopped}, Answer{0, untouched, 0, Stopped},
        Answer{0, untouched, 5, Stopped}, Answer{0, untouched, refused, Unknown},
        Answer{1, untouched, refused, Unknown}, Answer{0, SERVICE_STOPPED, refused, Unknown},
        Answer{0, SERVICE_STOP_PENDING, refused, Unknown},
        Answer{0, SERVICE_CONTINUE_PENDING, refused, Unknown},
        Answer{0, SERVICE_PAUSE_PENDING, refused, Unknown},
        Answer{0, SERVICE_PAUSED, refused, Unknown}, Answer{1, SERVICE_PAUSED, refused, Unknown},
        Answer{1, SERVICE_PAUSED, 0, Stopped}, Answer{1, SERVICE_STOP_PENDING, 0, Stopped},
        Answer{0, 0xFFFFFFFF, refused, Unknown}));

// The inquiry for the account, which is made twice.
class OstrelServerAccount : public testing::Test {
  protected:
    BOOL query(QUERY_SERVICE_CONFIGW* configuration, DWORD size, DWORD* needed) {
        m_sizes.push_back(configuration ? size : 0);
        if (!configuration) {
            *needed = m_size;
            SetLastError(m_sizeError);
            return m_sizeAnswer;
        }
        configuration->lpServiceStartName = m_account;
        SetLastError(m_error);
        return m_answer;
    }

    FakeManager m_manager;
    BOOL m_sizeAnswer = FALSE;
    DWORD m_sizeError = ERROR_INSUFFICIENT_BUFFER;
    DWORD m_size = 300;
    BOOL m_answer = TRUE;
    DWORD m_error = ERROR_SUCCESS;
    std::wstring m_text = L".\\operator of some length";
    wchar_t* m_account = m_text.data();
    // What room the inquiries had.
    std::vector<DWORD> m_sizes;
    test::ImportHook<decltype(QueryServiceConfigW)> const m_query{
        "QueryServiceConfigW",
        [this](SC_HANDLE, QUERY_SERVICE_CONFIGW* configuration, DWORD size, DWORD* needed) {
            return query(configuration, size, needed);
        }};
};

auto const accountCalls = ElementsAre(
    L"open manager", L"open [OstrelSync] of manager", L"close manager", L"close service");

} // namespace

static_assert(Unknown == 0 && Stopped == 1 && Running == 2);

TEST_P(OstrelServerOperation, OpensAsksAndCloses) {
    EXPECT_TRUE(GetParam().call());

    EXPECT_THAT(
        m_manager.calls(),
        ElementsAre(
            L"open manager", openCall(), L"close manager", GetParam().request, L"close service"));
}

TEST_P(OstrelServerOperation, AsksForAllRights) {
    GetParam().call();

    EXPECT_THAT(m_manager.rights(), ElementsAre(0xF003Fu, 0xF01FFu));
}

TEST_P(OstrelServerOperation, FailsWithoutTheManager) {
    m_manager.managerOpens = false;

    EXPECT_FALSE(GetParam().call());

    EXPECT_THAT(m_manager.calls(), ElementsAre(L"open manager"));
}

TEST_P(OstrelServerOperation, FailsWithoutTheService) {
    m_manager.serviceOpens = false;

    EXPECT_FALSE(GetParam().call());

    EXPECT_THAT(m_manager.calls(), ElementsAre(L"open manager", openCall(), L"close manager"));
}

TEST_P(OstrelServerOperation, FailsOnlyWhereAStartIsRefused) {
    m_manager.startAnswer = FALSE;
    m_manager.controlAnswer = FALSE;
    m_manager.error = ERROR_SERVICE_NOT_ACTIVE;
    bool const starts = std::wstring(GetParam().request) == L"start service";

    EXPECT_EQ(!starts, GetParam().call());

    EXPECT_EQ(L"close service", m_manager.calls().back());
}

TEST_P(OstrelServerOperation, LogsNothing) {
    test::LogRecorder const recorder;
    GetParam().call();

    m_manager.managerOpens = false;
    GetParam().call();

    EXPECT_THAT(recorder.lines(), testing::IsEmpty());
}

TEST(OstrelServer, NameOfTheIndexServiceIsPassedOn) {
    FakeManager manager;
    std::wstring const name = L"QuantumPFRIndex %s \u00E4";

    StartIndexService(name.c_str());
    StopIndexService(L"");

    EXPECT_EQ(L"open [" + name + L"] of manager", manager.calls().at(1));
    EXPECT_EQ(L"open [] of manager", manager.calls().at(6));
}

TEST_P(OstrelServerInquiry, OpensAsksAndCloses) {
    m_manager.state = SERVICE_RUNNING;

    EXPECT_EQ(Running, GetParam().call());

    EXPECT_THAT(
        m_manager.calls(),
        ElementsAre(
            L"open manager", std::wstring(L"open [") + GetParam().service + L"] of manager",
            L"close manager", L"control 4 service", L"close service"));
    EXPECT_THAT(m_manager.rights(), ElementsAre(0xF003Fu, 0xF01FFu));
}

TEST_P(OstrelServerInquiry, PresetsTheStateOfAStoppedService) {
    GetParam().call();

    EXPECT_EQ(1u, m_manager.presetState());
}

TEST_P(OstrelServerInquiry, WithoutTheManagerIsUnknown) {
    m_manager.managerOpens = false;

    EXPECT_EQ(Unknown, GetParam().call());

    EXPECT_THAT(m_manager.calls(), ElementsAre(L"open manager"));
}

TEST_P(OstrelServerInquiry, WithoutTheServiceIsUnknown) {
    m_manager.serviceOpens = false;

    EXPECT_EQ(Unknown, GetParam().call());

    EXPECT_EQ(3u, m_manager.calls().size());
    EXPECT_EQ(L"close manager", m_manager.calls().back());
}

TEST_P(OstrelServerInquiry, LogsNothing) {
    test::LogRecorder const recorder;
    GetParam().call();

    m_manager.serviceOpens = false;
    GetParam().call();

    EXPECT_THAT(recorder.lines(), testing::IsEmpty());
}

TEST_P(OstrelServerAnswer, CountsAsItsStatus) {
    FakeManager manager;
    manager.controlAnswer = GetParam().answered;
    manager.state = GetParam().state;
    manager.error = GetParam().error;

    EXPECT_EQ(GetParam().status, TestSyncStatus());
    EXPECT_EQ(GetParam().status, TestEngineStatus());

    EXPECT_EQ(L"close service", manager.calls().back());
}

TEST_F(OstrelServerAccount, IsReadWithTheRoomThatItNeeds) {
    EXPECT_EQ(m_text, GetSyncServiceUserName());

    EXPECT_THAT(m_sizes, ElementsAre(0u, 300u));
    EXPECT_THAT(m_manager.calls(), accountCalls);
    EXPECT_THAT(m_manager.rights(), ElementsAre(0xF003Fu, 0xF01FFu));
}

TEST_F(OstrelServerAccount, FirstInquiryHasNoRoom) {
    DWORD room = 1;
    test::ImportHook<decltype(QueryServiceConfigW)> const hook(
        "QueryServiceConfigW", [&](SC_HANDLE, QUERY_SERVICE_CONFIGW*, DWORD size, DWORD*) -> BOOL {
            room = size;
            return TRUE;
        });

    GetSyncServiceUserName();

    EXPECT_EQ(0u, room);
}

TEST_F(OstrelServerAccount, OfAServiceThatCannotBeOpenedIsEmpty) {
    m_manager.serviceOpens = false;
    EXPECT_EQ(L"", GetSyncServiceUserName());

    m_manager.managerOpens = false;
    EXPECT_EQ(L"", GetSyncServiceUserName());

    EXPECT_THAT(m_sizes, testing::IsEmpty());
}

TEST_F(OstrelServerAccount, IsEmptyWhereTheFirstInquiryFailsOtherwise) {
    for (auto const error : {0u, 5u, 6u, 111u, 234u, 1060u}) {
        m_sizeError = error;
        EXPECT_EQ(L"", GetSyncServiceUserName()) << error;
    }

    EXPECT_THAT(m_sizes, testing::Each(0u));
    EXPECT_EQ(L"close service", m_manager.calls().back());
}

TEST_F(OstrelServerAccount, IsEmptyWhereTheFirstInquirySucceeds) {
    m_sizeAnswer = TRUE;

    EXPECT_EQ(L"", GetSyncServiceUserName());

    EXPECT_THAT(m_sizes, ElementsAre(0u));
    EXPECT_THAT(m_manager.calls(), accountCalls);
}

TEST_F(OstrelServerAccount, IsEmptyWhereTheSecondInquiryFails) {
    m_answer = FALSE;
    m_error = ERROR_INSUFFICIENT_BUFFER;

    EXPECT_EQ(L"", GetSyncServiceUserName());

    EXPECT_THAT(m_sizes, ElementsAre(0u, 300u));
    EXPECT_THAT(m_manager.calls(), accountCalls);
}

TEST_F(OstrelServerAccount, IsEmptyWhereTheServiceHasNone) {
    m_account = nullptr;

    EXPECT_EQ(L"", GetSyncServiceUserName());

    EXPECT_THAT(m_manager.calls(), accountCalls);
}

TEST_F(OstrelServerAccount, IsEmptyWhereMemoryRunsOut) {
    test::AllocationCounter counter;
    for (unsigned number = 1; number <= 2; ++number) {
        counter.reset();
        counter.failAt(number);

        EXPECT_EQ(L"", GetSyncServiceUserName()) << number;

        EXPECT_GE(counter.allocations(), number);
    }
    counter.failNone();

    EXPECT_EQ(L"close service", m_manager.calls().back());
    EXPECT_EQ(m_text, GetSyncServiceUserName());
}

TEST_F(OstrelServerAccount, LogsNothing) {
    test::LogRecorder const recorder;
    GetSyncServiceUserName();

    m_answer = FALSE;
    GetSyncServiceUserName();

    EXPECT_THAT(recorder.lines(), testing::IsEmpty());
}
