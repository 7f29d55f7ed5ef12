#include "vrUtils/Files/UncToLocalPath.h"

#include "files/DriveMappings.h"
#include "files/FoldersBelowShare.h"
#include "files/PathMappings.h"
#include "foundation/Log.h"
#include "foundation/Mutex.h"
#include "foundation/Platform.h"
#include "foundation/Text.h"
#include "vrUtils/Files/MachineIdentity.h"

#include <lm.h>

#include <atomic>
#include <mutex>
#include <set>
#include <string>
#include <utility>

namespace vrUtils::Files {

namespace {

std::atomic<bool> driveMappingsLoaded{false};

// Each resolution is logged once.
std::set<std::wstring> loggedResolutions;
Mutex loggedResolutionsLock;

bool isNewResolution(std::wstring const& uncRoot, vr::Path const& result) {
    auto key = uncRoot + L'\3' + result.components().wholePath();
    std::lock_guard const guard(loggedResolutionsLock);
    return loggedResolutions.insert(std::move(key)).second;
}

// Two threads may both load: the rows are then there twice, and the first ones count.
void loadDriveMappingsOnce() {
    if (driveMappingsLoaded)
        return;
    loadDriveMappings();
    driveMappingsLoaded = true;
}

// What the platform tells of a share of this machine.
class ShareInformation {
  public:
    ShareInformation(std::wstring server, std::wstring share)
        : m_error(NetShareGetInfo(
              server.data(), share.data(), 2, reinterpret_cast<BYTE**>(&m_information))) {}

    ShareInformation(ShareInformation const&) = delete;
    ShareInformation& operator=(ShareInformation const&) = delete;

    ~ShareInformation() { NetApiBufferFree(m_information); }

    unsigned long error() const noexcept { return m_error; }

    // The folder behind the share, closed by a separator if it is not empty.
    std::wstring folder() const {
        std::wstring folder = m_information->shi2_path;
        if (!folder.empty() && !Strings::isSlash(folder.back()))
            folder += L'\\';
        return folder;
    }

  private:
    // Not every platform writes it when it fails.
    SHARE_INFO_2* m_information = nullptr;
    unsigned long m_error;
};

// A file in a folder whose text ends in a backslash or is empty.
vr::Path fileIn(std::wstring folder, std::wstring const& name) {
    // A name without a colon means the same to every parse, and needs none of its own.
    if (name.find(L':') == std::wstring::npos)
        return vr::Path::file(folder.append(name));
    auto path = vr::Path::folder(folder);
    path += vr::Path::file(name);
    return path;
}

vr::Path resolvedByTable(
    vr::Path const& path, std::wstring const& uncRoot, std::wstring folder,
    std::wstring const& fileName) {
    auto result = fileName.empty() ? vr::Path::folder(folder) : fileIn(std::move(folder), fileName);
    if (isNewResolution(uncRoot, result))
        VL_WriteLog(
            LogLevel::information, logModule,
            L"uncToLocalPath: \nResolved UNC path \n\"%s\"\n to local path \n\"%s\"\n",
            path.components().wholePath().c_str(), result.components().wholePath().c_str());
    return result;
}

vr::Path resolvedByShare(
    vr::Path const& path, std::wstring const& uncRoot, ShareInformation const& share,
    std::wstring const& rest, std::wstring const& fileName) {
    if (share.error() != NERR_Success) {
        VL_WriteLog(
            LogLevel::trace, logModule,
            L"uncToLocalPath: NetShareGetInfo failed on \"%s\" - error %ld", uncRoot.c_str(),
            share.error());
        return path;
    }

    auto const base = share.folder();
    addPathMapping(vr::Path(base, vr::Path::eDetect), vr::Path::folder(uncRoot));
    // A file even without a name, unlike what the table gives: callers have always had it so.
    auto result = fileIn(base + rest, fileName);
    if (isNewResolution(uncRoot, result))
        VL_WriteLog(
            LogLevel::change, logModule,
            L"uncToLocalPath: NetShareGetInfo resolved UNC \"%s\" to local path \"%s\"",
            uncRoot.c_str(), result.components().wholePath().c_str());
    return result;
}

} // namespace

vr::Path uncToLocalPath(vr::Path const& path) {
    auto const& parts = path.components();
    auto const share = parts.firstFolder();
    auto const rest = foldersBelowShare(parts);
    auto const fileName = parts.fullName();

    loadDriveMappingsOnce();
    // No share, or no machine that could have one.
    if (share.empty())
        return path;

    // Parts of a parse, and so in normal form.
    auto const uncRoot = Strings::toLower(parts.root() + share);
    auto localRoot = findPathMapping(uncRoot);
    if (!localRoot.empty())
        return resolvedByTable(path, uncRoot, localRoot.append(rest), fileName);

    if (!isPathToThisMachine(vr::Path(parts.wholePath(), vr::Path::eDetect)))
        return path;

    ShareInformation const information(
        Strings::trimSlashes(Strings::toLower(parts.root())),
        Strings::trimSlashes(Strings::toLower(share)));
    return resolvedByShare(path, uncRoot, information, rest, fileName);
}

} // namespace vrUtils::Files
