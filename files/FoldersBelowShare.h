#ifndef FILES_FOLDERSBELOWSHARE_H
#define FILES_FOLDERSBELOWSHARE_H

#include "vrUtils/Path.h"

#include <string>

namespace vrUtils::Files {

// The folders of a network path without its share, each followed by a backslash.
inline std::wstring foldersBelowShare(vr::PathSplitter const& parts) {
    auto text = parts.folderText();
    if (!parts.folders().empty())
        text.erase(0, parts.folders().front().size() + 1);
    return text;
}

} // namespace vrUtils::Files

#endif
