#ifndef TOOLS_VRTOOL_REGISTRYRESTORECOMMAND_H
#define TOOLS_VRTOOL_REGISTRYRESTORECOMMAND_H

#include "tools/vrtool/Command.h"
#include "tools/vrtool/DumpSurvey.h"
#include "tools/vrtool/TreeArguments.h"

#include <cstdint>

// `vrtool registry restore KEY FILE`: says what in a dump file will not survive, and restores it.
class RegistryRestoreCommand : public Command {
  public:
    RegistryRestoreCommand();

    int run(Console& console) const override;

  private:
    void declare(CLI::App& arguments) override;

    // Tells what will not survive.
    DumpSurvey survey(Console& console) const;
    int restore(Console& console) const;
    int restoreInChild(Console& console) const;

    TreeArguments m_arguments;
    bool m_check = false;
    // Set in the child alone, whose parent has told what will not survive.
    bool m_surveyed = false;
    std::uint32_t m_seconds = 0;
};

#endif
