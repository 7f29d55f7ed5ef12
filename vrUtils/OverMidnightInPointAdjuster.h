#ifndef VRUTILS_OVERMIDNIGHTINPOINTADJUSTER_H
#define VRUTILS_OVERMIDNIGHTINPOINTADJUSTER_H

/// @file
/// In-points of recordings that run past midnight.

#include "vrUtils/ServerRecords.h"
#include "vrUtils/vrUtilsApi.h"

#include <cstdint>

/// Moves an in-point of a recording that runs past midnight up by one day, so that it can be
/// compared with the recording's start and duration on one axis. All values count frames from
/// midnight.
///
/// Timecode wraps after 24 hours, so what was recorded after midnight has smaller values than the
/// recording's own start. How many frames a day has follows from the rate; `DayLength` tells.
///
/// Nothing fails: an in-point that lies before midnight, or beyond the end of the recording even
/// when it is moved, stays as it is, and so does each one at a rate that is not known. Sums wrap at
/// 32 bits. Objects never change; any thread may use them.
///
/// @code
/// // 25 frames per second: from 23:59:20:00 for 80 seconds, asked for at 00:00:20:00
/// OverMidnightInPointAdjuster(2159000, 2000, 500, eFrameRate25).Adjust(); // 2160500
/// @endcode
class OverMidnightInPointAdjuster {
  public:
    /// The seconds in a day, in spite of the name. `Adjust` does not use it.
    static constexpr std::uint32_t framesInOneDay = 86400;

    /// @param start the first frame of the recording
    /// @param duration its length
    /// @param inPoint the frame that is asked for
    VRUTILS_API OverMidnightInPointAdjuster(
        unsigned long start, unsigned long duration, unsigned long inPoint, EFrameRate frameRate);

    /// The in-point, moved up by a day if the recording starts within the first day, ends behind
    /// midnight, and holds the in-point there. One that ends exactly at midnight does not pass it,
    /// and its end is not in it.
    VRUTILS_API unsigned long Adjust() const;

    /// The frames of 24 hours: whole frames per second, without the numbers that drop-frame
    /// timecode leaves out. 0 for a rate that is not known.
    VRUTILS_API static unsigned long DayLength(EFrameRate frameRate);

  private:
    std::uint32_t m_start;
    std::uint32_t m_duration;
    std::uint32_t m_inPoint;
    EFrameRate m_frameRate;
};

#endif
