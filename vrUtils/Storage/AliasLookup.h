#ifndef VRUTILS_STORAGE_ALIASLOOKUP_H
#define VRUTILS_STORAGE_ALIASLOOKUP_H

/// @file
/// Files on machines that are met under another name.

#include "vrUtils/Path.h"

namespace vrUtils::Storage {

/// `vrUtils::Files::FileExistsAllowingAliasSubstitution` with three differences: forward slashes
/// are no separators; a path of more than 260 bytes in the system's code page is looked up, and
/// rewritten, cut at 260; where no alias is found the file is not asked for a second time.
/// @param path not null; may be rewritten
/// @return whether the file exists, at the path as it then stands
VRUTILS_API bool FindFileAsAliasIfNecessary(vr::Path* path);

} // namespace vrUtils::Storage

#endif
