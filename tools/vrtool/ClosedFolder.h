#ifndef TOOLS_VRTOOL_CLOSEDFOLDER_H
#define TOOLS_VRTOOL_CLOSEDFOLDER_H

#include "vrUtils/Path.h"

#include <string>

// A folder with a backslash at its end, however it was written: without one its last word would
// count as a file's name.
vr::Path closedFolder(std::wstring const& text);

#endif
