// Sample rate and sample width from the head of a WAV and of an AIFF file in memory.

#include "benchmarks/Candidate.h"

#include "vrUtils/Parsing.h"

#include <cstdint>
#include <cstring>
#include <string>

#ifdef PEER_SNDFILE
#include <sndfile.h>
#endif

namespace {

using namespace std::string_literals;

// One second of silence: 48000 samples a second of 16 bits, one channel.
constexpr std::size_t soundBytes = 96'000;

std::string const wav = "RIFF\x24\x77\x01\0WAVE"s
                        "fmt \x10\0\0\0\x01\0\x01\0\x80\xBB\0\0\0\x77\x01\0\x02\0\x10\0"s
                        "data\0\x77\x01\0"s +
                        std::string(soundBytes, '\0');

std::string const aiff = "FORM\0\x01\x77\x2E"s
                         "AIFF"s
                         "COMM\0\0\0\x12\0\x01\0\0\xBB\x80\0\x10\x40\x0E\xBB\x80\0\0\0\0\0\0"s
                         "SSND\0\x01\x77\x08\0\0\0\0\0\0\0\0"s +
                         std::string(soundBytes, '\0');

unsigned char const* bytesOf(std::string const& file) {
    return reinterpret_cast<unsigned char const*>(file.data());
}

template <class Parser>
std::uint32_t ours(std::string const& file) {
    Parser parser(bytesOf(file), static_cast<std::uint32_t>(file.size()));
    parser.Parse();
    return parser.GetSamplesPerSecond() + parser.GetBitsPerSample();
}

#ifdef PEER_SNDFILE
// A file in memory, as the library asks for it.
struct MemoryFile {
    std::string const& content;
    sf_count_t position = 0;

    sf_count_t size() const { return static_cast<sf_count_t>(content.size()); }

    static MemoryFile& of(void* user) { return *static_cast<MemoryFile*>(user); }

    static sf_count_t length(void* user) { return of(user).size(); }

    static sf_count_t seek(sf_count_t offset, int whence, void* user) {
        auto& file = of(user);
        auto const from = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? file.position : file.size();
        return file.position = from + offset;
    }

    static sf_count_t read(void* target, sf_count_t count, void* user) {
        auto& file = of(user);
        count = std::min(count, file.size() - file.position);
        std::memcpy(target, file.content.data() + file.position, static_cast<std::size_t>(count));
        file.position += count;
        return count;
    }

    static sf_count_t write(void const*, sf_count_t, void*) { return 0; }

    static sf_count_t tell(void* user) { return of(user).position; }
};

int sndfile(std::string const& file) {
    MemoryFile memory{file};
    SF_VIRTUAL_IO io{
        MemoryFile::length, MemoryFile::seek, MemoryFile::read, MemoryFile::write,
        MemoryFile::tell};
    SF_INFO info{};
    auto* const sound = sf_open_virtual(&io, SFM_READ, &info, &memory);
    sf_close(sound);
    return info.samplerate + (info.format & SF_FORMAT_SUBMASK);
}
#endif

std::uint32_t littleEndian(unsigned char const* bytes) {
    return bytes[0] | bytes[1] << 8 | bytes[2] << 16 | static_cast<std::uint32_t>(bytes[3]) << 24;
}

std::uint32_t bigEndian(unsigned char const* bytes) {
    return static_cast<std::uint32_t>(bytes[0]) << 24 | bytes[1] << 16 | bytes[2] << 8 | bytes[3];
}

// Where the value of the wanted chunk begins.
template <class Length>
unsigned char const* findChunk(std::string const& file, char const* name, Length length) {
    for (std::size_t position = 12; position + 8 < file.size();) {
        auto const* const chunk = bytesOf(file) + position;
        if (std::memcmp(chunk, name, 4) == 0)
            return chunk + 8;
        position += 8 + length(chunk + 4);
    }
    return nullptr;
}

// The least work: no copies, no checks of the values' length.
std::uint32_t wavLimit(std::string const& file) {
    auto const* const format = findChunk(file, "fmt ", littleEndian);
    return littleEndian(format + 4) + (format[14] | format[15] << 8u);
}

std::uint32_t aiffLimit(std::string const& file) {
    auto const* const common = findChunk(file, "COMM", bigEndian);
    auto const shift = 0x401E - (common[8] << 8 | common[9]);
    return (bigEndian(common + 10) >> shift) + (common[6] << 8u | common[7]);
}

} // namespace

void benchmarks::registerCandidates() {
    using namespace vrUtils::Parsing;
    candidate("header-wav", "ours", [] { return ours<WavParser>(wav); });
    candidate("header-wav", "limit", [] { return wavLimit(wav); });
    candidate("header-aiff", "ours", [] { return ours<AIFParser>(aiff); });
    candidate("header-aiff", "limit", [] { return aiffLimit(aiff); });
#ifdef PEER_SNDFILE
    candidate("header-wav", "libsndfile", [] { return sndfile(wav); });
    candidate("header-aiff", "libsndfile", [] { return sndfile(aiff); });
#endif
}
