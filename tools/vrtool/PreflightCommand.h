#ifndef TOOLS_VRTOOL_PREFLIGHTCOMMAND_H
#define TOOLS_VRTOOL_PREFLIGHTCOMMAND_H

#include "tools/vrtool/Command.h"
#include "vrUtils/PFC.h"

// `vrtool preflight MOVIE`: where a movie's pre-flight reports lie; makes the HTML one.
class PreflightCommand : public Command {
  public:
    PreflightCommand();

    int run(Console& console) const override;

  private:
    void declare(CLI::App& arguments) override;
    vrUtils::PFC::PFCHTMLReportParameters parameters() const;

    CLI::Option* m_movie = nullptr;
    CLI::Option* m_name = nullptr;
    CLI::Option* m_signature = nullptr;
    bool m_json = false;
};

#endif
