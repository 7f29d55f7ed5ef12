#ifndef TOOLS_VRTOOL_WHOAMICOMMAND_H
#define TOOLS_VRTOOL_WHOAMICOMMAND_H

#include "tools/vrtool/Command.h"

// `vrtool whoami`: what a process knows of itself.
class WhoamiCommand : public Command {
  public:
    WhoamiCommand();

    int run(Console& console) const override;

  private:
    void declare(CLI::App& arguments) override;

    bool m_json = false;
};

#endif
