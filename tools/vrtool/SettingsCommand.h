#ifndef TOOLS_VRTOOL_SETTINGSCOMMAND_H
#define TOOLS_VRTOOL_SETTINGSCOMMAND_H

#include "tools/vrtool/Command.h"
#include "tools/vrtool/SettingsCatalogue.h"

// `vrtool settings get NAME`: the bare value.
class SettingsGetCommand : public Command {
  public:
    SettingsGetCommand();

    int run(Console& console) const override;

  private:
    void declare(CLI::App& arguments) override;

    Setting const* m_setting = nullptr;
};

// `vrtool settings set NAME VALUE`.
class SettingsSetCommand : public Command {
  public:
    SettingsSetCommand();

    int run(Console& console) const override;

  private:
    void declare(CLI::App& arguments) override;

    Setting const* m_setting = nullptr;
    SettingValue m_value;
};

// `vrtool settings`: all settings that the library knows by name, one row each; and the two above.
class SettingsCommand : public Command {
  public:
    SettingsCommand();

    int run(Console& console) const override;

  private:
    void declare(CLI::App& arguments) override;

    SettingsGetCommand m_get;
    SettingsSetCommand m_set;
    bool m_json = false;
};

#endif
