// The numbered folder for the next file: one that has room, and the first behind a full one.

#include "benchmarks/Candidate.h"
#include "benchmarks/Folder.h"

#include "foundation/Platform.h"
#include "vrUtils/Files.h"

#include <filesystem>
#include <fstream>
#include <string>

namespace {

constexpr int fileCount = 1000;

// A base whose folder 1 holds the files; gives it with its closing backslash.
std::wstring baseNamed(wchar_t const* name) {
    auto const base = benchmarks::fileNamed(name) + L'\\';
    std::filesystem::create_directories(base + L"1");
    for (int file = 0; file < fileCount; ++file)
        std::ofstream(std::filesystem::path(base + L"1\\" + std::to_wstring(file) + L".mxf"));
    return base;
}

int countEntries(std::wstring const& folder) {
    WIN32_FIND_DATAW entry;
    auto* const search = FindFirstFileW((folder + L"\\*").c_str(), &entry);
    if (search == INVALID_HANDLE_VALUE)
        return 0;
    int count = 0;
    do
        ++count;
    while (FindNextFileW(search, &entry));
    FindClose(search);
    return count;
}

// Every folder counted to its end.
std::wstring byCounting(std::wstring const& base, int limit) {
    int number = 1;
    while (countEntries(base + std::to_wstring(number)) > limit)
        ++number;
    CreateDirectoryW((base + std::to_wstring(number)).c_str(), nullptr);
    return std::to_wstring(number);
}

// Another spelling of the base, for which no number is kept.
std::wstring newSpelling(std::wstring const& base) {
    static unsigned spellings = 0;
    return base + std::to_wstring(++spellings) + L"\\..\\";
}

} // namespace

void benchmarks::registerCandidates() {
    static auto const roomy = baseNamed(L"numbered-roomy");
    candidate("numbered-roomy", "ours", [] { return get_avid_path_number(roomy, 2 * fileCount); });
    candidate("numbered-roomy", "counting", [] { return byCounting(roomy, 2 * fileCount); });

    static auto const full = baseNamed(L"numbered-full");
    candidate("numbered-full", "ours", [] {
        return get_avid_path_number(newSpelling(full), fileCount / 10);
    });
    candidate(
        "numbered-full", "counting", [] { return byCounting(newSpelling(full), fileCount / 10); });
}
