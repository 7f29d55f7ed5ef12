#ifndef MEDIA_CHUNKNAMES_H
#define MEDIA_CHUNKNAMES_H

#include <cstdint>

namespace vrUtils::Parsing {

// A name's four characters as one number, the first in the most significant place.
constexpr std::uint32_t chunkName(char const (&text)[5]) {
    std::uint32_t name = 0;
    for (int i = 0; i < 4; ++i)
        name = name << 8 | static_cast<unsigned char>(text[i]);
    return name;
}

namespace ChunkName {
inline constexpr std::uint32_t riff = chunkName("RIFF");
inline constexpr std::uint32_t wave = chunkName("WAVE");
inline constexpr std::uint32_t format = chunkName("fmt ");
inline constexpr std::uint32_t form = chunkName("FORM");
inline constexpr std::uint32_t aiff = chunkName("AIFF");
inline constexpr std::uint32_t aifc = chunkName("AIFC");
inline constexpr std::uint32_t common = chunkName("COMM");
} // namespace ChunkName

} // namespace vrUtils::Parsing

#endif
