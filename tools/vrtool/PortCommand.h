#ifndef TOOLS_VRTOOL_PORTCOMMAND_H
#define TOOLS_VRTOOL_PORTCOMMAND_H

#include "tools/vrtool/Command.h"

#include <cstdint>

// `vrtool port PORT`: which service of which instance has a port.
class PortCommand : public Command {
  public:
    PortCommand();

    int run(Console& console) const override;

  private:
    void declare(CLI::App& arguments) override;

    std::uint32_t m_port = 0;
    bool m_json = false;
};

#endif
