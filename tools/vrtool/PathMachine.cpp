#include "tools/vrtool/PathMachine.h"

#include "tools/vrtool/Utf8.h"
#include "vrUtils/Files/MachineIdentity.h"

namespace {

std::wstring withoutBackslashes(std::wstring const& text) {
    auto const begin = text.find_first_not_of(L'\\');
    if (begin == std::wstring::npos)
        return {};
    return text.substr(begin, text.find_last_not_of(L'\\') - begin + 1);
}

} // namespace

Json::Value hostOf(vr::Path const& path) {
    auto const host = withoutBackslashes(path.components().host());
    return host.empty() ? Json::Value() : Json::Value(toUtf8(host));
}

Json::Value addressesOf(vr::Path const& path) {
    Json::Value addresses(Json::arrayValue);
    for (auto const& numbered : vrUtils::Files::resolveHostInPathToIPAddresses(path))
        addresses.append(hostOf(numbered));
    return addresses;
}

Json::Value connectionShareOf(std::wstring const& text) {
    // To a connection the last word is a file's name, whatever it looks like.
    vr::PathSplitter const parts(text, true);
    auto const root = withoutBackslashes(parts.root());
    if (root.empty())
        return {};
    return toUtf8(L"\\\\" + root + L'\\' + withoutBackslashes(parts.firstFolder()));
}
