#include "files/PathMappings.h"

#include "foundation/Text.h"

#include <algorithm>
#include <list>
#include <mutex>
#include <string>

namespace vrUtils::Files {

namespace {

constexpr std::size_t rowsThatStay = 32;

struct PathMapping {
    // In lower case.
    std::wstring uncRoot;
    vr::Path localRoot;
};

std::list<PathMapping> pathMappings;
std::mutex pathMappingsLock;

std::wstring keyOf(vr::Path const& uncRoot) {
    return Strings::toLower(uncRoot.components().wholePath());
}

} // namespace

void addPathMapping(vr::Path const& localRoot, vr::Path const& uncRoot) {
    PathMapping row{keyOf(uncRoot), localRoot};
    std::lock_guard const guard(pathMappingsLock);
    if (pathMappings.size() > rowsThatStay)
        pathMappings.pop_front();
    pathMappings.push_back(std::move(row));
}

vr::Path findPathMapping(vr::Path const& uncRoot) {
    auto const key = keyOf(uncRoot);
    std::lock_guard const guard(pathMappingsLock);
    auto const row =
        std::find_if(pathMappings.begin(), pathMappings.end(), [&](PathMapping const& candidate) {
            return candidate.uncRoot == key;
        });
    return row == pathMappings.end() ? vr::Path() : row->localRoot;
}

} // namespace vrUtils::Files
