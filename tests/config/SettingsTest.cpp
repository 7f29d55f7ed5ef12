#include "vrUtils/Registry/Settings.h"

#include "tests/config/FreshMachine.h"
#include "tests/config/RegistryFailures.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/HandleCount.h"
#include "tests/support/KeyCalls.h"
#include "tests/support/LogRecorder.h"

#include <limits>
#include <string>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;
using namespace vrUtils::Registry;

namespace {

using Bytes = std::vector<unsigned char>;

constexpr wchar_t server[] = L"Software\\Vorrane\\Ostrel\\Server";
constexpr wchar_t engine[] = L"Software\\Vorrane\\Ostrel\\Server\\OstrelEngine";
constexpr wchar_t framework[] = L"SOFTWARE\\Microsoft\\NET Framework Setup\\NDP\\v3.5";

// A row of the catalogue. What its getter gives is told as a text, whatever its type.
struct Setting {
    char const* title;
    HKEY hive;
    std::wstring key;
    std::wstring value;
    std::wstring (*get)();
    std::wstring fallback;
    // A value that may be stored, and what the getter then gives.
    test::RegistryValue stored;
    std::wstring given;

    friend void PrintTo(Setting const& setting, std::ostream* stream) { *stream << setting.title; }
};

Setting const settings[] = {
    {"MaximumConcurrentTransfers",
     HKEY_CURRENT_USER,
     server,
     L"MaximumTransfers",
     [] { return std::to_wstring(GetMaximumConcurrentTransfers(4000000000)); },
     L"4000000000",
     {REG_DWORD, {0xFF, 0xFF, 0xFF, 0xFF}},
     L"4294967295"},
    {"InterplayWSAddress",
     HKEY_LOCAL_MACHINE,
     server,
     L"InterplayWSHost",
     [] { return GetInterplayWSAddress(L"host:80"); },
     L"host:80",
     {REG_SZ, {'a', 0, 0, 0}},
     L"a"},
    {"InterplayAssetFilter",
     HKEY_LOCAL_MACHINE,
     server,
     L"InterplayAssetFilter",
     [] { return GetInterplayAssetFilter(); },
     L"",
     {REG_SZ, {'b', 0, 0, 0}},
     L"b"},
    {"InterplayIDNameFilter",
     HKEY_LOCAL_MACHINE,
     server,
     L"InterplayIDFilter",
     [] { return GetInterplayIDNameFilter(); },
     L"",
     {REG_SZ, {'c', 0, 0, 0}},
     L"c"},
    {"NumJobRebmits",
     HKEY_LOCAL_MACHINE,
     server,
     L"MaxNumTransferRetries",
     [] { return std::to_wstring(GetNumJobRebmits(-7)); },
     L"-7",
     {REG_DWORD, {0xFF, 0xFF, 0xFF, 0xFF}},
     L"-1"},
    {"EngineCacheDepth",
     HKEY_LOCAL_MACHINE,
     engine,
     L"EngineCacheDepth",
     [] { return std::to_wstring(GetEngineCacheDepth(12)); },
     L"12",
     {REG_DWORD, {9, 1, 0, 0}},
     L"265"},
    {"DotNet35",
     HKEY_LOCAL_MACHINE,
     framework,
     L"Install",
     [] { return std::wstring(IsDotNet35Installed() ? L"true" : L"false"); },
     L"false",
     {REG_DWORD, {1, 0, 0, 0}},
     L"true"},
};

class Settings : public test::FreshMachine, public testing::WithParamInterface<Setting> {
  protected:
    Setting const& m_setting = GetParam();
    test::RegistryPlace const m_place{m_setting.hive, m_setting.key};
    test::RegistryPlace const m_inOtherHive{
        m_setting.hive == HKEY_CURRENT_USER ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER,
        m_setting.key};
    test::LogRecorder const m_log;
};

} // namespace

INSTANTIATE_TEST_SUITE_P(
    EachOfThem, Settings, testing::ValuesIn(settings),
    [](auto const& setting) { return std::string(setting.param.title); });

TEST_P(Settings, GivesWhatIsStored) {
    m_place.set(m_setting.value, m_setting.stored.type, m_setting.stored.data);

    EXPECT_EQ(m_setting.given, m_setting.get());
    EXPECT_THAT(m_log.lines(), IsEmpty());
}

TEST_P(Settings, MissingKeyGivesTheFallbackAndIsMade) {
    EXPECT_EQ(m_setting.fallback, m_setting.get());

    EXPECT_TRUE(m_place.exists());
    EXPECT_FALSE(m_place.get(m_setting.value));
    EXPECT_FALSE(m_inOtherHive.exists());
    EXPECT_THAT(m_log.lines(), IsEmpty());
}

TEST_P(Settings, MissingValueGivesTheFallback) {
    m_place.makeKey();

    EXPECT_EQ(m_setting.fallback, m_setting.get());
    EXPECT_THAT(m_log.lines(), IsEmpty());
}

TEST_P(Settings, ValueOfAnotherTypeGivesTheFallback) {
    bool const isNumber = m_setting.stored.type == REG_DWORD;
    m_place.set(m_setting.value, isNumber ? REG_SZ : REG_DWORD, m_setting.stored.data);

    EXPECT_EQ(m_setting.fallback, m_setting.get());
    EXPECT_THAT(m_log.lines(), IsEmpty());
}

TEST_P(Settings, RefusedKeyGivesTheFallbackAndItsLine) {
    m_place.set(m_setting.value, m_setting.stored.type, m_setting.stored.data);
    test::ImportHook const debugger("OutputDebugStringW", [](LPCWSTR) -> void {});
    test::KeyCalls const calls(test::refusing(ERROR_ACCESS_DENIED, ERROR_ACCESS_DENIED));

    EXPECT_EQ(m_setting.fallback, m_setting.get());

    EXPECT_THAT(
        m_log.lines(),
        ElementsAre(test::Logged(
            4, L"Failed to create registry key " + m_setting.key + L" - Error code 5")));
}

TEST_P(Settings, OtherHiveIsNotLookedAt) {
    // The user's hive takes a key of any name.
    test::AbsentKey const otherFramework(HKEY_CURRENT_USER, framework);
    m_inOtherHive.set(m_setting.value, m_setting.stored.type, m_setting.stored.data);

    EXPECT_EQ(m_setting.fallback, m_setting.get());

    m_inOtherHive.remove();
}

TEST_P(Settings, IsReadOnceFromItsKey) {
    m_place.set(m_setting.value, m_setting.stored.type, m_setting.stored.data);
    std::vector<std::wstring> asked;
    test::ImportHook<decltype(RegQueryValueExW)> const query(
        "RegQueryValueExW", [&](auto key, auto name, auto... arguments) {
            asked.emplace_back(name);
            return query.original()(key, name, arguments...);
        });
    test::KeyCalls const calls;

    m_setting.get();

    EXPECT_THAT(calls.made(), ElementsAre(test::opens(m_setting.hive, m_setting.key)));
    EXPECT_THAT(asked, ElementsAre(m_setting.value));
    EXPECT_EQ(calls.handedOut(), calls.closed());
}

TEST_P(Settings, AnyOtherFailurePasses) {
    m_place.set(m_setting.value, m_setting.stored.type, m_setting.stored.data);
    m_setting.get();
    test::HandleLeakCheck const check;

    auto const failed = test::failEachAllocation([&] { m_setting.get(); });

    EXPECT_LT(0u, failed);
}

TEST_P(Settings, EveryWayOutClosesTheKey) {
    m_setting.get();
    test::HandleLeakCheck const check;

    m_setting.get();
    {
        test::FailingImport<decltype(RegQueryValueExW)> const fails(
            "RegQueryValueExW", ERROR_ACCESS_DENIED, ERROR_SUCCESS);
        m_setting.get();
    }
    m_place.set(m_setting.value, m_setting.stored.type, m_setting.stored.data);
    m_setting.get();
}

class SettingsOfTheServer : public test::FreshMachine {};

TEST_F(SettingsOfTheServer, NumberOfTransfersComesBack) {
    SetMaximumConcurrentTransfers(4);

    EXPECT_EQ(4u, GetMaximumConcurrentTransfers(1));
}

TEST_F(SettingsOfTheServer, NumberOfTransfersIsTheUsersOwn) {
    SetMaximumConcurrentTransfers(4);

    EXPECT_EQ(
        (test::RegistryValue{REG_DWORD, {4, 0, 0, 0}}),
        m_user.get(L"MaximumTransfers", L"Ostrel\\Server"));
    EXPECT_FALSE(m_machine.exists(L"Ostrel\\Server"));
}

TEST_F(SettingsOfTheServer, NumberOfTransfersMakesTheMachinesRootToo) {
    EXPECT_EQ(1u, GetMaximumConcurrentTransfers(1));

    EXPECT_TRUE(m_machine.exists(L"Ostrel"));
}

TEST_F(SettingsOfTheServer, NumberOfTransfersTakesEveryNumber) {
    for (std::uint32_t const number : {0u, 1u, std::numeric_limits<std::uint32_t>::max()}) {
        SetMaximumConcurrentTransfers(number);

        EXPECT_EQ(number, GetMaximumConcurrentTransfers(77));
    }
}

TEST_F(SettingsOfTheServer, SettingANumberOfTransfersPassesARefusalOn) {
    test::LogRecorder const log;
    test::ImportHook const debugger("OutputDebugStringW", [](LPCWSTR) -> void {});
    test::KeyCalls const calls(test::refusing(ERROR_ACCESS_DENIED, ERROR_ACCESS_DENIED));

    EXPECT_THAT([] { SetMaximumConcurrentTransfers(4); }, FailsToAccess());

    EXPECT_THAT(
        log.texts(),
        ElementsAre(
            L"Failed to create registry key Software\\Vorrane\\Ostrel\\Server - Error code 5"));
}

TEST_F(SettingsOfTheServer, SettingANumberOfTransfersIsSilentWhereTheValueIsRefused) {
    test::FailingImport<decltype(RegSetValueExW)> const fails(
        "RegSetValueExW", ERROR_ACCESS_DENIED, ERROR_SUCCESS);

    EXPECT_NO_THROW(SetMaximumConcurrentTransfers(4));

    EXPECT_EQ(1u, fails.calls());
    EXPECT_EQ(1u, GetMaximumConcurrentTransfers(1));
}

TEST_F(SettingsOfTheServer, RetriesTakeTheirSignFromTheStoredNumber) {
    for (std::uint32_t const number : {0u, 5u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
        m_machine.setNumber(L"MaxNumTransferRetries", number, L"Ostrel\\Server");

        EXPECT_EQ(static_cast<std::int32_t>(number), GetNumJobRebmits(9));
    }
}

TEST_F(SettingsOfTheServer, FallbacksComeBackAsTheyWere) {
    auto constexpr least = std::numeric_limits<std::int32_t>::min();

    EXPECT_EQ(least, GetNumJobRebmits(least));
    EXPECT_EQ(0xFFFFFFFFu, GetMaximumConcurrentTransfers(0xFFFFFFFF));
    EXPECT_EQ(0u, GetEngineCacheDepth(0));
    EXPECT_EQ(L"", GetInterplayWSAddress(L""));
    EXPECT_EQ(std::wstring(3, L'\0'), GetInterplayWSAddress(std::wstring(3, L'\0')));
}

TEST_F(SettingsOfTheServer, FallbackIsCopied) {
    std::wstring fallback(100, L'x');

    auto const given = GetInterplayWSAddress(fallback);
    fallback.assign(100, L'y');

    EXPECT_EQ(std::wstring(100, L'x'), given);
}

TEST_F(SettingsOfTheServer, StoredEmptyTextGoesBeforeTheFallback) {
    m_machine.setText(L"InterplayWSHost", L"", L"Ostrel\\Server");

    EXPECT_EQ(L"", GetInterplayWSAddress(L"host"));
}

TEST_F(SettingsOfTheServer, FrameworkIsThereForOneNumberAlone) {
    for (std::uint32_t const number : {0u, 1u, 2u, 0x101u, 0xFFFFFFFFu}) {
        m_framework.setNumber(L"Install", number, L"NDP\\v3.5");

        EXPECT_EQ(number == 1, IsDotNet35Installed()) << number;
    }
}

TEST_F(SettingsOfTheServer, AskingForTheFrameworkLeavesAnEmptyKey) {
    EXPECT_FALSE(IsDotNet35Installed());

    EXPECT_TRUE(m_framework.exists(L"NDP\\v3.5"));
    EXPECT_FALSE(m_framework.get(L"Install", L"NDP\\v3.5"));
    EXPECT_FALSE(m_machine.exists());
}

TEST(SettingNames, AreTheOnesOfTheCatalogue) {
    EXPECT_STREQ(server, ServerKey);
    EXPECT_STREQ(engine, EngineKey);
    EXPECT_STREQ(framework, DotNet35Key);
    EXPECT_STREQ(L"MaximumTransfers", MaximumTransfersValue);
    EXPECT_STREQ(L"InterplayWSHost", InterplayWSHostValue);
    EXPECT_STREQ(L"InterplayAssetFilter", InterplayAssetFilterValue);
    EXPECT_STREQ(L"InterplayIDFilter", InterplayIDFilterValue);
    EXPECT_STREQ(L"MaxNumTransferRetries", MaxNumTransferRetriesValue);
    EXPECT_STREQ(L"EngineCacheDepth", EngineCacheDepthValue);
    EXPECT_STREQ(L"Install", DotNet35InstallValue);
}
