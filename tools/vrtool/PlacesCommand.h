#ifndef TOOLS_VRTOOL_PLACESCOMMAND_H
#define TOOLS_VRTOOL_PLACESCOMMAND_H

#include "tools/vrtool/Command.h"

// `vrtool places`: the places that follow from the machine.
class PlacesCommand : public Command {
  public:
    PlacesCommand();

    int run(Console& console) const override;

  private:
    void declare(CLI::App& arguments) override;

    CLI::Option* m_subfolder = nullptr;
    bool m_json = false;
};

#endif
