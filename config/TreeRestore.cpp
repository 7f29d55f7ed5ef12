#include "config/TreeRestore.h"

#include "config/TypedValues.h"

#include <cwchar>
#include <vector>

namespace vrUtils::Registry {

namespace {

// A list of strings as it stands in memory: the low byte of each character first. A byte that is
// left over is a character of its own.
std::wstring joinBytes(std::vector<unsigned char> const& bytes) {
    std::wstring text((bytes.size() + 1) / 2, L'\0');
    for (std::size_t index = 0; index < bytes.size(); ++index)
        text[index / 2] |= static_cast<wchar_t>(bytes[index] << (index % 2 * 8));
    return text;
}

// How many characters of a list of strings there are, up to and with its first empty string; all of
// them if there is none.
std::size_t listUnits(std::wstring const& list) {
    std::size_t start = 0;
    while (start < list.size()) {
        auto const end = list.find(L'\0', start);
        if (end == std::wstring::npos)
            return list.size();
        if (end == start)
            return end + 1;
        start = end + 1;
    }
    return list.size();
}

} // namespace

void TreeRestore::apply(RegistryKey const& key, wchar_t const* lines, std::size_t count) {
    for (std::size_t position = 0; position < count && lines[position] != L'\0';) {
        std::wstring const line = lines + position;
        applyLine(key, line);
        position += line.size() + 1;
    }
}

void TreeRestore::applyLine(RegistryKey const& key, std::wstring const& line) {
    DumpLine const value(line);
    if (value.type == L"dword:")
        applyNumber(key, value);
    else if (value.type == L"string")
        m_status = WriteString(key, value.name, value.data);
    else if (value.type == L"hex:")
        applyBytes(key, value);
    else if (value.type == L"hex(7):")
        applyList(key, value);
}

void TreeRestore::applyNumber(RegistryKey const& key, DumpLine const& value) {
    wchar_t* end = nullptr;
    auto const number = std::wcstoul(value.data.c_str(), &end, 16);
    if (end == value.data.c_str() + value.data.size())
        m_status = WriteDWORD(key, value.name, number);
}

void TreeRestore::applyBytes(RegistryKey const& key, DumpLine const& value) {
    auto const bytes = decodeHex(value.data);
    m_status = WriteBytes(key, value.name, REG_BINARY, bytes.data(), bytes.size());
}

void TreeRestore::applyList(RegistryKey const& key, DumpLine const& value) {
    auto const list = joinBytes(decodeHex(value.data));
    m_status = list.empty() ? ERROR_INVALID_DATA
                            : WriteBytes(
                                  key, value.name, REG_MULTI_SZ, list.data(),
                                  listUnits(list) * sizeof(wchar_t));
}

} // namespace vrUtils::Registry
