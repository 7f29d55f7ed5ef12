#ifndef VRUTILS_COUNTER_H
#define VRUTILS_COUNTER_H

/// @file
/// A count that tells when it has come back to zero.

#include "vrUtils/vrUtilsApi.h"

#include <atomic>
#include <cstdint>

namespace vrUtils {

/// Which count. The library gives no names: there is one count, 0, which the programs that use it
/// name. Any other value is a caller's fault and does nothing.
enum CounterIDs : std::int32_t {};

/// Counts things that come and go in a process. The objects hold nothing: all of them work on the
/// same count, which starts at zero. Any thread may use any object.
///
/// @code
/// constexpr auto OpenTransfers = static_cast<vrUtils::CounterIDs>(0);
/// vrUtils::counter().Increment(OpenTransfers);
/// if (vrUtils::counter().Decrement(OpenTransfers)) // the last one has gone
/// @endcode
class VRUTILS_API counter {
  public:
    /// Adds one.
    void Increment(CounterIDs id) const noexcept;

    /// Takes one away. A count below zero goes on.
    /// @return whether the count is zero by this very call: of threads that race down to zero,
    ///         exactly one sees true
    bool Decrement(CounterIDs id) const noexcept;

  private:
    static std::atomic<std::int32_t>* getInstance(CounterIDs id) noexcept;
};

} // namespace vrUtils

#endif
