#ifndef VRUTILS_FILES_H
#define VRUTILS_FILES_H

/// @file
/// Files: opening them, asking about them, reading and writing small ones, naming them.
///
/// Opening is a matter of classes: each class of the `FileHandle` family stands for one way to open
/// a file. The free functions take `vr::Path` values and reach the platform with their normal form.
///
/// Failures of this area are `vrException` with source name "Files" and code 0x80004005, unless it
/// is said otherwise; numbers in their messages are Windows errors in decimal. The free functions
/// keep no state and may be called from any thread.

#include "vrUtils/Files/AliasSubstitution.h"
#include "vrUtils/Files/AvidPathNumber.h"
#include "vrUtils/Files/Exceptions.h"
#include "vrUtils/Files/FileHandle.h"
#include "vrUtils/Files/FileQueries.h"
#include "vrUtils/Files/IndexPaths.h"
#include "vrUtils/Files/LockFile.h"
#include "vrUtils/Files/MachineIdentity.h"
#include "vrUtils/Files/UncToLocalPath.h"

#endif
