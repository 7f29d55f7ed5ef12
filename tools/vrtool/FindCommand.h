#ifndef TOOLS_VRTOOL_FINDCOMMAND_H
#define TOOLS_VRTOOL_FINDCOMMAND_H

#include "tools/vrtool/Command.h"

// `vrtool find PATH`: a file, also on a machine that is met under another name.
class FindCommand : public Command {
  public:
    FindCommand();

    int run(Console& console) const override;

  private:
    void declare(CLI::App& arguments) override;

    CLI::Option* m_path = nullptr;
    bool m_json = false;
};

#endif
