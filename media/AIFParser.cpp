#include "vrUtils/Parsing.h"

#include "media/ByteOrder.h"
#include "media/ChunkNames.h"
#include "media/ExtendedRate.h"
#include "media/ParsingFailure.h"

namespace vrUtils::Parsing {

namespace {

// Where the fields lie in the value of the common chunk.
constexpr std::size_t commonBitsPerSampleOffset = 6;
constexpr std::size_t commonSamplesPerSecondOffset = 8;

} // namespace

AIFParser::AIFParser(unsigned char const* buffer, std::uint32_t length)
    : AudioFormatParser(buffer, length) {
    auto const name = ReadNextName();
    // The length of the whole file means nothing for its head.
    AIFParser::ReadNextLength();
    if (name != ChunkName::form)
        throw parsingFailure(__LINE__, L"Missing FORM tag");
    auto const type = ReadNextName();
    if (type != ChunkName::aifc && type != ChunkName::aiff)
        throw parsingFailure(__LINE__, L"Missing AIFF/AIFC tag");
}

void AIFParser::Parse() {
    auto const common = FindTag(ChunkName::common);
    m_bitsPerSample.set(bigEndian16(common.Value() + commonBitsPerSampleOffset));
    m_samplesPerSecond.set(extendedRate(common.Value() + commonSamplesPerSecondOffset));
}

std::uint32_t AIFParser::ReadNextLength() { return reversedBytes(TagParser::ReadNextLength()); }

} // namespace vrUtils::Parsing
