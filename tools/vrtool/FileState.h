#ifndef TOOLS_VRTOOL_FILESTATE_H
#define TOOLS_VRTOOL_FILESTATE_H

#include "vrUtils/Path.h"

#include <cstdint>
#include <optional>

// What the file system tells of a name, at one moment.
struct FileState {
    std::uint64_t size = 0;
    // In ticks of 100 nanoseconds.
    std::uint64_t lastWrite = 0;
    bool isFolder = false;
    bool isReadOnly = false;
};

// None if there is nothing of this name.
// @throws TransferFailure if that cannot be told
std::optional<FileState> stateOf(vr::Path const& path);

// Whether a target may be taken for a copy of a source: it has its size and its time, the latter as
// exactly as the target's file system keeps times.
bool isCopyOf(FileState const& source, FileState const& target);

#endif
