// The settings that the program lists and sets, in the registry of the whole machine.

#include "tools/vrtool/SettingsCatalogue.h"
#include "tests/support/ImportHook.h"
#include "tests/vrtool/SettingsKeys.h"
#include "vrUtils/Registry.h"

#include <gmock/gmock.h>

#include <limits>

namespace Registry = vrUtils::Registry;

namespace {

Setting const& setting(wchar_t const* name) { return *findSetting(name); }

SettingValue number(std::int64_t value) { return value; }

std::wstring const longestText(2047, L'x');

class VrtoolSettingsCatalogue : public test::SettingsKeys {};

} // namespace

TEST(VrtoolSettings, AreFoundWithoutRegardToCase) {
    EXPECT_STREQ(L"MaximumTransfers", findSetting(L"MAXIMUMtransfers")->name);
    EXPECT_EQ(nullptr, findSetting(L"MaximumTransfer"));
    EXPECT_EQ(nullptr, findSetting(L"GetMaximumConcurrentTransfers"));
    EXPECT_EQ(nullptr, findSetting(L""));
}

TEST(VrtoolSettings, OnlyThePlatformsOwnIsReadOnly) {
    for (auto const& each : allSettings())
        EXPECT_EQ(each.name == std::wstring(L"Install"), each.isReadOnly()) << each.name;
}

struct Form {
    char const* kind;
    wchar_t const* name;
    std::wstring text;
    std::optional<SettingValue> value;
};

void PrintTo(Form const& form, std::ostream* stream) { *stream << form.kind; }

class VrtoolSettingsForm : public testing::TestWithParam<Form> {};

TEST_P(VrtoolSettingsForm, IsChecked) {
    EXPECT_EQ(GetParam().value, settingValueOf(setting(GetParam().name), GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(
    Vrtool, VrtoolSettingsForm,
    testing::Values(
        Form{"Zero", L"EngineCacheDepth", L"0", std::int64_t{0}},
        Form{"Largest", L"EngineCacheDepth", L"4294967295", std::int64_t{4294967295}},
        Form{"TooLarge", L"EngineCacheDepth", L"4294967296", {}},
        Form{"FarTooLarge", L"EngineCacheDepth", L"99999999999999999999", {}},
        Form{"BelowZero", L"EngineCacheDepth", L"-1", {}},
        Form{"LeadingZeros", L"EngineCacheDepth", L"0004", std::int64_t{4}},
        Form{"NoDigits", L"EngineCacheDepth", L"", {}},
        Form{"Minus", L"MaxNumTransferRetries", L"-", {}},
        Form{"Plus", L"EngineCacheDepth", L"+1", {}},
        Form{"Hexadecimal", L"EngineCacheDepth", L"0x10", {}},
        Form{"Blank", L"EngineCacheDepth", L" 1", {}}, Form{"Tail", L"EngineCacheDepth", L"1a", {}},
        Form{"TwoNumbers", L"EngineCacheDepth", L"1-2", {}},
        Form{"DigitsOfOtherScripts", L"EngineCacheDepth", L"\u0134", {}},
        Form{"Signed", L"MaxNumTransferRetries", L"-1", std::int64_t{-1}},
        Form{
            "Least", L"MaxNumTransferRetries", L"-2147483648",
            std::int64_t{std::numeric_limits<std::int32_t>::min()}},
        Form{"BelowTheLeast", L"MaxNumTransferRetries", L"-2147483649", {}},
        Form{"LargestSigned", L"MaxNumTransferRetries", L"2147483647", std::int64_t{2147483647}},
        Form{
            "UpperHalf", L"MaxNumTransferRetries", L"2147483648",
            std::int64_t{std::numeric_limits<std::int32_t>::min()}},
        Form{"LargestUnsigned", L"MaxNumTransferRetries", L"4294967295", std::int64_t{-1}},
        Form{"BeyondUnsigned", L"MaxNumTransferRetries", L"4294967296", {}},
        Form{"EmptyText", L"InterplayWSHost", L"", std::wstring()},
        Form{"LongestText", L"InterplayWSHost", longestText, longestText},
        Form{"TextTooLong", L"InterplayWSHost", longestText + L"x", {}}),
    [](auto const& test) { return test.param.kind; });

TEST(VrtoolSettings, ValuesAreShownAsTheyAreTyped) {
    EXPECT_EQ(L"-1", settingText(std::int64_t{-1}));
    EXPECT_EQ(L"4294967295", settingText(std::int64_t{4294967295}));
    EXPECT_EQ(L"a b", settingText(std::wstring(L"a b")));
}

TEST_F(VrtoolSettingsCatalogue, WritesWhatTheLibrarysGettersRead) {
    EXPECT_TRUE(writeSetting(setting(L"MaximumTransfers"), std::int64_t{4}));
    EXPECT_TRUE(writeSetting(setting(L"InterplayWSHost"), std::wstring(L"host")));
    EXPECT_TRUE(writeSetting(setting(L"InterplayAssetFilter"), std::wstring(L"asset")));
    EXPECT_TRUE(writeSetting(setting(L"InterplayIDFilter"), std::wstring(L"id")));
    EXPECT_TRUE(writeSetting(setting(L"MaxNumTransferRetries"), std::int64_t{-1}));
    EXPECT_TRUE(writeSetting(setting(L"EngineCacheDepth"), std::int64_t{4294967295}));

    EXPECT_EQ(4u, Registry::GetMaximumConcurrentTransfers(1));
    EXPECT_EQ(L"host", Registry::GetInterplayWSAddress({}));
    EXPECT_EQ(L"asset", Registry::GetInterplayAssetFilter());
    EXPECT_EQ(L"id", Registry::GetInterplayIDNameFilter());
    EXPECT_EQ(-1, Registry::GetNumJobRebmits(1));
    EXPECT_EQ(4294967295u, Registry::GetEngineCacheDepth(1));
}

TEST_F(VrtoolSettingsCatalogue, ReadsWhatItHasWritten) {
    for (auto const& each : allSettings()) {
        if (each.isReadOnly())
            continue;
        auto const value = settingValueOf(each, L"7");
        EXPECT_EQ(std::nullopt, readSetting(each)) << each.name;
        EXPECT_TRUE(writeSetting(each, *value)) << each.name;
        EXPECT_EQ(value, readSetting(each)) << each.name;
    }
}

TEST_F(VrtoolSettingsCatalogue, ReadsWhetherThePlatformsFrameworkIsInstalled) {
    Registry::WriteLocalMachineValue(Registry::DotNet35Key, Registry::DotNet35InstallValue, 1);

    EXPECT_EQ(number(1), readSetting(setting(L"Install")));
}

TEST_F(VrtoolSettingsCatalogue, WritesTheLongestText) {
    EXPECT_TRUE(writeSetting(setting(L"InterplayWSHost"), longestText));
}

TEST_F(VrtoolSettingsCatalogue, TakesAValueOfAnotherTypeForNone) {
    Registry::WriteCurrentUserValue(
        Registry::ServerKey, Registry::MaximumTransfersValue, std::wstring(L"4"));

    EXPECT_EQ(std::nullopt, readSetting(setting(L"MaximumTransfers")));
}

TEST_F(VrtoolSettingsCatalogue, TellsThatAWriteDidNotTake) {
    auto const& transfers = setting(L"MaximumTransfers");
    writeSetting(transfers, std::int64_t{4});
    test::FailingImport<decltype(RegSetValueExW)> const fails(
        "RegSetValueExW", ERROR_ACCESS_DENIED, ERROR_SUCCESS);

    EXPECT_FALSE(writeSetting(transfers, std::int64_t{5}));
    EXPECT_EQ(number(4), readSetting(transfers));
}

TEST_F(VrtoolSettingsCatalogue, ThrowsWhereTheKeyCannotBeHad) {
    test::FailingImport<decltype(RegOpenKeyExW)> const opens(
        "RegOpenKeyExW", ERROR_ACCESS_DENIED, ERROR_SUCCESS, test::everyCall);
    test::FailingImport<decltype(RegCreateKeyExW)> const creates(
        "RegCreateKeyExW", ERROR_ACCESS_DENIED, ERROR_SUCCESS, test::everyCall);

    for (auto const& each : allSettings())
        EXPECT_THROW(readSetting(each), Registry::vrRegistryAccessException) << each.name;
}
