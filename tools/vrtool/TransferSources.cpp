#include "tools/vrtool/TransferSources.h"

#include "tools/vrtool/FolderWalk.h"
#include "tools/vrtool/Platform.h"
#include "tools/vrtool/SystemText.h"

namespace {

// The folder with a closing backslash, however it was written.
vr::Path asFolder(std::wstring const& text) {
    auto folder = vr::Path::folder(text);
    folder.modify(vr::Path::eFolder).append(L"\\");
    return folder;
}

// What stands above the last folder: that one goes along, unless it is a drive's or a share's root.
std::size_t lengthAbove(vr::Path const& folder) {
    auto const& parts = folder.components();
    auto const top = (parts.rootAndDrive() + parts.firstFolder()).size();
    auto const whole = parts.folderPath();
    auto const above = whole.find_last_of(L'\\', whole.size() - 2);
    return above == std::wstring::npos ? 0 : std::max(top, above + 1);
}

} // namespace

std::vector<TransferSource> transferSources(std::wstring const& argument) {
    auto const text = fullPath(argument);
    vr::Path const file(text, vr::Path::eDetect);
    auto const attributes = GetFileAttributesW(text.c_str());
    auto const error = GetLastError();
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return {{file, {}, systemText(error)}};
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) == 0)
        return {{vr::Path::file(text), vr::Path::file(text).components().fullName(), {}}};

    auto const folder = asFolder(text);
    auto const above = lengthAbove(folder);
    std::vector<TransferSource> sources;
    for (auto& found : filesBelow(folder)) {
        auto const whole = found.path.components().wholePath();
        sources.push_back({std::move(found.path), whole.substr(above), std::move(found.failure)});
    }
    return sources;
}
