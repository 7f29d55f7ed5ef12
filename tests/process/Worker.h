#ifndef TESTS_PROCESS_WORKER_H
#define TESTS_PROCESS_WORKER_H

#include "vrUtils/Threads.h"

#include "foundation/Platform.h"

#include <cstdint>
#include <functional>
#include <utility>

// A stop timeout that no test is to use up.
inline constexpr std::uint32_t longTime = 20000;

// A worker whose body the test gives.
class Worker : public vrUtils::Threads::Threaded {
  public:
    using Body = std::function<unsigned int(void* stopEvent)>;

    explicit Worker(
        Body body, std::uint32_t stopTimeoutMs = longTime, void* stopEvent = ownStopEvent())
        : Threaded(stopTimeoutMs, stopEvent), m_body(std::move(body)) {}

    ~Worker() override { StopThread(); }

    using Threaded::stopEvent;

  private:
    unsigned int ThreadProcess() override { return m_body(stopEvent()); }

    Body m_body;
};

inline unsigned int endAtOnce(void*) { return 7; }

inline unsigned int waitForStop(void* stopEvent) {
    WaitForSingleObject(stopEvent, INFINITE);
    return 7;
}

inline DWORD exitCodeOf(HANDLE thread) {
    DWORD code = 0;
    GetExitCodeThread(thread, &code);
    return code;
}

#endif
