#ifndef VRUTILS_STORAGE_DISKSPACE_H
#define VRUTILS_STORAGE_DISKSPACE_H

/// @file
/// Whether a transfer has room at its destination.

#include "vrUtils/ServerRecords.h"
#include "vrUtils/vrUtilsApi.h"

#include <cstdint>

namespace vrUtils::Storage {

/// The free space could not be read. The number is positive, unlike the failures: a test of the
/// sign takes it for a success.
inline constexpr long DiskSpaceUnknown = 0x00E0801F;

/// There is less free space than is required.
inline constexpr auto DiskSpaceNotEnough = static_cast<long>(0x80C06006);

/// Compares the free space of a server's folder with what a transfer needs, in bytes; exactly
/// enough is enough. Free is what the disk has, not what a quota leaves to the user.
///
/// If the share refuses (5 or 1326) and the server has a user name, it is connected as that user
/// with `ConnectAsUserWithRetCode` and asked once more; the connection stays.
///
/// Logs at level 6 "Available disk-space [FREE]MB, required [REQUIRED]MB", or at level 3 "Not
/// enough available disk-space, remaining [FREE]MB, required [REQUIRED]MB", in whole megabytes, cut
/// to 32 bits; and at level 3 where the space is unknown:
/// - "Could not determine available disk-space on destination - invalid login credentials,
///   errcode = NUMBER" if it could not be connected; the number is the thread's last error, which
///   the connection need not have set
/// - "Could not determine available disk-space on destination(login failed?), errcode = NUMBER" if
///   it was connected and still refused
/// - "Could not determine available disk-space on destination, errcode = NUMBER" otherwise
///
/// Blocks for as long as the share takes. From any thread.
/// @param server its `host`, `folder`, `userName` and `password` are read; not null
/// @param required bytes
/// @return 0, `DiskSpaceUnknown` or `DiskSpaceNotEnough`
VRUTILS_API long CheckForDiskSpace(SrvrParam const* server, std::uint64_t required);

} // namespace vrUtils::Storage

#endif
