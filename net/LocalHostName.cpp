#include "vrUtils/Host.h"

#include "foundation/Platform.h"

#include <array>

namespace vrUtils::Host {

std::wstring GetLocalHostName() {
    std::array<wchar_t, MAX_COMPUTERNAME_LENGTH + 1> name;
    // One short of the buffer, and so of the longest name: names are limited to 14 characters here.
    DWORD units = MAX_COMPUTERNAME_LENGTH;
    if (!::GetComputerNameW(name.data(), &units))
        throw vrFailedToGetHostNameException();
    return name.data();
}

} // namespace vrUtils::Host
