#include "process/ExternalProcessImplementation.h"

#include "foundation/Handle.h"
#include "foundation/Log.h"
#include "foundation/Message.h"

namespace vrUtils::Process::Impl {

namespace {

// No limit must not become one by the multiplication.
std::uint32_t milliseconds(std::uint32_t seconds) {
    return seconds == 0 || seconds == INFINITE ? INFINITE : seconds * 1000;
}

} // namespace

ExternalProcessImplementation::ExternalProcessImplementation(
    std::wstring const& name, std::uint32_t timeoutSeconds, std::wstring const& logModule)
    : m_timeoutMs(milliseconds(timeoutSeconds)), m_name(name), m_logModule(logModule) {}

std::int32_t ExternalProcessImplementation::Execute() const {
    logStart();

    STARTUPINFOW start{};
    PROCESS_INFORMATION process{};
    // The call may write to the line that it is given.
    auto line = m_commandLine;
    auto const* const folder = m_workingDirectory.empty() ? nullptr : m_workingDirectory.c_str();
    auto environment = environmentBlock();
    if (!CreateProcessW(
            nullptr, line.data(), nullptr, nullptr, FALSE, CREATE_UNICODE_ENVIRONMENT,
            environment.empty() ? nullptr : environment.data(), folder, &start, &process)) {
        auto const error = GetLastError();
        log(LogLevel::failure,
            composeMessage(L"Failed to start process \"", m_name, L"\". Error ", error));
        return ExternalProcessFailed;
    }

    // A callback may throw.
    ProcessOwner const processOwner(process.hProcess);
    ThreadOwner const threadOwner(process.hThread);
    return WaitForProcess(process);
}

std::int32_t
ExternalProcessImplementation::WaitForProcess(PROCESS_INFORMATION const& process) const {
    if (WaitForSingleObject(process.hProcess, m_timeoutMs) == WAIT_OBJECT_0)
        return reportExit(process);
    return reportTimeout();
}

std::int32_t ExternalProcessImplementation::reportExit(PROCESS_INFORMATION const& process) const {
    DWORD code = 0;
    if (!GetExitCodeProcess(process.hProcess, &code))
        code = GetLastError();

    // A failure is no more severe to the log: that is for the caller to judge.
    if (code != 0) {
        log(LogLevel::information,
            composeMessage(L"Process \"", m_name, L"\" failed with error code ", code));
        return ExternalProcessFailed;
    }
    log(LogLevel::information, composeMessage(L"Process \"", m_name, L"\" completed successfully"));
    return 0;
}

std::int32_t ExternalProcessImplementation::reportTimeout() const {
    // Even without a module: somebody must learn that a program runs on unwatched.
    logComposed(
        LogLevel::failure, m_logModule, composeMessage(L"Process \"", m_name, L"\" timed out"));
    return ExternalProcessTimedOut;
}

void ExternalProcessImplementation::logStart() const {
    if (m_logModule.empty())
        return;
    log(LogLevel::information, composeMessage(L"Calling external process \"", m_name, L'"'));
    VL_WriteLog(
        LogLevel::trace, m_logModule.c_str(), L"%.500s",
        composeMessage(L"External process ", m_name, L" command line - ", m_commandLine).c_str());
}

void ExternalProcessImplementation::log(char level, std::wstring const& text) const {
    if (!m_logModule.empty())
        logComposed(level, m_logModule, text);
}

std::wstring ExternalProcessImplementation::environmentBlock() const {
    std::wstring block;
    for (auto const& [key, value] : m_environment)
        block.append(key).append(1, L'=').append(value).append(1, L'\0');
    if (!block.empty())
        block.append(1, L'\0');
    return block;
}

ExternalProcessWithCallbackImplementation::ExternalProcessWithCallbackImplementation(
    std::wstring const& name, std::uint32_t timeoutSeconds, std::wstring const& logModule,
    ExternalProcessCallback* callback, std::uint32_t pollIntervalMs)
    : ExternalProcessImplementation(name, timeoutSeconds, logModule),
      m_callback(callback),
      m_pollIntervalMs(pollIntervalMs) {}

std::int32_t ExternalProcessWithCallbackImplementation::WaitForProcess(
    PROCESS_INFORMATION const& process) const {
    std::uint32_t elapsedMs = 0;
    for (;;) {
        if (WaitForSingleObject(process.hProcess, m_pollIntervalMs) == WAIT_OBJECT_0)
            return reportExit(process);
        if (m_callback->ShouldCancel())
            return ExternalProcessCancelled;
        m_callback->OnPoll();

        elapsedMs += m_pollIntervalMs;
        if (timeoutMs() != INFINITE && elapsedMs > timeoutMs())
            return reportTimeout();
    }
}

std::int32_t
ExternalProcessNonBlockingImplementation::WaitForProcess(PROCESS_INFORMATION const&) const {
    return 0;
}

} // namespace vrUtils::Process::Impl
