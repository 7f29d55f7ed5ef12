#include "tools/vrtool/ConnectCommand.h"

#include "tools/vrtool/CommandLine.h"
#include "tools/vrtool/Console.h"
#include "tools/vrtool/ExitCodes.h"
#include "tools/vrtool/Facts.h"
#include "tools/vrtool/JsonText.h"
#include "tools/vrtool/SocketLayer.h"
#include "tools/vrtool/Utf8.h"
#include "vrUtils/TcpComms.h"

#include <chrono>
#include <iomanip>
#include <limits>
#include <locale>
#include <sstream>

namespace TcpComms = vrUtils::TcpComms;

namespace {

constexpr char connectExplanation[] =
    R"(Connects over IPv4 as the server's programs do, says how long that and the
look-up of the address before it took, and ends the connection. It waits as
long as the transport takes to decide.

Ends with 0, with 1 if the host has no address or does not let itself be
connected to, 2 if the arguments are wrong.

Example:
  vrtool connect media01 60774)";

using Clock = std::chrono::steady_clock;

std::int64_t microsecondsOf(Clock::duration time) {
    return std::chrono::duration_cast<std::chrono::microseconds>(time).count();
}

std::string millisecondsOf(std::int64_t microseconds) {
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text << std::fixed << std::setprecision(3) << static_cast<double>(microseconds) / 1000 << " ms";
    return text.str();
}

// The library has words for the server's own services only.
std::wstring serverName(std::wstring const& host, std::uint16_t port) {
    try {
        return TcpComms::descriptionOfConnectionTo(host, port);
    } catch (vrException const&) {
        return host + L':' + std::to_wstring(port);
    }
}

} // namespace

ConnectCommand::ConnectCommand()
    : Command("connect", "Connect to a server, and time it", connectExplanation) {}

void ConnectCommand::declare(CLI::App& arguments) {
    m_host = arguments.add_option("HOST")->required()->description("A name or a dotted address");
    arguments.add_option("PORT", m_port, "A number from 1 to 65535")
        ->check(CLI::Range(1u, unsigned{std::numeric_limits<std::uint16_t>::max()}).description(""))
        ->type_name("")
        ->required();
    arguments.add_flag("--json", m_json, "Print an object instead of the line");
}

int ConnectCommand::run(Console& console) const {
    SocketLayer const sockets;
    auto const host = CommandLine::textOf(*m_host);

    auto const start = Clock::now();
    TcpComms::Socket server(host, m_port);
    auto const found = Clock::now();
    server.Connect();
    auto const connected = Clock::now();

    auto const name = toUtf8(serverName(host, m_port));
    auto const connect = microsecondsOf(connected - found);
    auto const lookUp = microsecondsOf(found - start);
    Facts const facts{
        {"server", name},
        {"connectMicroseconds", Json::Int64{connect}},
        {"lookUpMicroseconds", Json::Int64{lookUp}},
    };
    console.out(
        m_json ? jsonText(objectOf(facts))
               : "connected to " + name + " in " + millisecondsOf(connect) + ", look-up " +
                     millisecondsOf(lookUp) + '\n');
    return ExitCode::success;
}
