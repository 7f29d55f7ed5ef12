#ifndef TOOLS_VRTOOL_CONNECTCOMMAND_H
#define TOOLS_VRTOOL_CONNECTCOMMAND_H

#include "tools/vrtool/Command.h"

#include <cstdint>

// `vrtool connect HOST PORT`: how long it takes to connect to a server.
class ConnectCommand : public Command {
  public:
    ConnectCommand();

    int run(Console& console) const override;

  private:
    void declare(CLI::App& arguments) override;

    CLI::Option* m_host = nullptr;
    std::uint16_t m_port = 0;
    bool m_json = false;
};

#endif
