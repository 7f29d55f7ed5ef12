#ifndef TOOLS_VRTOOL_INDEXCOMMAND_H
#define TOOLS_VRTOOL_INDEXCOMMAND_H

#include "tools/vrtool/Command.h"

// `vrtool index PATH`: where the index of an archive has the entry of a file.
class IndexCommand : public Command {
  public:
    IndexCommand();

    int run(Console& console) const override;

  private:
    void declare(CLI::App& arguments) override;

    CLI::Option* m_path = nullptr;
    bool m_json = false;
};

#endif
