#ifndef TOOLS_VRTOOL_TRANSFERCOMMAND_H
#define TOOLS_VRTOOL_TRANSFERCOMMAND_H

#include "tools/vrtool/Command.h"

#include <cstdint>

// `vrtool transfer SOURCE... DESTINATION`: media carried to a folder, with everything that the
// server does around it.
class TransferCommand : public Command {
  public:
    TransferCommand();

    int run(Console& console) const override;

  private:
    void declare(CLI::App& arguments) override;
    int transfer(Console& console) const;

    CLI::Option* m_paths = nullptr;
    CLI::Option* m_jsonFile = nullptr;
    std::uint32_t m_instance = 0;
    bool m_report = false;
    bool m_replace = false;
};

#endif
