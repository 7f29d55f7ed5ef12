#ifndef TOOLS_VRTOOL_PROGRAMARGUMENTS_H
#define TOOLS_VRTOOL_PROGRAMARGUMENTS_H

#include "vrUtils/Process.h"

#include <CLI/CLI.hpp>

#include <string>

// The program that a subcommand runs, and what it is given: all that follows "--".
class ProgramArguments {
  public:
    void declare(CLI::App& arguments);

    // As it was typed.
    std::wstring program() const;

    // Makes them the command line of a process.
    void handTo(vrUtils::Process::ExternalProcess& process) const;

  private:
    CLI::Option* m_words = nullptr;
};

#endif
