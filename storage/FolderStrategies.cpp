#include "storage/FolderStrategies.h"

#include "foundation/Platform.h"
#include "foundation/Text.h"
#include "vrUtils/Path.h"
#include "vrUtils/Storage/Directories.h"

namespace vrUtils::Storage {

namespace {

constexpr int lastNumber = 100;

bool create(std::wstring const& text) { return CreateDirectoryW(text.c_str(), nullptr) != FALSE; }

// What the numbers are added to. Without a closing separator the last word of the text is a file's
// name and falls away.
std::wstring stemOf(std::wstring const& text) {
    vr::PathSplitter const parts(text, true);
    return parts.root() + parts.drive() + Strings::trimSlashes(parts.folderText());
}

std::wstring numbered(std::wstring const& stem, int number) {
    auto const* const padding = number < 10 ? L".0" : L".";
    return stem + padding + std::to_wstring(number) + L'\\';
}

} // namespace

FolderCreateResult FolderCreatorUseExisting::Create(std::wstring& text) const {
    if (create(text))
        return FolderCreated;
    if (GetLastError() != ERROR_ALREADY_EXISTS)
        return FolderFailed;
    // Nobody is to take a folder for its own that was there before.
    text.clear();
    return FolderExisted;
}

FolderCreateResult FolderCreatorNewNameIfExists::Create(std::wstring& text) const {
    if (create(text))
        return FolderCreated;
    if (GetLastError() != ERROR_ALREADY_EXISTS)
        return FolderFailed;

    auto const stem = stemOf(text);
    for (auto number = 1; number <= lastNumber; ++number) {
        auto sibling = numbered(stem, number);
        if (create(sibling)) {
            text = std::move(sibling);
            return FolderCreated;
        }
        if (GetLastError() != ERROR_ALREADY_EXISTS)
            return FolderFailed;
    }
    return FolderFailed;
}

bool FolderDeleterIfEmpty::Delete(std::wstring const& text) const {
    return RemoveDirectoryW(text.c_str()) != FALSE;
}

bool FolderDeleterAlways::Delete(std::wstring const& text) const {
    return DeleteDirectory(text, true) == 0;
}

FolderCreator const* folderCreator(CreateBehaviour behaviour) {
    static FolderCreatorUseExisting const useExisting;
    static FolderCreatorNewNameIfExists const newNameIfExists;
    switch (behaviour) {
    case UseExisting:
        return &useExisting;
    case NewNameIfExists:
        return &newNameIfExists;
    }
    return nullptr;
}

FolderDeleter const* folderDeleter(DeleteBehaviour behaviour) {
    static FolderDeleterIfEmpty const ifEmpty;
    static FolderDeleterAlways const always;
    switch (behaviour) {
    case DeleteIfEmpty:
        return &ifEmpty;
    case DeleteAlways:
        return &always;
    }
    return nullptr;
}

} // namespace vrUtils::Storage
