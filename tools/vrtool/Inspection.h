#ifndef TOOLS_VRTOOL_INSPECTION_H
#define TOOLS_VRTOOL_INSPECTION_H

#include "vrUtils/Path.h"

#include <cstdint>
#include <optional>
#include <string>

// What the library finds out about one file.
struct Inspection {
    std::wstring path;
    std::wstring rootOrDrive;
    std::size_t folderCount = 0;
    std::wstring name;
    std::wstring extension;
    std::wstring legalName;

    // What a failure left unknown is not set; the audio format is set for WAV and AIFF files only.
    std::optional<std::uint64_t> size;
    std::optional<std::uint32_t> ageHours;
    std::optional<bool> offline;
    std::optional<std::uint32_t> samplesPerSecond;
    std::optional<std::uint32_t> bitsPerSample;

    // Why not all could be found out; empty if it could.
    std::wstring failure;
};

// What the path alone tells.
Inspection inspectPath(vr::Path const& path);

// What the path and the file tell. Of a WAV or AIFF file, known by its extension, the first 64 KiB
// are read: the format stands there in all files but those that begin with very large chunks, and
// of these the failure speaks. A file that is offline is not opened, since that would bring it back
// from its slow storage.
Inspection inspectFile(vr::Path const& path);

#endif
