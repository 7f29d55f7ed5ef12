#include "vrUtils/Storage/Directories.h"

#include "foundation/Log.h"
#include "foundation/Platform.h"
#include "foundation/Text.h"
#include "storage/DirectoryRemoval.h"
#include "storage/FolderStrategies.h"
#include "vrUtils/Storage/Exceptions.h"

namespace vrUtils::Storage {

void MakeDirectory(vr::Path const& path) {
    auto text = path.components().wholePath();
    if (FolderCreatorUseExisting().Create(text) == FolderFailed) {
        auto const error = GetLastError();
        throw vrCreateFolderException(error, text);
    }
}

void MakeDirectoryIterative(vr::Path const& path) {
    auto const& parts = path.components();
    vr::Path current(parts.rootAndDrive(), vr::Path::eDetect);
    auto folder = parts.folders().begin();
    auto const end = parts.folders().end();

    // A share is there, and cannot be made as a folder.
    if (!parts.root().empty() && folder != end)
        current.modify(vr::Path::eDetect).append(*folder++);

    for (; folder != end; ++folder) {
        current.modify(vr::Path::eDetect).append(*folder);
        VL_WriteLog(LogLevel::trace, logModule, L"Creating Folder [%s]", current.str().c_str());
        MakeDirectory(current);
    }
}

int DeleteDirectory(std::wstring const& path, bool recursive) {
    std::wstring const folder(Strings::upToZero(path));
    // An empty text names no folder. The platform would search the root of the current drive.
    if (folder.empty())
        return NO_ERROR;
    return static_cast<int>(DirectoryRemoval(folder, recursive).run());
}

} // namespace vrUtils::Storage
