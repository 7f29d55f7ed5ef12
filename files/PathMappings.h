#ifndef FILES_PATHMAPPINGS_H
#define FILES_PATHMAPPINGS_H

#include "vrUtils/Path.h"

#include <string>

namespace vrUtils::Files {

// The table of network shares and the local folders behind them, one for the process. It holds 33
// rows at the most: beyond that the oldest goes. Both may be called from any thread.

void addPathMapping(vr::Path const& localRoot, vr::Path const& uncRoot);

// The local root of the oldest row for this network root; empty if there is none.
// @param uncRoot in normal form and lower case
std::wstring findPathMapping(std::wstring const& uncRoot);

} // namespace vrUtils::Files

#endif
