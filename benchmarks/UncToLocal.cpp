// A network path found in the table of mappings, as its only row and as the last of the most rows
// that there may be. Rows are put there directly: the platform's drives are not at hand here.

#include "benchmarks/Candidate.h"

#include "files/PathMappings.h"
#include "vrUtils/Files.h"

#include <string>

namespace {

constexpr unsigned mostRows = 33;

void addRow(std::wstring const& share) {
    vrUtils::Files::addPathMapping(vr::Path::folder(L"P:\\"), vr::Path::folder(share));
}

std::wstring resolve(std::wstring const& text) {
    return vrUtils::Files::uncToLocalPath(vr::Path(text, vr::Path::eFile)).str();
}

// What an answer may cost.
std::size_t parseThreeTimes(std::wstring const& text) {
    std::size_t length = 0;
    for (int parse = 0; parse < 3; ++parse)
        length += vr::Path(text, vr::Path::eFile).str().size();
    return length;
}

} // namespace

void benchmarks::registerCandidates() {
    addRow(L"\\\\server01\\Projects\\");
    for (unsigned row = 2; row < mostRows; ++row)
        addRow(L"\\\\other" + std::to_wstring(row) + L"\\Projects\\");
    addRow(L"\\\\server33\\Projects\\");

    static std::wstring const rest = L"\\Projects\\Evening News\\Clips\\Interview.mxf";
    static auto const first = L"\\\\server01" + rest;
    static auto const last = L"\\\\server33" + rest;
    candidate("unc-first-row", "ours", [] { return resolve(first); });
    candidate("unc-first-row", "three-parses", [] { return parseThreeTimes(first); });
    candidate("unc-last-row", "ours", [] { return resolve(last); });
    candidate("unc-last-row", "three-parses", [] { return parseThreeTimes(last); });
}
