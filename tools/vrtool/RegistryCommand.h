#ifndef TOOLS_VRTOOL_REGISTRYCOMMAND_H
#define TOOLS_VRTOOL_REGISTRYCOMMAND_H

#include "tools/vrtool/RegistryDumpCommand.h"
#include "tools/vrtool/RegistryRestoreCommand.h"

// `vrtool registry dump` and `vrtool registry restore`.
class RegistryCommand : public Command {
  public:
    RegistryCommand();

    int run(Console& console) const override;

  private:
    void declare(CLI::App& arguments) override;

    RegistryDumpCommand m_dump;
    RegistryRestoreCommand m_restore;
};

#endif
