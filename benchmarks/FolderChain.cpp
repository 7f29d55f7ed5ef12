// A chain of ten folders made, and the same chain made again where it exists already.

#include "benchmarks/Candidate.h"
#include "benchmarks/Folder.h"

#include "VorraneLog/VorraneLog.h"
#include "foundation/Platform.h"
#include "vrUtils/Storage.h"

#ifdef PEER_BOOST
#include <boost/filesystem.hpp>
#endif

#include <cstring>
#include <filesystem>
#include <string>

namespace {

constexpr unsigned levels = 10;

std::wstring chainBelow(std::wstring const& root) {
    auto chain = root;
    for (unsigned level = 0; level < levels; ++level)
        chain += L"\\level " + std::to_wstring(level);
    return chain + L'\\';
}

void logLevel(std::wstring const& level) {
    VL_WriteLog(7, L"vrUtils", L"Creating Folder [%s]", level.c_str());
}

// The raw calls: one for each level below the drive, whether it exists or not; and what comes ahead
// of each.
template <class Announce>
bool makeByCalls(std::wstring const& chain, Announce const& announce) {
    bool made = false;
    std::wstring level;
    for (auto end = chain.find(L'\\', 3); end != std::wstring::npos;
         end = chain.find(L'\\', end + 1)) {
        level.assign(chain, 0, end);
        announce(level);
        made = CreateDirectoryW(level.c_str(), nullptr) || GetLastError() == ERROR_ALREADY_EXISTS;
    }
    return made;
}

template <class Work>
void making(char const* name, Work work) {
    auto const root =
        benchmarks::fileNamed(L"chain-") + std::wstring(name, name + std::strlen(name));
    auto const chain = chainBelow(root);
    benchmarks::preparedCandidate(
        "make-chain", name, [=] { std::filesystem::remove_all(root); },
        [=] { return work(chain); });
    auto const existing = chainBelow(root + L"-existing");
    std::filesystem::create_directories(existing);
    benchmarks::candidate("make-chain-again", name, [=] { return work(existing); });
}

int makeOurs(std::wstring const& chain) {
    vrUtils::Storage::MakeDirectoryIterative(vr::Path::folder(chain));
    return 0;
}

} // namespace

void benchmarks::registerCandidates() {
    making("ours", makeOurs);
    making("std", [](auto const& chain) { return std::filesystem::create_directories(chain); });
#ifdef PEER_BOOST
    making("boost", [](auto const& chain) { return boost::filesystem::create_directories(chain); });
#endif
    making("same-calls", [](auto const& chain) { return makeByCalls(chain, logLevel); });
    making("raw-calls", [](auto const& chain) {
        return makeByCalls(chain, [](std::wstring const&) {});
    });
}
