#ifndef MEDIA_TIMECODE_H
#define MEDIA_TIMECODE_H

#include "vrUtils/ServerRecords.h"

#include <cstdint>

namespace vrUtils {

// A time of day in hours, minutes, seconds and frames, at one of the known rates.
struct Timecode {
    std::uint32_t hours;
    std::uint32_t minutes;
    std::uint32_t seconds;
    std::uint32_t frames;
    EFrameRate rate;

    // Whole frames, as timecode counts them; 0 for a rate that is not known.
    std::uint32_t framesPerSecond() const noexcept;

    // Frames from midnight. Sums wrap at 32 bits.
    std::uint32_t toFrames() const noexcept;
};

} // namespace vrUtils

#endif
