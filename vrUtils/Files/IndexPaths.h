#ifndef VRUTILS_FILES_INDEXPATHS_H
#define VRUTILS_FILES_INDEXPATHS_H

/// @file
/// Paths in an archive, and the paths of their entries in its index.
///
/// The index is the folder "PFR-INDEX" directly below the archive's share (below the drive, for a
/// local path). It repeats the archive's folders; an entry has the name of its file and always the
/// extension ".mov":
///
/// | archive path                | index path                            |
/// |-----------------------------|---------------------------------------|
/// | `\\arc\vault\2011\clip.mxf` | `\\arc\vault\PFR-INDEX\2011\clip.mov` |
/// | `\\arc\vault\clip.mxf`      | `\\arc\vault\PFR-INDEX\clip.mov`      |
/// | `D:\vault\2011\clip.mxf`    | `D:\PFR-INDEX\vault\2011\clip.mov`    |
///
/// Both conversions take the last word of a path for a file's name, whatever the path's own type;
/// their results are `vr::Path::eDetect`. No file is touched. From any thread.

#include "vrUtils/Path.h"

#include <string>

namespace vrUtils::Files {

/// From the archive to its index.
class VRUTILS_API ArchiveToIndexPathConverter {
  public:
    /// The path of a file's entry. Of a name with several dots only the last part falls:
    /// `clip.take.mxf` has the entry `clip.take.mov`. Nothing is validated: a path that is in the
    /// index already goes one index deeper.
    vr::Path GetIndexPath(vr::Path const& path) const;
};

/// From the index back to the archive.
class VRUTILS_API IndexToArchivePathConverter {
  public:
    /// The path of an entry's file. Every folder named "PFR-INDEX" is left out, at whatever depth.
    /// @param extension of the archive's file, which the index does not keep; with its own dot
    /// @throws vrInvalidIndexPathException holding a copy of the path, if it is no network path
    ///         (so what `GetIndexPath` makes of a drive's path is refused), if its extension is not
    ///         exactly ".mov", or if no folder is exactly "PFR-INDEX"; case counts
    vr::Path GetArchivePath(vr::Path const& path, std::wstring const& extension) const;
};

} // namespace vrUtils::Files

#endif
