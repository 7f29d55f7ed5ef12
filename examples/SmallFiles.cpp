// A small file, from a title that no file system takes to a name that it does, written whole, asked
// about, read back under a limit, and removed.

#include <vrUtils/Files.h>

#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

namespace Files = vrUtils::Files;

namespace {

// In front of the legal name stands one that nobody else has.
vr::Path newFileFor(std::wstring const& title) {
    std::wstring legal;
    Files::GenerateLegalFilename(title, legal, false);
    std::wcout << L"legal name: " << legal << L'\n';
    std::wstring unique;
    Files::GenerateTempFilename(unique);
    return vr::Path::file((std::filesystem::temp_directory_path() / (unique + legal)).wstring());
}

void keepNote(vr::Path const& file) {
    std::string const note = "fit for air";
    Files::SaveSmallFile({note.begin(), note.end()}, file);
    std::wcout << L"length: " << Files::FileLength(file) << L", age in hours: "
               << Files::GetAgeOfFileInHours(file) << L'\n';

    std::vector<char> bytes;
    Files::LoadSmallFile(file, 4096, &bytes);
    std::wcout << L"read back: " << std::wstring(bytes.begin(), bytes.end()) << L'\n';

    // The limit keeps a file that somebody put there by mistake out of the memory.
    try {
        Files::LoadSmallFile(file, 4, &bytes);
    } catch (vrException const&) {
        std::wcout << L"too long for 4 bytes\n";
    }
}

} // namespace

int main() {
    try {
        auto const file = newFileFor(L"News: \"Live\" 20/15.txt");
        keepNote(file);
        auto const isGone = Files::DeleteFileIfExists(file) && !Files::FileExists(file);
        std::wcout << (isGone ? L"removed\n" : L"still there\n");
        return isGone ? 0 : 1;
    } catch (vrException const& failure) {
        std::wcerr << failure.message() << L'\n';
        return 1;
    }
}
