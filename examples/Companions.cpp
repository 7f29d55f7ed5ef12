// The companion of a movie, found by a rule that makes its name of the movie's; and a movie that is
// asked for on a machine under another name, where the path comes back as it was found.

#include <vrUtils/Files.h>
#include <vrUtils/Storage.h>

#include <filesystem>
#include <iostream>
#include <string>

#include <winsock2.h>

namespace Files = vrUtils::Files;
namespace Storage = vrUtils::Storage;

namespace {

// "\1" is what the first brackets have matched in the movie's name.
std::wstring subtitlesOf(std::wstring const& movie, std::wstring const& folder) {
    auto const found =
        Storage::FindSidecarFile(movie, L"(.*)\\.mov", folder, L"\\1_[a-z]*\\.srt", L"*.srt");
    return found.empty() ? L"none" : found.substr(folder.size());
}

} // namespace

int main() {
    WSADATA sockets;
    if (WSAStartup(MAKEWORD(2, 2), &sockets) != 0)
        return 1;
    try {
        std::wstring name;
        Files::GenerateTempFilename(name);
        auto const wanted = std::filesystem::temp_directory_path() / name / L"";
        Storage::TempFolder const work(
            vr::Path::folder(wanted.wstring()), Storage::NewNameIfExists, Storage::DeleteAlways,
            L"Companions");
        auto const folder = work.Name().str();
        Files::SaveSmallFile({'1'}, vr::Path::file(folder + L"Clip1_en.srt"));
        std::wcout << L"subtitles of Clip1.MOV: " << subtitlesOf(L"Clip1.MOV", folder) << L'\n'
                   << L"subtitles of Clip2.mov: " << subtitlesOf(L"Clip2.mov", folder) << L'\n';

        auto here = vr::Path::file(folder + L"Clip1_en.srt");
        std::wcout << (Files::FileExistsAllowingAliasSubstitution(&here) ? L"there\n" : L"lost\n");
    } catch (vrException const& failure) {
        std::wcerr << failure.message() << L'\n';
        return 1;
    }
    // A missing file: the machine answers, and the path is rewritten all the same.
    auto missing = vr::Path::file(L"127.0.0.1", L"No Such Share\\", L"Clip.MOV");
    auto const isThere = Files::FileExistsAllowingAliasSubstitution(&missing);
    std::wcout << (isThere ? L"found at " : L"not found at ") << missing << L'\n';
    WSACleanup();
    return isThere ? 1 : 0;
}
