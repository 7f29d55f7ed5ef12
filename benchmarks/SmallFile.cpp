// Whole files read into memory and written from it. Every candidate has a file of its own.

#include "benchmarks/Candidate.h"
#include "benchmarks/Folder.h"

#include "foundation/Platform.h"
#include "vrUtils/Files.h"

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <limits>
#include <string>
#include <vector>

namespace {

constexpr std::uint32_t noMaximum = std::numeric_limits<std::uint32_t>::max();

std::vector<char> load(vr::Path const& path) {
    std::vector<char> bytes;
    vrUtils::Files::LoadSmallFile(path, noMaximum, &bytes);
    return bytes;
}

std::vector<char> loadByStream(std::wstring const& path) {
    std::ifstream stream(std::filesystem::path(path), std::ios::binary | std::ios::ate);
    std::vector<char> bytes(static_cast<std::size_t>(stream.tellg()));
    stream.seekg(0);
    stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    return bytes;
}

HANDLE openToRead(std::wstring const& path) {
    return CreateFileW(
        path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL,
        nullptr);
}

// The calls that ours is made of, on a vector as ours.
std::vector<char> loadBySameCalls(std::wstring const& path) {
    auto const file = openToRead(path);
    WIN32_FILE_ATTRIBUTE_DATA data;
    GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data);
    std::vector<char> bytes(data.nFileSizeLow);
    DWORD read = 0;
    ReadFile(file, bytes.data(), data.nFileSizeLow, &read, nullptr);
    CloseHandle(file);
    return bytes;
}

// The least work: the length is asked of the open file, not once more of the path.
std::vector<char> loadAtLeast(std::wstring const& path) {
    auto const file = openToRead(path);
    LARGE_INTEGER length;
    GetFileSizeEx(file, &length);
    std::vector<char> bytes(static_cast<std::size_t>(length.QuadPart));
    DWORD read = 0;
    ReadFile(file, bytes.data(), length.LowPart, &read, nullptr);
    CloseHandle(file);
    return bytes;
}

int save(vr::Path const& path, std::vector<char> const& bytes) {
    vrUtils::Files::SaveSmallFile(bytes, path);
    return 0;
}

bool saveByStream(std::wstring const& path, std::vector<char> const& bytes) {
    std::ofstream stream(std::filesystem::path(path), std::ios::binary);
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    stream.close();
    return stream.good();
}

DWORD saveAtLeast(std::wstring const& path, std::vector<char> const& bytes) {
    auto const file = CreateFileW(
        path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL,
        nullptr);
    DWORD written = 0;
    WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
    CloseHandle(file);
    return written;
}

void rows(std::string const& size, std::vector<char> const& bytes) {
    using benchmarks::candidate;
    using benchmarks::fileNamed;
    std::wstring const suffix(size.begin(), size.end());
    auto const source = fileNamed((L"load-" + suffix).c_str());
    saveAtLeast(source, bytes);
    vr::Path const sourcePath(source, vr::Path::eFile);
    auto const loadRow = "load-" + size;
    candidate(loadRow.c_str(), "ours", [=] { return load(sourcePath); });
    candidate(loadRow.c_str(), "ifstream", [=] { return loadByStream(source); });
    candidate(loadRow.c_str(), "same-calls", [=] { return loadBySameCalls(source); });
    candidate(loadRow.c_str(), "limit", [=] { return loadAtLeast(source); });

    auto const target = [&](wchar_t const* name) { return fileNamed((name + suffix).c_str()); };
    vr::Path const ourTarget(target(L"save-ours-"), vr::Path::eFile);
    auto const streamTarget = target(L"save-stream-");
    auto const leastTarget = target(L"save-least-");
    auto const saveRow = "save-" + size;
    candidate(saveRow.c_str(), "ours", [=, &bytes] { return save(ourTarget, bytes); });
    candidate(
        saveRow.c_str(), "ofstream", [=, &bytes] { return saveByStream(streamTarget, bytes); });
    candidate(saveRow.c_str(), "limit", [=, &bytes] { return saveAtLeast(leastTarget, bytes); });
}

} // namespace

void benchmarks::registerCandidates() {
    static std::vector<char> const small(std::size_t{4} << 10, 'v');
    static std::vector<char> const medium(std::size_t{1} << 20, 'v');
    static std::vector<char> const large(std::size_t{256} << 20, 'v');
    rows("4KiB", small);
    rows("1MiB", medium);
    rows("256MiB", large);
}
