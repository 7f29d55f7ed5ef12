#ifndef VRUTILS_STORAGE_FOLDERPICKERS_H
#define VRUTILS_STORAGE_FOLDERPICKERS_H

/// @file
/// The shell's dialogs for folders and computers on the network.
///
/// Both block until the dialog is closed. The calling thread has entered COM, and runs the message
/// loop of the owner window.

#include "vrUtils/vrUtilsApi.h"

#include <string>

struct HWND__;

/// A window handle, as the platform's headers declare it.
using HWND = HWND__*;

namespace vrUtils::Storage {

/// Lets the user choose a folder.
/// @param host where the dialog begins: `srv`, `\\srv` or `\\srv\`; empty for the whole network
/// @param title the line above the tree
/// @param result receives the folder, closed by a backslash: a backslash alone if the choice has no
///        path. Not null; untouched if the user cancels
/// @param owner window that the dialog belongs to; may be null
/// @return false if the user cancelled
/// @throws vrBadHostException the thread's last error, and the host with two backslashes in front,
///         if there is no such host; no dialog is shown then
VRUTILS_API bool BrowseForFolder(
    std::wstring const& host, std::wstring const& title, std::wstring* result, HWND owner);

/// Lets the user choose a computer, as `BrowseForFolder` does a folder.
/// @param result receives the computer's display name, without backslashes
VRUTILS_API bool BrowseForComputer(std::wstring const& title, std::wstring* result, HWND owner);

} // namespace vrUtils::Storage

#endif
