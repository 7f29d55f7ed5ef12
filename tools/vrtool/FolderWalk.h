#ifndef TOOLS_VRTOOL_FOLDERWALK_H
#define TOOLS_VRTOOL_FOLDERWALK_H

#include "vrUtils/Path.h"

#include <string>
#include <vector>

// A file that a walk came to; or, with a failure, a folder that could not be read to its end.
struct WalkedFile {
    vr::Path path;
    std::wstring failure;
};

// All files below a folder. The entries of each folder come in the order of their names without
// regard to case, a subfolder's files in its place. Folders that are links are not followed, so
// that a walk always ends.
std::vector<WalkedFile> filesBelow(vr::Path const& folder);

#endif
