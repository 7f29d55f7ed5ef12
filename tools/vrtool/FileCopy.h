#ifndef TOOLS_VRTOOL_FILECOPY_H
#define TOOLS_VRTOOL_FILECOPY_H

#include "tools/vrtool/AudioFormat.h"
#include "vrUtils/Path.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

// Large enough for networks, small enough that a piece is still in the processor's cache when it is
// written.
inline constexpr std::size_t copyPieceSize = 262'144;

// What a copy has learned of its file on the way.
struct CopiedFile {
    std::uint64_t size = 0;
    std::optional<AudioFormat> format;
    // Why a file of a kind that has a format shows none.
    std::wstring formatFailure;
};

// Told how many bytes are done after each piece; throws to end the copy.
using CopyListener = std::function<void(std::uint64_t done)>;

// Copies a file's content and the time of its last write over whatever has the target's name. The
// bytes are counted in the process's statistics as they pass.
// @param buffer for the pieces; its size is theirs
// @throws TransferFailure if a file cannot be opened, read or written to its end
CopiedFile copyFile(
    vr::Path const& source, vr::Path const& target, std::vector<unsigned char>& buffer,
    CopyListener const& listener);

#endif
