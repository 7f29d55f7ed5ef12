#include "vrUtils/Storage/KnownPlaces.h"

#include "foundation/FailureCodes.h"
#include "foundation/Platform.h"
#include "vrUtils/Storage/Directories.h"
#include "vrUtils/Storage/Exceptions.h"
#include "vrUtils/vrException.h"

#include <array>
#include <memory>

#include <shlobj.h>

namespace vrUtils::Storage {

namespace {

constexpr wchar_t localMediaDrive[] = L"C:\\";
constexpr wchar_t mediaFolderName[] = L"OstrelMedia\\";
constexpr wchar_t referenceMoviesFolderName[] = L"ReferenceMovies\\";

constexpr wchar_t commonDataFailure[] = L"Unable to find Common Application Data Folder";

// The line that readers of this failure look for.
constexpr std::uint32_t folderFailureLine = 1102;

struct FreeTaskMemory {
    void operator()(void* memory) const noexcept { CoTaskMemFree(memory); }
};

vr::Path getKnownFolder(KNOWNFOLDERID const& id) {
    wchar_t* text = nullptr;
    auto const result = SHGetKnownFolderPath(id, 0, nullptr, &text);
    auto const error = GetLastError();
    std::unique_ptr<wchar_t, FreeTaskMemory> const owner(text);
    if (FAILED(result))
        throw vrStorageException(error, L"Unable to get folder path");
    return {text, vr::Path::eDetect};
}

vr::Path commonDataFolder(wchar_t const* product, wchar_t const* subfolder) {
    auto folder = getKnownFolder(FOLDERID_ProgramData);
    folder.modify(vr::Path::eDetect).append(product);
    if (subfolder)
        folder.modify(vr::Path::eDetect).append(subfolder);
    return folder;
}

vr::Path referenceMoviesIn(vr::Path const& media) {
    return media + vr::Path::folder(referenceMoviesFolderName);
}

} // namespace

vr::Path GetProgramFileFolder() {
    try {
        return getKnownFolder(FOLDERID_ProgramFiles);
    } catch (vrStorageException const&) {
        throw vrStorageException(GetLastError(), L"Unable to find Program Files folder");
    }
}

vr::Path GetVorraneCommonAppDataFolder(wchar_t const* subfolder) {
    try {
        auto folder = commonDataFolder(L"Vorrane\\", subfolder);
        MakeDirectoryIterative(folder);
        return folder;
    } catch (vrStorageException const&) {
        throw vrStorageException(GetLastError(), commonDataFailure);
    }
}

vr::Path GetPFRCommonAppDataFolder(wchar_t const* subfolder) {
    try {
        return commonDataFolder(L"Quantum\\", subfolder);
    } catch (vrStorageException const&) {
        throw vrStorageException(GetLastError(), commonDataFailure);
    }
}

vr::Path GetOstrelMediaPath() {
    std::array<wchar_t, MAX_COMPUTERNAME_LENGTH + 1> name{};
    auto units = static_cast<DWORD>(name.size());
    if (!GetComputerNameW(name.data(), &units))
        throw vrException(
            "Storage", folderFailureLine,
            L"Failed to determine computer name when getting OstrelMedia path", GeneralFailure);
    return vr::Path::folder(name.data(), mediaFolderName);
}

vr::Path GetReferenceMoviesPath() { return referenceMoviesIn(GetOstrelMediaPath()); }

vr::Path GetLocalOstrelMediaPath() {
    vr::Path media(localMediaDrive, vr::Path::eDetect);
    media.modify(vr::Path::eDetect).append(mediaFolderName);
    return media;
}

vr::Path GetLocalReferenceMoviesPath() { return referenceMoviesIn(GetLocalOstrelMediaPath()); }

} // namespace vrUtils::Storage
