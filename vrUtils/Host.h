#ifndef VRUTILS_HOST_H
#define VRUTILS_HOST_H

/// @file
/// The name of this computer on the network.

#include "vrUtils/vrUtilsApi.h"

namespace vrUtils::Host {

/// A failure of this area. Never thrown by itself, and no `vrException`.
class VRUTILS_API vrHostException {};

/// This computer's name could not be found out.
class VRUTILS_API vrFailedToGetHostNameException : public vrHostException {};

} // namespace vrUtils::Host

#endif
