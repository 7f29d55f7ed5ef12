#ifndef TOOLS_VRTOOL_TIMECODECOMMAND_H
#define TOOLS_VRTOOL_TIMECODECOMMAND_H

#include "tools/vrtool/Command.h"

#include <cstdint>

// `vrtool timecode`: whether an in-point lies behind midnight, and where it lies then.
class TimecodeCommand : public Command {
  public:
    TimecodeCommand();

    int run(Console& console) const override;

  private:
    void declare(CLI::App& arguments) override;
    std::uint32_t framesOf(CLI::Option const& option) const;

    CLI::Option* m_start = nullptr;
    CLI::Option* m_duration = nullptr;
    CLI::Option* m_inPoint = nullptr;
    std::int32_t m_rate = 0;
    bool m_json = false;
};

#endif
