#ifndef TOOLS_VRTOOL_CONSOLE_H
#define TOOLS_VRTOOL_CONSOLE_H

#include <cstddef>
#include <optional>
#include <string_view>

// Where the program writes: UTF-8 with plain line feeds to files and pipes, wide text to a console,
// so that neither depends on the console's code page.
class Console {
  public:
    Console();

    // Writes to standard output.
    // @throws std::system_error if the output cannot be taken, say because its reader has ended
    void out(std::string_view text);

    // Writes to standard error; what cannot be written is lost.
    void error(std::string_view text);

    // Whether standard error is a console, where a line can be written over.
    bool errorIsConsole() const;

    // The columns that a line of standard output may take; none if there is no limit, as for files
    // and pipes.
    std::optional<std::size_t> width() const { return m_width; }

    // Lays tables out for this many columns, whatever the output is; 0 for no limit.
    void setWidth(std::size_t columns);

  private:
    std::optional<std::size_t> m_width;
};

#endif
