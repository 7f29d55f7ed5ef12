#ifndef VRUTILS_HOST_H
#define VRUTILS_HOST_H

/// @file
/// The name of this computer on the network.

#include "vrUtils/vrUtilsApi.h"

#include <string>

namespace vrUtils::Host {

/// A failure of this area. Never thrown by itself, and no `vrException`.
class VRUTILS_API vrHostException {};

/// This computer's name could not be found out.
class VRUTILS_API vrFailedToGetHostNameException : public vrHostException {};

/// This computer's name. From any thread.
/// @throws vrFailedToGetHostNameException the platform fails, or the name has more than 14
///         characters
VRUTILS_API std::wstring GetLocalHostName();

} // namespace vrUtils::Host

#endif
