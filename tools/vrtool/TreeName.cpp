#include "tools/vrtool/TreeName.h"

#include "tools/vrtool/Platform.h"

#include <algorithm>
#include <stdexcept>

namespace {

bool isSame(std::wstring_view left, std::wstring_view right) {
    return CompareStringOrdinal(
               left.data(), static_cast<int>(left.size()), right.data(),
               static_cast<int>(right.size()), TRUE) == CSTR_EQUAL;
}

HKEY hiveOf(std::wstring_view name) {
    if (isSame(name, L"HKCU") || isSame(name, L"HKEY_CURRENT_USER"))
        return HKEY_CURRENT_USER;
    if (isSame(name, L"HKLM") || isSame(name, L"HKEY_LOCAL_MACHINE"))
        return HKEY_LOCAL_MACHINE;
    throw std::invalid_argument("begins with none of HKCU\\, HKEY_CURRENT_USER\\, HKLM\\, "
                                "HKEY_LOCAL_MACHINE\\");
}

} // namespace

TreeName::TreeName(std::wstring_view text) {
    auto const hiveEnd = std::min(text.find(L'\\'), text.size());
    m_hive = hiveOf(text.substr(0, hiveEnd));

    auto const start = text.find_first_not_of(L'\\', hiveEnd);
    if (start == text.npos)
        throw std::invalid_argument("names a whole hive; a key below it is wanted");
    m_key = text.substr(start, text.find_last_not_of(L'\\') + 1 - start);
}

bool TreeName::isMachines() const { return m_hive == HKEY_LOCAL_MACHINE; }

std::wstring TreeName::inFile() const {
    return (isMachines() ? L"HKEY_LOCALMACHINE\\" : L"HKEY_CURRENT_USER\\") + m_key;
}

std::wstring TreeName::text() const {
    return (isMachines() ? L"HKEY_LOCAL_MACHINE\\" : L"HKEY_CURRENT_USER\\") + m_key;
}
