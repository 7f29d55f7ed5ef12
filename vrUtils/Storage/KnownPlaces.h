#ifndef VRUTILS_STORAGE_KNOWNPLACES_H
#define VRUTILS_STORAGE_KNOWNPLACES_H

/// @file
/// Places that follow from the machine.
///
/// The numbers in the `vrStorageException`s of this header are the thread's last error at the
/// throw, which the platform's answer need not have set. All of it may be called from any thread.

#include "vrUtils/Path.h"

namespace vrUtils::Storage {

/// The folder of installed programs, without a closing backslash, such as `C:\Program Files`.
/// @throws vrStorageException "Unable to find Program Files folder"
VRUTILS_API vr::Path GetProgramFileFolder();

/// The system's data folder for all users, "Vorrane\" in it, and a folder below that; all of them
/// are made on disk.
/// @param subfolder with its closing backslash, without which its last word counts as a file's name
///        and is not made; may be null: none
/// @throws vrStorageException "Unable to find Common Application Data Folder", also if a folder
///         cannot be made
VRUTILS_API vr::Path GetVorraneCommonAppDataFolder(wchar_t const* subfolder);

/// As `GetVorraneCommonAppDataFolder`, with "Quantum\", and **nothing is made on disk**.
VRUTILS_API vr::Path GetPFRCommonAppDataFolder(wchar_t const* subfolder);

/// The server's media share on this computer, by the name that other computers reach it under too:
/// `\\COMPUTER\OstrelMedia\`.
/// @throws vrException "Failed to determine computer name when getting OstrelMedia path"; source
///         name "Storage", line 1102, code 0x80004005
VRUTILS_API vr::Path GetOstrelMediaPath();

/// The reference movies on that share: `\\COMPUTER\OstrelMedia\ReferenceMovies\`.
/// @throws vrException as `GetOstrelMediaPath`
VRUTILS_API vr::Path GetReferenceMoviesPath();

/// The media share's folder on this computer's disk: `C:\OstrelMedia\`, wherever it may be shared
/// from.
VRUTILS_API vr::Path GetLocalOstrelMediaPath();

/// The reference movies on this computer's disk: `C:\OstrelMedia\ReferenceMovies\`.
VRUTILS_API vr::Path GetLocalReferenceMoviesPath();

} // namespace vrUtils::Storage

#endif
