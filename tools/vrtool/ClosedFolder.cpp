#include "tools/vrtool/ClosedFolder.h"

vr::Path closedFolder(std::wstring const& text) {
    auto folder = vr::Path::folder(text);
    folder.modify(vr::Path::eFolder).append(L"\\");
    return folder;
}
