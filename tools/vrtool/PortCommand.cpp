#include "tools/vrtool/PortCommand.h"

#include "tools/vrtool/Console.h"
#include "tools/vrtool/ExitCodes.h"
#include "tools/vrtool/Facts.h"
#include "tools/vrtool/JsonText.h"
#include "tools/vrtool/Utf8.h"
#include "vrUtils/Instancing.h"

#include <limits>

namespace Instancing = vrUtils::Instancing;

namespace {

constexpr char portExplanation[] =
    R"(Tells what a port of the server is for. The ports 60772 to 60787 are those of
instance 0, the base ports; each further instance has the next sixteen.

Ends with 0, with 1 for a port that no service has, 2 if the arguments are
wrong.

Example:
  vrtool port 60806)";

Facts factsOf(std::uint32_t port) {
    // Any base port tells how far an instance is moved up.
    constexpr std::uint32_t someBasePort = 60772;

    auto const instance = Instancing::instanceFromPort(port);
    auto const distance = Instancing::instancePort(someBasePort, instance) - someBasePort;
    return {
        {"port", port},
        {"basePort", port - distance},
        {"instance", instance},
        {"description", toUtf8(Instancing::descriptionOfPort(port))},
    };
}

} // namespace

PortCommand::PortCommand()
    : Command("port", "Tell which service of which instance has a port", portExplanation) {}

void PortCommand::declare(CLI::App& arguments) {
    arguments.add_option("PORT", m_port, "A number from 60772 up")
        ->check(CLI::Range(0u, std::numeric_limits<std::uint32_t>::max()).description(""))
        ->type_name("")
        ->required();
    arguments.add_flag("--json", m_json, "Print an object instead of the table");
}

int PortCommand::run(Console& console) const {
    auto const facts = factsOf(m_port);
    console.out(m_json ? jsonText(objectOf(facts)) : tableOf(facts, console.width()));
    return ExitCode::success;
}
