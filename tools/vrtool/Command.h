#ifndef TOOLS_VRTOOL_COMMAND_H
#define TOOLS_VRTOOL_COMMAND_H

#include <CLI/CLI.hpp>

#include <string>

class Console;

// One subcommand of the program: a pair of files that derives from this, and a line in Main.cpp.
class Command {
  public:
    virtual ~Command() = default;
    Command(Command const&) = delete;
    Command& operator=(Command const&) = delete;

    // Makes the subcommand known to the program.
    void join(CLI::App& program) {
        m_arguments = program.add_subcommand(m_name, m_purpose);
        m_arguments->footer(m_explanation);
        declare(*m_arguments);
    }

    // Whether the user asked for this one.
    bool chosen() const { return m_arguments->parsed(); }

    // Does the work.
    // @return the program's exit code
    virtual int run(Console& console) const = 0;

  protected:
    // @param purpose one sentence for the list of subcommands
    // @param explanation ends the subcommand's help; holds an example
    Command(std::string name, std::string purpose, std::string explanation)
        : m_name(std::move(name)),
          m_purpose(std::move(purpose)),
          m_explanation(std::move(explanation)) {}

  private:
    // Declares the subcommand's options and what follows them.
    virtual void declare(CLI::App& arguments) = 0;

    std::string m_name;
    std::string m_purpose;
    std::string m_explanation;
    CLI::App* m_arguments = nullptr;
};

#endif
