#include "config/TreeDump.h"

#include <algorithm>
#include <charconv>
#include <cstring>

namespace vrUtils::Registry {

namespace {

constexpr std::size_t digitsOfNumber = 8;
constexpr std::size_t digitsOfByte = 2;

wchar_t const* typePrefix(DWORD type) {
    switch (type) {
    case REG_DWORD:
        return L"dword:";
    case REG_BINARY:
        return L"hex:";
    case REG_MULTI_SZ:
        return L"hex(7):";
    default:
        return L"";
    }
}

// Appends a number, with zeros in front up to the width.
void append(std::wstring& text, std::uint32_t number, int base, std::size_t width) {
    std::array<char, 10> digits;
    auto* const end = std::to_chars(digits.data(), digits.data() + digits.size(), number, base).ptr;
    auto const count = static_cast<std::size_t>(end - digits.data());
    text.append(width - std::min(width, count), L'0');
    text.append(digits.data(), end);
}

} // namespace

bool TreeDump::write(RegistryKey const& key, std::wstring const& prefix) {
    writeValues(key);
    m_file.write(L"\r\n\r\n");
    return writeSubkeys(key, prefix);
}

void TreeDump::writeValues(RegistryKey const& key) {
    // Whatever else the platform answers is an entry; the last index only stops a key that died.
    for (DWORD index = 0; index != MAXDWORD; ++index) {
        m_name[0] = L'\0';
        DWORD units = nameUnits;
        DWORD length = dataBytes;
        DWORD type = REG_NONE;
        auto const error = RegEnumValueW(
            key.get(), index, m_name.data(), &units, nullptr, &type, m_data.data(), &length);
        if (error == ERROR_NO_MORE_ITEMS)
            return;

        // With an error the name need not end.
        auto const nameEnd = std::find(m_name.begin(), m_name.end(), L'\0');
        m_line.assign(1, L'"').append(m_name.begin(), nameEnd);
        m_line.append(L"\"=").append(typePrefix(type));
        // With an error the length is that of data which did not arrive.
        if (error == ERROR_SUCCESS)
            appendData(type, length);
        m_file.write(m_line.append(L"\r\n"));
    }
}

bool TreeDump::writeSubkeys(RegistryKey const& key, std::wstring const& prefix) {
    for (DWORD index = 0;; ++index) {
        DWORD units = nameUnits;
        if (RegEnumKeyExW(
                key.get(), index, m_name.data(), &units, nullptr, nullptr, nullptr, nullptr) !=
            ERROR_SUCCESS)
            return true;

        std::wstring const name(m_name.data(), units);
        auto const header = prefix + name;
        m_file.write(header + L"]\r\n");

        RegistryKey subkey;
        if (subkey.Open(key.get(), name, readAndWrite) != ERROR_SUCCESS)
            return false;
        // The failure of a deeper level ends this one too, but goes up no further.
        if (!write(subkey, header + L'\\'))
            return true;
    }
}

void TreeDump::appendData(DWORD type, DWORD length) {
    switch (type) {
    case REG_SZ:
        return appendText(length);
    case REG_DWORD:
        return appendNumber(length);
    case REG_BINARY:
    case REG_MULTI_SZ:
        return appendBytes(length);
    default:
        return;
    }
}

void TreeDump::appendText(DWORD length) {
    std::wstring text(length / sizeof(wchar_t), L'\0');
    std::memcpy(text.data(), m_data.data(), text.size() * sizeof(wchar_t));
    m_line.append(1, L'"').append(text, 0, text.find(L'\0')).append(1, L'"');
}

void TreeDump::appendNumber(DWORD length) {
    // A damaged value may have fewer bytes than a number.
    std::uint32_t number = 0;
    std::memcpy(&number, m_data.data(), std::min<std::size_t>(length, sizeof number));
    m_base = 16;
    append(m_line, number, m_base, digitsOfNumber);
}

void TreeDump::appendBytes(DWORD length) {
    for (DWORD index = 0; index < length; ++index) {
        if (index > 0)
            m_line += L',';
        append(m_line, m_data[index], m_base, digitsOfByte);
    }
}

} // namespace vrUtils::Registry
