#ifndef VRUTILS_OSTRELSERVER_H
#define VRUTILS_OSTRELSERVER_H

/// @file
/// Starting, stopping and asking after the system's services on this machine.
///
/// Each call asks the service manager for all rights, so it works for administrators only. Nothing
/// waits for a service to reach a state: a start or a stop is handed over, and the `Test` functions
/// tell later what came of it. Nothing is thrown or logged. All of it may be called from any thread.

#include "vrUtils/vrUtilsApi.h"

#include <cstdint>
#include <string>

namespace vrUtils::OstrelServer {

/// What a service is doing, as far as this process may ask.
enum Status : std::int32_t {
    Unknown = 0, ///< the service cannot be opened, or is in a state that says neither
    Stopped = 1, ///< the service is there and does not answer as one that runs
    Running = 2, ///< the service runs, or is starting and cannot be asked yet
};

/// The state of the service "OstrelSync".
VRUTILS_API Status TestSyncStatus();

/// The state of the service "Ostrel Engine Server".
VRUTILS_API Status TestEngineStatus();

/// Starts the service "OstrelSync".
/// @return whether the service manager took it
VRUTILS_API bool StartSyncService();

/// Starts the service "Ostrel Engine Server".
/// @return whether the service manager took it
VRUTILS_API bool StartEngineService();

/// Starts the index service.
/// @param name of the service, not null
/// @return whether the service manager took it
VRUTILS_API bool StartIndexService(wchar_t const* name);

/// Asks the service "OstrelSync" to stop.
/// @return whether it could be opened, whatever it made of the request
VRUTILS_API bool StopSyncService();

/// Asks the service "Ostrel Engine Server" to stop.
/// @return as `StopSyncService`
VRUTILS_API bool StopEngineService();

/// Asks the index service to stop.
/// @param name of the service, not null
/// @return as `StopSyncService`
VRUTILS_API bool StopIndexService(wchar_t const* name);

/// The account that the service "OstrelSync" runs under; empty if that cannot be found out.
VRUTILS_API std::wstring GetSyncServiceUserName();

} // namespace vrUtils::OstrelServer

#endif
