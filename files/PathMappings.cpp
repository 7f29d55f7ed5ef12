#include "files/PathMappings.h"

#include "foundation/Mutex.h"
#include "foundation/Text.h"

#include <algorithm>
#include <list>
#include <mutex>
#include <utility>

namespace vrUtils::Files {

namespace {

constexpr std::size_t mostRows = 33;

// Both in normal form, so that a search parses nothing; the network root in lower case.
struct PathMapping {
    std::wstring uncRoot;
    std::wstring localRoot;
};

std::list<PathMapping> pathMappings;
Mutex pathMappingsLock;

} // namespace

void addPathMapping(vr::Path const& localRoot, vr::Path const& uncRoot) {
    PathMapping row{
        Strings::toLower(uncRoot.components().wholePath()), localRoot.components().wholePath()};
    std::lock_guard const guard(pathMappingsLock);
    // In this order, so that no row goes where there is no memory for the new one.
    pathMappings.push_back(std::move(row));
    if (pathMappings.size() > mostRows)
        pathMappings.pop_front();
}

std::wstring findPathMapping(std::wstring const& uncRoot) {
    std::lock_guard const guard(pathMappingsLock);
    auto const row =
        std::find_if(pathMappings.begin(), pathMappings.end(), [&](PathMapping const& candidate) {
            return candidate.uncRoot == uncRoot;
        });
    return row == pathMappings.end() ? std::wstring() : row->localRoot;
}

} // namespace vrUtils::Files
