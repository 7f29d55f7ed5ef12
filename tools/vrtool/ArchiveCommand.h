#ifndef TOOLS_VRTOOL_ARCHIVECOMMAND_H
#define TOOLS_VRTOOL_ARCHIVECOMMAND_H

#include "tools/vrtool/Command.h"

// `vrtool archive PATH EXTENSION`: the file of an entry in the index of an archive.
class ArchiveCommand : public Command {
  public:
    ArchiveCommand();

    int run(Console& console) const override;

  private:
    void declare(CLI::App& arguments) override;

    CLI::Option* m_path = nullptr;
    CLI::Option* m_extension = nullptr;
    bool m_json = false;
};

#endif
