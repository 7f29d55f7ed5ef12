// Which machine a path is on, told by addresses and never by names, and the way round the network
// for what is on this one. A host program starts the platform's socket layer before it asks.

#include <vrUtils/Files.h>

#include <iostream>

#include <winsock2.h>

namespace Files = vrUtils::Files;

namespace {

void compare(vr::Path const& first, vr::Path const& second) {
    std::wcout << first << L" and " << second << L": "
               << (Files::arePathsToSameMachine(first, second) ? L"one machine" : L"two machines")
               << L'\n';
}

void place(vr::Path const& path) {
    std::wcout << path << (Files::isPathToThisMachine(path) ? L" is here" : L" is elsewhere")
               << L", reached as " << Files::uncToLocalPath(path) << L'\n';
}

} // namespace

int main() {
    WSADATA sockets;
    if (WSAStartup(MAKEWORD(2, 2), &sockets) != 0) {
        std::wcerr << L"no socket layer\n";
        return 1;
    }

    auto const clip = vr::Path::file(L"198.51.100.7", L"Media\\", L"clip.mxf");
    compare(clip, vr::Path::folder(L"\\\\198.51.100.7:8080\\Archive\\"));
    compare(clip, vr::Path::folder(L"\\\\198.51.100.8\\Media\\"));

    place(vr::Path::file(L"C:\\Media\\clip.mxf"));
    place(vr::Path::file(L"localhost", L"Media\\", L"clip.mxf"));
    place(clip);

    // Other systems are given addresses, since they may know this machine under another name.
    for (auto const& path : Files::resolveHostInPathToIPAddresses(clip))
        std::wcout << L"by address: " << path << L'\n';

    WSACleanup();
    return 0;
}
