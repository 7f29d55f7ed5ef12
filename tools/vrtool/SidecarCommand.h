#ifndef TOOLS_VRTOOL_SIDECARCOMMAND_H
#define TOOLS_VRTOOL_SIDECARCOMMAND_H

#include "tools/vrtool/Command.h"

// `vrtool sidecar MOVIE`: a movie's companion file, and what was tried to find it.
class SidecarCommand : public Command {
  public:
    SidecarCommand();

    int run(Console& console) const override;

  private:
    void declare(CLI::App& arguments) override;

    CLI::Option* m_movie = nullptr;
    CLI::Option* m_regex = nullptr;
    CLI::Option* m_folder = nullptr;
    CLI::Option* m_name = nullptr;
    CLI::Option* m_pattern = nullptr;
    bool m_json = false;
};

#endif
