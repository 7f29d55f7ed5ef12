// Replacing a file so that the old one comes back if the new one fails. Three objects clean up by
// themselves: a folder to work in, a half-written target, and the old file that was set aside.

#include <vrUtils/Files.h>
#include <vrUtils/Storage.h>

#include <filesystem>
#include <iostream>

using namespace vrUtils::Files;
using namespace vrUtils::Storage;

namespace {

void write(vr::Path const& file, std::string const& text) {
    SaveSmallFile({text.begin(), text.end()}, file);
}

void print(vr::Path const& clip) {
    std::vector<char> bytes;
    LoadSmallFile(clip, 1024, &bytes);
    std::wcout << L"the clip is " << std::wstring(bytes.begin(), bytes.end()) << L'\n';
}

void replace(vr::Path const& clip, bool breaksDown) {
    RecoverableFileDeleter old(clip, L"SafeReplace");
    old.Delete();
    try {
        TempFileDeleter partial(clip);
        write(clip, breaksDown ? "ne" : "new");
        if (breaksDown)
            throw vrException(__LINE__, L"the source has gone");
        partial.SetFile({}); // it is whole, and stays
    } catch (vrException const& failure) {
        old.Recover();
        std::wcout << L"the old clip is back, since " << failure.message() << L'\n';
    }
    print(clip);
}

} // namespace

int main() try {
    std::wstring name;
    GenerateTempFilename(name);
    auto const wanted = std::filesystem::temp_directory_path() / name / L"";
    auto const folder = vr::Path::folder(wanted.wstring());
    TempFolder const work(folder, NewNameIfExists, DeleteAlways, L"SafeReplace");
    auto const clip = work.Name() + vr::Path::file(L"clip.mxf");
    write(clip, "old");
    replace(clip, true);
    replace(clip, false);
    return work.Created() ? 0 : 1;
} catch (vrStorageException const& failure) {
    std::wcerr << failure.text() << L": error " << failure.error() << L'\n';
    return 1;
} catch (vrException const& failure) {
    std::wcerr << failure.message() << L'\n';
    return 1;
}
