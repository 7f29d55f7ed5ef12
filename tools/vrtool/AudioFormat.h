#ifndef TOOLS_VRTOOL_AUDIOFORMAT_H
#define TOOLS_VRTOOL_AUDIOFORMAT_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

struct AudioFormat {
    std::uint32_t samplesPerSecond;
    std::uint32_t bitsPerSample;
};

// How much of a file tells its format, but for files that begin with very large chunks.
inline constexpr std::size_t audioHeadSize = 65536;

// Whether files of this name have a format that can be read: .wav, .aif, .aiff and .aifc, whatever
// their case.
bool hasAudioFormat(std::wstring const& extension);

// What the first bytes of a file tell; nothing for a file of another kind.
// @throws vrException what is wrong with them
std::optional<AudioFormat>
audioFormatOf(std::wstring const& extension, unsigned char const* head, std::size_t size);

#endif
