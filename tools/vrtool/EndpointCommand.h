#ifndef TOOLS_VRTOOL_ENDPOINTCOMMAND_H
#define TOOLS_VRTOOL_ENDPOINTCOMMAND_H

#include "tools/vrtool/Command.h"

#include <cstdint>

// `vrtool endpoint TEXT`: the parts of an endpoint, how the log names it, and the way to a service.
class EndpointCommand : public Command {
  public:
    EndpointCommand();

    int run(Console& console) const override;

  private:
    void declare(CLI::App& arguments) override;

    CLI::Option* m_text = nullptr;
    CLI::Option* m_service = nullptr;
    std::uint32_t m_basePort = 0;
    std::uint32_t m_instance = 0;
    bool m_json = false;
};

#endif
