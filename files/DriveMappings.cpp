#include "files/DriveMappings.h"

#include "files/FoldersBelowShare.h"
#include "files/PathMappings.h"
#include "foundation/Handle.h"
#include "foundation/Log.h"
#include "foundation/RegistryText.h"
#include "vrUtils/vrException.h"

#include <winnetwk.h>

#include <array>
#include <list>
#include <optional>
#include <string>

namespace vrUtils::Files {

namespace {

constexpr wchar_t driveMappingKey[] = L"Software\\Vorrane\\Ostrel\\DriveMapping";

// A drive and its colon are far shorter; a longer name ends the enumeration.
constexpr DWORD valueNameUnits = 20;
constexpr DWORD valueBytes = 520;

constexpr DWORD driveListUnits = 1024;
constexpr DWORD universalNameBytes = 1024;

RegistryOwner openDriveMappingKey() {
    HKEY key = nullptr;
    // A key that cannot be had ends the enumeration before it has begun.
    RegCreateKeyExW(
        HKEY_LOCAL_MACHINE, driveMappingKey, 0, nullptr, REG_OPTION_NON_VOLATILE,
        KEY_READ | KEY_WRITE, nullptr, &key, nullptr);
    return RegistryOwner(key);
}

void connect(std::wstring drive, std::wstring share) {
    NETRESOURCEW resource{};
    resource.dwType = RESOURCETYPE_DISK;
    resource.lpLocalName = drive.data();
    resource.lpRemoteName = share.data();
    // A connection that fails shows where it is missed: the share has no drive then.
    WNetAddConnection2W(&resource, nullptr, nullptr, 0);
}

// The configured connections are optional: what goes wrong with their key costs and says nothing.
void connectValues(HKEY key) noexcept {
    try {
        for (DWORD index = 0;; ++index) {
            std::array<wchar_t, valueNameUnits> name;
            auto units = valueNameUnits;
            if (RegEnumValueW(
                    key, index, name.data(), &units, nullptr, nullptr, nullptr, nullptr) !=
                ERROR_SUCCESS)
                return;
            if (auto const share = readRegistryText(key, name.data(), valueBytes))
                connect(name.data(), *share);
        }
    } catch (...) {
    }
}

void connectRegistryDriveMappings() {
    try {
        auto const key = openDriveMappingKey();
        connectValues(key.get());
    } catch (vrException const&) {
        VL_WriteLog(
            LogLevel::information, logModule, L"No registry drive letter mapping available");
    }
}

std::list<std::wstring> driveRoots() {
    std::array<wchar_t, driveListUnits> buffer{};
    if (GetLogicalDriveStringsW(driveListUnits, buffer.data()) == 0) {
        auto const error = GetLastError();
        VL_WriteLog(
            LogLevel::failure, logModule,
            L"uncToLocalPath: GetLogicalDriveStrings failed - error %d", error);
    }
    std::list<std::wstring> roots;
    for (auto const* root = buffer.data(); *root; root += roots.back().size() + 1)
        roots.emplace_back(root);
    return roots;
}

// The share that a drive is connected to; none for a disk of this machine.
std::optional<std::wstring> universalName(std::wstring const& drive) {
    alignas(UNIVERSAL_NAME_INFOW) std::array<unsigned char, universalNameBytes> buffer{};
    auto size = universalNameBytes;
    if (WNetGetUniversalNameW(drive.c_str(), UNIVERSAL_NAME_INFO_LEVEL, buffer.data(), &size) !=
        NO_ERROR) {
        // The last error and not the result: that is how this line has always been read.
        auto const error = GetLastError();
        VL_WriteLog(
            LogLevel::trace, logModule, L"Failed to map local path [%s]: err=0x%x", drive.c_str(),
            error);
        return std::nullopt;
    }
    return reinterpret_cast<UNIVERSAL_NAME_INFOW const*>(buffer.data())->lpUniversalName;
}

void addDrive(std::wstring const& drive, std::wstring const& share) {
    auto const unc = vr::Path::folder(share);
    // The folders below the share stay on both sides, which keeps a drive that is connected there
    // from ever being found.
    auto const local = vr::Path::folder(drive + foldersBelowShare(unc.components()));
    addPathMapping(local, unc);
    VL_WriteLog(
        LogLevel::trace, logModule, L"Local path [%s] mapped to [%s]",
        local.components().wholePath().c_str(), unc.components().wholePath().c_str());
}

} // namespace

void loadDriveMappings() {
    connectRegistryDriveMappings();
    for (auto const& drive : driveRoots())
        if (auto const share = universalName(drive))
            addDrive(drive, *share);
}

} // namespace vrUtils::Files
