#include "tools/vrtool/SettingsCommand.h"

#include "tools/vrtool/CommandLine.h"
#include "tools/vrtool/Console.h"
#include "tools/vrtool/ExitCodes.h"
#include "tools/vrtool/JsonText.h"
#include "tools/vrtool/TextTable.h"
#include "tools/vrtool/Utf8.h"
#include "vrUtils/Registry/Exceptions.h"

#include <algorithm>

namespace {

constexpr char settingsExplanation[] =
    R"(Without a subcommand: one row for each setting that the library knows by name,
with its place in the registry and the function that reads it. What is not set
is shown as "-"; FAILURE says why a key can be neither opened nor made. Like
every program that asks for a setting, this makes keys that are missing.

Ends with 0 if all went well, 1 if a row has a failure, 2 if the arguments are
wrong.

Example:
  vrtool settings
  vrtool settings set MaximumTransfers 4)";

constexpr char getSettingExplanation[] =
    R"(Prints the value and nothing else. Ends with 0, 1 if the setting is not set, 2
if the arguments are wrong.

Example:
  vrtool settings get InterplayWSHost)";

constexpr char setSettingExplanation[] =
    R"(Numbers go from 0 to 4294967295, those of MaxNumTransferRetries from
-2147483648; texts have at most 2047 characters. A text that begins with a dash
is given behind "--".

Ends with 0 once the value can be read back, 1 if it cannot, 2 if the arguments
are wrong; nothing is written then.

Example:
  vrtool settings set MaximumTransfers 4)";

struct SettingRow {
    Setting const& setting;
    std::optional<SettingValue> value;
    std::wstring failure;
};

std::vector<SettingRow> allSettingRows() {
    std::vector<SettingRow> rows;
    for (auto const& setting : allSettings()) {
        SettingRow row{setting, {}, {}};
        try {
            row.value = readSetting(setting);
        } catch (vrUtils::Registry::vrRegistryAccessException const& failure) {
            row.failure = failure.message();
        }
        rows.push_back(std::move(row));
    }
    return rows;
}

std::string tableOf(std::vector<SettingRow> const& rows, std::optional<std::size_t> width) {
    using Align = TextTable::Align;
    using Narrow = TextTable::Narrow;
    TextTable table({
        {L"NAME"},
        {L"VALUE", Align::left, Narrow::wrap},
        {L"TYPE"},
        {L"HIVE"},
        {L"KEY", Align::left, Narrow::ownLine},
        {L"FUNCTION", Align::left, Narrow::ownLine},
        {L"FAILURE", Align::left, Narrow::ownLine},
    });
    for (auto const& row : rows)
        table.addRow(
            {row.setting.name, row.value ? settingText(*row.value) : L"-", row.setting.type(),
             row.setting.hive(), row.setting.key, row.setting.function, row.failure});
    return table.text(width);
}

Json::Value jsonOf(std::optional<SettingValue> const& value) {
    if (!value)
        return {};
    if (auto const* text = std::get_if<std::wstring>(&*value))
        return toUtf8(*text);
    return Json::Int64{std::get<std::int64_t>(*value)};
}

// Every object has every key; null is what is not set or not known.
std::string jsonOf(std::vector<SettingRow> const& rows) {
    Json::Value array(Json::arrayValue);
    for (auto const& row : rows) {
        Json::Value object;
        object["name"] = toUtf8(row.setting.name);
        object["value"] = jsonOf(row.value);
        object["type"] = toUtf8(row.setting.type());
        object["hive"] = toUtf8(row.setting.hive());
        object["key"] = toUtf8(row.setting.key);
        object["function"] = toUtf8(row.setting.function);
        object["failure"] = row.failure.empty() ? Json::Value() : Json::Value(toUtf8(row.failure));
        array.append(object);
    }
    return jsonText(array);
}

std::wstring placeOf(Setting const& setting) {
    return std::wstring(setting.hive()) + L'\\' + setting.key;
}

CLI::Option* addName(CLI::App& arguments) {
    return arguments.add_option("NAME")->required()->description(
        "The value's name, in any case, as the list shows it");
}

Setting const& settingOf(CLI::Option const& name) {
    auto const text = CommandLine::textOf(name);
    auto const* const setting = findSetting(text);
    if (!setting)
        throw CLI::ValidationError("NAME", "no setting has the name " + toUtf8(text));
    return *setting;
}

SettingValue valueOf(Setting const& setting, CLI::Option const& option) {
    auto const name = toUtf8(setting.name);
    if (setting.isReadOnly())
        throw CLI::ValidationError("NAME", name + " is the platform's own and is not for setting");
    auto const value = settingValueOf(setting, CommandLine::textOf(option));
    if (value)
        return *value;
    switch (setting.kind) {
    case Setting::Kind::number:
        throw CLI::ValidationError("VALUE", name + " takes a number from 0 to 4294967295");
    case Setting::Kind::signedNumber:
        throw CLI::ValidationError(
            "VALUE", name + " takes a number from -2147483648 to 4294967295");
    case Setting::Kind::text:
        break;
    }
    throw CLI::ValidationError("VALUE", name + " takes a text of at most 2047 characters");
}

} // namespace

SettingsGetCommand::SettingsGetCommand()
    : Command("get", "Print the value of one setting", getSettingExplanation) {}

void SettingsGetCommand::declare(CLI::App& arguments) {
    auto* const name = addName(arguments);
    arguments.final_callback([this, name] { m_setting = &settingOf(*name); });
}

int SettingsGetCommand::run(Console& console) const {
    auto const value = readSetting(*m_setting);
    if (!value) {
        console.error(
            "vrtool: " + toUtf8(m_setting->name) + " is not set: there is no readable " +
            toUtf8(m_setting->type()) + " value of this name in " + toUtf8(placeOf(*m_setting)) +
            '\n');
        return ExitCode::failure;
    }
    console.out(toUtf8(settingText(*value)) + '\n');
    return ExitCode::success;
}

SettingsSetCommand::SettingsSetCommand()
    : Command("set", "Give a setting another value", setSettingExplanation) {}

void SettingsSetCommand::declare(CLI::App& arguments) {
    auto* const name = addName(arguments);
    auto* const value = arguments.add_option("VALUE")->required();
    value->description("A number, or a text; in quotes if it holds blanks");
    arguments.final_callback([this, name, value] {
        m_setting = &settingOf(*name);
        m_value = valueOf(*m_setting, *value);
    });
}

int SettingsSetCommand::run(Console& console) const {
    if (writeSetting(*m_setting, m_value))
        return ExitCode::success;
    console.error(
        "vrtool: the platform did not take the value of " + toUtf8(m_setting->name) + " in " +
        toUtf8(placeOf(*m_setting)) + '\n');
    return ExitCode::failure;
}

SettingsCommand::SettingsCommand()
    : Command(
          "settings", "List the settings in the registry, get one, set one", settingsExplanation) {}

void SettingsCommand::declare(CLI::App& arguments) {
    arguments.require_subcommand(0, 1);
    arguments.add_flag("--json", m_json, "Print an array of objects instead of the table");
    m_get.join(arguments);
    m_set.join(arguments);
}

int SettingsCommand::run(Console& console) const {
    if (m_get.chosen())
        return m_get.run(console);
    if (m_set.chosen())
        return m_set.run(console);

    auto const rows = allSettingRows();
    console.out(m_json ? jsonOf(rows) : tableOf(rows, console.width()));
    bool const allWell = std::all_of(
        rows.begin(), rows.end(), [](SettingRow const& row) { return row.failure.empty(); });
    return allWell ? ExitCode::success : ExitCode::failure;
}
