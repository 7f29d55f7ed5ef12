// A share that is reached under a user's name of its own. The path has a separator behind the
// share, since its last word counts as a file's name; the connection is known by the bare share,
// and so is ended by that. A share that refuses is told by its code.

#include <vrUtils/Storage.h>
#include <vrUtils/vrException.h>

#include <iostream>
#include <string>

namespace Storage = vrUtils::Storage;

namespace {

constexpr std::uint32_t otherUserConnected = 0x80606005;

// What can be done without the share is done without it.
bool fetchFrom(std::wstring const& share) {
    try {
        Storage::NetworkShareConnection const connection(share + L'\\', L"ingest", L"secret");
        std::wcout << L"connected to " << share << L'\n';
        Storage::Disconnect(share);
        return true;
    } catch (vrException const& failure) {
        std::wcout << failure.message()
                   << (failure.code() == otherUserConnected ? L" (another user has it)\n" : L"\n");
        return false;
    }
}

} // namespace

int main() {
    std::wstring const share = L"\\\\no-such-server\\media";
    auto const isConnected = fetchFrom(share);

    // The same by a function, for who wants to know why.
    auto const error = Storage::ConnectAsUserWithRetCode(share + L'\\', L"ingest", L"secret");
    if (error == 0)
        Storage::Disconnect(share);
    std::wcout << (error == 0 ? L"reached\n" : L"out of reach\n");
    return isConnected == (error == 0) ? 0 : 1;
}
