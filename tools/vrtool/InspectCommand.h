#ifndef TOOLS_VRTOOL_INSPECTCOMMAND_H
#define TOOLS_VRTOOL_INSPECTCOMMAND_H

#include "tools/vrtool/Command.h"

// `vrtool inspect PATH...`: what the library finds out about files, one row each.
class InspectCommand : public Command {
  public:
    InspectCommand();

    int run(Console& console) const override;

  private:
    void declare(CLI::App& arguments) override;

    CLI::Option* m_paths = nullptr;
    bool m_json = false;
};

#endif
