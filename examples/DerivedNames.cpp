// Names that follow from other names: the entry of an archived clip in the archive's index and the
// way back, and the message files that tell an asset-management system of a transfer. Paths are
// worked out only; no file is touched.

#include <vrUtils/AssetManagement.h>
#include <vrUtils/Files.h>

#include <iostream>
#include <string>

namespace {

void showIndex(vr::Path const& clip) {
    auto const entry = vrUtils::Files::ArchiveToIndexPathConverter().GetIndexPath(clip);
    std::wcout << L"indexed as " << entry << L'\n';
    // The index keeps no extension, so the caller has to know it.
    vrUtils::Files::IndexToArchivePathConverter const back;
    auto const archived = back.GetArchivePath(entry, L".mxf");
    std::wcout << L"archived as " << archived << L'\n';
}

void showMessages() {
    TransferParams transfer;
    transfer.host = L"playout";
    std::wstring(L"Media\\News\\").copy(transfer.folder, 259);
    std::wstring(L"clip1.mxf").copy(transfer.fileName, 259);
    namespace Messages = vrUtils::AssetManagement;
    std::wcout << L"message " << Messages::CreateMAMMsgFileName(&transfer, L"done_") << L'\n'
               << L"metadata " << Messages::CreateMetadataMsgFileName(&transfer, L"", L".json")
               << L'\n';
}

} // namespace

int main() {
    try {
        showIndex(vr::Path::file(L"arc", L"vault\\2011\\", L"clip.mxf"));
        showMessages();
    } catch (vrException const& failure) {
        std::wcerr << failure.message() << L'\n';
        return 1;
    } catch (vrUtils::Files::vrInvalidIndexPathException const& failure) {
        std::wcerr << L"not in an index: " << failure.path() << L'\n';
        return 1;
    }

    // The failure is its path and nothing else, and no vrException.
    try {
        showIndex(vr::Path::file(L"D:\\vault\\clip.mxf"));
    } catch (vrUtils::Files::vrInvalidIndexPathException const& failure) {
        std::wcout << L"no way back from " << failure.path() << L'\n';
    }
    return 0;
}
