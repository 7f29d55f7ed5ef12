#ifndef TOOLS_VRTOOL_TRANSFERSOURCES_H
#define TOOLS_VRTOOL_TRANSFERSOURCES_H

#include "vrUtils/Path.h"

#include <string>
#include <vector>

// One file to carry, and its place below the destination; or why it cannot be carried.
struct TransferSource {
    vr::Path file;
    std::wstring place;
    std::wstring failure;
};

// The files that an argument stands for: itself, or all files below a folder, which keep the
// folder's name and their places in it. What cannot be reached is one source with a failure.
std::vector<TransferSource> transferSources(std::wstring const& argument);

// Leaves out what a transfer makes itself beside the other sources: where they have come by a
// transfer, their messages, and the parts and locks of one that died; and the HTML reports that are
// to be made anew.
std::vector<TransferSource> withoutTraces(std::vector<TransferSource> sources, bool makesReports);

#endif
