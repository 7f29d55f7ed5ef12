#include "tools/vrtool/SameCommand.h"

#include "tools/vrtool/CommandLine.h"
#include "tools/vrtool/Console.h"
#include "tools/vrtool/ExitCodes.h"
#include "tools/vrtool/Facts.h"
#include "tools/vrtool/JsonText.h"
#include "tools/vrtool/PathMachine.h"
#include "tools/vrtool/SocketLayer.h"
#include "vrUtils/Files/MachineIdentity.h"

namespace {

constexpr char sameExplanation[] =
    R"(Two paths are on one machine if their hosts have an address in common. A path
without a host is on this machine here, and a host without an address is on
none, not even on its own.

Ends with 0 if they are, 1 if they are not, 2 if the arguments are wrong.

Example:
  vrtool same \\media01\share\clip.mxf \\192.0.2.7\other\clip.mxf)";

vr::Path pathOf(CLI::Option const& option) {
    return vr::Path(CommandLine::textOf(option), vr::Path::eDetect);
}

} // namespace

SameCommand::SameCommand()
    : Command("same", "Tell whether two paths are on one machine", sameExplanation) {}

void SameCommand::declare(CLI::App& arguments) {
    m_first = arguments.add_option("FIRST")->required()->description("Any path");
    m_second = arguments.add_option("SECOND")->required()->description("Any path");
    arguments.add_flag("--json", m_json, "Print an object instead of the table");
}

int SameCommand::run(Console& console) const {
    SocketLayer const sockets;
    auto const first = pathOf(*m_first);
    auto const second = pathOf(*m_second);
    bool const areSame = vrUtils::Files::arePathsToSameMachine(first, second);
    Facts const facts{
        {"firstHost", hostOf(first)},   {"firstAddresses", addressesOf(first)},
        {"secondHost", hostOf(second)}, {"secondAddresses", addressesOf(second)},
        {"sameMachine", areSame},
    };
    console.out(m_json ? jsonText(objectOf(facts)) : tableOf(facts, console.width()));
    return areSame ? ExitCode::success : ExitCode::failure;
}
