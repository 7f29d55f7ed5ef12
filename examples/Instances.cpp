// Several systems on one machine, told apart by a number that moves their ports, and the endpoint
// strings that programs tell one another. A port that no instance has is a fault of the program.

#include <vrUtils/Instancing.h>
#include <vrUtils/TcpComms.h>

#include <iostream>
#include <string>

namespace Instancing = vrUtils::Instancing;
namespace TcpComms = vrUtils::TcpComms;

namespace {

constexpr std::uint32_t observerPort = 60772;
constexpr std::uint32_t transferPort = 60774;

void showSystem(std::uint32_t instance) {
    Instancing::setInstance(instance);
    auto const observer = Instancing::instanceHost(L"srv", observerPort);
    std::wcout << L"[" << Instancing::makeInstancedSystemName() << L"] observer at " << observer
               << L", transfer at "
               << Instancing::changePortPreservingInstance(observer, transferPort) << L'\n'
               << L"database " << Instancing::instanceDbFilePath(vr::Path::file(L"D:\\Db\\vr.db"))
               << L'\n';
}

} // namespace

int main() {
    try {
        showSystem(0);
        showSystem(2);

        std::wstring host;
        std::uint32_t port = 0;
        TcpComms::getHostAndPort(L"srv:60804", observerPort, &host, &port);
        std::wcout << host << L" is asked at " << Instancing::descriptionOfPort(port) << L'\n'
                   << L"connecting to " << TcpComms::descriptionOfConnectionTo(L"srv:60804")
                   << L'\n';
    } catch (vrException const& failure) {
        std::wcerr << failure.message() << L'\n';
        return 1;
    }

    try {
        Instancing::instancePort(80);
        return 1;
    } catch (vrException const& failure) {
        std::wcout << L"refused: " << failure.message() << L'\n';
    }
    return 0;
}
