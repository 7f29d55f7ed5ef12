#include "vrUtils/Files/MachineIdentity.h"

#include "files/HostAddresses.h"
#include "foundation/Message.h"
#include "foundation/Text.h"

#include <algorithm>

namespace vrUtils::Files {

namespace {

bool isLiteralOfThisMachine(std::wstring const& loweredHost) {
    return loweredHost == L"\\\\localhost\\" || loweredHost == L"\\\\127.0.0.1\\";
}

// The host in lower case, or this computer's bare name in place of the two literals.
std::wstring hostOrComputerName(vr::PathSplitter const& parts) {
    auto host = Strings::toLower(parts.host());
    return isLiteralOfThisMachine(host) ? getComputerName() : host;
}

std::wstring portSuffix(vr::PathSplitter const& parts) {
    auto const port = parts.port();
    return port == 0 ? std::wstring() : composeMessage(L':', port);
}

// What stands in place of root and drive, with the folders and the name of the path.
vr::Path rebased(std::wstring const& start, vr::PathSplitter const& parts) {
    auto const name = parts.fullName();
    auto const folder = start + parts.folderText();
    return name.empty() ? vr::Path::folder(folder) : vr::Path::file(folder + name);
}

bool haveCommonElement(std::list<std::wstring> const& ones, std::list<std::wstring> const& others) {
    return std::any_of(ones.begin(), ones.end(), [&](std::wstring const& one) {
        return std::find(others.begin(), others.end(), one) != others.end();
    });
}

std::list<std::wstring> resolvedHosts(vr::Path const& path) {
    std::list<std::wstring> hosts;
    for (auto const& resolved : resolveHostInPathToIPAddresses(path))
        hosts.push_back(resolved.components().host());
    return hosts;
}

} // namespace

std::list<vr::Path> resolveHostInPathToIPAddresses(vr::Path const& path) {
    auto const& parts = path.components();
    auto const behindAddress = portSuffix(parts) + L'\\';
    std::list<vr::Path> resolved;
    for (auto const& address : getHostAddresses(hostOrComputerName(parts))) {
        std::wstring root = L"\\\\";
        root.append(address).append(behindAddress);
        resolved.push_back(rebased(root, parts));
    }
    return resolved;
}

vr::Path replaceLocalhostWithMachineName(vr::Path const& path) {
    // No backslashes around the name: the system's programs rely on the texts as they come.
    auto const& parts = path.components();
    return rebased(hostOrComputerName(parts) + portSuffix(parts), parts);
}

bool arePathsToSameMachine(vr::Path const& first, vr::Path const& second) {
    auto const ones = resolvedHosts(first);
    return haveCommonElement(ones, resolvedHosts(second));
}

bool isPathToThisMachine(vr::Path const& path) {
    auto const& parts = path.components();
    if (!parts.drive().empty())
        return true;
    if (parts.root().empty())
        return false;
    auto const host = Strings::toLower(parts.host());
    if (isLiteralOfThisMachine(host))
        return true;

    auto const mine = getHostAddresses(getComputerName());
    return haveCommonElement(getHostAddresses(host), mine);
}

} // namespace vrUtils::Files
