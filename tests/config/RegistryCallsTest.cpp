#include "vrUtils/Registry/Values.h"

#include "tests/config/FreshMachine.h"
#include "tests/config/RegistryFailures.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/HandleCount.h"
#include "tests/support/KeyCalls.h"
#include "tests/support/LogRecorder.h"

#include <aclapi.h>

#include <optional>
#include <string>
#include <thread>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;
using namespace vrUtils::Registry;

namespace {

constexpr wchar_t productKey[] = L"Software\\Vorrane\\Ostrel\\Server";

class RegistryCalls : public test::FreshMachine {
  protected:
    // One call of every function, on a key that is there, of values that are there or are not.
    void callEach() const {
        WriteCurrentUserValue(m_path, L"number", 7);
        WriteCurrentUserValue(m_path, L"text", L"a");
        EXPECT_EQ(7u, ReadCurrentUserDWORDValue(m_path, L"number"));
        EXPECT_EQ(L"a", ReadCurrentUserString(m_path, L"text"));
        EXPECT_THAT([&] { ReadCurrentUserDWORDValue(m_path, L"none"); }, MissesTheValue());
        EXPECT_THAT([&] { ReadCurrentUserString(m_path, L"none"); }, MissesTheValue());
    }

    // A read that goes all the way: the key and the product's root are both made.
    void readOnAFreshMachine() const {
        m_machine.remove();
        m_user.remove();
        EXPECT_THAT([] { ReadCurrentUserString(productKey, L"none"); }, MissesTheValue());
    }

    test::ScratchKey m_scratch;
    std::wstring const m_path = m_scratch.path();
    test::LogRecorder const m_log;
};

} // namespace

TEST_F(RegistryCalls, EachKeyIsClosedBeforeTheNextIsOpened) {
    test::KeyCalls const calls;

    callEach();

    EXPECT_EQ(6u, calls.handedOut().size());
    EXPECT_EQ(calls.handedOut(), calls.closed());
}

TEST_F(RegistryCalls, KeysOfTheProductAreAllClosed) {
    test::KeyCalls const calls;

    EXPECT_THAT([] { ReadCurrentUserString(productKey, L"none"); }, MissesTheValue());

    EXPECT_EQ(2u, calls.handedOut().size());
    EXPECT_EQ(calls.handedOut(), calls.closed());
}

TEST_F(RegistryCalls, KeyIsClosedWhereTheWriteIsRefused) {
    test::FailingImport<decltype(RegSetValueExW)> const fails(
        "RegSetValueExW", ERROR_ACCESS_DENIED, ERROR_SUCCESS, test::everyCall);
    test::KeyCalls const calls;

    WriteCurrentUserValue(m_path, L"number", 7);
    WriteCurrentUserValue(m_path, L"text", L"a");

    EXPECT_EQ(2u, calls.handedOut().size());
    EXPECT_EQ(calls.handedOut(), calls.closed());
}

TEST_F(RegistryCalls, KeyIsClosedBehindTheLastCallThatUsesIt) {
    std::vector<std::string> events;
    test::ImportHook<decltype(RegSetValueExW)> const set("RegSetValueExW", [&](auto... arguments) {
        events.emplace_back("set");
        return set.original()(arguments...);
    });
    test::ImportHook<decltype(RegCloseKey)> const close("RegCloseKey", [&](HKEY key) {
        events.emplace_back("close");
        return close.original()(key);
    });

    WriteCurrentUserValue(m_path, L"number", 7);

    EXPECT_THAT(events, ElementsAre("set", "close"));
}

TEST_F(RegistryCalls, LeaveNoHandle) {
    callEach();
    readOnAFreshMachine();
    test::HandleLeakCheck const check;

    callEach();
    readOnAFreshMachine();
}

TEST_F(RegistryCalls, FailedAllocationPassesFromEveryFunction) {
    std::wstring const longText(3000, L'x');
    m_scratch.setText(L"text", longText.substr(0, 2000));
    m_scratch.setNumber(L"number", 7);
    test::HandleLeakCheck const check;

    // A number on a key that is there takes nothing from the heap but the exception of a miss.
    EXPECT_EQ(0u, test::failEachAllocation([&] { ReadCurrentUserDWORDValue(m_path, L"number"); }));
    EXPECT_EQ(2u, test::failEachAllocation([&] { ReadCurrentUserString(m_path, L"text"); }));
    EXPECT_EQ(0u, test::failEachAllocation([&] { WriteCurrentUserValue(m_path, L"n", 7); }));
    EXPECT_EQ(0u, test::failEachAllocation([&] { WriteCurrentUserValue(m_path, L"t", longText); }));
}

TEST_F(RegistryCalls, FailedAllocationPassesWhileAKeyIsMade) {
    test::HandleLeakCheck const check;

    auto const failed = test::failEachAllocation([&] {
        m_machine.remove();
        m_user.remove();
        WriteCurrentUserValue(productKey, L"number", 7);
    });

    EXPECT_LT(0u, failed);
    EXPECT_EQ(7u, m_user.getNumber(L"number", L"Ostrel\\Server"));
}

TEST_F(RegistryCalls, FailedAllocationPassesBeforeTheLogIsWritten) {
    test::KeyCalls const calls(test::refusing(ERROR_ACCESS_DENIED, ERROR_ACCESS_DENIED));
    test::AllocationCounter counter;

    for (unsigned number = 1; number <= 3; ++number) {
        counter.failAt(number);
        EXPECT_THROW(WriteCurrentUserValue(m_path, L"number", 7), std::bad_alloc) << number;
    }

    EXPECT_THAT(m_log.lines(), IsEmpty());
}

TEST_F(RegistryCalls, RootThatIsRefusedIsToldToADebugger) {
    std::vector<std::wstring> told;
    test::ImportHook const debugger(
        "OutputDebugStringW", [&](LPCWSTR text) -> void { told.emplace_back(text); });
    test::FailingImport<decltype(RegCreateKeyExW)> const fails(
        "RegCreateKeyExW", ERROR_ACCESS_DENIED, ERROR_SUCCESS);

    WriteLocalMachineValue(productKey, L"number", 7);

    EXPECT_THAT(told, ElementsAre(L"Failed 0x5\n"));
    EXPECT_EQ(7u, m_machine.getNumber(L"number", L"Ostrel\\Server"));
    EXPECT_THAT(m_log.lines(), IsEmpty());
}

// Nothing may stay open behind a call of the platform that fails once.
class RegistryCallsFailingOnce : public RegistryCalls {
  protected:
    RegistryCallsFailingOnce() {
        callEach();
        readOnAFreshMachine();
        m_check.emplace();
    }

    ~RegistryCallsFailingOnce() override {
        EXPECT_THAT(m_log.texts(), testing::SizeIs(m_expectedLines));
    }

    std::size_t m_expectedLines = 0;
    test::ImportHook<decltype(OutputDebugStringW)> const m_debugger{
        "OutputDebugStringW", [](LPCWSTR) -> void {}};
    std::optional<test::HandleLeakCheck> m_check;
};

TEST_F(RegistryCallsFailingOnce, OpeningIsMadeUpForByMaking) {
    test::FailingImport<decltype(RegOpenKeyExW)> const fails(
        "RegOpenKeyExW", ERROR_ACCESS_DENIED, ERROR_SUCCESS);

    callEach();

    EXPECT_EQ(6u, fails.calls());
}

TEST_F(RegistryCallsFailingOnce, MakingTheRootIsNoFailure) {
    m_user.remove();
    test::FailingImport<decltype(RegCreateKeyExW)> const fails(
        "RegCreateKeyExW", ERROR_ACCESS_DENIED, ERROR_SUCCESS);

    EXPECT_THAT([] { ReadCurrentUserString(productKey, L"none"); }, MissesTheValue());

    EXPECT_TRUE(m_user.exists(L"Ostrel\\Server"));
}

TEST_F(RegistryCallsFailingOnce, MakingTheKeyFailsTheCall) {
    m_user.remove();
    m_expectedLines = 1;
    test::FailingImport<decltype(RegCreateKeyExW)> const fails(
        "RegCreateKeyExW", ERROR_ACCESS_DENIED, ERROR_SUCCESS, 2);

    EXPECT_THAT([] { ReadCurrentUserString(productKey, L"none"); }, FailsToAccess());

    EXPECT_FALSE(m_user.exists(L"Ostrel"));
}

TEST_F(RegistryCallsFailingOnce, QueryMissesTheValue) {
    test::FailingImport<decltype(RegQueryValueExW)> const fails(
        "RegQueryValueExW", ERROR_ACCESS_DENIED, ERROR_SUCCESS);

    EXPECT_THAT([&] { ReadCurrentUserDWORDValue(m_path, L"number"); }, MissesTheValue());

    EXPECT_EQ(7u, ReadCurrentUserDWORDValue(m_path, L"number"));
}

TEST_F(RegistryCallsFailingOnce, SettingIsLost) {
    test::FailingImport<decltype(RegSetValueExW)> const fails(
        "RegSetValueExW", ERROR_ACCESS_DENIED, ERROR_SUCCESS);

    WriteCurrentUserValue(m_path, L"number", 8);
    EXPECT_EQ(7u, ReadCurrentUserDWORDValue(m_path, L"number"));

    WriteCurrentUserValue(m_path, L"number", 8);
    EXPECT_EQ(8u, ReadCurrentUserDWORDValue(m_path, L"number"));
}

TEST_F(RegistryCallsFailingOnce, ClosingIsNotLookedAt) {
    test::ImportHook<decltype(RegCloseKey)> const hook("RegCloseKey", [&](HKEY key) -> LSTATUS {
        hook.original()(key);
        return ERROR_INVALID_HANDLE;
    });

    callEach();
    readOnAFreshMachine();

    EXPECT_EQ(8u, hook.calls());
}

TEST_F(RegistryCallsFailingOnce, IdentifierStopsNothing) {
    for (unsigned const failing : {1u, 2u}) {
        test::FailingImport<decltype(AllocateAndInitializeSid)> const fails(
            "AllocateAndInitializeSid", FALSE, ERROR_INVALID_SID, failing);

        readOnAFreshMachine();

        EXPECT_EQ(2u, fails.calls());
        EXPECT_TRUE(m_machine.exists(L"Ostrel"));
    }
}

TEST_F(RegistryCallsFailingOnce, AccessListStopsNothing) {
    test::FailingImport<decltype(SetEntriesInAclW)> const fails(
        "SetEntriesInAclW", ERROR_INVALID_ACL, ERROR_SUCCESS);

    readOnAFreshMachine();

    EXPECT_EQ(1u, fails.calls());
    EXPECT_TRUE(m_machine.exists(L"Ostrel"));
}

TEST_F(RegistryCallsFailingOnce, DescriptorStopsNothing) {
    test::FailingImport<decltype(LocalAlloc)> const fails(
        "LocalAlloc", nullptr, ERROR_NOT_ENOUGH_MEMORY);

    readOnAFreshMachine();

    EXPECT_EQ(1u, fails.calls());
    EXPECT_TRUE(m_machine.exists(L"Ostrel"));
}

TEST_F(RegistryCallsFailingOnce, PreparingTheDescriptorStopsNothing) {
    test::FailingImport<decltype(InitializeSecurityDescriptor)> const fails(
        "InitializeSecurityDescriptor", FALSE, ERROR_INVALID_PARAMETER);

    readOnAFreshMachine();

    EXPECT_EQ(1u, fails.calls());
    EXPECT_TRUE(m_user.exists(L"Ostrel\\Server"));
}

TEST_F(RegistryCallsFailingOnce, GivingTheListToTheDescriptorStopsNothing) {
    test::FailingImport<decltype(SetSecurityDescriptorDacl)> const fails(
        "SetSecurityDescriptorDacl", FALSE, ERROR_INVALID_PARAMETER);

    readOnAFreshMachine();

    EXPECT_EQ(1u, fails.calls());
    EXPECT_TRUE(m_machine.exists(L"Ostrel"));
}

TEST_F(RegistryCalls, ThreadsReadAndWriteTheirOwnValues) {
    constexpr std::uint32_t rounds = 300;
    auto const work = [&](std::wstring const& value) {
        for (std::uint32_t number = 0; number < rounds; ++number) {
            WriteCurrentUserValue(m_path, value, number);
            if (ReadCurrentUserDWORDValue(m_path, value) != number)
                return false;
        }
        return true;
    };
    bool others = false;

    std::thread other([&] { others = work(L"other"); });
    bool const mine = work(L"mine");
    other.join();

    EXPECT_TRUE(mine);
    EXPECT_TRUE(others);
}

TEST_F(RegistryCalls, ThreadsThatShareAValueNeverReadHalfOfIt) {
    constexpr int rounds = 300;
    auto const textOf = [](int thread) { return std::wstring(1000, L"ab"[thread]); };
    auto const work = [&](int thread) {
        for (int round = 0; round < rounds; ++round) {
            WriteCurrentUserValue(m_path, L"text", textOf(thread));
            auto const text = ReadCurrentUserString(m_path, L"text");
            if (text != textOf(0) && text != textOf(1))
                return false;
        }
        return true;
    };
    bool others = false;

    std::thread other([&] { others = work(1); });
    bool const mine = work(0);
    other.join();

    EXPECT_TRUE(mine);
    EXPECT_TRUE(others);
}

TEST_F(RegistryCalls, ThreadsMayMeetOnAFreshMachine) {
    for (std::uint32_t round = 0; round < 10; ++round) {
        m_machine.remove();
        m_user.remove();

        std::thread other([&] { WriteLocalMachineValue(productKey, L"other", round); });
        WriteCurrentUserValue(productKey, L"mine", round);
        other.join();

        EXPECT_EQ(round, m_user.getNumber(L"mine", L"Ostrel\\Server"));
        EXPECT_EQ(round, m_machine.getNumber(L"other", L"Ostrel\\Server"));
    }
}
