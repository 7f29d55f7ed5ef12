#ifndef TOOLS_VRTOOL_TIMELIMITS_H
#define TOOLS_VRTOOL_TIMELIMITS_H

#include <cstdint>

// Also the most that users may ask for; far from where the library's milliseconds would wrap.
inline constexpr std::uint32_t secondsOfADay = 24 * 60 * 60;

#endif
