#ifndef TOOLS_VRTOOL_PATHCOMMAND_H
#define TOOLS_VRTOOL_PATHCOMMAND_H

#include "tools/vrtool/Command.h"

// `vrtool path TEXT`: the parts of a path in the three ways to read it, side by side.
class PathCommand : public Command {
  public:
    PathCommand();

    int run(Console& console) const override;

  private:
    void declare(CLI::App& arguments) override;

    CLI::Option* m_text = nullptr;
    bool m_json = false;
};

#endif
