#include "tools/vrtool/SettingsCatalogue.h"

#include "tools/vrtool/Platform.h"
#include "vrUtils/Registry.h"

#include <algorithm>
#include <charconv>
#include <limits>

namespace Registry = vrUtils::Registry;

namespace {

// The longest text that the library reads.
constexpr std::size_t longestSettingText = 2047;

using SettingLimits = std::numeric_limits<std::int32_t>;

std::optional<std::int64_t> wholeNumber(std::wstring const& text) {
    // What is no ASCII digit must not become one by narrowing.
    if (text.find_first_not_of(L"-0123456789") != text.npos)
        return std::nullopt;
    std::string const digits(text.begin(), text.end());
    std::int64_t number = 0;
    auto const [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    bool const isNumber = error == std::errc() && end == digits.data() + digits.size();
    return isNumber ? std::optional(number) : std::nullopt;
}

std::uint32_t readNumber(Setting const& setting) {
    return setting.owner == Setting::Owner::user
               ? Registry::ReadCurrentUserDWORDValue(setting.key, setting.name)
               : Registry::ReadLocalMachineDWORDValue(setting.key, setting.name);
}

SettingValue readValue(Setting const& setting) {
    if (setting.kind == Setting::Kind::text)
        return Registry::ReadLocalMachineString(setting.key, setting.name);
    auto const number = readNumber(setting);
    if (setting.kind == Setting::Kind::signedNumber)
        return std::int64_t{static_cast<std::int32_t>(number)};
    return std::int64_t{number};
}

void writeValue(Setting const& setting, SettingValue const& value) {
    if (auto const* text = std::get_if<std::wstring>(&value))
        return Registry::WriteLocalMachineValue(setting.key, setting.name, *text);
    auto const number = static_cast<std::uint32_t>(std::get<std::int64_t>(value));
    if (setting.owner == Setting::Owner::user)
        return Registry::SetMaximumConcurrentTransfers(number);
    Registry::WriteLocalMachineValue(setting.key, setting.name, number);
}

} // namespace

wchar_t const* Setting::hive() const {
    return owner == Owner::user ? L"HKEY_CURRENT_USER" : L"HKEY_LOCAL_MACHINE";
}

wchar_t const* Setting::type() const { return kind == Kind::text ? L"REG_SZ" : L"REG_DWORD"; }

std::vector<Setting> const& allSettings() {
    using Kind = Setting::Kind;
    using Owner = Setting::Owner;
    using namespace Registry;
    static std::vector<Setting> const settings{
        {MaximumTransfersValue, ServerKey, L"GetMaximumConcurrentTransfers", Kind::number,
         Owner::user},
        {InterplayWSHostValue, ServerKey, L"GetInterplayWSAddress", Kind::text, Owner::machine},
        {InterplayAssetFilterValue, ServerKey, L"GetInterplayAssetFilter", Kind::text,
         Owner::machine},
        {InterplayIDFilterValue, ServerKey, L"GetInterplayIDNameFilter", Kind::text,
         Owner::machine},
        {MaxNumTransferRetriesValue, ServerKey, L"GetNumJobRebmits", Kind::signedNumber,
         Owner::machine},
        {EngineCacheDepthValue, EngineKey, L"GetEngineCacheDepth", Kind::number, Owner::machine},
        {DotNet35InstallValue, DotNet35Key, L"IsDotNet35Installed", Kind::number, Owner::platform},
    };
    return settings;
}

Setting const* findSetting(std::wstring_view name) {
    auto const& settings = allSettings();
    auto const found = std::find_if(settings.begin(), settings.end(), [&](Setting const& setting) {
        return CompareStringOrdinal(
                   setting.name, -1, name.data(), static_cast<int>(name.size()), TRUE) ==
               CSTR_EQUAL;
    });
    return found == settings.end() ? nullptr : &*found;
}

std::optional<SettingValue> settingValueOf(Setting const& setting, std::wstring const& text) {
    if (setting.kind == Setting::Kind::text)
        return text.size() <= longestSettingText ? std::optional<SettingValue>(text) : std::nullopt;

    bool const isSigned = setting.kind == Setting::Kind::signedNumber;
    auto const number = wholeNumber(text);
    if (!number || *number < (isSigned ? SettingLimits::min() : 0) ||
        *number > std::numeric_limits<std::uint32_t>::max())
        return std::nullopt;
    // The upper half of the numbers is what the library reads as those below zero.
    return isSigned && *number > SettingLimits::max() ? *number - (std::int64_t{1} << 32) : *number;
}

std::wstring settingText(SettingValue const& value) {
    auto const* text = std::get_if<std::wstring>(&value);
    return text ? *text : std::to_wstring(std::get<std::int64_t>(value));
}

std::optional<SettingValue> readSetting(Setting const& setting) {
    try {
        return readValue(setting);
    } catch (Registry::vrRegistryValueMissingException const&) {
        return std::nullopt;
    }
}

bool writeSetting(Setting const& setting, SettingValue const& value) {
    writeValue(setting, value);
    return readSetting(setting) == value;
}
