#ifndef VRUTILS_PERFORMANCE_H
#define VRUTILS_PERFORMANCE_H

/// @file
/// How long something took, in the log.

#include "vrUtils/vrUtilsApi.h"

#include <atomic>
#include <cstdint>
#include <string>

namespace vrUtils::Performance {

/// Logs how long it lived: `Elapsed time : N` at level 7, in whole milliseconds, cut to 32 bits.
///
/// **A copy reports too**, from the moment at which the original began. An object belongs to one
/// scope and one thread.
///
/// @code
/// {
///     ElapsedTimeLogger const timing(L"Transcoder");
///     transcode(clip);
/// } // logs under "Transcoder"
/// @endcode
class VRUTILS_API ElapsedTimeLogger {
  public:
    /// Starts the time.
    /// @param module the module name of the log line
    explicit ElapsedTimeLogger(std::wstring const& module);

    /// Counts from the original's beginning, and reports too.
    ElapsedTimeLogger(ElapsedTimeLogger const&);
    /// Takes over the other's beginning and module name.
    ElapsedTimeLogger& operator=(ElapsedTimeLogger const&);

    /// Logs. Never throws.
    virtual ~ElapsedTimeLogger();

  private:
    static std::atomic<std::int64_t> m_ticksPerSecond;

    std::int64_t m_start;
    std::wstring m_module;
};

} // namespace vrUtils::Performance

#endif
