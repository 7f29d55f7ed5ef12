#ifndef VRUTILS_CRASHING_H
#define VRUTILS_CRASHING_H

/// @file
/// Planned crashes, for drills: a process dies at a named point, as a real crash would end it.
///
/// Points are told apart by name, without regard to case; the empty name is one too. They hold for
/// the process and are forgotten with it. All of it may be called from any thread.

#include "vrUtils/vrUtilsApi.h"

#include <string>

namespace vrUtils::Crashing {

/// Primes a point; again is no harm. Logs `Priming crash for "NAME"` at level 5.
VRUTILS_API void primeCrash(std::wstring const& name);

/// Takes `primeCrash` back; a point that is not primed is no failure. Logs `Defusing crash for
/// "NAME"` at level 5 in any case.
VRUTILS_API void defuseCrash(std::wstring const& name);

/// Whether the point is primed.
VRUTILS_API bool shouldCrash(std::wstring const& name);

/// At a primed point: logs `Planned crash at "NAME"` at level 2, waits 100 milliseconds for the log
/// to reach its file, and ends the process with exit code 1, without destructors or flushed
/// streams. At any other, nothing.
VRUTILS_API void crashIfRequired(std::wstring const& name);

} // namespace vrUtils::Crashing

#endif
