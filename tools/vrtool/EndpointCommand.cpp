#include "tools/vrtool/EndpointCommand.h"

#include "tools/vrtool/CommandLine.h"
#include "tools/vrtool/Console.h"
#include "tools/vrtool/ExitCodes.h"
#include "tools/vrtool/Facts.h"
#include "tools/vrtool/Utf8.h"
#include "vrUtils/Instancing.h"
#include "vrUtils/TcpComms.h"

#include <limits>
#include <optional>

namespace Instancing = vrUtils::Instancing;
namespace TcpComms = vrUtils::TcpComms;

namespace {

constexpr char endpointExplanation[] =
    R"(Takes HOST or HOST:PORT apart as the server's programs do, and tells how their
logs name a connection from there and to there. Port 0 stands for none. With
--service also the endpoints of that service on the same host: the one in
instance N (instanceEndpoint), and the one in the instance that TEXT belongs to
(sameInstanceEndpoint).

Ends with 0, with 1 if a row has a failure, 2 if the arguments are wrong.

Example:
  vrtool endpoint media01:60806
  vrtool endpoint media01 --instance 2 --service 60774)";

Facts factsOf(std::wstring const& text) {
    auto const host = TcpComms::justHost(text);
    auto const port = TcpComms::justPort(text, 0);
    return {
        {"host", toUtf8(host)},
        {"port", port},
        findFact("instance", [&] { return Instancing::instanceFromHost(text); }),
        findFact("from", [&] { return toUtf8(TcpComms::descriptionOfConnectionFrom(host, port)); }),
        findFact("to", [&] { return toUtf8(TcpComms::descriptionOfConnectionTo(text)); }),
    };
}

// Without a service the rows are there all the same, and hold nothing.
void addService(
    Facts& facts, std::wstring const& text, std::optional<std::uint32_t> basePort,
    std::uint32_t instance) {
    Instancing::setInstance(instance);
    facts.push_back(findFact("instanceEndpoint", [&] {
        return basePort ? toUtf8(Instancing::instanceHost(text, *basePort)) : Json::Value();
    }));
    facts.push_back(findFact("sameInstanceEndpoint", [&] {
        return basePort ? toUtf8(Instancing::changePortPreservingInstance(text, *basePort))
                        : Json::Value();
    }));
}

} // namespace

EndpointCommand::EndpointCommand()
    : Command("endpoint", "Take an endpoint apart, lead to another service", endpointExplanation) {}

void EndpointCommand::declare(CLI::App& arguments) {
    auto const number = CLI::Range(0u, std::numeric_limits<std::uint32_t>::max()).description("");
    m_text = arguments.add_option("TEXT")->required();
    m_text->description("A host, or a host, a colon and a port");
    m_service = arguments.add_option("--service", m_basePort, "A base port, 60772 to 60787");
    m_service->check(number)->type_name("BASE");
    arguments.add_option("--instance", m_instance, "The instance that is wanted; 0 if not given")
        ->check(number)
        ->type_name("N")
        ->needs(m_service);
    arguments.add_flag("--json", m_json, "Print an object instead of the table");
}

int EndpointCommand::run(Console& console) const {
    auto const text = CommandLine::textOf(*m_text);
    auto facts = factsOf(text);
    addService(facts, text, *m_service ? std::optional(m_basePort) : std::nullopt, m_instance);
    console.out(m_json ? jsonOf(facts) : tableOf(facts, console.width()));
    return hasFailure(facts) ? ExitCode::failure : ExitCode::success;
}
