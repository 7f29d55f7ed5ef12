#ifndef VRUTILS_THREADS_H
#define VRUTILS_THREADS_H

/// @file
/// Worker threads that end in bounded time.

#include "vrUtils/vrUtilsApi.h"

#include <atomic>
#include <cstdint>

namespace vrUtils::Threads {

/// Base of every long-running worker: a subclass supplies the body, the base owns the thread and a
/// stop event, and destroying the object never leaves the thread running.
///
/// A thread is asked to end first: the stop event is signalled. If it has not ended within the stop
/// timeout it is killed, and a lock that it held then stays locked for ever.
///
/// The object is idle, or running, or finished but not yet joined; `join` and `StopThread` lead back
/// to idle. It may be started again, but nothing resets the stop event: after a stop, a body that
/// tests it ends at once.
///
/// **A subclass calls `StopThread` at the head of its own destructor**, since its members are gone
/// by the time the base's destructor does so.
///
/// Start, stop and join belong to one controlling thread, except that a second thread may join, or
/// destroy the object while the first is joining. Nothing here throws or logs.
///
/// @code
/// class Poller : public vrUtils::Threads::Threaded {
///   public:
///     Poller() : Threaded(5000, ownStopEvent()) { StartThread(); }
///     ~Poller() override { StopThread(); }
///
///   private:
///     unsigned int ThreadProcess() override {
///         while (WaitForSingleObject(stopEvent(), 1000) == WAIT_TIMEOUT)
///             poll();
///         return 0;
///     }
/// };
/// @endcode
class VRUTILS_API Threaded {
  public:
    /// Stands for an event that the object makes itself, and closes: manual reset, not signalled.
    static void* ownStopEvent() noexcept { return reinterpret_cast<void*>(~std::uintptr_t{0}); }

    /// Starts nothing yet.
    /// @param stopTimeoutMs how long `StopThread` waits before it kills the thread, in milliseconds
    /// @param stopEvent `ownStopEvent()`, or an event of the caller, which stays open; null is an
    ///        event of the caller that is never signalled
    Threaded(std::uint32_t stopTimeoutMs, void* stopEvent);
    Threaded(Threaded const&) = delete;
    Threaded& operator=(Threaded const&) = delete;

    /// `StopThread`; closes the object's own stop event.
    virtual ~Threaded();

    /// Starts the body in a new thread. A start that fails leaves the object idle, without a word.
    /// Starting a running object loses its handle: stop first.
    void StartThread();

    /// Signals the stop event, waits for the stop timeout, and kills the thread if that did not do.
    /// Does nothing in the idle state. The event stays signalled.
    void StopThread();

    /// Waits until the thread has ended, and closes its handle.
    /// @param timeoutMs in milliseconds; 0xFFFFFFFF waits without limit
    /// @return false if the time passed, the thread then running on; true if it has ended, if the
    ///         object is idle, and if the wait failed
    bool join(std::uint32_t timeoutMs);

    /// `join` without a limit.
    void WaitUntilThreadFinishes();

  protected:
    /// The body of the thread. An exception that leaves it ends the process.
    /// @return the thread's exit code
    virtual unsigned int ThreadProcess() = 0;

    /// The event that asks the body to end, to be waited on.
    void* stopEvent() const noexcept { return m_stopEvent; }

  private:
    static unsigned int StaticThreadProcess(void* object) noexcept;
    void* releaseThread() noexcept { return m_threadHandle.exchange(nullptr); }

    void* m_stopEvent;
    bool m_stopEventIsExternal;
    std::uint32_t m_stopTimeoutMs;
    std::atomic<void*> m_threadHandle{nullptr};
};

} // namespace vrUtils::Threads

#endif
