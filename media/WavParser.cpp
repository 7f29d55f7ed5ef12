#include "vrUtils/Parsing.h"

#include "media/ByteOrder.h"
#include "media/ChunkNames.h"
#include "media/ParsingFailure.h"

namespace vrUtils::Parsing {

namespace {

// Where the fields lie in the value of the format chunk.
constexpr std::size_t formatSamplesPerSecondOffset = 4;
constexpr std::size_t formatBitsPerSampleOffset = 14;

} // namespace

WavParser::WavParser(unsigned char const* buffer, std::uint32_t length)
    : AudioFormatParser(buffer, length) {
    auto const name = ReadNextName();
    // The length of the whole file means nothing for its head.
    TagParser::ReadNextLength();
    if (name != ChunkName::riff)
        throw parsingFailure(__LINE__, L"Missing RIFF tag");
    if (ReadNextName() != ChunkName::wave)
        throw parsingFailure(__LINE__, L"Missing WAVE tag");
}

void WavParser::Parse() {
    auto const format = FindTag(ChunkName::format);
    m_samplesPerSecond.set(littleEndian32(format.Value() + formatSamplesPerSecondOffset));
    m_bitsPerSample.set(littleEndian16(format.Value() + formatBitsPerSampleOffset));
}

} // namespace vrUtils::Parsing
