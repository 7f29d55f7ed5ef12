#ifndef VRUTILS_STORAGE_H
#define VRUTILS_STORAGE_H

/// @file
/// Folders, disk space, temporary folders, guarded deletion, connections to shares, companion files,
/// other names of machines, well-known places.
///
/// A failure here is a `vrStorageException` of one kind or another, which is no `vrException`: a
/// handler names it. What can be told by a number or by yes and no throws nothing. Each header says
/// what may be called from which thread.

#include "vrUtils/Storage/AliasLookup.h"
#include "vrUtils/Storage/Directories.h"
#include "vrUtils/Storage/DirectorySetter.h"
#include "vrUtils/Storage/DiskSpace.h"
#include "vrUtils/Storage/Exceptions.h"
#include "vrUtils/Storage/FolderPickers.h"
#include "vrUtils/Storage/KnownPlaces.h"
#include "vrUtils/Storage/RecoverableFileDeleter.h"
#include "vrUtils/Storage/ShareConnection.h"
#include "vrUtils/Storage/Sidecar.h"
#include "vrUtils/Storage/TempFileDeleter.h"
#include "vrUtils/Storage/TempFolder.h"

#endif
