#include "VorraneLog/VorraneLog.h"

#include "VorraneLog/LogFormat.h"
#include "VorraneLog/LogLine.h"
#include "VorraneLog/ProcessLog.h"
#include "foundation/Platform.h"

#include <cerrno>
#include <cstdarg>

namespace {

// Callers log between a failed call and their look at its error.
class KeptErrors {
  public:
    KeptErrors() = default;
    KeptErrors(KeptErrors const&) = delete;
    KeptErrors& operator=(KeptErrors const&) = delete;

    ~KeptErrors() {
        errno = m_number;
        SetLastError(m_error);
    }

  private:
    DWORD m_error = GetLastError();
    int m_number = errno;
};

struct Origin {
    wchar_t const* file;
    int line;
};

void writeLine(
    char level, wchar_t const* module, Origin const* origin, wchar_t const* format,
    std::va_list values) noexcept {
    KeptErrors const kept;
    auto* const log = VorraneLog::ProcessLog::instance();
    if (log == nullptr || !log->wants(level))
        return;

    VorraneLog::LogText line;
    VorraneLog::appendColumns(line, level, module);
    if (origin != nullptr)
        VorraneLog::appendOrigin(line, origin->file, origin->line);
    VorraneLog::appendFormatted(line, format, values);
    log->write(line.view());
}

} // namespace

void VL_WriteLog(char level, wchar_t const* module, wchar_t const* format, ...) noexcept {
    std::va_list values;
    va_start(values, format);
    writeLine(level, module, nullptr, format, values);
    va_end(values);
}

void VL_WriteDebugLog(
    char level, wchar_t const* module, wchar_t const* file, int line, wchar_t const* format,
    ...) noexcept {
    Origin const origin{file, line};
    std::va_list values;
    va_start(values, format);
    writeLine(level, module, &origin, format, values);
    va_end(values);
}
