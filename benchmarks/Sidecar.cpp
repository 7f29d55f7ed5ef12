// A movie's companion found by an expression, in folders of 100, 1,000 and 10,000 entries.

#include "benchmarks/Candidate.h"
#include "benchmarks/Folder.h"

#include "foundation/Platform.h"
#include "vrUtils/Storage.h"

#include <filesystem>
#include <fstream>
#include <regex>
#include <string>

namespace {

std::wstring const movie = L"Evening News 17.MOV";
std::wstring const movieExpression = L"(.*)\\.mov";
std::wstring const sidecarExpression = L"\\1_v[0-9]+\\.xml";

// A folder of so many files, the sidecar among them; gives it with its closing backslash.
std::wstring folderOf(int entries) {
    auto const folder = benchmarks::fileNamed((L"sidecar-" + std::to_wstring(entries)).c_str());
    std::filesystem::create_directories(folder);
    for (int entry = 1; entry < entries; ++entry)
        std::ofstream(
            std::filesystem::path(folder + L"\\Evening News " + std::to_wstring(entry) + L".xml"));
    std::ofstream(std::filesystem::path(folder + L"\\Evening News 17_v3.xml"));
    return folder + L'\\';
}

std::wstring ours(std::wstring const& folder) {
    return vrUtils::Storage::FindSidecarFile(
        movie, movieExpression, folder, sidecarExpression, L"*");
}

// What a program without ours does; it has to see all entries too, to tell whether one is alone.
std::wstring byStandardLibrary(std::wstring const& folder) {
    auto const flags = std::regex::ECMAScript | std::regex::icase;
    auto const expression =
        std::regex_replace(movie, std::wregex(movieExpression, flags), L"$1_v[0-9]+\\.xml");
    std::wregex const sidecar(expression, flags);
    std::wstring found;
    for (auto const& entry : std::filesystem::directory_iterator(folder)) {
        auto const name = entry.path().filename();
        if (std::regex_match(name.native(), sidecar) && found.empty())
            found = entry.path().native();
    }
    return found;
}

// The folder's entries, with nothing made of them.
unsigned limit(std::wstring const& folder) {
    WIN32_FIND_DATAW entry;
    auto* const search = FindFirstFileW((folder + L'*').c_str(), &entry);
    unsigned count = 0;
    do
        ++count;
    while (FindNextFileW(search, &entry));
    FindClose(search);
    return count;
}

} // namespace

void benchmarks::registerCandidates() {
    for (auto const entries : {100, 1000, 10000}) {
        auto const folder = folderOf(entries);
        auto const row = "sidecar-" + std::to_string(entries);
        candidate(row.c_str(), "ours", [=] { return ours(folder); });
        candidate(row.c_str(), "std", [=] { return byStandardLibrary(folder); });
        candidate(row.c_str(), "listing", [=] { return limit(folder); });
    }
}
