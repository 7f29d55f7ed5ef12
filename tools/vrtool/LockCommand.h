#ifndef TOOLS_VRTOOL_LOCKCOMMAND_H
#define TOOLS_VRTOOL_LOCKCOMMAND_H

#include "tools/vrtool/Command.h"
#include "tools/vrtool/ProgramArguments.h"

// `vrtool lock FILE -- PROGRAM`: a program with the exclusive use of a file.
class LockCommand : public Command {
  public:
    LockCommand();

    int run(Console& console) const override;

  private:
    void declare(CLI::App& arguments) override;

    CLI::Option* m_file = nullptr;
    ProgramArguments m_program;
};

#endif
