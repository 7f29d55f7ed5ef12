#ifndef TESTS_VRTOOL_RUNHERE_H
#define TESTS_VRTOOL_RUNHERE_H

#include "foundation/Platform.h"
#include "tests/support/OwnedHandle.h"
#include "tests/support/ScratchFolder.h"
#include "tests/vrtool/ToolRun.h"
#include "tools/vrtool/Command.h"
#include "tools/vrtool/Console.h"

#include <string>
#include <vector>

namespace test {

// A standard output goes to a file for the life of the object.
class Redirected {
  public:
    Redirected(DWORD stream, std::wstring const& path)
        : m_stream(stream),
          m_before(GetStdHandle(stream)),
          m_file(CreateFileW(
              path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_NEW, 0, nullptr)) {
        SetStdHandle(m_stream, m_file.get());
    }

    Redirected(Redirected const&) = delete;
    Redirected& operator=(Redirected const&) = delete;

    ~Redirected() { SetStdHandle(m_stream, m_before); }

  private:
    DWORD m_stream;
    HANDLE m_before;
    OwnedHandle m_file;
};

// Runs a subcommand in the test itself, where platform calls can be made to fail.
// @param arguments those behind the subcommand's name, the last one first
template <typename Subcommand>
ToolRun runHere(std::string const& name, std::vector<std::string> arguments = {}) {
    CLI::App program;
    Subcommand command;
    static_cast<Command&>(command).join(program);
    arguments.push_back(name);
    program.parse(arguments);

    ScratchFolder const folder;
    std::uint32_t exitCode = 0;
    {
        Redirected const out(STD_OUTPUT_HANDLE, folder.file(L"out"));
        Redirected const error(STD_ERROR_HANDLE, folder.file(L"error"));
        Console console;
        exitCode = static_cast<std::uint32_t>(command.run(console));
    }
    return {exitCode, folder.read(L"out"), folder.read(L"error")};
}

} // namespace test

#endif
