#ifndef FILES_PATHMAPPINGS_H
#define FILES_PATHMAPPINGS_H

#include "vrUtils/Path.h"

namespace vrUtils::Files {

// The table of network shares and the local folders behind them, one for the process. It holds 33
// rows at the most: beyond that the oldest goes. Both may be called from any thread.

void addPathMapping(vr::Path const& localRoot, vr::Path const& uncRoot);

// The local root of the oldest row for this network root, without regard to case; the empty path if
// there is none.
vr::Path findPathMapping(vr::Path const& uncRoot);

} // namespace vrUtils::Files

#endif
