#ifndef VRUTILS_FILES_MACHINEIDENTITY_H
#define VRUTILS_FILES_MACHINEIDENTITY_H

/// @file
/// Which machine a path is on.
///
/// Two machines are one if their names resolve to a common IPv4 address; names are never compared.
/// Nothing is remembered: each call looks names up, and blocks for as long as the name service
/// takes. A name that cannot be resolved has no addresses and is on no machine, not even its own.
/// `docs/paths-and-machines.md` shows what each operation makes of each form of path.
///
/// Nothing fails or logs, and all of it may be called from any thread. The host program calls
/// `WSAStartup` first.

#include "vrUtils/Path.h"

#include <list>

namespace vrUtils::Files {

/// The path once for each address of its host, with the address in place of the host, in the order
/// of the name service; empty if the host cannot be resolved. The port is kept. "localhost" and
/// 127.0.0.1 stand for this computer's name, and a path without a host for this computer: its drive
/// is gone, its folders are kept.
VRUTILS_API std::list<vr::Path> resolveHostInPathToIPAddresses(vr::Path const& path);

/// The path with this computer's name in place of the host "localhost" or 127.0.0.1, as the system's
/// programs know it: **the name stands without backslashes**, so that `\\localhost\media\x.mov`
/// becomes the relative `HOST1media\x.mov`. Any other host comes back in lower case, with its port
/// behind the backslash: `\\Server:8080\Media\x.mov` becomes `\\server\:8080Media\x.mov`. A drive is
/// dropped.
VRUTILS_API vr::Path replaceLocalhostWithMachineName(vr::Path const& path);

/// Whether the hosts of two paths have an address in common. Ports and folders do not count. A path
/// without a host, relative ones included, is on this computer here.
VRUTILS_API bool arePathsToSameMachine(vr::Path const& first, vr::Path const& second);

/// Whether a path is on this computer: one with a drive always, mapped drives included; one with
/// neither drive nor host never; one on "localhost" or 127.0.0.1 always; any other if its host has
/// an address in common with this computer.
VRUTILS_API bool isPathToThisMachine(vr::Path const& path);

} // namespace vrUtils::Files

#endif
