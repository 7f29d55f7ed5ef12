#include "tools/vrtool/PathMachine.h"

#include "tools/vrtool/Utf8.h"
#include "vrUtils/Files/MachineIdentity.h"
#include "vrUtils/Files/UncToLocalPath.h"

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

Facts whereaboutsOf(std::wstring const& text) {
    vr::Path const path(text, vr::Path::eDetect);
    auto const whole = path.components().wholePath();
    auto const local = vrUtils::Files::uncToLocalPath(path).components().wholePath();
    return {
        {"path", toUtf8(whole)},
        {"host", hostOf(path)},
        {"addresses", addressesOf(path)},
        {"thisMachine", vrUtils::Files::isPathToThisMachine(path)},
        {"localPath", toUtf8(local)},
        {"resolution", local == whole ? "unchanged" : "local path"},
        {"connectionShare", connectionShareOf(text)},
    };
}
