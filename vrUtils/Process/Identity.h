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
    std::uint64_t PageFaultCount;
    std::uint64_t PeakWorkingSetSize;
    std::uint64_t WorkingSetSize;
    std::uint64_t QuotaPeakPagedPoolUsage;
    std::uint64_t QuotaPagedPoolUsage;
    std::uint64_t QuotaPeakNonPagedPoolUsage;
    std::uint64_t QuotaNonPagedPoolUsage;
    std::uint64_t PagefileUsage;
    std::uint64_t PeakPagefileUsage;
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
