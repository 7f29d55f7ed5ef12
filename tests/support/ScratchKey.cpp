#include "tests/support/ScratchKey.h"

#include "tests/support/OwnedHandle.h"
#include "tests/support/WideText.h"

#include <gtest/gtest.h>

#include <atomic>
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

struct CreatedKey {
    OwnedKey key;
    bool isNew;
};

CreatedKey createKey(std::wstring const& path) {
    HKEY key = nullptr;
    DWORD disposition = 0;
    LSTATUS const status = RegCreateKeyExW(
        HKEY_CURRENT_USER, path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS,
        nullptr, &key, &disposition);
    require(status, "cannot make the registry key", path);
    return {OwnedKey(key), disposition == REG_CREATED_NEW_KEY};
}

// Null if there is no such key.
OwnedKey openKey(std::wstring const& path) {
    HKEY key = nullptr;
    LSTATUS const status = RegOpenKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, KEY_ALL_ACCESS, &key);
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

ScratchKey::ScratchKey() {
    static std::atomic<unsigned> number{0};
    auto const stem = L"Software\\vrUtilsTests\\" + std::to_wstring(GetCurrentProcessId()) + L"-";
    // A number is passed over if a process of this id has left its key behind.
    do
        m_path = stem + std::to_wstring(++number);
    while (!createKey(m_path).isNew);
}

ScratchKey::~ScratchKey() {
    LSTATUS const status = RegDeleteTreeW(HKEY_CURRENT_USER, m_path.c_str());
    if (status != ERROR_SUCCESS && status != ERROR_FILE_NOT_FOUND)
        ADD_FAILURE() << "scratch key: cannot remove " << utf8(m_path) << ", error " << status;
}

std::wstring ScratchKey::key(std::wstring const& subkey) const {
    return subkey.empty() ? m_path : m_path + L"\\" + subkey;
}

std::wstring ScratchKey::makeKey(std::wstring const& subkey) const {
    createKey(key(subkey));
    return key(subkey);
}

bool ScratchKey::exists(std::wstring const& subkey) const {
    return openKey(key(subkey)) != nullptr;
}

void ScratchKey::set(
    std::wstring const& name, DWORD type, std::vector<unsigned char> const& data,
    std::wstring const& subkey) const {
    // The platform would take a zero word behind the data for the missing terminator of a text.
    auto guarded = data;
    guarded.insert(guarded.end(), 4, 0xFF);
    auto const opened = createKey(key(subkey)).key;
    LSTATUS const status = RegSetValueExW(
        opened.get(), name.c_str(), 0, type, guarded.data(), static_cast<DWORD>(data.size()));
    require(status, "cannot set the value " + utf8(name) + " of", key(subkey));
}

void ScratchKey::setText(
    std::wstring const& name, std::wstring const& text, std::wstring const& subkey) const {
    set(name, REG_SZ, bytesOf(text.c_str(), (text.size() + 1) * sizeof(wchar_t)), subkey);
}

void ScratchKey::setNumber(
    std::wstring const& name, std::uint32_t number, std::wstring const& subkey) const {
    set(name, REG_DWORD, bytesOf(&number, sizeof number), subkey);
}

std::optional<RegistryValue>
ScratchKey::get(std::wstring const& name, std::wstring const& subkey) const {
    auto const opened = openKey(key(subkey));
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
ScratchKey::getText(std::wstring const& name, std::wstring const& subkey) const {
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
ScratchKey::getNumber(std::wstring const& name, std::wstring const& subkey) const {
    auto const value = get(name, subkey);
    std::uint32_t number = 0;
    if (!value || value->type != REG_DWORD || value->data.size() != sizeof number)
        return std::nullopt;
    std::memcpy(&number, value->data.data(), sizeof number);
    return number;
}

} // namespace test
