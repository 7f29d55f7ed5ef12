#include "vrUtils/OverMidnightInPointAdjuster.h"

#include "media/Timecode.h"

OverMidnightInPointAdjuster::OverMidnightInPointAdjuster(
    unsigned long start, unsigned long duration, unsigned long inPoint, EFrameRate frameRate)
    : m_start(start), m_duration(duration), m_inPoint(inPoint), m_frameRate(frameRate) {}

unsigned long OverMidnightInPointAdjuster::Adjust() const {
    auto const day = DayLength(m_frameRate);
    auto const end = m_start + m_duration;
    auto const startsInFirstDay = m_start < day;
    auto const passesMidnight = end > day;
    auto const liesBehindMidnight = m_inPoint < m_start;
    if (!startsInFirstDay || !passesMidnight || !liesBehindMidnight)
        return m_inPoint;

    auto const candidate = day + m_inPoint;
    return candidate < end ? candidate : m_inPoint;
}

unsigned long OverMidnightInPointAdjuster::DayLength(EFrameRate frameRate) {
    return vrUtils::Timecode{24, 0, 0, 0, frameRate}.toFrames();
}
