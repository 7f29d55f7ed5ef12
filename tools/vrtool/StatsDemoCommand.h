#ifndef TOOLS_VRTOOL_STATSDEMOCOMMAND_H
#define TOOLS_VRTOOL_STATSDEMOCOMMAND_H

#include "tools/vrtool/Command.h"

// `vrtool stats-demo`: the statistics of many threads that count at the same time.
class StatsDemoCommand : public Command {
  public:
    StatsDemoCommand();

    int run(Console& console) const override;

  private:
    void declare(CLI::App& arguments) override;

    unsigned m_threads = 8;
    unsigned m_frames = 100000;
};

#endif
