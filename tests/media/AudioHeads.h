#ifndef TESTS_MEDIA_AUDIOHEADS_H
#define TESTS_MEDIA_AUDIOHEADS_H

// Heads of WAV and AIFF files of any chunks at all, and parts of such heads; each chunk states
// whatever length a test wants it to state.

#include "tests/support/ByteBuilder.h"

#include <cstdint>
#include <initializer_list>
#include <string>

namespace test {

// A chunk that states its true length, and one that states another.
Chunk chunk(std::string const& name, Bytes const& value);
Chunk lyingChunk(std::string const& name, std::uint32_t statedLength, Bytes const& value);

// The chunks one behind the other, with lengths in the byte order of the format.
Bytes wavChunks(std::initializer_list<Chunk> chunks);
Bytes aiffChunks(std::initializer_list<Chunk> chunks);

// A file's first 12 bytes, the chunks, and one byte behind them, since the last byte of a buffer is
// never reached.
Bytes wavFile(std::initializer_list<Chunk> chunks);
Bytes aiffFile(std::initializer_list<Chunk> chunks, std::string const& type = "AIFF");

} // namespace test

#endif
