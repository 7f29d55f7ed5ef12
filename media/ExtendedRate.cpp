#include "media/ExtendedRate.h"

#include <cstring>
#include <limits>

namespace vrUtils::Parsing {

namespace {

static_assert(std::numeric_limits<double>::is_iec559 && sizeof(double) == sizeof(std::uint64_t));

constexpr int fractionBits = 52;
constexpr std::uint64_t fractionMask = (std::uint64_t{1} << fractionBits) - 1;
constexpr std::uint32_t exponentMask = 0x7FF;

std::uint64_t signOf(unsigned char const* field) { return field[1] >> 7; }

// The biases of the two formats, 16383 and 1023, differ by 0x400 and multiples of 0x800, which the
// mask takes away.
std::uint64_t exponentOf(unsigned char const* field) {
    std::uint32_t const extended = (field[0] & 0x7Fu) << 8 | (field[1] & 0x7Fu);
    return (extended - 0x400) & exponentMask;
}

std::uint64_t fractionOf(unsigned char const* field) {
    std::uint64_t mantissa = 0;
    for (int i = 2; i <= 8; ++i)
        mantissa = mantissa << 8 | field[i];
    return mantissa >> 3 & fractionMask;
}

double doubleOf(std::uint64_t bits) {
    double number;
    std::memcpy(&number, &bits, sizeof number);
    return number;
}

// The language leaves open what a number too large is cast to; the processor's own answer is asked
// for here, and no number fails both comparisons.
std::int64_t truncated(double number) {
    constexpr double limit = 9223372036854775808.0;
    if (number >= -limit && number < limit)
        return static_cast<std::int64_t>(number);
    return std::numeric_limits<std::int64_t>::min();
}

} // namespace

std::uint32_t extendedRate(unsigned char const* field) {
    auto const bits = signOf(field) << 63 | exponentOf(field) << fractionBits | fractionOf(field);
    return static_cast<std::uint32_t>(truncated(doubleOf(bits)));
}

} // namespace vrUtils::Parsing
