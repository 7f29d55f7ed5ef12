#include "tools/vrtool/ServicesCommand.h"

#include "tools/vrtool/CommandLine.h"
#include "tools/vrtool/Console.h"
#include "tools/vrtool/ExitCodes.h"
#include "tools/vrtool/JsonText.h"
#include "tools/vrtool/Platform.h"
#include "tools/vrtool/TextTable.h"
#include "tools/vrtool/Utf8.h"
#include "vrUtils/OstrelServer.h"

#include <array>

namespace Services = vrUtils::OstrelServer;

struct ServiceRequest {
    char const* verb;
    char const* purpose;
    char const* explanation;
    bool (*sync)();
    bool (*engine)();
    bool (*named)(wchar_t const* name);
    char const* taken;
    char const* refused;
};

namespace {

constexpr char servicesExplanation[] =
    R"(Without a subcommand: one row for each service that the server can ask after,
with its status (running, stopped, unknown) and its account. A service that is
missing is unknown, and so are all without the rights of an administrator.

Ends with 0, or with 2 if the arguments are wrong.

Example:
  vrtool services
  vrtool services start sync)";

ServiceRequest const startRequest{
    "start",
    "Start a service",
    R"(Hands the start over to the service manager and does not wait for it;
`vrtool services` tells what came of it.

Ends with 0 if the manager took it, 1 if not, 2 if the arguments are wrong.

Example:
  vrtool services start engine)",
    Services::StartSyncService,
    Services::StartEngineService,
    Services::StartIndexService,
    "was handed to the service manager to be started",
    "was not started: it is missing, disabled or running already, or the rights are missing"};

ServiceRequest const stopRequest{
    "stop",
    "Ask a service to stop",
    R"(Asks the service to stop and does not wait for it; `vrtool services` tells what
came of it. A service that makes nothing of it counts as asked.

Ends with 0 if the service could be asked, 1 if not, 2 if the arguments are
wrong.

Example:
  vrtool services stop QuantumPFRIndex)",
    Services::StopSyncService,
    Services::StopEngineService,
    Services::StopIndexService,
    "was asked to stop",
    "cannot be asked to stop: it is missing, or the rights are"};

constexpr wchar_t syncName[] = L"sync";
constexpr wchar_t engineName[] = L"engine";

struct ServiceRow {
    wchar_t const* name;
    wchar_t const* service;
    Services::Status status;
    // Empty if it is not known.
    std::wstring account;
};

Services::Status statusBy(Services::Status (*inquiry)()) {
    // A service that answers in a state between running and stopped counts by the last error from
    // before the inquiry.
    SetLastError(ERROR_SUCCESS);
    return inquiry();
}

std::array<ServiceRow, 2> allServiceRows() {
    return {
        {{syncName, L"OstrelSync", statusBy(Services::TestSyncStatus),
          Services::GetSyncServiceUserName()},
         {engineName, L"Ostrel Engine Server", statusBy(Services::TestEngineStatus), {}}}};
}

wchar_t const* textOf(Services::Status status) {
    switch (status) {
    case Services::Running:
        return L"running";
    case Services::Stopped:
        return L"stopped";
    case Services::Unknown:
        break;
    }
    return L"unknown";
}

std::string tableOf(std::array<ServiceRow, 2> const& rows, std::optional<std::size_t> width) {
    using Align = TextTable::Align;
    using Narrow = TextTable::Narrow;
    TextTable table({
        {L"NAME"},
        {L"SERVICE"},
        {L"STATUS"},
        {L"ACCOUNT", Align::left, Narrow::wrap},
    });
    for (auto const& row : rows)
        table.addRow(
            {row.name, row.service, textOf(row.status), row.account.empty() ? L"-" : row.account});
    return table.text(width);
}

std::string jsonOf(std::array<ServiceRow, 2> const& rows) {
    Json::Value array(Json::arrayValue);
    for (auto const& row : rows) {
        Json::Value object;
        object["name"] = toUtf8(row.name);
        object["service"] = toUtf8(row.service);
        object["status"] = toUtf8(textOf(row.status));
        object["account"] = row.account.empty() ? Json::Value() : Json::Value(toUtf8(row.account));
        array.append(object);
    }
    return jsonText(array);
}

bool carryOut(ServiceRequest const& request, std::wstring const& name) {
    if (name == syncName)
        return request.sync();
    if (name == engineName)
        return request.engine();
    return request.named(name.c_str());
}

} // namespace

ServiceRequestCommand::ServiceRequestCommand(ServiceRequest const& request)
    : Command(request.verb, request.purpose, request.explanation), m_request(request) {}

void ServiceRequestCommand::declare(CLI::App& arguments) {
    m_name = arguments.add_option("NAME")->required();
    m_name->description("sync, engine, or the name of any other service");
}

int ServiceRequestCommand::run(Console& console) const {
    auto const name = CommandLine::textOf(*m_name);
    auto const service = "service " + toUtf8(name) + ' ';
    if (carryOut(m_request, name)) {
        console.out("The " + service + m_request.taken + ".\n");
        return ExitCode::success;
    }
    console.error("vrtool: the " + service + m_request.refused + '\n');
    return ExitCode::failure;
}

ServicesCommand::ServicesCommand()
    : Command("services", "Show the server's services, start one, stop one", servicesExplanation),
      m_start(startRequest),
      m_stop(stopRequest) {}

void ServicesCommand::declare(CLI::App& arguments) {
    arguments.require_subcommand(0, 1);
    arguments.add_flag("--json", m_json, "Print an array of objects instead of the table");
    m_start.join(arguments);
    m_stop.join(arguments);
}

int ServicesCommand::run(Console& console) const {
    if (m_start.chosen())
        return m_start.run(console);
    if (m_stop.chosen())
        return m_stop.run(console);

    auto const rows = allServiceRows();
    console.out(m_json ? jsonOf(rows) : tableOf(rows, console.width()));
    return ExitCode::success;
}
