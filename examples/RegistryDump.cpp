// A tree of settings saved to a file before it is changed, and written back afterwards. The hive is
// given twice: as the open key, and as the name that stands in the file.

#include <vrUtils/Files.h>
#include <vrUtils/Registry.h>
#include <vrUtils/Storage.h>

#include <filesystem>
#include <iostream>
#include <stdexcept>
#include <string>

#include <windows.h>

namespace Registry = vrUtils::Registry;

namespace {

int changeAndPutBack(std::wstring const& key, vr::Path const& file) {
    vrUtils::Storage::TempFileDeleter const removedAtTheEnd(file);
    Registry::WriteCurrentUserValue(key, L"Host", L"interplay01");
    Registry::WriteCurrentUserValue(key + L"\\Engine", L"CacheDepth", 7);

    Registry::RegDumper const tree(HKEY_CURRENT_USER, L"HKEY_CURRENT_USER\\" + key);
    if (tree.dumpRegistry(file) != 0 || !vrUtils::Files::FileExists(file))
        return 1;
    std::wcout << L"saved " << vrUtils::Files::FileLength(file) << L" bytes\n";

    Registry::WriteCurrentUserValue(key + L"\\Engine", L"CacheDepth", 99);
    if (tree.restoreRegistry(file) != 0)
        return 1;
    std::wcout << L"cache depth: "
               << Registry::ReadCurrentUserDWORDValue(key + L"\\Engine", L"CacheDepth") << L'\n'
               << L"host: " << Registry::ReadCurrentUserString(key, L"Host") << L'\n';
    return 0;
}

} // namespace

int main() {
    std::wstring name;
    vrUtils::Files::GenerateTempFilename(name);
    auto const key = L"Software\\vrUtils example " + name;
    int result = 1;
    try {
        result = changeAndPutBack(
            key, vr::Path::file((std::filesystem::temp_directory_path() / name).wstring()));
    } catch (vrException const& failure) {
        std::wcerr << failure.message() << L'\n';
    } catch (std::out_of_range const&) {
        std::wcerr << L"a line of the file cannot be read\n";
    }
    RegDeleteTreeW(HKEY_CURRENT_USER, key.c_str());
    return result;
}
