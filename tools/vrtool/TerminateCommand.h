#ifndef TOOLS_VRTOOL_TERMINATECOMMAND_H
#define TOOLS_VRTOOL_TERMINATECOMMAND_H

#include "tools/vrtool/Command.h"

#include <cstdint>

// `vrtool terminate PID`: asks whoever watches over a process to kill it.
class TerminateCommand : public Command {
  public:
    TerminateCommand();

    int run(Console& console) const override;

  private:
    void declare(CLI::App& arguments) override;

    std::uint32_t m_processId = 0;
};

#endif
