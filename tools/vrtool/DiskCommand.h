#ifndef TOOLS_VRTOOL_DISKCOMMAND_H
#define TOOLS_VRTOOL_DISKCOMMAND_H

#include "tools/vrtool/Command.h"

#include <cstdint>

// `vrtool disk TARGET BYTES`: whether a transfer has room at its destination.
class DiskCommand : public Command {
  public:
    DiskCommand();

    int run(Console& console) const override;

  private:
    void declare(CLI::App& arguments) override;

    CLI::Option* m_target = nullptr;
    std::uint64_t m_required = 0;
    bool m_json = false;
};

#endif
