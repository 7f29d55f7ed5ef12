// One value of the registry, read and written, its key opened and closed each time.

#include "benchmarks/Candidate.h"

#include "foundation/Platform.h"
#include "vrUtils/Registry.h"

#include <string>

#ifdef PEER_POCO_REGISTRY
#include <Poco/Util/WinRegistryKey.h>
#endif

namespace {

constexpr wchar_t key[] = L"Software\\vrUtils Benchmark\\Value";
constexpr wchar_t textName[] = L"Host";
constexpr wchar_t numberName[] = L"Depth";
constexpr wchar_t text[] = L"interplay.example.com:8080";
constexpr DWORD number = 4711;

// The key is there before the first run and gone after the last one.
class BenchmarkKey {
  public:
    BenchmarkKey() {
        vrUtils::Registry::WriteCurrentUserValue(key, textName, text);
        vrUtils::Registry::WriteCurrentUserValue(key, numberName, std::uint32_t{number});
    }

    BenchmarkKey(BenchmarkKey const&) = delete;
    BenchmarkKey& operator=(BenchmarkKey const&) = delete;

    ~BenchmarkKey() { RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\vrUtils Benchmark"); }
};

HKEY open() {
    HKEY opened = nullptr;
    RegOpenKeyExW(HKEY_CURRENT_USER, key, 0, GENERIC_ALL, &opened);
    return opened;
}

std::wstring readTextRaw() {
    auto const opened = open();
    wchar_t buffer[2048];
    DWORD length = sizeof buffer;
    RegQueryValueExW(opened, textName, nullptr, nullptr, reinterpret_cast<BYTE*>(buffer), &length);
    RegCloseKey(opened);
    return buffer;
}

std::wstring readTextByGetValue() {
    wchar_t buffer[2048];
    DWORD length = sizeof buffer;
    RegGetValueW(HKEY_CURRENT_USER, key, textName, RRF_RT_REG_SZ, nullptr, buffer, &length);
    return buffer;
}

DWORD readNumberRaw() {
    auto const opened = open();
    DWORD value = 0;
    DWORD length = sizeof value;
    RegQueryValueExW(
        opened, numberName, nullptr, nullptr, reinterpret_cast<BYTE*>(&value), &length);
    RegCloseKey(opened);
    return value;
}

long writeTextRaw() {
    auto const opened = open();
    auto const result = RegSetValueExW(
        opened, textName, 0, REG_SZ, reinterpret_cast<BYTE const*>(text), sizeof text);
    RegCloseKey(opened);
    return result;
}

long writeNumberRaw() {
    auto const opened = open();
    auto const result = RegSetValueExW(
        opened, numberName, 0, REG_DWORD, reinterpret_cast<BYTE const*>(&number), sizeof number);
    RegCloseKey(opened);
    return result;
}

#ifdef PEER_POCO_REGISTRY
Poco::Util::WinRegistryKey pocoKey() {
    return Poco::Util::WinRegistryKey("HKEY_CURRENT_USER\\Software\\vrUtils Benchmark\\Value");
}
#endif

} // namespace

void benchmarks::registerCandidates() {
    using namespace vrUtils::Registry;
    static BenchmarkKey const there;

    candidate("registry-read-text", "ours", [] { return ReadCurrentUserString(key, textName); });
    candidate("registry-read-text", "RegGetValueW", readTextByGetValue);
    candidate("registry-read-text", "limit", readTextRaw);
    candidate(
        "registry-read-number", "ours", [] { return ReadCurrentUserDWORDValue(key, numberName); });
    candidate("registry-read-number", "limit", readNumberRaw);
    candidate("registry-write-text", "ours", [] {
        WriteCurrentUserValue(key, textName, text);
        return 0;
    });
    candidate("registry-write-text", "limit", writeTextRaw);
    candidate("registry-write-number", "ours", [] {
        WriteCurrentUserValue(key, numberName, std::uint32_t{number});
        return 0;
    });
    candidate("registry-write-number", "limit", writeNumberRaw);

#ifdef PEER_POCO_REGISTRY
    candidate("registry-read-text", "poco", [] { return pocoKey().getString("Host"); });
    candidate("registry-read-number", "poco", [] { return pocoKey().getInt("Depth"); });
    candidate("registry-write-text", "poco", [] {
        pocoKey().setString("Host", "interplay.example.com:8080");
        return 0;
    });
    candidate("registry-write-number", "poco", [] {
        pocoKey().setInt("Depth", static_cast<int>(number));
        return 0;
    });
#endif
}
