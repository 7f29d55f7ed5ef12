// The state of the system's services, and a start that is waited for: the service manager only
// takes the request, so who needs the service asks until it runs, up to a limit of its own. Without
// arguments nothing is changed; `Services.exe start` starts what is stopped.

#include <vrUtils/OstrelServer.h>

#include <chrono>
#include <iostream>
#include <thread>

namespace Server = vrUtils::OstrelServer;

namespace {

wchar_t const* nameOf(Server::Status status) {
    switch (status) {
    case Server::Running:
        return L"running";
    case Server::Stopped:
        return L"stopped";
    case Server::Unknown:
        return L"not installed, or not for this user to ask";
    }
    return L"not known to this program";
}

bool startSync() {
    if (!Server::StartSyncService())
        return false;
    auto const end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (std::chrono::steady_clock::now() < end) {
        if (Server::TestSyncStatus() == Server::Running)
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
    }
    return false;
}

} // namespace

int main(int count, char**) {
    auto const sync = Server::TestSyncStatus();
    std::wcout << L"sync: " << nameOf(sync) << L'\n' << L"engine: "
               << nameOf(Server::TestEngineStatus()) << L'\n';

    auto const account = Server::GetSyncServiceUserName();
    if (!account.empty())
        std::wcout << L"sync runs as " << account << L'\n';

    if (count > 1 && sync == Server::Stopped) {
        auto const runs = startSync();
        std::wcout << (runs ? L"sync was started\n" : L"sync did not start\n");
        return runs ? 0 : 1;
    }
    return 0;
}
