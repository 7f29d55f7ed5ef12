#include "vrUtils/OstrelServer.h"

#include "foundation/Handle.h"

#include <new>
#include <vector>

namespace vrUtils::OstrelServer {

namespace {

// The system's services.
constexpr wchar_t const* services[] = {
    L"OstrelSync", L"Ostrel Engine Server", L"QuantumPFRIndex", L"Vorrane Log Service"};
constexpr auto syncService = services[0];
constexpr auto engineService = services[1];

ServiceOwner openService(wchar_t const* name) {
    ServiceOwner const manager(OpenSCManagerW(nullptr, nullptr, SC_MANAGER_ALL_ACCESS));
    if (!manager)
        return {};
    return ServiceOwner(OpenServiceW(manager.get(), name, SERVICE_ALL_ACCESS));
}

bool start(wchar_t const* name) {
    auto const service = openService(name);
    return service && StartServiceW(service.get(), 0, nullptr);
}

bool stop(wchar_t const* name) {
    auto const service = openService(name);
    if (!service)
        return false;
    SERVICE_STATUS status{};
    ControlService(service.get(), SERVICE_CONTROL_STOP, &status);
    return true;
}

Status test(wchar_t const* name) {
    auto const service = openService(name);
    if (!service)
        return Unknown;

    SERVICE_STATUS status{};
    status.dwCurrentState = SERVICE_STOPPED;
    auto const answered = ControlService(service.get(), SERVICE_CONTROL_INTERROGATE, &status);
    // Read after a success too: a service that answers in another state counts by what an earlier
    // call left here.
    auto const error = GetLastError();
    if (answered == TRUE && status.dwCurrentState == SERVICE_RUNNING)
        return Running;
    if (error != ERROR_INVALID_SERVICE_CONTROL)
        return Stopped;
    bool const runsOrStarts =
        status.dwCurrentState == SERVICE_RUNNING || status.dwCurrentState == SERVICE_START_PENDING;
    return runsOrStarts ? Running : Unknown;
}

} // namespace

Status TestSyncStatus() { return test(syncService); }

Status TestEngineStatus() { return test(engineService); }

bool StartSyncService() { return start(syncService); }

bool StartEngineService() { return start(engineService); }

bool StartIndexService(wchar_t const* name) { return start(name); }

bool StopSyncService() { return stop(syncService); }

bool StopEngineService() { return stop(engineService); }

bool StopIndexService(wchar_t const* name) { return stop(name); }

std::wstring GetSyncServiceUserName() try {
    auto const service = openService(syncService);
    DWORD size = 0;
    if (!service || QueryServiceConfigW(service.get(), nullptr, 0, &size) ||
        GetLastError() != ERROR_INSUFFICIENT_BUFFER)
        return {};

    std::vector<unsigned char> buffer(size);
    auto* const configuration = reinterpret_cast<QUERY_SERVICE_CONFIGW*>(buffer.data());
    // A driver may have no account.
    if (!QueryServiceConfigW(service.get(), configuration, size, &size) ||
        !configuration->lpServiceStartName)
        return {};
    return configuration->lpServiceStartName;
} catch (std::bad_alloc const&) {
    // Without the memory for it the account cannot be found out either.
    return {};
}

} // namespace vrUtils::OstrelServer
