#ifndef VRUTILS_PROCESSWATCHDOG_H
#define VRUTILS_PROCESSWATCHDOG_H

/// @file
/// Ending a process from outside.

#include "vrUtils/Threads.h"
#include "vrUtils/vrException.h"

#include <cstdint>

namespace vrUtils::ProcessWatchdog {

/// Watches over one process from its construction to its destruction: once the event "terminate_"
/// and the decimal process id is signalled, by this object or by any process that can open the
/// event, the process has a grace period, and is killed if it is over before the object is stopped.
///
/// The event is one for all that watch the same process in the same session. It resets
/// automatically, so that one signal wakes one watcher; a signal that nobody consumed stays for the
/// next.
///
/// Destroying the object calls the watch off, at any time before the kill. The thread makes one
/// pass: after the kill, or a failure, nothing is watched any more. Its progress is logged at levels
/// 4 to 7.
///
/// The thread starts in the constructor, when the part of a further derived class is not there yet.
/// Apart from `RequestTermination` and `RequestTerminationAndWait`, which any thread may call while
/// the object lives, it belongs to one thread.
///
/// @code
/// ProcessTerminator watchdog(toolId, 30);
/// ...
/// if (toolHangs())
///     watchdog.RequestTerminationAndWait();
/// @endcode
class VRUTILS_API ProcessTerminator : public Threads::Threaded {
  public:
    /// Watches from now on.
    /// @param graceSeconds taken times 1000 in 32 bits, so that large values wrap
    /// @throws vrException "CreateEvent failed", code 0x80004005, source name "Process"
    ProcessTerminator(std::uint32_t processId, std::uint32_t graceSeconds);

    /// Calls the watch off. A thread that is in the middle of the kill has one second to end.
    ~ProcessTerminator() override;

    /// Signals the event.
    /// @throws vrException "SetEvent failed (error 0xNUMBER)", the Windows error in lower-case
    ///         hexadecimal; code 0x80004005, source name "Process"
    virtual void RequestTermination();

    /// `RequestTermination`, then a wait without limit until the watch has ended, by the kill or
    /// because another thread stopped the object.
    /// @return true
    /// @throws vrException as `RequestTermination`
    virtual bool RequestTerminationAndWait();

  private:
    unsigned int ThreadProcess() override;
    bool waitUntilDue() const;
    void terminate() const;

    void* m_terminateEvent = nullptr;
    std::uint32_t m_processId;
    std::uint32_t m_graceSeconds;
};

} // namespace vrUtils::ProcessWatchdog

#endif
