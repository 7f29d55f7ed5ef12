// An in-point behind midnight moved up by a day, at the rate whose day takes the most work.

#include "benchmarks/Candidate.h"

#include "vrUtils/OverMidnightInPointAdjuster.h"

#include <cstdint>

namespace {

struct Recording {
    std::uint32_t start;
    std::uint32_t duration;
    std::uint32_t inPoint;
    EFrameRate rate;
};

// Read anew in every run.
Recording recording{2589000, 2000, 500, eFrameRate2997Drop};

unsigned long ours() {
    return OverMidnightInPointAdjuster(
               recording.start, recording.duration, recording.inPoint, recording.rate)
        .Adjust();
}

// In the program itself, for one rate.
unsigned long byHand() {
    constexpr std::uint32_t day = 2589408;
    auto const [start, duration, inPoint, rate] = recording;
    auto const end = start + duration;
    bool const isMoved = start < day && end > day && inPoint < start && day + inPoint < end;
    return isMoved ? day + inPoint : inPoint;
}

} // namespace

void benchmarks::registerCandidates() {
    benchmark::DoNotOptimize(&recording);
    candidate("adjustment", "ours", ours);
    candidate("adjustment", "hand", byHand);
}
