#ifndef VRUTILS_PROCESS_IDENTITY_H
#define VRUTILS_PROCESS_IDENTITY_H

/// @file
/// What a process knows of itself: its computer and user, where it is installed, its memory.
///
/// All of it is asked of the platform at each call and may be called from any thread.

#include "vrUtils/Path.h"
#include "vrUtils/vrUtilsApi.h"

#include <cstdint>
#include <string>

namespace vrUtils::Process {

/// Memory use, with the names of the platform's `PROCESS_MEMORY_COUNTERS`: sizes in bytes, and the
/// count of page faults.
struct AboutProcessMem {
    std::uint64_t PageFaultCount;             ///< page faults so far
    std::uint64_t PeakWorkingSetSize;         ///< the largest so far
    std::uint64_t WorkingSetSize;             ///< in physical memory
    std::uint64_t QuotaPeakPagedPoolUsage;    ///< the largest so far
    std::uint64_t QuotaPagedPoolUsage;        ///< in the paged pool
    std::uint64_t QuotaPeakNonPagedPoolUsage; ///< the largest so far
    std::uint64_t QuotaNonPagedPoolUsage;     ///< in the nonpaged pool
    std::uint64_t PagefileUsage;              ///< committed
    std::uint64_t PeakPagefileUsage;          ///< the largest so far
};

/// The computer's name; empty on failure, and if it has more than 15 characters.
VRUTILS_API std::wstring GetComputerNameW();

/// The name of the user that the process runs as; empty on failure.
VRUTILS_API std::wstring GetCurrentUserName();

/// @throws vrException "OpenProcess failed" or "GetProcessMemoryInfo failed"; code 0x80004005,
///         source name "Process"
VRUTILS_API AboutProcessMem GetCurrentProcessMemoryInfo();

/// The folder of the running program, with a backslash at the end. Of a path beyond 260 characters
/// the platform gives the beginning.
VRUTILS_API std::wstring GetOstrelBinaryPath();

/// The folder "Vorrane" under Program Files. It need not exist. If the platform does not tell where
/// Program Files is, the path is "Vorrane\" alone.
VRUTILS_API vr::Path GetVorranePath();

/// The folder "Ostrel Server" in `GetVorranePath`.
VRUTILS_API vr::Path GetOstrelServerPath();

} // namespace vrUtils::Process

#endif
