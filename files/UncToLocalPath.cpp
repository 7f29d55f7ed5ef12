#include "vrUtils/Files/UncToLocalPath.h"

#include "files/DriveMappings.h"
#include "files/FoldersBelowShare.h"
#include "files/PathMappings.h"
#include "foundation/Log.h"
#include "foundation/Platform.h"
#include "foundation/Text.h"
#include "vrUtils/Files/MachineIdentity.h"

#include <lm.h>

#include <atomic>
#include <mutex>
#include <set>
#include <string>

namespace vrUtils::Files {

namespace {

std::atomic<bool> driveMappingsLoaded{false};

// Each resolution is logged once.
std::set<std::wstring> loggedResolutions;
std::mutex loggedResolutionsLock;

bool isNewResolution(vr::Path const& uncRoot, vr::Path const& result) {
    auto key = uncRoot.components().wholePath() + L'\3' + result.components().wholePath();
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

vr::Path resolvedByTable(
    vr::Path const& path, vr::Path const& uncRoot, std::wstring const& localRoot,
    std::wstring const& rest, std::wstring const& fileName) {
    auto const filePart =
        fileName.empty() ? vr::Path(fileName, vr::Path::eDetect) : vr::Path::file(fileName);
    auto result = vr::Path(localRoot + rest, vr::Path::eDetect) + filePart;
    if (isNewResolution(uncRoot, result))
        VL_WriteLog(
            LogLevel::information, logModule,
            L"uncToLocalPath: \nResolved UNC path \n\"%s\"\n to local path \n\"%s\"\n",
            path.components().wholePath().c_str(), result.components().wholePath().c_str());
    return result;
}

vr::Path resolvedByShare(
    vr::Path const& path, vr::Path const& uncRoot, ShareInformation const& share,
    std::wstring const& rest, std::wstring const& fileName) {
    if (share.error() != NERR_Success) {
        VL_WriteLog(
            LogLevel::trace, logModule,
            L"uncToLocalPath: NetShareGetInfo failed on \"%s\" - error %ld",
            uncRoot.components().wholePath().c_str(), share.error());
        return path;
    }

    auto const base = share.folder();
    addPathMapping(vr::Path(base, vr::Path::eDetect), uncRoot);
    // A file even without a name, unlike what the table gives: callers have always had it so.
    auto result = vr::Path::folder(base + rest) + vr::Path::file(fileName);
    if (isNewResolution(uncRoot, result))
        VL_WriteLog(
            LogLevel::change, logModule,
            L"uncToLocalPath: NetShareGetInfo resolved UNC \"%s\" to local path \"%s\"",
            uncRoot.components().wholePath().c_str(), result.components().wholePath().c_str());
    return result;
}

} // namespace

vr::Path uncToLocalPath(vr::Path const& path) {
    auto const& parts = path.components();
    auto const machine = Strings::toLower(parts.root());
    auto const share = Strings::toLower(parts.firstFolder());
    auto const fileName = parts.fullName();
    auto const rest = foldersBelowShare(parts);

    loadDriveMappingsOnce();
    if (machine.empty() || share.empty())
        return path;

    auto const uncRoot = vr::Path::folder(machine + share);
    auto const localRoot = findPathMapping(uncRoot).components().wholePath();
    if (!localRoot.empty())
        return resolvedByTable(path, uncRoot, localRoot, rest, fileName);

    if (!isPathToThisMachine(vr::Path(parts.wholePath(), vr::Path::eDetect)))
        return path;

    ShareInformation const information(Strings::trimSlashes(machine), Strings::trimSlashes(share));
    return resolvedByShare(path, uncRoot, information, rest, fileName);
}

} // namespace vrUtils::Files
