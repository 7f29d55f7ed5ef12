#ifndef TOOLS_VRTOOL_SETTINGSCATALOGUE_H
#define TOOLS_VRTOOL_SETTINGSCATALOGUE_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

// What a setting holds: a number, with its sign where the library takes it so, or a text.
using SettingValue = std::variant<std::int64_t, std::wstring>;

// One of the settings that the library knows by name.
struct Setting {
    enum class Kind { number, signedNumber, text };
    enum class Owner { user, machine, platform };

    // Of the value in the registry; the name by which users ask for the setting.
    wchar_t const* name;
    wchar_t const* key;
    // The library's function that reads it.
    wchar_t const* function;
    Kind kind;
    Owner owner;

    wchar_t const* hive() const;
    wchar_t const* type() const;

    // Whether it is the platform's own, and not for us to set.
    bool isReadOnly() const { return owner == Owner::platform; }
};

// All settings, in the order of the library's header.
std::vector<Setting> const& allSettings();

// A setting by its name without regard to case; null if there is none.
Setting const* findSetting(std::wstring_view name);

// What a text says for a setting; none if it has not the setting's form: a whole number in its
// range, or a text that the library can read back.
std::optional<SettingValue> settingValueOf(Setting const& setting, std::wstring const& text);

// The value as it is typed and shown.
std::wstring settingText(SettingValue const& value);

// The value that stands in the registry; none if there is none of the setting's type. The key is
// made where it is missing, as by every program that asks for the setting.
// @throws vrRegistryAccessException if the key can be neither opened nor made
std::optional<SettingValue> readSetting(Setting const& setting);

// Writes the value; not for settings that are read-only.
// @return whether it can be read back, since the platform may refuse it without a word
// @throws vrRegistryAccessException if the key can be neither opened nor made
bool writeSetting(Setting const& setting, SettingValue const& value);

#endif
