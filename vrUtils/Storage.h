#ifndef VRUTILS_STORAGE_H
#define VRUTILS_STORAGE_H

/// @file
/// Folders, disk space, temporary folders, guarded deletion, connections to shares, well-known
/// places.

#include "vrUtils/Storage/Exceptions.h"
#include "vrUtils/Storage/ShareConnection.h"

#endif
