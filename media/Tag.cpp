#include "vrUtils/Parsing.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace vrUtils::Parsing {

namespace {

// The furthest byte that a reader takes from a chunk is the last of AIFF's ten-byte rate at offset
// 8. With this many bytes in every block a chunk too short for its fields needs no test.
constexpr std::size_t smallestBlock = 18;

} // namespace

Tag::Tag(std::uint32_t name, std::uint32_t length, unsigned char const* value)
    : Tag(name, length, value, length) {}

// A length is whatever four bytes of a file happen to say: the block follows the bytes that are
// there, so that a damaged head of a hundred bytes costs no allocation of gigabytes.
Tag::Tag(
    std::uint32_t name, std::uint32_t length, unsigned char const* value, std::uint32_t available)
    : m_name(name), m_length(length) {
    std::size_t const copied = std::min(length, available);
    // Not by make_unique, which would write zeros below all that is copied.
    m_value.reset(new unsigned char[std::max(copied, smallestBlock)]);
    if (copied < smallestBlock)
        std::fill_n(m_value.get(), smallestBlock, static_cast<unsigned char>(0));
    std::copy_n(value, copied, m_value.get());
}

Tag::Tag(Tag& source) : Tag(std::move(source)) {}

Tag::Tag(Tag&& source) noexcept = default;

// NOLINTNEXTLINE(misc-unconventional-assign-operator): see the header
Tag& Tag::operator=(Tag& source) { return *this = std::move(source); }

Tag& Tag::operator=(Tag&& source) noexcept = default;

Tag::~Tag() = default;

} // namespace vrUtils::Parsing
