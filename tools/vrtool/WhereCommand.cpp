#include "tools/vrtool/WhereCommand.h"

#include "tools/vrtool/CommandLine.h"
#include "tools/vrtool/Console.h"
#include "tools/vrtool/ExitCodes.h"
#include "tools/vrtool/JsonText.h"
#include "tools/vrtool/PathMachine.h"
#include "tools/vrtool/SocketLayer.h"

namespace {

constexpr char whereExplanation[] =
    R"(Tells the host of a path and its addresses, whether that is this machine, the
local path of what stands on a share of this machine or on a connected drive,
and the share that a connection would go to. A share is known as one only with
a backslash behind it. A path without a host has the addresses of this machine.

Like every program that asks for a local path, this makes the connections that
the registry lists under Software\Vorrane\Ostrel\DriveMapping.

Ends with 0, with 1 if the host has no address, 2 if the arguments are wrong.

Example:
  vrtool where \\media01\share\clip.mxf)";

} // namespace

WhereCommand::WhereCommand()
    : Command("where", "Find the machine of a path, and its local path", whereExplanation) {}

void WhereCommand::declare(CLI::App& arguments) {
    m_path = arguments.add_option("PATH")->required();
    m_path->description("Any path; in quotes if it holds blanks");
    arguments.add_flag("--json", m_json, "Print an object instead of the table");
}

int WhereCommand::run(Console& console) const {
    SocketLayer const sockets;
    auto const facts = whereaboutsOf(CommandLine::textOf(*m_path));
    auto const document = objectOf(facts);
    console.out(m_json ? jsonText(document) : tableOf(facts, console.width()));
    if (!document["addresses"].empty())
        return ExitCode::success;
    console.error("vrtool: no address for the host \"" + document["host"].asString() + "\"\n");
    return ExitCode::failure;
}
