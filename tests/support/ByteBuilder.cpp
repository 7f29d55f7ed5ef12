#include "tests/support/ByteBuilder.h"

#include <algorithm>

namespace test {

namespace {

using AddWord = ByteBuilder& (ByteBuilder::*)(std::uint32_t);

std::string orUsual(std::string const& text, char const* usual) {
    return text.empty() ? usual : text;
}

void addChunk(ByteBuilder& builder, Chunk const& chunk, AddWord addLength) {
    auto const length = chunk.length.value_or(static_cast<std::uint32_t>(chunk.value.size()));
    (builder.text(chunk.name).*addLength)(length).raw(chunk.value);
}

// The form type and the chunks, under the first name and their length.
Bytes head(
    std::string const& first, std::string const& form, Chunk const& format,
    HeadLayout const& layout, AddWord addLength) {
    ByteBuilder content;
    content.text(form);
    for (auto const& chunk : layout.before)
        addChunk(content, chunk, addLength);
    addChunk(content, format, addLength);
    for (auto const& chunk : layout.behind)
        addChunk(content, chunk, addLength);

    ByteBuilder file;
    auto const length = static_cast<std::uint32_t>(content.size());
    return (file.text(first).*addLength)(length).raw(content.bytes()).bytes();
}

} // namespace

ByteBuilder& ByteBuilder::byte(std::uint8_t value) {
    m_bytes.push_back(value);
    return *this;
}

ByteBuilder& ByteBuilder::text(std::string_view text) {
    m_bytes.insert(m_bytes.end(), text.begin(), text.end());
    return *this;
}

ByteBuilder& ByteBuilder::little16(std::uint16_t value) {
    return byte(static_cast<std::uint8_t>(value)).byte(static_cast<std::uint8_t>(value >> 8));
}

ByteBuilder& ByteBuilder::little32(std::uint32_t value) {
    return little16(static_cast<std::uint16_t>(value))
        .little16(static_cast<std::uint16_t>(value >> 16));
}

ByteBuilder& ByteBuilder::big16(std::uint16_t value) {
    return byte(static_cast<std::uint8_t>(value >> 8)).byte(static_cast<std::uint8_t>(value));
}

ByteBuilder& ByteBuilder::big32(std::uint32_t value) {
    return big16(static_cast<std::uint16_t>(value >> 16)).big16(static_cast<std::uint16_t>(value));
}

ByteBuilder& ByteBuilder::raw(Bytes const& bytes) {
    m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end());
    return *this;
}

ByteBuilder& ByteBuilder::repeat(std::uint8_t value, std::size_t count) {
    m_bytes.insert(m_bytes.end(), count, value);
    return *this;
}

ExtendedBytes extended(std::uint32_t number) {
    ExtendedBytes bytes{};
    if (number == 0)
        return bytes;
    // The leading one stands in the top bit, the exponent tells how far it was moved there.
    constexpr std::uint16_t bias = 16383;
    std::uint16_t exponent = bias + 31;
    for (; !(number & 0x80000000u); number <<= 1)
        --exponent;
    auto const words = ByteBuilder().big16(exponent).big32(number).bytes();
    std::copy(words.begin(), words.end(), bytes.begin());
    return bytes;
}

Bytes wavFormat(std::uint32_t samplesPerSecond, std::uint16_t bitsPerSample) {
    constexpr std::uint16_t pulseCode = 1;
    constexpr std::uint16_t channels = 2;
    auto const frameBytes = static_cast<std::uint16_t>(channels * ((bitsPerSample + 7) / 8));
    return ByteBuilder()
        .little16(pulseCode)
        .little16(channels)
        .little32(samplesPerSecond)
        .little32(samplesPerSecond * frameBytes)
        .little16(frameBytes)
        .little16(bitsPerSample)
        .bytes();
}

Bytes aiffFormat(ExtendedBytes const& samplesPerSecond, std::uint16_t bitsPerSample) {
    constexpr std::uint16_t channels = 2;
    constexpr std::uint32_t frames = 1000;
    return ByteBuilder()
        .big16(channels)
        .big32(frames)
        .big16(bitsPerSample)
        .raw({samplesPerSecond.begin(), samplesPerSecond.end()})
        .bytes();
}

Bytes wavHead(
    std::uint32_t samplesPerSecond, std::uint16_t bitsPerSample, HeadLayout const& layout) {
    Chunk const format{"fmt ", wavFormat(samplesPerSecond, bitsPerSample), layout.formatLength};
    return head(
        orUsual(layout.first, "RIFF"), orUsual(layout.form, "WAVE"), format, layout,
        &ByteBuilder::little32);
}

Bytes aiffHead(
    ExtendedBytes const& samplesPerSecond, std::uint16_t bitsPerSample, HeadLayout const& layout) {
    Chunk const format{"COMM", aiffFormat(samplesPerSecond, bitsPerSample), layout.formatLength};
    return head(
        orUsual(layout.first, "FORM"), orUsual(layout.form, "AIFF"), format, layout,
        &ByteBuilder::big32);
}

} // namespace test
