#ifndef VRUTILS_FILES_FILEQUERIES_H
#define VRUTILS_FILES_FILEQUERIES_H

/// @file
/// What a program asks about a file, whole-file reads and writes, and file names.

#include "vrUtils/Path.h"

#include <cstdint>
#include <string>
#include <vector>

namespace vrUtils::Files {

/// Whether there is a file or folder of this name. Any failure reads as "no", missing rights and
/// unreachable hosts included.
VRUTILS_API bool FileExists(vr::Path const& path);

/// Size in bytes. For a folder, what the platform gives.
/// @throws vrException `GetFileAttributesEx failed on "PATH" - error NUMBER`
VRUTILS_API std::uint64_t FileLength(vr::Path const& path);

/// Last write time, in ticks of 100 nanoseconds since 1 January 1601 UTC.
/// @throws vrException as `FileLength`
VRUTILS_API std::uint64_t FileModificationDateTime(vr::Path const& path);

/// Whether the file's content is on slow storage only and must be brought back before it is read.
/// @throws vrException as `FileLength`
VRUTILS_API bool FileIsOffline(vr::Path const& path);

/// Whole hours since the last write. A write time in the future gives a very large number: the low
/// 32 bits of the negative count.
/// @throws vrException "Unable to determine age of file " and the path
VRUTILS_API std::uint32_t GetAgeOfFileInHours(vr::Path const& path);

/// Removes a file.
/// @return whether the file is gone, which it is too if it was never there; false for a folder, for
///         a file that is open without sharing its deletion, for a read-only file
VRUTILS_API bool DeleteFileIfExists(vr::Path const& path);

/// Replaces the file by these bytes, in one write; no bytes make an empty file without a write. A
/// vector of 4 GiB or more is cut at its length modulo 4 GiB. How many bytes the platform reports
/// as written is not looked at.
/// @throws vrException `Unable to open file PATH`, the old file then being as it was;
///         `WriteFile failed on "PATH" - error NUMBER`, the file then being incomplete
VRUTILS_API void SaveSmallFile(std::vector<char> const& bytes, vr::Path const& path);

/// Reads a whole file, in one read.
/// @param maximum largest length that is taken, in bytes
/// @param bytes receives the content, not null. Untouched if the file cannot be opened or is too
///        long; after a failed read it has the file's length and no defined content
/// @throws vrException `Unable to open file PATH`;
///         `GetFileAttributesEx failed on "PATH" - error NUMBER`;
///         `LoadSmallFile failed on "PATH" because it's LENGTH length exceeds max permitted of
///         MAXIMUM`;
///         `ReadFile failed on "PATH" - error NUMBER`;
///         `ReadFile failed on "PATH", read COUNT bytes, expected LENGTH - error NUMBER`
VRUTILS_API void
LoadSmallFile(vr::Path const& path, std::uint32_t maximum, std::vector<char>* bytes);

/// Makes a name that the file system takes: each of `\ / : * ? < > |`, each double quote, each
/// character below 32 and a tilde in front turns into "-".
/// @param result receives the name; may be the source itself; untouched on failure
/// @param asciiOnly whether each character of 127 and above turns into "~" as well, a character
///        outside the basic plane into two
/// @throws vrException "GenerateLegalFilename failed as the source file name was empty"
VRUTILS_API void
GenerateLegalFilename(std::wstring const& source, std::wstring& result, bool asciiOnly);

/// Makes a bare file name that no call has given before: a new identifier and ".tmp". Nothing
/// fails; a platform that gives no identifier leaves ".tmp" alone.
VRUTILS_API void GenerateTempFilename(std::wstring& result);

/// Makes the folder with all missing levels above it. Does nothing if the path exists, even if it
/// is a file.
/// @throws vrException `SHCreateDirectoryEx failed on "PATH" - error NUMBER`, also if another
///         process makes the folder at the same moment (183); 161 for a relative path
VRUTILS_API void ensureFolderExists(vr::Path const& path);

} // namespace vrUtils::Files

#endif
