// Four pieces joined to one path, one backslash between them.

#include "benchmarks/Candidate.h"

#include "foundation/Platform.h"
#include "vrUtils/Path.h"

#include <algorithm>
#include <filesystem>
#include <string>

#include <shlwapi.h>

#ifdef PEER_BOOST
#include <boost/filesystem/path.hpp>
#endif
#ifdef PEER_POCO
#include <Poco/Path.h>
#endif

namespace {

std::wstring base = L"\\\\server01\\Projects";
std::wstring folder = L"Evening News";
std::wstring subfolder = L"Clips";
std::wstring name = L"Interview.mxf";

vr::PathCreator ours() {
    vr::PathCreator path(base);
    path.append(folder).append(subfolder).append(name);
    return path;
}

template <class FilePath>
FilePath fileSystemPath() {
    FilePath path(base);
    path /= folder;
    path /= subfolder;
    path /= name;
    return path;
}

#ifdef PEER_POCO
std::string narrowFolder = "Evening News";
std::string narrowSubfolder = "Clips";
std::string narrowName = "Interview.mxf";

Poco::Path poco() {
    static Poco::Path const narrowBase("\\\\server01\\Projects\\", Poco::Path::PATH_WINDOWS);
    Poco::Path path(narrowBase);
    path.pushDirectory(narrowFolder).pushDirectory(narrowSubfolder).setFileName(narrowName);
    return path;
}
#endif

std::wstring pathAppend() {
    wchar_t path[MAX_PATH];
    base.copy(path, base.size());
    path[base.size()] = L'\0';
    PathAppendW(path, folder.c_str());
    PathAppendW(path, subfolder.c_str());
    PathAppendW(path, name.c_str());
    return path;
}

std::wstring plus() { return base + L"\\" + folder + L"\\" + subfolder + L"\\" + name; }

// The least work: room at once, and one look at every character for a slash to turn round.
std::wstring limit() {
    std::wstring path;
    path.reserve(base.size() + folder.size() + subfolder.size() + name.size() + 3);
    path.append(base).append(1, L'\\').append(folder).append(1, L'\\');
    path.append(subfolder).append(1, L'\\').append(name);
    std::transform(
        path.begin(), path.end(), path.begin(), [](wchar_t c) { return c == L'/' ? L'\\' : c; });
    return path;
}

} // namespace

void benchmarks::registerCandidates() {
    candidate("join", "ours", ours);
    candidate("join", "std", fileSystemPath<std::filesystem::path>);
#ifdef PEER_BOOST
    candidate("join", "boost", fileSystemPath<boost::filesystem::path>);
#endif
#ifdef PEER_POCO
    candidate("join", "poco", poco);
#endif
    candidate("join", "PathAppendW", pathAppend);
    candidate("join", "plus", plus);
    candidate("join", "limit", limit);
}
