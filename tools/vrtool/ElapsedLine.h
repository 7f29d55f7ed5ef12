#ifndef TOOLS_VRTOOL_ELAPSEDLINE_H
#define TOOLS_VRTOOL_ELAPSEDLINE_H

#include <chrono>
#include <string>

class Console;

// A line at the foot of the terminal that says for how long something has been running, and that is
// gone with the object. To a file or a pipe nothing is written.
class ElapsedLine {
  public:
    // @param console refers to it
    explicit ElapsedLine(Console& console);
    ElapsedLine(ElapsedLine const&) = delete;
    ElapsedLine& operator=(ElapsedLine const&) = delete;
    ~ElapsedLine();

    void show(std::chrono::seconds elapsed);

  private:
    void write(std::string const& text);

    // Null where there is no terminal.
    Console* m_console;
    std::string m_shown;
};

// Hours only where there are some: "0:07", "59:59", "1:00:00".
std::string clockText(std::chrono::seconds time);

#endif
