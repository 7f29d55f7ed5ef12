#ifndef VRUTILS_FILES_AVIDPATHNUMBER_H
#define VRUTILS_FILES_AVIDPATHNUMBER_H

/// @file
/// Numbered folders that are not to grow too full.

#include "vrUtils/vrUtilsApi.h"

#include <string>

/// Picks the numbered folder below a base path that takes the next file, and makes it if it is
/// missing. Counted up from the number that was last given for this base (from 1 at first), it is
/// the first folder whose entries do not exceed the limit, or the first one that is missing or
/// cannot be read.
///
/// The search reports "." and ".." too, and they count: a folder is given at up to `limit` - 2
/// entries of its own, and is passed over at `limit` - 1. With a limit of 1 or less, every folder
/// that exists is full. The numbers never go down while the process runs: a folder that was emptied
/// is not given again. A new process starts at 1, and fills gaps.
///
/// Nothing is reported: a folder that cannot be read or made shows when the caller uses it. The
/// limit is a soft one, as two threads may be given the same number at the same time.
/// @param base the text in front of the number, as it stands: with its closing backslash. Case
///        counts: the same base in another case has numbers of its own
/// @param limit of entries
/// @return the number, in decimal
VRUTILS_API std::wstring get_avid_path_number(std::wstring base, int limit);

#endif
