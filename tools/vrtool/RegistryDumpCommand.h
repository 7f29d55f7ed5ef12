#ifndef TOOLS_VRTOOL_REGISTRYDUMPCOMMAND_H
#define TOOLS_VRTOOL_REGISTRYDUMPCOMMAND_H

#include "tools/vrtool/Command.h"
#include "tools/vrtool/TreeArguments.h"

// `vrtool registry dump KEY FILE`: saves a tree.
class RegistryDumpCommand : public Command {
  public:
    RegistryDumpCommand();

    int run(Console& console) const override;

  private:
    void declare(CLI::App& arguments) override;

    TreeArguments m_arguments;
};

#endif
