#ifndef VRUTILS_FILES_UNCTOLOCALPATH_H
#define VRUTILS_FILES_UNCTOLOCALPATH_H

/// @file
/// Network paths reached without the network.

#include "vrUtils/Path.h"

namespace vrUtils::Files {

/// A path on this machine that reaches the same file as a network path, where one is known; otherwise
/// a copy of the path. Nothing fails: a caller always gets a path that can be used.
///
/// Two kinds of knowledge are asked, in this order: a table of up to 33 shares with their local
/// folders, and, for a share of this very machine, the platform, whose answer becomes a row of the
/// table. The table is filled at the first call, whatever its argument: the connections that the
/// key "Software\Vorrane\Ostrel\DriveMapping" of the machine's hive lists (the value's name is the
/// drive with its colon, its text the share) are made and never taken down, then the drive letters
/// are read. Drives connected later are not seen, and a drive connected below a share's top takes no
/// part.
///
/// Machine and share match without regard to case; folders and name keep theirs. A folder found by
/// the platform's answer comes back as `eFile`, by the table as `eFolder`.
///
/// Each resolution is logged once: at level 6 through the table, at level 5 by the platform's
/// answer. A share that the platform does not know is asked for at each call, and logged each time
/// at level 7. The first call blocks for the connections, and calls for other machines for the
/// look-ups of `isPathToThisMachine`. From any thread.
VRUTILS_API vr::Path uncToLocalPath(vr::Path const& path);

} // namespace vrUtils::Files

#endif
