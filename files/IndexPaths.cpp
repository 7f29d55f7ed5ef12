#include "vrUtils/Files/IndexPaths.h"

#include "vrUtils/Files/Exceptions.h"

namespace vrUtils::Files {

namespace {

constexpr wchar_t indexFolder[] = L"PFR-INDEX";
constexpr wchar_t indexExtension[] = L".mov";

// A path's own type may call its last word a folder; here it is always a file.
vr::PathSplitter splitAsFile(vr::Path const& path) { return {path.components().wholePath(), true}; }

bool startsWith(std::wstring const& text, std::wstring const& prefix) {
    return text.compare(0, prefix.size(), prefix) == 0;
}

} // namespace

vr::Path ArchiveToIndexPathConverter::GetIndexPath(vr::Path const& path) const {
    auto const parts = splitAsFile(path);
    auto const share = parts.firstFolder();
    auto rest = parts.folderText();
    if (startsWith(rest, share))
        rest.erase(0, share.size());

    vr::PathCreator index;
    index.append(parts.rootAndDrive()).append(share).append(indexFolder);
    index.append(rest).append(parts.fileName()).appendRaw(indexExtension);
    return {index.c_str(), vr::Path::eDetect};
}

vr::Path IndexToArchivePathConverter::GetArchivePath(
    vr::Path const& path, std::wstring const& extension) const {
    auto const parts = splitAsFile(path);
    auto const root = parts.root();
    if (root.empty())
        throw vrInvalidIndexPathException(path);
    if (parts.extension() != indexExtension)
        throw vrInvalidIndexPathException(path);

    vr::PathCreator folders;
    bool isInIndex = false;
    for (auto const& folder : parts.folders())
        if (folder == indexFolder)
            isInIndex = true;
        else
            folders.append(folder);
    if (!isInIndex)
        throw vrInvalidIndexPathException(path);

    vr::PathCreator const archive(
        root, folders.c_str(), parts.fileName().c_str(), extension.c_str());
    return {archive.c_str(), vr::Path::eDetect};
}

} // namespace vrUtils::Files
