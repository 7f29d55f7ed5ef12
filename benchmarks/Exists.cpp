// Whether a file exists that does.

#include "benchmarks/Candidate.h"
#include "benchmarks/Folder.h"

#include "foundation/Platform.h"
#include "vrUtils/Files.h"

#include <filesystem>
#include <fstream>
#include <string>

#ifdef PEER_BOOST
#include <boost/filesystem/operations.hpp>
#endif
#ifdef PEER_POCO
#include <Poco/File.h>
#endif

void benchmarks::registerCandidates() {
    static auto const text = fileNamed(L"exists");
    std::ofstream(std::filesystem::path(text)) << "here";

    static vr::Path const path(text, vr::Path::eFile);
    candidate("exists", "ours", [] { return vrUtils::Files::FileExists(path); });

    static std::filesystem::path const stdPath(text);
    candidate("exists", "std", [] { return std::filesystem::exists(stdPath); });

#ifdef PEER_BOOST
    static boost::filesystem::path const boostPath(text);
    candidate("exists", "boost", [] { return boost::filesystem::exists(boostPath); });
#endif
#ifdef PEER_POCO
    static Poco::File const pocoFile(stdPath.u8string());
    candidate("exists", "poco", [] { return pocoFile.exists(); });
#endif
    candidate("exists", "limit", [] { return GetFileAttributesW(text.c_str()); });
}
