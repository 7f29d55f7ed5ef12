#include "vrUtils/AssetManagement.h"

#include "vrUtils/Files/FileQueries.h"

#include <algorithm>

namespace vrUtils::AssetManagement {

namespace {

constexpr wchar_t messageExtension[] = L".xml";
constexpr std::uint32_t typeNamedBySource = 20;

vr::PathCreator targetFolder(TransferParams const& transfer) {
    return {transfer.host, transfer.folder, nullptr, nullptr};
}

bool isAbsolute(wchar_t const* text) { return vr::Path(text, vr::Path::eDetect).isAbsolute(); }

bool hasAbsoluteFile(TransferParams const& transfer) {
    auto const& files = transfer.files;
    if (files.empty())
        return isAbsolute(transfer.folder) || isAbsolute(transfer.fileName);
    // A path keeps its parse even when it is const. Only copies are asked, so that several threads
    // can read one transfer.
    return std::any_of(files.begin(), files.end(), [](TransferFile const& file) {
        return vr::Path(file.Name()).isAbsolute();
    });
}

// The first of the transfer's files, below the folder that its names are taken under; an empty path
// for a transfer of nothing.
vr::Path firstFile(TransferParams const& transfer) {
    auto const& files = transfer.files;
    if (files.empty() && transfer.fileName[0] == L'\0')
        return {};
    auto file = files.empty() ? vr::Path::file(transfer.fileName) : files.front().Name();
    if (!hasAbsoluteFile(transfer))
        return vr::Path::folder(transfer.relativeRoot) + file;
    if (!files.empty() || file.isAbsolute())
        return file;
    return vr::Path(transfer.folder, vr::Path::eDetect) + file;
}

std::wstring legalName(std::wstring const& name) {
    std::wstring legal;
    Files::GenerateLegalFilename(name, legal, false);
    return legal;
}

// Between a prefix and the name there is no separator: they are one name.
void appendName(vr::PathCreator& path, std::wstring const& prefix, std::wstring const& name) {
    if (prefix.empty())
        path.append(name);
    else
        path.append(prefix).appendRaw(name);
}

} // namespace

std::wstring CreateMAMMsgFileName(TransferParams const* transfer, std::wstring const& prefix) {
    auto path = targetFolder(*transfer);
    auto const name = firstFile(*transfer).components().fileName() + messageExtension;
    appendName(path, prefix, legalName(name));
    return path.get();
}

std::wstring CreateMetadataMsgFileName(
    TransferParams const* transfer, std::wstring const& prefix, std::wstring const& extension) {
    vr::PathCreator path;
    if (transfer->metadataFolder[0] == L'\0')
        path.append(targetFolder(*transfer).get());
    else
        path.append(transfer->metadataFolder).append(L"\\");

    auto const name = transfer->type == typeNamedBySource
                          ? std::wstring(transfer->sourceName)
                          : vr::Path::file(transfer->fileName).components().fileName();
    appendName(path, prefix, legalName(name));
    path.appendRaw(extension.empty() ? messageExtension : extension);
    return path.get();
}

} // namespace vrUtils::AssetManagement
