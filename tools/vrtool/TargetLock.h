#ifndef TOOLS_VRTOOL_TARGETLOCK_H
#define TOOLS_VRTOOL_TARGETLOCK_H

#include "vrUtils/Files.h"

// Locks a target against other transfers.
// @throws TransferFailure telling whether another one has it, or why there can be no lock
vrUtils::Files::LockFile lockTarget(vr::Path const& target);

// Removes the lock file that a program has left which was killed; one that is held stays.
void removeDeadLock(vr::Path const& target);

// Where the library keeps it, for as long as it is held.
vr::Path lockFileOf(vr::Path const& target);

#endif
