#ifndef MEDIA_TIMECODE_H
#define MEDIA_TIMECODE_H

#include "vrUtils/ServerRecords.h"

#include <cstdint>

namespace vrUtils {

// A time of day in hours, minutes, seconds and frames, at one of the known rates.
//
// Constant expressions, so that the length of a day costs an adjustment next to nothing.
struct Timecode {
    std::uint32_t hours;
    std::uint32_t minutes;
    std::uint32_t seconds;
    std::uint32_t frames;
    EFrameRate rate;

    // Whole frames, as timecode counts them; 0 for a rate that is not known.
    constexpr std::uint32_t framesPerSecond() const noexcept;

    // Frames from midnight. Sums wrap at 32 bits.
    constexpr std::uint32_t toFrames() const noexcept;

  private:
    constexpr std::uint32_t droppedPerMinute() const noexcept;
};

constexpr std::uint32_t Timecode::framesPerSecond() const noexcept {
    switch (rate) {
    case eFrameRate25:
        return 25;
    case eFrameRate30:
        return 30;
    case eFrameRate2997Drop:
        return 30000 / 1000;
    case eFrameRate24:
        return 24;
    case eFrameRate2398:
        return 24000 / 1000;
    case eFrameRate50:
        return 50;
    case eFrameRate60:
        return 60;
    case eFrameRate5994Drop:
        return 60000 / 1000;
    default:
        return 0;
    }
}

// Each minute but every tenth leaves out its first numbers.
constexpr std::uint32_t Timecode::toFrames() const noexcept {
    auto const count = ((hours * 60 + minutes) * 60 + seconds) * framesPerSecond() + frames;
    auto const tenMinuteBlocks = minutes / 10 + hours * 6;
    auto const minutesWithDrop = tenMinuteBlocks * 9 + minutes % 10;
    return count - minutesWithDrop * droppedPerMinute();
}

// Numbers that drop-frame timecode leaves out at the start of a minute. Rates of 1000/1001 without
// a rule of their own leave out none.
constexpr std::uint32_t Timecode::droppedPerMinute() const noexcept {
    switch (rate) {
    case eFrameRate2997Drop:
        return 2;
    case eFrameRate5994Drop:
        return 4;
    default:
        return 0;
    }
}

} // namespace vrUtils

#endif
