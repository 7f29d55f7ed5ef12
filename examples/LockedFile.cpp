// One holder at a time for a file, among all processes and computers that ask in this way. The lock
// is a second file beside the first, which need not exist itself. There is no waiting: who comes
// second is told so at once.

#include <vrUtils/Files.h>

#include <filesystem>
#include <iostream>
#include <string>

namespace Files = vrUtils::Files;

namespace {

bool changeInPlace(vr::Path const& clip, wchar_t const* who) {
    try {
        Files::LockFile const lock(clip);
        std::wcout << who << L" changes the clip\n";
        return true;
    } catch (Files::LockFileException const&) {
        std::wcout << who << L" has to wait\n";
        return false;
    }
}

} // namespace

int main() {
    std::wstring name;
    Files::GenerateTempFilename(name);
    auto const clip = vr::Path::file((std::filesystem::temp_directory_path() / name).wstring());

    bool wasRefused = false;
    try {
        Files::LockFile const lock(clip);
        std::wcout << L"the first one holds the clip\n";
        wasRefused = !changeInPlace(clip, L"the second one");
    } catch (Files::LockFileException const& failure) {
        std::wcerr << failure.message() << L'\n';
        return 1;
    }

    auto const isFree = changeInPlace(clip, L"the third one");
    vr::Path const lockFile(clip.components().wholePath() + L".lck", vr::Path::eFile);
    std::wcout << (Files::FileExists(lockFile) ? L"left a lock file\n" : L"left nothing behind\n");
    return wasRefused && isFree ? 0 : 1;
}
