// A tree of 2,000 files in 200 folders removed. Every run has a tree of its own.

#include "benchmarks/Candidate.h"
#include "benchmarks/Folder.h"

#include "foundation/Platform.h"
#include "vrUtils/Storage.h"

#ifdef PEER_BOOST
#include <boost/filesystem.hpp>
#endif
#ifdef PEER_POCO
#include <Poco/File.h>
#include <Poco/UnicodeConverter.h>
#endif

#include <cstring>
#include <filesystem>
#include <string>

namespace {

constexpr unsigned foldersInTree = 200;
constexpr unsigned filesInFolder = 10;

void makeTree(std::wstring const& root) {
    CreateDirectoryW(root.c_str(), nullptr);
    for (unsigned folder = 0; folder < foldersInTree; ++folder) {
        auto const path = root + L"\\folder " + std::to_wstring(folder);
        CreateDirectoryW(path.c_str(), nullptr);
        for (unsigned file = 0; file < filesInFolder; ++file)
            CloseHandle(CreateFileW(
                (path + L"\\clip " + std::to_wstring(file) + L".mxf").c_str(), GENERIC_WRITE, 0,
                nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
    }
}

// What stands between ours and the least work: files and folders that may be read-only.
struct MakeNormal {
    void operator()(std::wstring const& path) const {
        SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
    }
};

struct LeaveAsItIs {
    void operator()(std::wstring const&) const {}
};

bool isDots(wchar_t const* name) {
    return name[0] == L'.' && (name[1] == 0 || (name[1] == L'.' && name[2] == 0));
}

// The raw calls, on one text that grows and shrinks.
template <class Prepare>
bool removeByCalls(std::wstring& path, Prepare const& prepare) {
    auto const length = path.size();
    WIN32_FIND_DATAW entry;
    auto* const search = FindFirstFileW((path += L"\\*").c_str(), &entry);
    path.resize(length);
    do {
        if (isDots(entry.cFileName))
            continue;
        path.append(1, L'\\').append(entry.cFileName);
        if (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) {
            removeByCalls(path, prepare);
        } else {
            prepare(path);
            DeleteFileW(path.c_str());
        }
        path.resize(length);
    } while (FindNextFileW(search, &entry));
    FindClose(search);
    prepare(path);
    return RemoveDirectoryW(path.c_str()) != FALSE;
}

template <class Prepare>
bool removeByCallsFrom(std::wstring path, Prepare const& prepare) {
    return removeByCalls(path, prepare);
}

template <class Work>
void removing(char const* name, Work work) {
    auto const root =
        benchmarks::fileNamed(L"tree-") + std::wstring(name, name + std::strlen(name));
    benchmarks::preparedCandidate(
        "delete-tree", name, [=] { makeTree(root); }, [=] { return work(root); });
}

} // namespace

void benchmarks::registerCandidates() {
    removing(
        "ours", [](auto const& root) { return vrUtils::Storage::DeleteDirectory(root, true); });
    removing("std", [](auto const& root) { return std::filesystem::remove_all(root); });
#ifdef PEER_BOOST
    removing("boost", [](auto const& root) { return boost::filesystem::remove_all(root); });
#endif
#ifdef PEER_POCO
    removing("poco", [](auto const& root) {
        std::string narrow;
        Poco::UnicodeConverter::toUTF8(root, narrow);
        Poco::File(narrow).remove(true);
        return 0;
    });
#endif
    removing("raw-calls", [](auto const& root) { return removeByCallsFrom(root, MakeNormal{}); });
    removing("limit", [](auto const& root) { return removeByCallsFrom(root, LeaveAsItIs{}); });
}
