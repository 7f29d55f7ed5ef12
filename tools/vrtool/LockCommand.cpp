#include "tools/vrtool/LockCommand.h"

#include "tools/vrtool/CancelKey.h"
#include "tools/vrtool/CommandLine.h"
#include "tools/vrtool/Console.h"
#include "tools/vrtool/ExitCodes.h"
#include "tools/vrtool/SystemText.h"
#include "tools/vrtool/Utf8.h"
#include "vrUtils/Files.h"

namespace {

constexpr char lockExplanation[] =
    R"(Takes the lock of the file as the server does, by a file beside it with ".lck"
added to its name, and holds it while the program runs. FILE need not exist.
Ctrl-C is for the program to heed: the lock is held until it has ended.

Ends with 0 if the program ended with 0; 1 if it ended otherwise or could not
be started; 2 if the arguments are wrong; 5 if the lock was not to be had, and
the program was not run.

Example:
  vrtool lock C:\Media\clip.mxf -- C:\Tools\repair.exe C:\Media\clip.mxf)";

} // namespace

LockCommand::LockCommand()
    : Command("lock", "Hold the lock of a file while a program runs", lockExplanation) {}

void LockCommand::declare(CLI::App& arguments) {
    m_file = arguments.add_option("FILE")->required();
    m_file->description("The file to lock, or a folder with a backslash at its end");
    m_program.declare(arguments);
}

int LockCommand::run(Console& console) const {
    auto const file = fullPath(CommandLine::textOf(*m_file));
    auto const program = m_program.program();
    CancelKey const key;
    try {
        vrUtils::Files::LockFile const lock(vr::Path(file, vr::Path::eDetect));
        vrUtils::Process::ExternalProcess process(program, 0, L"vrtool");
        m_program.handTo(process);
        if (process.Execute() == 0)
            return ExitCode::success;
    } catch (vrUtils::Files::LockFileException const& failure) {
        console.error(
            "vrtool: " + toUtf8(failure.message()) +
            ": another one holds it, or the lock file cannot be written; the program was not "
            "run\n");
        return ExitCode::notLocked;
    }
    console.error(
        "vrtool: " + toUtf8(program) +
        " failed: it could not be started, or ended with another code than 0\n");
    return ExitCode::failure;
}
