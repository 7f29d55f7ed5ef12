#ifndef FILES_FOLDERSBELOWSHARE_H
#define FILES_FOLDERSBELOWSHARE_H

#include "vrUtils/Path.h"

#include <string>

namespace vrUtils::Files {

// The folders of a network path without its share, each followed by a backslash.
inline std::wstring foldersBelowShare(vr::PathSplitter const& parts) {
    auto const& folders = parts.folders();
    return folders.empty() ? std::wstring() : parts.folderText().substr(folders.front().size() + 1);
}

} // namespace vrUtils::Files

#endif
