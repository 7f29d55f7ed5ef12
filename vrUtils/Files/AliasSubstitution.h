#ifndef VRUTILS_FILES_ALIASSUBSTITUTION_H
#define VRUTILS_FILES_ALIASSUBSTITUTION_H

/// @file
/// Files on machines that are met under another name.
///
/// An alias is another name of the machine in a network path. Where a file is not found at
/// `\\host\...`, the host is asked of the name service as it stands, then without its last one, two
/// and three characters. The first form that resolves replaces the host, and is remembered by this
/// process for every later path that begins with the same text: `\\media1x` stands for
/// `\\media1xyz` too. What does not resolve is not remembered.

#include "vrUtils/Path.h"

namespace vrUtils::Files {

/// `FileExists` that tries the aliases of the path's host where there is no such file.
///
/// A host that resolves as it stands is an alias of itself, so a missing file on a machine that is
/// there gives back its path in lower case. Local paths have no alias. Forward slashes count as
/// separators. A path of more than 259 bytes in the system's code page is left as it is.
///
/// A file that is there costs one query. A missing one blocks for up to four look-ups, for as long
/// as the name service takes. The table of aliases has a lock of its own, which is not held during
/// a look-up. Winsock is to be started by the host program; its last error is that of the last
/// look-up.
/// @param path not null; rewritten to the alias, all in lower case, with type `eDetect`, also if
///        the file is not there either
/// @return whether the file exists at the path as it then stands
/// @see vrUtils::Storage::FindFileAsAliasIfNecessary
VRUTILS_API bool FileExistsAllowingAliasSubstitution(vr::Path* path);

} // namespace vrUtils::Files

#endif
