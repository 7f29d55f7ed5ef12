#ifndef TOOLS_VRTOOL_RECOVERYCOPY_H
#define TOOLS_VRTOOL_RECOVERYCOPY_H

#include "vrUtils/Path.h"

// Where the library keeps the files of a folder that it may have to put back.
vr::Path recoveryFolderOf(vr::Path const& file);

// Where it keeps this one.
vr::Path recoveryCopyOf(vr::Path const& file);

#endif
