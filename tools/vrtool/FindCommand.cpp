#include "tools/vrtool/FindCommand.h"

#include "tools/vrtool/CommandLine.h"
#include "tools/vrtool/Console.h"
#include "tools/vrtool/ExitCodes.h"
#include "tools/vrtool/Facts.h"
#include "tools/vrtool/SocketLayer.h"
#include "tools/vrtool/Utf8.h"
#include "vrUtils/Files/AliasSubstitution.h"

namespace {

constexpr char findExplanation[] =
    R"(Where there is no such file, the host of the path is looked up as it stands,
then without its last one, two and three characters, as the server does for
machines with several names. The first that has an address takes its place,
and all of the path comes back in lower case.

Ends with 0 if the file is there, with 1 if not, 2 if the arguments are wrong.

Example:
  vrtool find \\media01a\share\clip.mxf)";

} // namespace

FindCommand::FindCommand()
    : Command("find", "Find a file, also under another name of its machine", findExplanation) {}

void FindCommand::declare(CLI::App& arguments) {
    m_path = arguments.add_option("PATH")->required();
    m_path->description("A file or folder; in quotes if it holds blanks");
    arguments.add_flag("--json", m_json, "Print an object instead of the table");
}

int FindCommand::run(Console& console) const {
    SocketLayer const sockets;
    vr::Path path(CommandLine::textOf(*m_path), vr::Path::eDetect);
    auto const asked = path.components().wholePath();
    auto const exists = vrUtils::Files::FileExistsAllowingAliasSubstitution(&path);

    auto const found = path.components().wholePath();
    Facts const facts{
        {"path", toUtf8(asked)},
        {"foundAs", exists ? Json::Value(toUtf8(found)) : Json::Value()},
        {"lastTried", toUtf8(found)},
        {"exists", exists},
    };
    console.out(m_json ? jsonOf(facts) : tableOf(facts, console.width()));
    return exists ? ExitCode::success : ExitCode::failure;
}
