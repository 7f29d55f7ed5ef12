#ifndef VRUTILS_PARSING_H
#define VRUTILS_PARSING_H

/// @file
/// The audio format of a WAV or AIFF file, read from a buffer that holds the start of the file.
///
/// A caller reads as much of the file's head as it likes, makes a `WavParser` or an `AIFParser` of
/// it, calls `Parse`, and asks for the two values. No file is touched here, nothing is logged, and
/// nothing but these two values is interpreted.
///
/// Failures are `vrException` with source name "ParsingUtils" and code 0x80E06025.
///
/// A parser belongs to one thread at a time; several parsers may read one buffer at once.

#include "vrUtils/UtilValue.h"
#include "vrUtils/vrUtilsApi.h"

#include <array>
#include <cstdint>
#include <memory>

namespace vrUtils::Parsing {

/// One chunk of a file, detached from the buffer it came from.
///
/// There is one owner of the bytes: copying and assigning take them away from the source, whose
/// `Value` is null then, while its name and length stay.
class VRUTILS_API Tag {
  public:
    /// Copies the bytes of the chunk.
    /// @param value `length` bytes
    Tag(std::uint32_t name, std::uint32_t length, unsigned char const* value);

    /// Takes the bytes away from the source.
    Tag(Tag& source);
    /// As above.
    Tag(Tag&& source) noexcept;
    /// Drops the bytes of this object and takes those of the source away.
    Tag& operator=(Tag& source); // NOLINT(misc-unconventional-assign-operator)
    /// As above.
    Tag& operator=(Tag&& source) noexcept;
    ~Tag();

    /// The chunk's four name bytes, the first in the most significant place: "RIFF" is 0x52494646.
    std::uint32_t Name() const { return m_name; }

    /// The length of the chunk as its file states it, in bytes.
    std::uint32_t Length() const { return m_length; }

    /// The chunk's bytes, owned by this object; null once they were taken away. There are `Length`
    /// of them, or as many as the buffer had behind a length that leads out of it, filled up with
    /// zeros to at least 18.
    unsigned char const* Value() const { return m_value.get(); }

  private:
    friend class TagParser;
    Tag(std::uint32_t name, std::uint32_t length, unsigned char const* value,
        std::uint32_t available);

    std::uint32_t m_name;
    std::uint32_t m_length;
    std::unique_ptr<unsigned char[]> m_value;
};

/// Walks the chunks of a buffer: a name of four bytes, a length of four, that many bytes of value.
///
/// The walk is a plain one on purpose. Chunks of odd length are not padded to an even one; a read
/// may not end at the end of the buffer, so that its last byte is never reached; positions are
/// 32-bit sums that wrap. Copies share the buffer and walk on from the same place.
class VRUTILS_API TagParser {
  public:
    /// Keeps the pointer and the length; reads nothing.
    /// @param buffer the caller's bytes, which must outlive the parser; never written
    TagParser(unsigned char const* buffer, std::uint32_t length);

    /// Finds the format chunk and takes the values from it.
    virtual void Parse() = 0;

  protected:
    /// Reads the length of a chunk, least significant byte first.
    /// @throws vrException "Insufficient data for tag parse read"
    virtual std::uint32_t ReadNextLength();

    /// Reads chunks until one has this name. Those it passes are copied like it, until a length
    /// leads back: from there on only the one it looks for is, so that the cost stays linear.
    /// @throws vrException "Insufficient data for tag parse read", which is also how a walk ends
    ///         that does not find the chunk, or that lengths near 2^32 would lead in a circle
    Tag FindTag(std::uint32_t name);

    /// Reads one chunk: name, length and value.
    /// @throws vrException "Insufficient data for tag parse read"
    Tag ReadNextTag();

    /// Reads the name of a chunk, most significant byte first.
    /// @throws vrException "Insufficient data for tag parse read"
    std::uint32_t ReadNextName();

    /// Moves over the value of a chunk.
    /// @return where the value begins, in the buffer
    /// @throws vrException "Insufficient data for tag parse read"; the position is unchanged then
    unsigned char const* ReadNextValue(std::uint32_t length);

    /// Parsers are destroyed as what they are.
    ~TagParser() = default;

  private:
    unsigned char const* Read(std::uint32_t length);
    std::array<unsigned char, 4> ReadHeaderField();
    Tag FindTagAfterMoveBack(std::uint32_t name);

    unsigned char const* m_buffer;
    std::uint32_t m_size;
    std::uint32_t m_position = 0;
};

/// A parser whose results are the two values of an audio format.
class VRUTILS_API AudioFormatParser : public TagParser {
  public:
    /// Keeps the pointer and the length; reads nothing.
    AudioFormatParser(unsigned char const* buffer, std::uint32_t length);

    /// Samples per second.
    /// @throws vrUnsetValueException "Value not set" unless `Parse` has found the value
    std::uint32_t GetSamplesPerSecond() const { return m_samplesPerSecond.get(); }

    /// Bits per sample.
    /// @throws vrUnsetValueException "Value not set" unless `Parse` has found the value
    std::uint32_t GetBitsPerSample() const { return m_bitsPerSample.get(); }

  protected:
    ~AudioFormatParser() = default;

    /// Set by `Parse`.
    UtilValue<std::uint32_t> m_samplesPerSecond;
    /// Set by `Parse`.
    UtilValue<std::uint32_t> m_bitsPerSample;
};

/// Reads the head of a WAV file.
///
/// @code
/// vrUtils::Parsing::WavParser parser(head.data(), headLength);
/// parser.Parse();
/// auto const rate = parser.GetSamplesPerSecond();
/// @endcode
class VRUTILS_API WavParser : public AudioFormatParser {
  public:
    /// Checks the head of the file: 12 bytes, and at least one more must be there.
    /// @throws vrException "Insufficient data for tag parse read", "Missing RIFF tag" or
    ///         "Missing WAVE tag"
    WavParser(unsigned char const* buffer, std::uint32_t length);

    /// Takes both values from the next "fmt " chunk; a chunk too short for them reads as if zeros
    /// followed it. A second call looks for a second chunk; if it fails the values stay.
    /// @throws vrException "Insufficient data for tag parse read"
    void Parse() override;
};

/// Reads the head of an AIFF or AIFC file.
class VRUTILS_API AIFParser : public AudioFormatParser {
  public:
    /// Checks the head of the file, as `WavParser` does.
    /// @throws vrException "Insufficient data for tag parse read", "Missing FORM tag" or
    ///         "Missing AIFF/AIFC tag"
    AIFParser(unsigned char const* buffer, std::uint32_t length);

    /// Takes both values from the next "COMM" chunk; see `WavParser::Parse`. The fraction of the
    /// rate is dropped; a rate of 2^63 and more gives 0; a field of ten zero bytes gives 2.
    /// @throws vrException "Insufficient data for tag parse read"
    void Parse() override;

    /// Reads the length of a chunk, most significant byte first.
    /// @throws vrException "Insufficient data for tag parse read"
    std::uint32_t ReadNextLength() override;
};

} // namespace vrUtils::Parsing

#endif
