#ifndef TOOLS_VRTOOL_FRAMECLOCK_H
#define TOOLS_VRTOOL_FRAMECLOCK_H

#include "vrUtils/ServerRecords.h"

#include <cstdint>
#include <string>

// Turns times of day into frames from midnight and back, at one rate. All that there is to know of
// a rate follows from the length of its day.
class FrameClock {
  public:
    explicit FrameClock(EFrameRate rate);

    // Frames in 24 hours; 0 at a rate that is not known, which has no times.
    std::uint32_t dayLength() const { return m_dayLength; }

    // The frames of a number, or of a time hh:mm:ss:ff.
    // @throws std::invalid_argument which says what is wrong with the text: it is neither, or the
    //         rate has no such time, say because drop-frame timecode leaves it out
    std::uint32_t framesOf(std::string const& text) const;

    // The time hh:mm:ss:ff of a frame, which goes on behind 24 hours; empty at a rate that is not
    // known.
    std::string timeOf(std::uint32_t frames) const;

  private:
    std::uint32_t m_dayLength;
    std::uint32_t m_framesPerSecond;
    // Numbers left out at the start of each minute but every tenth.
    std::uint32_t m_dropped;
};

#endif
