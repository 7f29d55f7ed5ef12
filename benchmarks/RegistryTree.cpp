// A registry tree of many values saved to a file and written back.

#include "benchmarks/Candidate.h"
#include "benchmarks/Folder.h"

#include "foundation/Platform.h"
#include "vrUtils/Registry.h"

#include <array>
#include <string>

namespace {

// What a section of a dump file takes with room to spare.
constexpr unsigned valuesInKey = 500;

constexpr wchar_t text[] = L"interplay.example.com";

// A tree below `HKEY_CURRENT_USER`, of keys with as many values each as a section of its dump takes;
// texts and numbers by turns.
class Tree {
  public:
    explicit Tree(unsigned values)
        : m_values(values), m_key(L"Software\\vrUtils Benchmark " + std::to_wstring(values)) {
        write();
    }

    Tree(Tree const&) = delete;
    Tree& operator=(Tree const&) = delete;

    ~Tree() { RegDeleteTreeW(HKEY_CURRENT_USER, m_key.c_str()); }

    std::wstring path() const { return L"HKEY_CURRENT_USER\\" + m_key; }

    // The raw calls, a value at a time.
    long write() const {
        long result = 0;
        for (unsigned first = 0; first < m_values; first += valuesInKey) {
            HKEY key = nullptr;
            auto const name = m_key + L'\\' + std::to_wstring(first);
            RegCreateKeyExW(
                HKEY_CURRENT_USER, name.c_str(), 0, nullptr, 0, KEY_READ | KEY_WRITE, nullptr, &key,
                nullptr);
            for (auto value = first; value < first + valuesInKey && value < m_values; ++value)
                result |= writeValue(key, value);
            RegCloseKey(key);
        }
        return result;
    }

    // Every value read with nothing made of it.
    unsigned read() const {
        unsigned count = 0;
        for (unsigned first = 0; first < m_values; first += valuesInKey) {
            HKEY key = nullptr;
            auto const path = m_key + L'\\' + std::to_wstring(first);
            RegOpenKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, KEY_READ, &key);
            std::array<wchar_t, 256> name;
            std::array<BYTE, 1024> data;
            auto units = static_cast<DWORD>(name.size());
            auto length = static_cast<DWORD>(data.size());
            for (DWORD index = 0; RegEnumValueW(
                                      key, index, name.data(), &units, nullptr, nullptr,
                                      data.data(), &length) == ERROR_SUCCESS;
                 ++index) {
                units = static_cast<DWORD>(name.size());
                length = static_cast<DWORD>(data.size());
                ++count;
            }
            RegCloseKey(key);
        }
        return count;
    }

  private:
    static long writeValue(HKEY key, unsigned value) {
        auto const name = L"value " + std::to_wstring(value);
        if (value % 2 == 0)
            return RegSetValueExW(
                key, name.c_str(), 0, REG_DWORD, reinterpret_cast<BYTE const*>(&value),
                sizeof value);
        return RegSetValueExW(
            key, name.c_str(), 0, REG_SZ, reinterpret_cast<BYTE const*>(text), sizeof text);
    }

    unsigned m_values;
    std::wstring m_key;
};

// The platform's own tool, from its start to its end.
DWORD exportTree(Tree const& tree, std::wstring const& file) {
    auto line = L"reg.exe export \"" + tree.path() + L"\" \"" + file + L"\" /y";
    STARTUPINFOW start{};
    start.cb = sizeof start;
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(
            nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &process))
        return GetLastError();
    WaitForSingleObject(process.hProcess, INFINITE);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return 0;
}

void rows(std::string const& count, Tree const& tree) {
    using benchmarks::candidate;
    std::wstring const suffix(count.begin(), count.end());
    vr::Path const file(benchmarks::fileNamed((L"dump-" + suffix).c_str()), vr::Path::eFile);
    vrUtils::Registry::RegDumper const dumper(HKEY_CURRENT_USER, tree.path());
    dumper.dumpRegistry(file);

    auto const dumpRow = "registry-dump-" + count;
    vr::Path const target(benchmarks::fileNamed((L"ours-" + suffix).c_str()), vr::Path::eFile);
    candidate(dumpRow.c_str(), "ours", [=] { return dumper.dumpRegistry(target); });
    auto const exported = benchmarks::fileNamed((L"export-" + suffix).c_str());
    candidate(dumpRow.c_str(), "reg-export", [=, &tree] { return exportTree(tree, exported); });
    candidate(dumpRow.c_str(), "limit", [&tree] { return tree.read(); });

    auto const restoreRow = "registry-restore-" + count;
    candidate(restoreRow.c_str(), "ours", [=] { return dumper.restoreRegistry(file); });
    candidate(restoreRow.c_str(), "limit", [&tree] { return tree.write(); });
}

} // namespace

void benchmarks::registerCandidates() {
    static Tree const small(100);
    static Tree const medium(1000);
    static Tree const large(10000);
    rows("100", small);
    rows("1000", medium);
    rows("10000", large);
}
