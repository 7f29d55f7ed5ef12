#include "vrUtils/Parsing.h"

#include "media/ByteOrder.h"
#include "media/ParsingFailure.h"

#include <algorithm>

namespace vrUtils::Parsing {

namespace {

constexpr std::uint32_t headerFieldSize = 4;

constexpr wchar_t insufficientData[] = L"Insufficient data for tag parse read";

// Notices that a walk goes round in a circle, which it can do only by moving back again and again.
// It keeps one of the places that the walk moved back to, and exchanges it for a new one after 1,
// 2, 4, 8, ... moves: sooner or later a place of the circle is kept for a whole round. So nothing
// is allocated, and a walk that ends, which comes to no place twice, is never taken for a circle.
class CircleDetector {
  public:
    bool isBackAt(std::uint32_t position) {
        if (position == m_keptPosition)
            return true;
        if (++m_moves == m_movesToKeep) {
            m_keptPosition = position;
            m_movesToKeep *= 2;
            m_moves = 0;
        }
        return false;
    }

  private:
    // No position is as large as the size of a buffer, so none has this value.
    std::uint32_t m_keptPosition = 0xFFFFFFFF;
    std::uint64_t m_moves = 0;
    std::uint64_t m_movesToKeep = 1;
};

} // namespace

TagParser::TagParser(unsigned char const* buffer, std::uint32_t length)
    : m_buffer(buffer), m_size(length) {}

std::uint32_t TagParser::ReadNextLength() { return littleEndian32(ReadHeaderField().data()); }

Tag TagParser::FindTag(std::uint32_t name) {
    for (;;) {
        auto const start = m_position;
        Tag tag = ReadNextTag();
        if (tag.Name() == name)
            return tag;
        if (m_position <= start)
            return FindTagAfterMoveBack(name);
    }
}

// Lengths made for it can send a walk back over the same bytes thousands of times, or for ever.
// From the first move back on only the chunk that is looked for is copied, and a circle ends the
// walk, so that the cost stays linear in the buffer whatever it holds.
Tag TagParser::FindTagAfterMoveBack(std::uint32_t name) {
    CircleDetector circle;
    for (;;) {
        auto const start = m_position;
        auto const found = ReadNextName();
        ReadNextValue(ReadNextLength());
        if (found == name) {
            m_position = start;
            return ReadNextTag();
        }
        if (m_position <= start && circle.isBackAt(m_position))
            throw parsingFailure(__LINE__, insufficientData);
    }
}

Tag TagParser::ReadNextTag() {
    auto const name = ReadNextName();
    auto const length = ReadNextLength();
    auto const available = m_size - m_position;
    auto const* const value = ReadNextValue(length);
    return Tag(name, length, value, available);
}

std::uint32_t TagParser::ReadNextName() { return bigEndian32(ReadHeaderField().data()); }

unsigned char const* TagParser::ReadNextValue(std::uint32_t length) { return Read(length); }

// In a buffer of nearly 4 GiB a field at the very end wraps around and so passes the test of Read;
// those of its bytes that are not there read as zeros.
std::array<unsigned char, 4> TagParser::ReadHeaderField() {
    auto const available = m_size - m_position;
    auto const* const bytes = Read(headerFieldSize);
    std::array<unsigned char, headerFieldSize> field{};
    // The usual case on its own: a copy of a length known beforehand is one instruction.
    if (available >= headerFieldSize)
        std::copy_n(bytes, headerFieldSize, field.data());
    else
        std::copy_n(bytes, available, field.data());
    return field;
}

// The sum wraps, and a read that ends at the end of the buffer fails like one that ends behind it.
unsigned char const* TagParser::Read(std::uint32_t length) {
    auto const end = m_position + length;
    if (end >= m_size)
        throw parsingFailure(__LINE__, insufficientData);
    auto const* const bytes = m_buffer + m_position;
    m_position = end;
    return bytes;
}

} // namespace vrUtils::Parsing
