// A service of the tests: service_program.exe NAME [slow]
// It answers inquiries, pauses, goes on and stops as it is told. Started as `slow` it stays in the
// state of starting until the event NAME-go is set. Each state that it reaches sets an event:
// NAME-starting, NAME-running, NAME-paused, NAME-stopped. After 30 seconds it removes itself from
// the service manager and ends, since nobody may be left to do that.

#include "foundation/Platform.h"

#include <winsvc.h>

#include <string>

namespace {

std::wstring serviceName;
bool isSlow = false;
SERVICE_STATUS_HANDLE statusHandle = nullptr;
HANDLE stopEvent = nullptr;

// Made by the tests; one that is missing is nobody's concern.
HANDLE openEvent(wchar_t const* purpose) {
    auto const name = L"Global\\" + serviceName + L"-" + purpose;
    return OpenEventW(SYNCHRONIZE | EVENT_MODIFY_STATE, FALSE, name.c_str());
}

void signal(wchar_t const* purpose) {
    if (HANDLE const event = openEvent(purpose)) {
        SetEvent(event);
        CloseHandle(event);
    }
}

void setState(DWORD state) {
    SERVICE_STATUS status{};
    status.dwServiceType = SERVICE_WIN32_OWN_PROCESS;
    status.dwCurrentState = state;
    bool const takesControls = state == SERVICE_RUNNING || state == SERVICE_PAUSED;
    status.dwControlsAccepted =
        takesControls ? SERVICE_ACCEPT_STOP | SERVICE_ACCEPT_PAUSE_CONTINUE : 0;
    SetServiceStatus(statusHandle, &status);
}

DWORD WINAPI control(DWORD control, DWORD, void*, void*) {
    switch (control) {
    case SERVICE_CONTROL_STOP:
        SetEvent(stopEvent);
        return NO_ERROR;
    case SERVICE_CONTROL_PAUSE:
        setState(SERVICE_PAUSED);
        signal(L"paused");
        return NO_ERROR;
    case SERVICE_CONTROL_CONTINUE:
        setState(SERVICE_RUNNING);
        signal(L"running");
        return NO_ERROR;
    case SERVICE_CONTROL_INTERROGATE:
        return NO_ERROR;
    default:
        return ERROR_CALL_NOT_IMPLEMENTED;
    }
}

void WINAPI runService(DWORD, wchar_t**) {
    statusHandle = RegisterServiceCtrlHandlerExW(serviceName.c_str(), control, nullptr);
    if (isSlow) {
        setState(SERVICE_START_PENDING);
        signal(L"starting");
        WaitForSingleObject(openEvent(L"go"), INFINITE);
    }
    setState(SERVICE_RUNNING);
    signal(L"running");
    WaitForSingleObject(stopEvent, INFINITE);
    // Nothing is sure to come behind this: the dispatcher returns, and the process ends.
    setState(SERVICE_STOPPED);
}

DWORD WINAPI removeMyself(void*) {
    Sleep(30000);
    SC_HANDLE const manager = OpenSCManagerW(nullptr, nullptr, SC_MANAGER_CONNECT);
    SC_HANDLE const service = OpenServiceW(manager, serviceName.c_str(), DELETE);
    DeleteService(service);
    TerminateProcess(GetCurrentProcess(), 98);
    return 0;
}

} // namespace

int wmain(int count, wchar_t** arguments) {
    if (count < 2)
        return 64;
    serviceName = arguments[1];
    isSlow = count > 2;
    stopEvent = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    CloseHandle(CreateThread(nullptr, 0, removeMyself, nullptr, 0, nullptr));

    SERVICE_TABLE_ENTRYW const services[] = {{serviceName.data(), runService}, {}};
    bool const ran = StartServiceCtrlDispatcherW(services);
    signal(L"stopped");
    return ran ? 0 : 1;
}
