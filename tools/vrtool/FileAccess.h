#ifndef TOOLS_VRTOOL_FILEACCESS_H
#define TOOLS_VRTOOL_FILEACCESS_H

// What a transfer does with open files; each failure tells the file and the platform's reason. For
// sources only, as the platform's declarations are.

#include "tools/vrtool/OwnedHandle.h"
#include "vrUtils/Path.h"

#include <cstddef>

// A file that is open, and its name for what may fail.
struct OwnedFile {
    OwnedHandle handle;
    vr::Path path;
};

// Shares reading alone: a file that is still being written is not ready to be carried.
// @throws TransferFailure
OwnedFile openToRead(vr::Path const& path);

// A new file, or an empty one in the place of another.
// @throws TransferFailure
OwnedFile openToWrite(vr::Path const& path);

// Reads up to so many bytes.
// @return how many; 0 at the end of the file
// @throws TransferFailure
std::size_t readPiece(OwnedFile const& file, void* bytes, std::size_t size);

// Writes all of a piece.
// @throws TransferFailure, on a full disk too
void writePiece(OwnedFile const& file, void const* bytes, std::size_t size);

// Gives a file the time of another one's last write.
// @throws TransferFailure
void copyTime(OwnedFile const& from, OwnedFile const& to);

#endif
