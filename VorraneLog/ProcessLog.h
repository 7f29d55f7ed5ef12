#ifndef VORRANELOG_PROCESSLOG_H
#define VORRANELOG_PROCESSLOG_H

#include "VorraneLog/Handle.h"
#include "VorraneLog/LogConfiguration.h"
#include "VorraneLog/LogFile.h"

#include <string_view>

namespace VorraneLog {

// The log of this process: its configuration, its file, and the lock around the file.
class ProcessLog {
  public:
    // The one log, made at the first call and never destroyed, for lines come until the very end of
    // the process. Null as long as there is no memory for it.
    static ProcessLog* instance() noexcept;

    explicit ProcessLog(LogConfiguration const& configuration, LogFile::Limits const& limits = {});

    // Whether lines of this level are written.
    bool wants(char level) const noexcept;

    // Writes one line; any thread, at any time.
    void write(std::string_view line) noexcept;

  private:
    char m_level;
    LogFile m_file;
    bool m_isWriting = false;
    // A mutex of the system rather than of the runtime: it tells when its owner was killed, and can
    // be taken on, be it in the life of the process or at its end, when the other threads are gone.
    Handle m_lock;
};

} // namespace VorraneLog

#endif
