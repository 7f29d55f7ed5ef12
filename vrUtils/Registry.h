#ifndef VRUTILS_REGISTRY_H
#define VRUTILS_REGISTRY_H

/// @file
/// Settings in the registry: typed values, the settings the library knows by name, and a whole tree
/// saved to a file and written back.
///
/// A key is never simply absent here. Every read and every write opens its key or else makes it, so
/// that asking for a setting on a fresh machine leaves an empty key behind. The first key made below
/// "Software\Vorrane\Ostrel" makes that root in the machine's hive too, with an access list that
/// lets programs under plain user accounts write their settings there later.
///
/// Values are read and written one at a time; no key stays open between calls. Nothing is shared
/// between calls, so they may come from any thread.

#include "vrUtils/Registry/Exceptions.h"
#include "vrUtils/Registry/RegDumper.h"
#include "vrUtils/Registry/Settings.h"
#include "vrUtils/Registry/Values.h"

#endif
