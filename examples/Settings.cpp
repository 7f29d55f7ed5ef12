// Settings: those the library knows by name, with a fallback for a fresh machine, and those of
// one's own, by key and type. Asking makes the key. A setting that may be missing is read in a try.

#include <vrUtils/Files.h>
#include <vrUtils/Registry.h>

#include <iostream>
#include <string>

#include <windows.h>

namespace Registry = vrUtils::Registry;

namespace {

std::uint32_t retriesOr(std::wstring const& key, std::uint32_t fallback) {
    try {
        return Registry::ReadCurrentUserDWORDValue(key, L"Retries");
    } catch (Registry::vrRegistryValueMissingException const&) {
        return fallback;
    }
}

void useSettings(std::wstring const& key) {
    std::wcout << L"retries on a fresh machine: " << retriesOr(key, 3) << L'\n';
    Registry::WriteCurrentUserValue(key, L"Retries", 5);
    Registry::WriteCurrentUserValue(key, L"Host", L"interplay01");
    std::wcout << L"retries: " << retriesOr(key, 3) << L'\n' << L"host: "
               << Registry::ReadCurrentUserString(key, L"Host") << L'\n';

    // Nothing is converted: a text is no number.
    try {
        Registry::ReadCurrentUserDWORDValue(key, L"Host");
    } catch (Registry::vrRegistryValueMissingException const& failure) {
        std::wcout << L"host as a number: " << failure.message() << L'\n';
    }
}

} // namespace

int main() {
    std::wstring name;
    vrUtils::Files::GenerateTempFilename(name);
    auto const key = L"Software\\vrUtils example " + name;
    int result = 0;
    try {
        useSettings(key);
        std::wcout << L"transfers at once: " << Registry::GetMaximumConcurrentTransfers(4) << L'\n';
    } catch (vrException const& failure) {
        std::wcerr << failure.message() << L'\n';
        result = 1;
    }
    RegDeleteTreeW(HKEY_CURRENT_USER, key.c_str());
    return result;
}
