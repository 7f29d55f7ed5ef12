#include "vrUtils/Registry/RegDumper.h"

#include "config/DumpFile.h"
#include "config/TreeDump.h"
#include "config/TreeRestore.h"
#include "foundation/Log.h"

#include <utility>

namespace vrUtils::Registry {

namespace {

// Of "HKEY_CURRENT_USER\", and cut from every path.
constexpr std::size_t hivePrefixLength = 18;

// How much of a file's sections and of one section's lines is taken.
constexpr DWORD namesUnits = 8192;
constexpr DWORD linesUnits = 32768;

std::wstring belowHive(std::wstring const& path) { return path.substr(hivePrefixLength); }

} // namespace

RegDumper::RegDumper(HKEY hive, std::wstring path) : m_hive(hive), m_path(std::move(path)) {}

std::int32_t RegDumper::dumpRegistry(vr::Path const& file) const {
    RegistryKey root;
    if (root.Open(m_hive, belowHive(m_path), readAndWrite) != ERROR_SUCCESS) {
        VL_WriteLog(
            LogLevel::failure, logModule, L"Failed to open registry hive [%s]", m_path.c_str());
        return RegDumpFailed;
    }

    auto const fileName = file.components().wholePath();
    auto const prefix = L'[' + m_path + L'\\';
    DumpFile output(fileName);
    output.write(L"Windows Registry Editor Version 5.00\r\n");
    output.write(prefix + L"]\r\n");
    auto const succeeded = TreeDump(output).write(root, prefix);
    output.close();

    if (!succeeded) {
        DeleteFileW(fileName.c_str());
        VL_WriteLog(
            LogLevel::failure, logModule, L"Failed to save registry hive [%s], file deleted",
            m_path.c_str());
        return RegDumpFailed;
    }
    return 0;
}

std::int32_t RegDumper::restoreRegistry(vr::Path const& file) const {
    auto const fileName = file.components().wholePath();
    std::wstring names(namesUnits, L'\0');
    std::wstring lines(linesUnits, L'\0');
    auto const namesCount =
        GetPrivateProfileSectionNamesW(names.data(), namesUnits, fileName.c_str());
    // A parent that does not open shows where its first key is to be made.
    RegistryKey parent;
    parent.Open(m_hive, belowHive(m_path), readAndWrite);
    if (namesCount == 0)
        return RegRestoreNothing;

    TreeRestore restore;
    RegistryKey key;
    for (std::size_t position = 0; position < namesCount;) {
        std::wstring const section = names.c_str() + position;
        auto const subkey = section.substr(m_path.size());
        // Callers rely on it: a key that is refused is asked for until it is given.
        while (key.Create(parent.get(), subkey) != ERROR_SUCCESS) {
        }
        if (section.empty())
            break;

        auto const count =
            GetPrivateProfileSectionW(section.c_str(), lines.data(), linesUnits, fileName.c_str());
        restore.apply(key, lines.c_str(), count);
        position += section.size() + 1;
    }
    return restore.status();
}

} // namespace vrUtils::Registry
