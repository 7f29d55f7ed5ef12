#ifndef TOOLS_VRTOOL_REMOVECOMMAND_H
#define TOOLS_VRTOOL_REMOVECOMMAND_H

#include "tools/vrtool/Command.h"

// `vrtool remove PATH --recoverable`: removes a file, and puts it back if it is asked to.
class RemoveCommand : public Command {
  public:
    RemoveCommand();

    int run(Console& console) const override;

  private:
    void declare(CLI::App& arguments) override;

    CLI::Option* m_path = nullptr;
};

#endif
