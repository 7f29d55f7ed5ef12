#ifndef MEDIA_EXTENDEDRATE_H
#define MEDIA_EXTENDEDRATE_H

#include <cstdint>

namespace vrUtils::Parsing {

// The sample rate in AIFF's 80-bit field: the low 32 bits of the number without its fraction.
//
// The field is read in this system's own way, which agrees with the format for every rate that
// occurs: the sign is the top bit of the SECOND byte, which plays no part in the exponent, and the
// leading 1 of the fraction is taken for granted. So ten zero bytes are 2, and a negative rate
// wraps around. Numbers beyond 63 bits, infinities and what is no number give 0.
//
// field: ten bytes, the last of which is not read.
std::uint32_t extendedRate(unsigned char const* field);

} // namespace vrUtils::Parsing

#endif
