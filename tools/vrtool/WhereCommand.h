#ifndef TOOLS_VRTOOL_WHERECOMMAND_H
#define TOOLS_VRTOOL_WHERECOMMAND_H

#include "tools/vrtool/Command.h"

// `vrtool where PATH`: the machine that a path is on, and how the path is reached from this one.
class WhereCommand : public Command {
  public:
    WhereCommand();

    int run(Console& console) const override;

  private:
    void declare(CLI::App& arguments) override;

    CLI::Option* m_path = nullptr;
    bool m_json = false;
};

#endif
