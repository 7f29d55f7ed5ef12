#include "vrUtils/Instancing.h"

#include "foundation/Debugger.h"
#include "foundation/FailureCodes.h"
#include "foundation/Message.h"
#include "foundation/PortNumber.h"
#include "vrUtils/TcpComms.h"

#include <atomic>

namespace vrUtils::Instancing {

namespace {

constexpr std::uint32_t firstBasePort = 60772;
constexpr std::uint32_t lastBasePort = 60787;
// An instance's ports, as a shift.
constexpr unsigned blockShift = 4;

// By place in the block; two places have no service.
constexpr wchar_t const* serviceNames[lastBasePort - firstBasePort + 1] = {
    L"vrObserver",
    L"vrObserverCB",
    L"vrTransfer",
    L"vrTransferCB",
    nullptr,
    L"vrDBServer",
    L"vrMarshalSync",
    L"vrCliSyncServer",
    L"vrArchiveDriver",
    L"vrArchiveDriverCB",
    L"EricssonMAM HTTP server",
    L"OstrelSync HTTP server",
    L"OstrelControl HTTP server",
    L"OstrelEngine HTTP server",
    L"PFR Indexer",
    nullptr,
};

std::atomic<std::uint32_t> instanceOfProcess{0};

// A wrong port is a fault of the program: its developer is to see where.
template <typename... Pieces>
[[noreturn]] void fail(std::uint32_t line, Pieces const&... pieces) {
    breakIntoDebugger();
    throw vrException("Instancing", line, composeMessage(pieces...), PortOutOfRange);
}

std::wstring endpointOf(std::wstring const& host, std::uint32_t port) {
    return composeMessage(host, L':', port);
}

std::wstring bareHost(std::wstring const& endpoint) {
    return instanceRegPath(TcpComms::justHost(endpoint));
}

} // namespace

std::uint32_t currentInstance() { return instanceOfProcess; }

void setInstance(std::uint32_t instance) { instanceOfProcess = instance; }

std::uint32_t instancePort(std::uint32_t basePort, std::uint32_t instance) {
    if (basePort < firstBasePort)
        fail(__LINE__, L"Expected port >= ", firstBasePort, L", given ", basePort);
    if (basePort > lastBasePort)
        fail(__LINE__, L"Expected port <= ", lastBasePort, L", given ", basePort);
    return basePort + (instance << blockShift);
}

std::uint32_t instancePort(std::uint32_t basePort) {
    return instancePort(basePort, currentInstance());
}

std::uint32_t instanceFromPort(std::uint32_t port) {
    if (port < firstBasePort)
        fail(__LINE__, L"Expected port >= ", firstBasePort);
    return (port - firstBasePort) >> blockShift;
}

std::uint32_t instanceFromHost(std::wstring const& endpoint) {
    auto const colon = endpoint.find(L':');
    if (colon == std::wstring::npos)
        return 0;
    return instanceFromPort(portNumber(endpoint.substr(colon + 1), 0));
}

std::wstring instanceHost(std::wstring const& host, std::uint32_t basePort) {
    auto const port = instancePort(basePort);
    auto const name = bareHost(host);
    return port == basePort ? name : endpointOf(name, port);
}

std::wstring changePortPreservingInstance(std::wstring const& endpoint, std::uint32_t basePort) {
    auto const instance = instanceFromHost(endpoint);
    auto const name = bareHost(endpoint);
    return endpointOf(name, instancePort(basePort, instance));
}

std::wstring instanceRegPath(std::wstring const& path) { return path; }

std::wstring instanceDbFilePath(vr::Path const& path) {
    auto const instance = currentInstance();
    auto const& parts = path.components();
    if (instance == 0)
        return parts.wholePath();
    return composeMessage(parts.folderPath(), L"Instance", instance, L'\\', parts.fullName());
}

std::wstring makeInstancedSystemName() {
    auto const instance = currentInstance();
    return instance == 0 ? std::wstring() : composeMessage(L"System ", instance);
}

std::wstring descriptionOfPort(std::uint32_t port) {
    auto const instance = instanceFromPort(port);
    auto const base = port - (instance << blockShift);
    auto const* const name = serviceNames[base - firstBasePort];
    if (!name)
        fail(__LINE__, L"No description for port ", port, L" (base port ", base, L')');
    if (instance == 0)
        return composeMessage(L"port ", port, L" (is ", name, L')');
    return composeMessage(L"port ", port, L" (is instance ", instance, L" of ", name, L')');
}

} // namespace vrUtils::Instancing
