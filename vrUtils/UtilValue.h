#ifndef VRUTILS_UTILVALUE_H
#define VRUTILS_UTILVALUE_H

/// @file
/// A value that knows whether it was ever set.

#include "vrUtils/vrException.h"

namespace vrUtils {

/// Throws the failure of `UtilValue::get`; stands in the library, so that every module sees one
/// class and one place.
/// @throws vrUnsetValueException always
[[noreturn]] VRUTILS_API void throwUnsetValue();

} // namespace vrUtils

/// A value with a set flag, unset at construction. Copies carry flag and value. An object is for
/// one thread at a time.
template <typename T>
class UtilValue {
  public:
    UtilValue() = default;

    /// Stores the value and marks it set.
    void set(T const& value) {
        m_value = value;
        m_isSet = true;
    }

    /// The value; reading leaves the flag as it is.
    /// @throws vrUnsetValueException 0x80004005 "Value not set" if nothing was ever set
    T const& get() const {
        if (!m_isSet)
            vrUtils::throwUnsetValue();
        return m_value;
    }

    /// Whether a value was ever set.
    bool isSet() const noexcept { return m_isSet; }

  private:
    bool m_isSet = false;
    T m_value{};
};

#endif
