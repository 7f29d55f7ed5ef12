#include "vrUtils/Threads.h"

#include "foundation/Handle.h"
#include "foundation/Platform.h"

#include <process.h>

namespace vrUtils::Threads {

Threaded::Threaded(std::uint32_t stopTimeoutMs, void* stopEvent)
    : m_stopEvent(stopEvent),
      m_stopEventIsExternal(stopEvent != ownStopEvent()),
      m_stopTimeoutMs(stopTimeoutMs) {
    if (!m_stopEventIsExternal)
        m_stopEvent = CreateEventW(nullptr, TRUE, FALSE, nullptr);
}

Threaded::~Threaded() {
    StopThread();
    if (!m_stopEventIsExternal)
        CloseHandle(m_stopEvent);
}

void Threaded::StartThread() {
    m_threadHandle =
        reinterpret_cast<void*>(_beginthreadex(nullptr, 0, StaticThreadProcess, this, 0, nullptr));
}

void Threaded::StopThread() {
    if (!m_threadHandle.load())
        return;

    SetEvent(m_stopEvent);
    if (join(m_stopTimeoutMs))
        return;

    if (ThreadOwner const thread{releaseThread()})
        TerminateThread(thread.get(), 0);
}

bool Threaded::join(std::uint32_t timeoutMs) {
    auto* const thread = m_threadHandle.load();
    if (!thread)
        return true;
    if (WaitForSingleObject(thread, timeoutMs) == WAIT_TIMEOUT)
        return false;

    // Of two threads that join at the same time, one finds the handle gone and closes nothing.
    ThreadOwner const finished{releaseThread()};
    return true;
}

void Threaded::WaitUntilThreadFinishes() { join(INFINITE); }

unsigned int Threaded::StaticThreadProcess(void* object) noexcept {
    return static_cast<Threaded*>(object)->ThreadProcess();
}

} // namespace vrUtils::Threads
