#ifndef VORRANELOG_LOGCONFIGURATION_H
#define VORRANELOG_LOGCONFIGURATION_H

#include <string>

namespace VorraneLog {

// What is logged, and where to.
struct LogConfiguration {
    static constexpr char defaultLevel = 6;

    char level = defaultLevel; // the least severe level that is written
    std::wstring file;         // full path, empty if there is no place for a file
};

// The configuration told by the environment variables VORRANELOG_LEVEL and VORRANELOG_FILE.
LogConfiguration readLogConfiguration();

} // namespace VorraneLog

#endif
