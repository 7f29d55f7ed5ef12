#ifndef TOOLS_VRTOOL_TRANSFERPROGRESS_H
#define TOOLS_VRTOOL_TRANSFERPROGRESS_H

#include <chrono>
#include <cstdint>
#include <string>

class Console;

// How far one file is: on a terminal a line that is written over, with a bar; to a file or a pipe a
// plain line every few seconds, for files that take that long.
//
//     [########            ]  40 %  512 MB of 1280 MB  118 MB/s  0:06 left  clip.mxf
class TransferProgress {
  public:
    using Clock = std::chrono::steady_clock;

    // @param console refers to it
    // @param size of the file in bytes
    TransferProgress(Console& console, std::wstring const& name, std::uint64_t size);
    TransferProgress(TransferProgress const&) = delete;
    TransferProgress& operator=(TransferProgress const&) = delete;

    // Takes the line away.
    ~TransferProgress();

    void show(std::uint64_t done);

  private:
    void write(std::wstring const& line);

    Console& m_console;
    std::wstring m_name;
    std::uint64_t m_size;
    Clock::time_point m_start = Clock::now();
    Clock::time_point m_next = m_start;
    std::size_t m_columns = 0;
};

// A number of bytes for people: "17 B", "4 KB", "1280 MB". Units are steps of 1024.
std::string bytesText(std::uint64_t bytes);

// One line of progress. A file that has grown meanwhile is no more than done.
std::wstring progressLine(
    std::wstring const& name, std::uint64_t done, std::uint64_t size,
    std::chrono::milliseconds elapsed);

#endif
