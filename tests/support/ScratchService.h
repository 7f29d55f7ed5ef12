#ifndef TESTS_SUPPORT_SCRATCHSERVICE_H
#define TESTS_SUPPORT_SCRATCHSERVICE_H

// A real service under a name that the code under test knows. It is stopped and removed with the
// object:
//
//     test::ScratchService service(L"OstrelSync");
//     StartSyncService();
//     service.waitUntil(L"running");
//
// The service manager belongs to the whole machine: a test program that uses this locks `services`.
// The program behind it is `service_program.exe`; see ServiceProgram.cpp for what it can do. Failed
// preparations throw std::system_error.

#include "tests/support/OwnedHandle.h"

#include <winsvc.h>

#include <map>
#include <memory>
#include <string>
#include <type_traits>

namespace test {

struct ServiceCloser {
    void operator()(SC_HANDLE handle) const noexcept { CloseServiceHandle(handle); }
};

using OwnedService = std::unique_ptr<std::remove_pointer_t<SC_HANDLE>, ServiceCloser>;

// How a service is registered, where not as usual.
struct ServiceStart {
    // If empty, that of the system.
    std::wstring account = {};
    // SERVICE_DISABLED keeps it from being started.
    DWORD type = SERVICE_DEMAND_START;
    // Whether it stays in the state of starting until `go`.
    bool isSlow = false;
};

class ScratchService {
  public:
    // Replaces a service of this name that an ended test has left.
    explicit ScratchService(std::wstring name, ServiceStart const& start = {});
    ScratchService(ScratchService const&) = delete;
    ScratchService& operator=(ScratchService const&) = delete;
    ~ScratchService();

    // Hands it to the service manager to be started.
    void start();

    // Starts it and waits until it runs.
    void run();

    // Lets it pause.
    void pause();

    // Lets a slow one run.
    void go();

    // Waits until it has reached a state: "starting", "running", "paused" or "stopped".
    // @return whether it did within the ceiling
    bool waitUntil(std::wstring const& state) const;

    // As the service manager has it.
    DWORD state() const;

    // Whether the service manager knows a service of this name.
    static bool exists(std::wstring const& name);

  private:
    void remove();

    std::wstring m_name;
    std::map<std::wstring, OwnedHandle> m_events;
    OwnedService m_service;
};

} // namespace test

#endif
