#ifndef MEDIA_BYTEORDER_H
#define MEDIA_BYTEORDER_H

// Numbers as they lie in a file, from any address and on any machine.

#include <cstdint>

namespace vrUtils::Parsing {

inline std::uint32_t bigEndian32(unsigned char const* bytes) {
    return std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 |
           std::uint32_t{bytes[2]} << 8 | std::uint32_t{bytes[3]};
}

inline std::uint32_t littleEndian32(unsigned char const* bytes) {
    return std::uint32_t{bytes[3]} << 24 | std::uint32_t{bytes[2]} << 16 |
           std::uint32_t{bytes[1]} << 8 | std::uint32_t{bytes[0]};
}

// 16-bit numbers come widened, since nothing here computes with fewer than 32 bits.
inline std::uint32_t bigEndian16(unsigned char const* bytes) {
    return std::uint32_t{bytes[0]} << 8 | std::uint32_t{bytes[1]};
}

inline std::uint32_t littleEndian16(unsigned char const* bytes) {
    return std::uint32_t{bytes[1]} << 8 | std::uint32_t{bytes[0]};
}

inline std::uint32_t reversedBytes(std::uint32_t number) {
    return number << 24 | (number & 0xFF00) << 8 | (number >> 8 & 0xFF00) | number >> 24;
}

} // namespace vrUtils::Parsing

#endif
