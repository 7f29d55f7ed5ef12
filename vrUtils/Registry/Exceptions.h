#ifndef VRUTILS_REGISTRY_EXCEPTIONS_H
#define VRUTILS_REGISTRY_EXCEPTIONS_H

/// @file
/// Failures of the registry.

#include "vrUtils/vrException.h"

namespace vrUtils::Registry {

/// A key neither opens nor can be made: code 0x81A06003, source name "vrRegistry", message "Unable
/// to access registry".
class VRUTILS_API vrRegistryAccessException : public vrException {
  public:
    /// The constructors of `vrException`.
    using vrException::vrException;
    /// All fields of another failure, under this class.
    explicit vrRegistryAccessException(vrException const& failure) : vrException(failure) {}
};

/// A value is not there, or is not what it should be: code 0x8000000C, source name "vrRegistry",
/// message "Registry value missing".
class VRUTILS_API vrRegistryValueMissingException : public vrException {
  public:
    /// The constructors of `vrException`.
    using vrException::vrException;
    /// All fields of another failure, under this class.
    explicit vrRegistryValueMissingException(vrException const& failure) : vrException(failure) {}
};

} // namespace vrUtils::Registry

#endif
