#ifndef VRUTILS_KEYVALUE_H
#define VRUTILS_KEYVALUE_H

/// @file
/// Typed values by name.

#include "vrUtils/vrException.h"

namespace vrUtils::KeyValue {

/// There is no value of this name: code 0 and no message, the class tells all.
class VRUTILS_API KeyValueNotPresentException : public vrException {
  public:
    using vrException::vrException;
    explicit KeyValueNotPresentException(vrException const& failure) : vrException(failure) {}
};

/// The value has another type: code 0 and no message, the class tells all.
class VRUTILS_API KeyValueWrongTypeException : public vrException {
  public:
    using vrException::vrException;
    explicit KeyValueWrongTypeException(vrException const& failure) : vrException(failure) {}
};

} // namespace vrUtils::KeyValue

#endif
