#ifndef VRUTILS_INSTANCING_H
#define VRUTILS_INSTANCING_H

/// @file
/// Several systems on one machine, told apart by a number.
///
/// Instance 0 is the plain system, which bears no number. The well-known ports of the system are the
/// block from 60772 to 60787, the base ports; instance N has the same block moved up by 16 times N.
///
/// Failures are `vrException` with source name "Instancing" and code 0x80E06007. They are faults of
/// a program: if a debugger is attached, it is stopped first.
///
/// The current instance is one number for the process, 0 until it is set, and meant to be set once
/// at the start. All functions may be called from any thread.

#include "vrUtils/Path.h"
#include "vrUtils/vrException.h"

#include <cstdint>
#include <string>

namespace vrUtils::Instancing {

/// The number that was set last.
VRUTILS_API std::uint32_t currentInstance();

/// Any number is taken. It affects later calls only.
VRUTILS_API void setInstance(std::uint32_t instance);

/// The port of a service in an instance. The instance is not checked, and the sum wraps.
/// @throws vrException "Expected port >= 60772, given NUMBER" or "Expected port <= 60787, given
///         NUMBER" for what is no base port
VRUTILS_API std::uint32_t instancePort(std::uint32_t basePort, std::uint32_t instance);

/// The same for the current instance.
VRUTILS_API std::uint32_t instancePort(std::uint32_t basePort);

/// The instance that a port belongs to. Every port from 60772 up belongs to one.
/// @throws vrException "Expected port >= 60772"
VRUTILS_API std::uint32_t instanceFromPort(std::uint32_t port);

/// The instance that the port of an endpoint belongs to; 0 for an endpoint without a colon. A port
/// that cannot be read counts as 0, one that is too large as 0xFFFFFFFF.
/// @throws vrException "Expected port >= 60772"
VRUTILS_API std::uint32_t instanceFromHost(std::wstring const& endpoint);

/// The endpoint of a service on a host in the current instance: the bare host in instance 0, and
/// otherwise host and port. A port that the text holds already is dropped.
/// @throws vrException as `instancePort`
VRUTILS_API std::wstring instanceHost(std::wstring const& host, std::uint32_t basePort);

/// The endpoint of another service on the same host and in the same instance, always with its port.
/// @throws vrException as `instanceFromHost` and `instancePort`
VRUTILS_API std::wstring
changePortPreservingInstance(std::wstring const& endpoint, std::uint32_t basePort);

/// Its argument: settings do not depend on the instance.
VRUTILS_API std::wstring instanceRegPath(std::wstring const& path);

/// Where the current instance keeps a database file: the path itself in instance 0, otherwise in
/// its folder's subfolder "Instance" and the number, which is not made here.
VRUTILS_API std::wstring instanceDbFilePath(vr::Path const& path);

/// "System " and the number of the current instance; empty in instance 0.
VRUTILS_API std::wstring makeInstancedSystemName();

/// What a port is: `port 60772 (is vrObserver)`, `port 60790 (is instance 1 of vrTransfer)`.
/// @throws vrException "Expected port >= 60772"; "No description for port NUMBER (base port
///         NUMBER)" for the two places of the block that no service has, 60776 and 60787
VRUTILS_API std::wstring descriptionOfPort(std::uint32_t port);

} // namespace vrUtils::Instancing

#endif
