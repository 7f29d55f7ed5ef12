#ifndef VORRANELOG_LOGFILE_H
#define VORRANELOG_LOGFILE_H

#include "VorraneLog/FileReservation.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace VorraneLog {

// The rotating file of one process. It opens at the first line and survives whatever happens to its
// folder: a file that fails is opened anew, under a numbered name if another process has its own.
//
// Not for two threads at a time.
class LogFile {
  public:
    struct Limits {
        std::size_t bytes =
            std::size_t{10} * 1024 * 1024; // of the file before it becomes an old one
        std::size_t oldFiles = 5;
        std::uint64_t pause = 5000; // milliseconds between attempts at a file that cannot be opened
    };

    // The path is full; an empty one means that there is no file.
    LogFile(std::wstring const& path, Limits const& limits);
    ~LogFile();

    LogFile(LogFile const&) = delete;
    LogFile& operator=(LogFile const&) = delete;

    // Writes a line behind the current time and hands it to the system. What cannot be written is
    // dropped and counted; the count goes in front of the next line that can.
    void write(std::string_view line) noexcept;

    // Gives the open file up, without closing it, after a thread has died in write(): the runtime
    // may hold the dead thread's lock on it for ever.
    void abandon() noexcept;

  private:
    class Sink;

    bool put(std::string_view line) noexcept;
    bool putWithCount(std::string_view line) noexcept;
    void pause() noexcept;
    bool mayOpen() const noexcept;
    bool open() noexcept;
    bool openOneOfAll();
    bool openSink(std::wstring const& path);

    std::wstring m_folder;
    std::wstring m_name;
    Limits m_limits;

    FileReservation m_reservation;
    std::wstring m_reservedPath;
    std::unique_ptr<Sink> m_sink;
    bool m_isRotationBlocked = false;
    std::uint64_t m_nextAttempt = 0;
    unsigned long long m_dropped = 0;
};

} // namespace VorraneLog

#endif
