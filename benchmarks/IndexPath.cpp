// Archive paths to their index and back, from a path at hand, which keeps its parse, to the normal
// text of the result.

#include "benchmarks/Candidate.h"

#include "vrUtils/Files.h"

#include <string>

namespace {

std::wstring archiveText = L"\\\\server01\\Projects\\Evening News\\Clips\\Interview.mxf";
std::wstring indexText = L"\\\\server01\\Projects\\PFR-INDEX\\Evening News\\Clips\\Interview.mov";
std::wstring extension = L".mxf";

std::wstring toIndex(vr::Path const& path) {
    return vrUtils::Files::ArchiveToIndexPathConverter().GetIndexPath(path).str();
}

std::wstring toArchive(vr::Path const& path) {
    return vrUtils::Files::IndexToArchivePathConverter().GetArchivePath(path, extension).str();
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
    static auto const archive = vr::Path::file(archiveText);
    static auto const index = vr::Path::file(indexText);
    candidate("to-index", "ours", [] { return toIndex(archive); });
    candidate("to-index", "three-parses", [] { return parseThreeTimes(archiveText); });
    candidate("to-archive", "ours", [] { return toArchive(index); });
    candidate("to-archive", "three-parses", [] { return parseThreeTimes(indexText); });
}
