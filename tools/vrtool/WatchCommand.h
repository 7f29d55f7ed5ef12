#ifndef TOOLS_VRTOOL_WATCHCOMMAND_H
#define TOOLS_VRTOOL_WATCHCOMMAND_H

#include "tools/vrtool/Command.h"

#include <cstdint>

// `vrtool watch PID --grace SECONDS`: kills a process once somebody asks for it.
class WatchCommand : public Command {
  public:
    WatchCommand();

    int run(Console& console) const override;

  private:
    void declare(CLI::App& arguments) override;

    std::uint32_t m_processId = 0;
    std::uint32_t m_graceSeconds = 0;
};

#endif
