#ifndef TESTS_SUPPORT_BYTEBUILDER_H
#define TESTS_SUPPORT_BYTEBUILDER_H

// Bytes put together one by one, and heads of audio files made of them, sound ones and faulty ones:
//
//     auto const junk = test::ByteBuilder().text("JUNK").little32(3).text("abc").bytes();
//
//     test::wavHead(48000, 24);
//     test::wavHead(48000, 24, {{{"LIST", {1, 2, 3, 4}}}});              // one chunk ahead
//     test::aiffHead(test::extended(44100), 16, {{}, {}, "AIFC"});         // nothing behind

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace test {

using Bytes = std::vector<unsigned char>;

// Each operation adds to the end and gives the builder.
class ByteBuilder {
  public:
    ByteBuilder& byte(std::uint8_t value);
    ByteBuilder& text(std::string_view text);
    ByteBuilder& little16(std::uint16_t value);
    ByteBuilder& little32(std::uint32_t value);
    ByteBuilder& big16(std::uint16_t value);
    ByteBuilder& big32(std::uint32_t value);
    ByteBuilder& raw(Bytes const& bytes);
    ByteBuilder& repeat(std::uint8_t value, std::size_t count);

    std::size_t size() const noexcept { return m_bytes.size(); }

    Bytes const& bytes() const noexcept { return m_bytes; }

  private:
    Bytes m_bytes;
};

// One chunk of an audio file.
struct Chunk {
    std::string name;
    Bytes value;
    // What the chunk says of its length, where that is not the length of its value.
    std::optional<std::uint32_t> length = std::nullopt;
};

// What stands in a head besides its format chunk.
struct HeadLayout {
    std::vector<Chunk> before = {};
    std::vector<Chunk> behind = {{"data", {0, 0, 0, 0}}};
    // The form type, where it is not the usual one.
    std::string form = {};
    // What the format chunk says of its length, where that is not the truth.
    std::optional<std::uint32_t> formatLength = std::nullopt;
    // The file's first name, where it is not the usual one.
    std::string first = {};
};

// The ten bytes of an 80-bit floating-point number.
using ExtendedBytes = std::array<unsigned char, 10>;

// A whole number in 80-bit floating point.
ExtendedBytes extended(std::uint32_t number);

// The value of a "fmt " chunk: PCM, two channels, 16 bytes.
Bytes wavFormat(std::uint32_t samplesPerSecond, std::uint16_t bitsPerSample);

// The value of a "COMM" chunk: two channels, 1000 frames, 18 bytes.
Bytes aiffFormat(ExtendedBytes const& samplesPerSecond, std::uint16_t bitsPerSample);

// The start of a WAV file: "RIFF", length, "WAVE", and the chunks with their lengths in
// little-endian order. A chunk of odd length is not padded, unless its value brings the pad byte.
Bytes wavHead(
    std::uint32_t samplesPerSecond, std::uint16_t bitsPerSample, HeadLayout const& layout = {});

// The start of an AIFF file: "FORM", length, "AIFF", and the chunks with their lengths in
// big-endian order.
Bytes aiffHead(
    ExtendedBytes const& samplesPerSecond, std::uint16_t bitsPerSample,
    HeadLayout const& layout = {});

} // namespace test

#endif
