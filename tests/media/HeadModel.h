#ifndef TESTS_MEDIA_HEADMODEL_H
#define TESTS_MEDIA_HEADMODEL_H

#include "tests/media/AudioHeads.h"

#include "vrUtils/vrException.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <ostream>
#include <string>

namespace test {

// What comes of reading a head: a failure, or the two values.
struct Outcome {
    std::wstring failure;
    std::uint32_t samplesPerSecond = 0;
    std::uint32_t bitsPerSample = 0;

    friend bool operator==(Outcome const& left, Outcome const& right) {
        return left.failure == right.failure && left.samplesPerSecond == right.samplesPerSecond &&
               left.bitsPerSample == right.bitsPerSample;
    }

    friend std::ostream& operator<<(std::ostream& stream, Outcome const& outcome) {
        if (!outcome.failure.empty())
            return stream << testing::PrintToString(outcome.failure);
        return stream << outcome.samplesPerSecond << " Hz, " << outcome.bitsPerSample << " bits";
    }
};

// The rules of the walk told a second time: a plain loop over positions in 64-bit numbers, with a
// set of all chunk starts it has seen.
Outcome modelOfWav(Bytes const& head);
Outcome modelOfAiff(Bytes const& head);

// What the parser makes of a head: construction, `Parse` and both values.
template <typename Parser>
Outcome outcomeOf(unsigned char const* head, std::uint32_t length) {
    Outcome outcome;
    try {
        Parser parser(head, length);
        parser.Parse();
        outcome.samplesPerSecond = parser.GetSamplesPerSecond();
        outcome.bitsPerSample = parser.GetBitsPerSample();
    } catch (vrException const& failure) {
        outcome.failure = failure.message();
    }
    return outcome;
}

template <typename Parser>
Outcome outcomeOf(Bytes const& head) {
    return outcomeOf<Parser>(head.data(), static_cast<std::uint32_t>(head.size()));
}

} // namespace test

#endif
