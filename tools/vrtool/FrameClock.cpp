#include "tools/vrtool/FrameClock.h"

#include "tools/vrtool/TimeLimits.h"
#include "vrUtils/OverMidnightInPointAdjuster.h"

#include <iomanip>
#include <limits>
#include <regex>
#include <sstream>
#include <stdexcept>

namespace {

constexpr std::uint32_t droppingMinutesOfADay = 24 * 54;

} // namespace

FrameClock::FrameClock(EFrameRate rate)
    : m_dayLength(OverMidnightInPointAdjuster::DayLength(rate)),
      m_framesPerSecond((m_dayLength + secondsOfADay - 1) / secondsOfADay),
      m_dropped((m_framesPerSecond * secondsOfADay - m_dayLength) / droppingMinutesOfADay) {}

std::uint32_t FrameClock::framesOf(std::string const& text) const {
    static std::regex const aNumber("[0-9]{1,10}");
    static std::regex const aTime("([0-9]{2}):([0-9]{2}):([0-9]{2}):([0-9]{2})");

    if (std::regex_match(text, aNumber)) {
        auto const number = std::stoull(text);
        if (number <= std::numeric_limits<std::uint32_t>::max())
            return static_cast<std::uint32_t>(number);
    }
    std::smatch parts;
    if (!std::regex_match(text, parts, aTime))
        throw std::invalid_argument(
            text + " is neither a number up to 4294967295 nor a time hh:mm:ss:ff");

    auto const part = [&](std::size_t index) {
        return static_cast<std::uint32_t>(std::stoul(parts.str(index)));
    };
    auto const minutes = part(1) * 60 + part(2);
    auto const droppingMinutes = minutes - minutes / 10;
    auto const frames =
        (minutes * 60 + part(3)) * m_framesPerSecond + part(4) - droppingMinutes * m_dropped;
    // A time that there is comes back as it was.
    if (timeOf(frames) != text)
        throw std::invalid_argument("there is no " + text + " at this rate");
    return frames;
}

std::string FrameClock::timeOf(std::uint32_t frames) const {
    if (m_dayLength == 0)
        return {};
    auto const minuteLength = m_framesPerSecond * 60;
    auto const blockLength = minuteLength * 10 - m_dropped * 9;
    auto const block = frames / blockLength;
    auto const inBlock = frames % blockLength;
    auto const minute =
        inBlock < minuteLength ? 0 : 1 + (inBlock - minuteLength) / (minuteLength - m_dropped);

    auto const number = frames + std::uint64_t{m_dropped} * (block * 9 + minute);
    auto const seconds = number / m_framesPerSecond;
    std::ostringstream time;
    time << std::setfill('0') << std::setw(2) << seconds / 3600 << ':' << std::setw(2)
         << seconds / 60 % 60 << ':' << std::setw(2) << seconds % 60 << ':' << std::setw(2)
         << number % m_framesPerSecond;
    return time.str();
}
