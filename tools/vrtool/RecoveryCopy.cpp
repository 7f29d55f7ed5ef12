#include "tools/vrtool/RecoveryCopy.h"

vr::Path recoveryFolderOf(vr::Path const& file) {
    return vr::Path::folder(file.components().folderPath() + L"Recovery\\");
}

vr::Path recoveryCopyOf(vr::Path const& file) {
    return vr::Path::file(
        recoveryFolderOf(file).components().folderPath() + file.components().fullName());
}
