#include "tests/media/AudioHeads.h"

namespace test {

namespace {

// Nobody bounds a walk by it.
constexpr std::uint32_t lengthOfTheFile = 0xABCDEF01;

using AddLength = ByteBuilder& (ByteBuilder::*)(std::uint32_t);

Bytes chunksIn(AddLength addLength, std::initializer_list<Chunk> const& chunks) {
    ByteBuilder builder;
    for (auto const& chunk : chunks) {
        auto const trueLength = static_cast<std::uint32_t>(chunk.value.size());
        (builder.text(chunk.name).*addLength)(chunk.length.value_or(trueLength)).raw(chunk.value);
    }
    return builder.bytes();
}

} // namespace

Chunk chunk(std::string const& name, Bytes const& value) { return {name, value}; }

Chunk lyingChunk(std::string const& name, std::uint32_t statedLength, Bytes const& value) {
    return {name, value, statedLength};
}

Bytes wavChunks(std::initializer_list<Chunk> chunks) {
    return chunksIn(&ByteBuilder::little32, chunks);
}

Bytes aiffChunks(std::initializer_list<Chunk> chunks) {
    return chunksIn(&ByteBuilder::big32, chunks);
}

Bytes wavFile(std::initializer_list<Chunk> chunks) {
    return ByteBuilder()
        .text("RIFF")
        .little32(lengthOfTheFile)
        .text("WAVE")
        .raw(wavChunks(chunks))
        .byte(0xEE)
        .bytes();
}

Bytes aiffFile(std::initializer_list<Chunk> chunks, std::string const& type) {
    return ByteBuilder()
        .text("FORM")
        .big32(lengthOfTheFile)
        .text(type)
        .raw(aiffChunks(chunks))
        .byte(0xEE)
        .bytes();
}

} // namespace test
