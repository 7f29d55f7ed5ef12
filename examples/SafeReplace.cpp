// Replacing a file so that the old one comes back if the new one fails. Three objects clean up by
// themselves: a folder to work in, a half-written target, and the old file that was set aside.

#include <vrUtils/Files.h>
#include <vrUtils/Storage.h>

#include <filesystem>
#include <iostream>

using namespace vrUtils::Files;
using namespace vrUtils::Storage;

namespace {

void replace(vr::Path const& clip, bool breaksDown) {
    RecoverableFileDeleter old(clip, L"SafeReplace");
    old.Delete();
    try {
        TempFileDeleter partial(clip);
        SaveSmallFile({'n', 'e', 'w'}, clip);
        if (breaksDown)
            throw vrException(__LINE__, L"the source has gone");
        partial.SetFile({}); // it is whole, and stays
    } catch (...) {
        old.Recover(); // whatever it was: the copy goes for good when the object goes
        throw;
    }
}

void tryToReplace(vr::Path const& clip, bool breaksDown) {
    try {
        replace(clip, breaksDown);
    } catch (vrException const& failure) {
        std::wcout << L"not replaced: " << failure.message() << L'\n';
    }
    std::vector<char> bytes;
    LoadSmallFile(clip, 1024, &bytes);
    std::wcout << L"the clip is " << std::wstring(bytes.begin(), bytes.end()) << L'\n';
}

} // namespace

int main() try {
    std::wstring name;
    GenerateTempFilename(name);
    auto const folder = std::filesystem::temp_directory_path() / name / L"";
    TempFolder const work(
        {folder.wstring(), vr::Path::eFolder}, NewNameIfExists, DeleteAlways, L"SafeReplace");
    auto const clip = work.Name() + vr::Path::file(L"clip.mxf");
    SaveSmallFile({'o', 'l', 'd'}, clip);
    tryToReplace(clip, true);
    tryToReplace(clip, false);
    return work.Created() ? 0 : 1;
} catch (vrStorageException const& failure) {
    std::wcerr << failure.text() << L": error " << failure.error() << L'\n';
    return 1;
} catch (vrException const& failure) {
    std::wcerr << failure.message() << L'\n';
    return 1;
}
