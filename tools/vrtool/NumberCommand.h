#ifndef TOOLS_VRTOOL_NUMBERCOMMAND_H
#define TOOLS_VRTOOL_NUMBERCOMMAND_H

#include "tools/vrtool/Command.h"

// `vrtool number BASE LIMIT`: the numbered folder that takes the next file.
class NumberCommand : public Command {
  public:
    NumberCommand();

    int run(Console& console) const override;

  private:
    void declare(CLI::App& arguments) override;

    CLI::Option* m_base = nullptr;
    int m_limit = 0;
    bool m_json = false;
};

#endif
