#include "tests/support/RegistryPlace.h"

#include "tests/support/OwnedHandle.h"
#include "tests/support/WideText.h"

#include <cstring>

namespace test {

namespace {

struct KeyCloser {
    void operator()(HKEY key) const noexcept { RegCloseKey(key); }
};

using OwnedKey = std::unique_ptr<HKEY__, KeyCloser>;

void require(LSTATUS status, std::string const& what, std::wstring const& key) {
    if (status != ERROR_SUCCESS)
        throw platformFailure(static_cast<DWORD>(status), what + " " + utf8(key));
}

OwnedKey createKey(HKEY hive, std::wstring const& path) {
    HKEY key = nullptr;
    LSTATUS const status = RegCreateKeyExW(
        hive, path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS, nullptr, &key,
        nullptr);
    require(status, "cannot make the registry key", path);
    return OwnedKey(key);
}

// Null if there is no such key.
OwnedKey openKey(HKEY hive, std::wstring const& path) {
    HKEY key = nullptr;
    LSTATUS const status = RegOpenKeyExW(hive, path.c_str(), 0, KEY_ALL_ACCESS, &key);
    if (status == ERROR_FILE_NOT_FOUND)
        return nullptr;
    require(status, "cannot open the registry key", path);
    return OwnedKey(key);
}

std::vector<unsigned char> bytesOf(void const* data, std::size_t size) {
    auto const* const bytes = static_cast<unsigned char const*>(data);
    return {bytes, bytes + size};
}

} // namespace

std::wstring RegistryPlace::key(std::wstring const& subkey) const {
    return subkey.empty() ? m_path : m_path + L"\\" + subkey;
}

std::wstring RegistryPlace::makeKey(std::wstring const& subkey) const {
    createKey(m_hive, key(subkey));
    return key(subkey);
}

bool RegistryPlace::exists(std::wstring const& subkey) const {
    return openKey(m_hive, key(subkey)) != nullptr;
}

void RegistryPlace::set(
    std::wstring const& name, DWORD type, std::vector<unsigned char> const& data,
    std::wstring const& subkey) const {
    // The platform would take a zero word behind the data for the missing terminator of a text.
    auto guarded = data;
    guarded.insert(guarded.end(), 4, 0xFF);
    auto const opened = createKey(m_hive, key(subkey));
    LSTATUS const status = RegSetValueExW(
        opened.get(), name.c_str(), 0, type, guarded.data(), static_cast<DWORD>(data.size()));
    require(status, "cannot set the value " + utf8(name) + " of", key(subkey));
}

void RegistryPlace::setText(
    std::wstring const& name, std::wstring const& text, std::wstring const& subkey) const {
    set(name, REG_SZ, bytesOf(text.c_str(), (text.size() + 1) * sizeof(wchar_t)), subkey);
}

void RegistryPlace::setNumber(
    std::wstring const& name, std::uint32_t number, std::wstring const& subkey) const {
    set(name, REG_DWORD, bytesOf(&number, sizeof number), subkey);
}

std::optional<RegistryValue>
RegistryPlace::get(std::wstring const& name, std::wstring const& subkey) const {
    auto const opened = openKey(m_hive, key(subkey));
    if (!opened)
        return std::nullopt;
    RegistryValue value;
    DWORD size = 0;
    LSTATUS status =
        RegQueryValueExW(opened.get(), name.c_str(), nullptr, &value.type, nullptr, &size);
    if (status == ERROR_FILE_NOT_FOUND)
        return std::nullopt;
    value.data.resize(size);
    if (status == ERROR_SUCCESS && size != 0)
        status = RegQueryValueExW(
            opened.get(), name.c_str(), nullptr, &value.type, value.data.data(), &size);
    require(status, "cannot read the value " + utf8(name) + " of", key(subkey));
    return value;
}

std::optional<std::wstring>
RegistryPlace::getText(std::wstring const& name, std::wstring const& subkey) const {
    auto const value = get(name, subkey);
    if (!value || value->type != REG_SZ)
        return std::nullopt;
    std::wstring text(value->data.size() / sizeof(wchar_t), L'\0');
    std::memcpy(text.data(), value->data.data(), text.size() * sizeof(wchar_t));
    if (!text.empty() && text.back() == L'\0')
        text.pop_back();
    return text;
}

std::optional<std::uint32_t>
RegistryPlace::getNumber(std::wstring const& name, std::wstring const& subkey) const {
    auto const value = get(name, subkey);
    std::uint32_t number = 0;
    if (!value || value->type != REG_DWORD || value->data.size() != sizeof number)
        return std::nullopt;
    std::memcpy(&number, value->data.data(), sizeof number);
    return number;
}

LSTATUS RegistryPlace::remove() const {
    LSTATUS const status = RegDeleteTreeW(m_hive, m_path.c_str());
    return status == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : status;
}

} // namespace test
