#include "files/HostAddresses.h"

#include "foundation/Platform.h"
#include "foundation/Text.h"

#include <winsock2.h>

#include <array>
#include <cstring>

namespace vrUtils::Files {

namespace {

hostent const* lookUp(std::wstring const& name) {
    // Names have no case, but not every resolver knows that.
    return gethostbyname(Strings::wideToNarrow(Strings::toLower(name)).c_str());
}

// The empty name means this computer to the platform too, but its addresses then need not be those
// of the computer's name.
hostent const* lookUpThisComputer() {
    auto const name = getComputerName();
    if (!name.empty())
        if (auto const* const entry = lookUp(name))
            return entry;
    return lookUp({});
}

} // namespace

std::list<std::wstring> getHostAddresses(std::wstring const& name) {
    auto const host = Strings::trimSlashes(name);
    auto const* const entry = host.empty() ? lookUpThisComputer() : lookUp(host);
    std::list<std::wstring> addresses;
    if (!entry)
        return addresses;

    for (auto const* address = entry->h_addr_list; *address; ++address) {
        in_addr binary;
        std::memcpy(&binary, *address, sizeof binary);
        addresses.push_back(Strings::narrowToWide(inet_ntoa(binary)));
    }
    return addresses;
}

std::wstring getComputerName() {
    // Whether the call succeeds shows in the buffer.
    std::array<wchar_t, MAX_COMPUTERNAME_LENGTH + 1> name{};
    auto units = static_cast<DWORD>(name.size());
    GetComputerNameW(name.data(), &units);
    return name.data();
}

} // namespace vrUtils::Files
