#ifndef TOOLS_VRTOOL_SAMECOMMAND_H
#define TOOLS_VRTOOL_SAMECOMMAND_H

#include "tools/vrtool/Command.h"

// `vrtool same PATH PATH`: whether two paths are on one machine.
class SameCommand : public Command {
  public:
    SameCommand();

    int run(Console& console) const override;

  private:
    void declare(CLI::App& arguments) override;

    CLI::Option* m_first = nullptr;
    CLI::Option* m_second = nullptr;
    bool m_json = false;
};

#endif
