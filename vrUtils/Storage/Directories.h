#ifndef VRUTILS_STORAGE_DIRECTORIES_H
#define VRUTILS_STORAGE_DIRECTORIES_H

/// @file
/// Making and removing folders.
///
/// Nothing here keeps state; all of it may be called from any thread.

#include "vrUtils/Path.h"

#include <string>

namespace vrUtils::Storage {

/// Makes one folder, whose parent is there. One that exists is success, and so is a file of that
/// name.
/// @throws vrCreateFolderException the Windows error and the path's text
VRUTILS_API void MakeDirectory(vr::Path const& path);

/// Makes the folders of a path, level by level. The drive is not made, nor the share of a network
/// path, nor a last word without a closing separator, even of a path that is a folder's: of
/// `vr::Path::folder(L"D:\\a\\b")` only `D:\a` is made. Each level is tried, and logged as
/// `Creating Folder [LEVEL]` at level 7, whether it exists or not.
/// @throws vrCreateFolderException the Windows error and the text of the level that failed; the
///         levels above it stay
VRUTILS_API void MakeDirectoryIterative(vr::Path const& path);

/// Removes a folder's files, read-only ones too, and the folder.
///
/// Files and folders whose names begin with a dot are not touched, and a folder that holds one can
/// then not be removed. Links are not told from folders: with `recursive`, what a link in the tree
/// leads to is emptied too.
/// @param path a closing separator does no harm
/// @param recursive whether subfolders go too. If not, a folder that has any keeps them and stays,
///        without its files, and that is success
/// @return 0, or the Windows error of the first thing that could not be removed, where everything
///         stops: what went before is gone. A folder that cannot be searched gives 0, whatever the
///         reason, since one that is not there counts as removed; and so does an empty text
VRUTILS_API int DeleteDirectory(std::wstring const& path, bool recursive);

} // namespace vrUtils::Storage

#endif
