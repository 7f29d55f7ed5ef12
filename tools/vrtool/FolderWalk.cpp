#include "tools/vrtool/FolderWalk.h"

#include "tools/vrtool/OwnedHandle.h"

#include <algorithm>

namespace {

struct Entry {
    std::wstring name;
    bool isFolder;
};

struct Listing {
    std::vector<Entry> entries;
    std::wstring failure;
};

// A file system that does not tell the kind of its reparse points has no others than links.
bool isLink(WIN32_FIND_DATAW const& found) {
    return (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
           (found.dwReserved0 == 0 || IsReparseTagNameSurrogate(found.dwReserved0));
}

void add(WIN32_FIND_DATAW const& found, std::vector<Entry>& entries) {
    std::wstring name = found.cFileName;
    bool const isFolder = (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    if (name == L"." || name == L".." || (isFolder && isLink(found)))
        return;
    entries.push_back({std::move(name), isFolder});
}

// The order of the platform's own file system, which network shares do not keep.
bool standsBefore(Entry const& left, Entry const& right) {
    auto const order = CompareStringOrdinal(
        left.name.c_str(), static_cast<int>(left.name.size()), right.name.c_str(),
        static_cast<int>(right.name.size()), TRUE);
    return order == CSTR_EQUAL ? left.name < right.name : order == CSTR_LESS_THAN;
}

vr::Path inside(vr::Path const& folder, std::wstring const& name, vr::Path::eType type) {
    vr::Path path = folder;
    path.modify(type).append(name);
    return path;
}

std::wstring failureOf(std::wstring const& call, vr::Path const& folder, DWORD error) {
    return call + L" failed on \"" + folder.components().wholePath() + L"\" - error " +
           std::to_wstring(error);
}

Listing list(vr::Path const& folder) {
    Listing listing;
    WIN32_FIND_DATAW found;
    OwnedSearch const search(FindFirstFileExW(
        inside(folder, L"*", vr::Path::eFile).str().c_str(), FindExInfoBasic, &found,
        FindExSearchNameMatch, nullptr, FIND_FIRST_EX_LARGE_FETCH));
    auto error = GetLastError();
    if (search.get() == INVALID_HANDLE_VALUE) {
        // The root of an empty drive holds not even itself.
        if (error != ERROR_FILE_NOT_FOUND)
            listing.failure = failureOf(L"FindFirstFile", folder, error);
        return listing;
    }

    do
        add(found, listing.entries);
    while (FindNextFileW(search.get(), &found));
    error = GetLastError();
    if (error != ERROR_NO_MORE_FILES)
        listing.failure = failureOf(L"FindNextFile", folder, error);
    std::sort(listing.entries.begin(), listing.entries.end(), standsBefore);
    return listing;
}

} // namespace

std::vector<WalkedFile> filesBelow(vr::Path const& start) {
    struct Pending {
        vr::Path path;
        bool isFolder;
    };
    std::vector<WalkedFile> files;
    std::vector<Pending> pending{{start, true}};

    while (!pending.empty()) {
        Pending const next = std::move(pending.back());
        pending.pop_back();
        if (!next.isFolder) {
            files.push_back({next.path, {}});
            continue;
        }
        Listing const listing = list(next.path);
        if (!listing.failure.empty())
            files.push_back({next.path, listing.failure});
        for (auto entry = listing.entries.rbegin(); entry != listing.entries.rend(); ++entry) {
            auto const type = entry->isFolder ? vr::Path::eFolder : vr::Path::eFile;
            pending.push_back({inside(next.path, entry->name, type), entry->isFolder});
        }
    }
    return files;
}
