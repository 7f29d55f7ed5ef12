// A transfer's target: is there room, then the folders, then the work in them. Free space is told
// by a code, one of which is positive and still a failure; folders fail by exceptions.

#include <vrUtils/Files.h>
#include <vrUtils/Storage.h>

#include <filesystem>
#include <iostream>
#include <string>

namespace Storage = vrUtils::Storage;

namespace {

constexpr std::uint64_t oneMegabyte = 1 << 20;

wchar_t const* roomFor(std::wstring const& folder, std::uint64_t bytes) {
    SrvrParam server;
    folder.copy(server.folder, 259);
    switch (Storage::CheckForDiskSpace(&server, bytes)) {
    case 0:
        return L"enough";
    case Storage::DiskSpaceNotEnough:
        return L"not enough";
    default:
        return L"unknown";
    }
}

} // namespace

int main() {
    auto const temporary = std::filesystem::temp_directory_path();
    std::wcout << L"room for 1 MB: " << roomFor(temporary.wstring(), oneMegabyte) << L'\n'
               << L"room for far too much: " << roomFor(temporary.wstring(), ~std::uint64_t{0})
               << L'\n' << L"room on no drive: " << roomFor(L"Q:\\Media", oneMegabyte) << L'\n';

    std::wstring name;
    vrUtils::Files::GenerateTempFilename(name);
    auto const top = (temporary / name).wstring();
    // Without the separator at its end, the last folder would not be made.
    auto const day = vr::Path::folder(top + L"\\Media\\day 1\\");
    try {
        Storage::MakeDirectoryIterative(day);
        std::wcout << (vrUtils::Files::FileExists(day) ? L"made\n" : L"not made\n");
        vrUtils::Files::SaveSmallFile({'o', 'k'}, day + vr::Path::file(L"clip.mxf"));
    } catch (Storage::vrCreateFolderException const& failure) {
        std::wcerr << failure.text() << L": error " << failure.error() << L'\n';
        return 1;
    } catch (vrException const& failure) {
        std::wcerr << failure.message() << L'\n';
        return 1;
    }
    auto const error = Storage::DeleteDirectory(top, true);
    auto const isGone = error == 0 && !vrUtils::Files::FileExists(vr::Path::folder(top));
    std::wcout << (isGone ? L"removed again\n" : L"still there\n");
    return isGone ? 0 : 1;
}
