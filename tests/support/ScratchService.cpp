#include "tests/support/ScratchService.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/WideText.h"

namespace test {

namespace {

OwnedService openManager() {
    OwnedService manager(OpenSCManagerW(nullptr, nullptr, SC_MANAGER_ALL_ACCESS));
    if (!manager) {
        DWORD const error = GetLastError();
        throw platformFailure(error, "cannot open the service manager");
    }
    return manager;
}

OwnedService open(std::wstring const& name) {
    return OwnedService(OpenServiceW(openManager().get(), name.c_str(), SERVICE_ALL_ACCESS));
}

SERVICE_STATUS_PROCESS statusOf(SC_HANDLE service) {
    SERVICE_STATUS_PROCESS status{};
    DWORD size = 0;
    if (!QueryServiceStatusEx(
            service, SC_STATUS_PROCESS_INFO, reinterpret_cast<BYTE*>(&status), sizeof status,
            &size)) {
        DWORD const error = GetLastError();
        throw platformFailure(error, "cannot ask a service");
    }
    return status;
}

DWORD ceilingInMilliseconds() {
    return static_cast<DWORD>(std::chrono::milliseconds(ceiling).count());
}

} // namespace

ScratchService::ScratchService(std::wstring name, ServiceStart const& start)
    : m_name(std::move(name)) {
    for (auto const* const purpose : {L"starting", L"running", L"paused", L"stopped", L"go"}) {
        auto const event = L"Global\\" + m_name + L"-" + purpose;
        m_events[purpose].reset(CreateEventW(nullptr, FALSE, FALSE, event.c_str()));
    }
    m_service = open(m_name);
    if (m_service)
        remove();

    auto const line = quotedArgument(besideTestProgram(L"service_program.exe")) + L' ' +
                      quotedArgument(m_name) + (start.isSlow ? L" slow" : L"");
    auto const manager = openManager();
    m_service.reset(CreateServiceW(
        manager.get(), m_name.c_str(), nullptr, SERVICE_ALL_ACCESS, SERVICE_WIN32_OWN_PROCESS,
        start.type, SERVICE_ERROR_NORMAL, line.c_str(), nullptr, nullptr, nullptr,
        start.account.empty() ? nullptr : start.account.c_str(), nullptr));
    if (!m_service) {
        DWORD const error = GetLastError();
        throw platformFailure(error, "cannot make the service " + utf8(m_name));
    }
}

ScratchService::~ScratchService() { remove(); }

void ScratchService::start() {
    if (!StartServiceW(m_service.get(), 0, nullptr)) {
        DWORD const error = GetLastError();
        throw platformFailure(error, "cannot start the service " + utf8(m_name));
    }
}

void ScratchService::run() {
    start();
    waitUntil(L"running");
}

void ScratchService::pause() {
    SERVICE_STATUS status{};
    ControlService(m_service.get(), SERVICE_CONTROL_PAUSE, &status);
    waitUntil(L"paused");
}

void ScratchService::go() {
    SetEvent(m_events.at(L"go").get());
    waitUntil(L"running");
}

bool ScratchService::waitUntil(std::wstring const& state) const {
    return WaitForSingleObject(m_events.at(state).get(), ceilingInMilliseconds()) == WAIT_OBJECT_0;
}

DWORD ScratchService::state() const { return statusOf(m_service.get()).dwCurrentState; }

bool ScratchService::exists(std::wstring const& name) { return open(name) != nullptr; }

// A service that still has a process is only marked, and stays. The manager learns of the end of
// the process at a time of its own and tells nobody, so it is asked until it has.
void ScratchService::remove() {
    OwnedHandle const process(
        OpenProcess(SYNCHRONIZE | PROCESS_TERMINATE, FALSE, statusOf(m_service.get()).dwProcessId));
    if (process) {
        SERVICE_STATUS status{};
        SetEvent(m_events.at(L"go").get());
        if (!ControlService(m_service.get(), SERVICE_CONTROL_STOP, &status) ||
            WaitForSingleObject(process.get(), ceilingInMilliseconds()) != WAIT_OBJECT_0)
            TerminateProcess(process.get(), 99);
        WaitForSingleObject(process.get(), ceilingInMilliseconds());
    }
    DeleteService(m_service.get());
    m_service.reset();

    auto const end = std::chrono::steady_clock::now() + ceiling;
    while (exists(m_name) && std::chrono::steady_clock::now() < end)
        std::this_thread::yield();
}

} // namespace test
