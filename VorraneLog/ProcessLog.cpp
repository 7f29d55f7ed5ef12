#include "VorraneLog/ProcessLog.h"

#include "VorraneLog/LogLine.h"
#include "foundation/Platform.h"

#include <atomic>
#include <exception>
#include <memory>

namespace VorraneLog {

namespace {

// Constant from the start: the first line may come before any constructor has run.
std::atomic<ProcessLog*> theLog{nullptr};

// Keeps this module loaded, since lines may still come after its last user has let go of it.
void stayLoaded() noexcept {
    HMODULE module = nullptr;
    GetModuleHandleExW(
        GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
        reinterpret_cast<wchar_t const*>(&theLog), &module);
}

std::unique_ptr<ProcessLog> makeLog() noexcept {
    try {
        return std::make_unique<ProcessLog>(readLogConfiguration());
    } catch (std::exception const&) {
        return nullptr;
    }
}

} // namespace

// No lock here: making the log may wait for the system's loader, whose owner may be waiting to log.
// Threads that come at once each make one, and the first is kept.
ProcessLog* ProcessLog::instance() noexcept {
    auto* log = theLog.load(std::memory_order_acquire);
    if (log != nullptr)
        return log;
    stayLoaded();
    auto made = makeLog();
    if (made && theLog.compare_exchange_strong(log, made.get(), std::memory_order_acq_rel))
        return made.release();
    return log;
}

ProcessLog::ProcessLog(LogConfiguration const& configuration, LogFile::Limits const& limits)
    : m_level(configuration.level),
      m_file(configuration.file, limits),
      m_lock(CreateMutexW(nullptr, FALSE, nullptr)) {}

bool ProcessLog::wants(char level) const noexcept { return withinLevels(level) <= m_level; }

void ProcessLog::write(std::string_view line) noexcept {
    auto const waited = WaitForSingleObject(m_lock.get(), INFINITE);
    if (waited == WAIT_ABANDONED) {
        m_file.abandon();
        m_isWriting = false;
    } else if (waited != WAIT_OBJECT_0) {
        return;
    }
    // The system lets the owner in twice: something that writing calls may log in its turn, and
    // must not find the file half-way through a line.
    if (!m_isWriting) {
        m_isWriting = true;
        m_file.write(line);
        m_isWriting = false;
    }
    ReleaseMutex(m_lock.get());
}

} // namespace VorraneLog
