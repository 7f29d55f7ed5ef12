#ifndef VRUTILS_SERVERS_H
#define VRUTILS_SERVERS_H

/// @file
/// Kinds of servers and their archives. From any thread.

#include "vrUtils/ServerRecords.h"
#include "vrUtils/vrUtilsApi.h"

namespace vrUtils::Servers {

/// What a kind of server has for an archive: `eArchiveSecond` for 13; `eArchiveFirst` for 1, 2, 7
/// to 9, 12 and 17 to 19; `eArchiveNone` for any other number.
VRUTILS_API EArchiveSource getArchiveSupport(EServerType type);

/// Whether a server of this kind combines with its archive: 22 only, which has no archive support.
VRUTILS_API bool isCombiningArchive(EServerType type);

} // namespace vrUtils::Servers

#endif
