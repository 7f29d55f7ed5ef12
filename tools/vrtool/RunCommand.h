#ifndef TOOLS_VRTOOL_RUNCOMMAND_H
#define TOOLS_VRTOOL_RUNCOMMAND_H

#include "tools/vrtool/Command.h"
#include "tools/vrtool/ProgramArguments.h"

#include <cstdint>

// `vrtool run -- PROGRAM`: a program under a time limit.
class RunCommand : public Command {
  public:
    RunCommand();

    int run(Console& console) const override;

  private:
    void declare(CLI::App& arguments) override;

    void prepare(vrUtils::Process::ExternalProcess& process) const;

    ProgramArguments m_program;
    CLI::Option* m_variables = nullptr;
    CLI::Option* m_folder = nullptr;
    // 0 for no limit.
    std::uint32_t m_seconds = 0;
    std::uint32_t m_pollMilliseconds = 200;
};

#endif
