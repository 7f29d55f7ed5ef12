#include "config/TypedValues.h"

#include "foundation/FailureCodes.h"
#include "vrUtils/Registry/Exceptions.h"

#include <memory>

namespace vrUtils::Registry {

namespace {

// Terminator included.
constexpr DWORD longestString = 2048;

[[noreturn]] void throwValueMissing(std::uint32_t line) {
    throw vrRegistryValueMissingException(
        "vrRegistry", line, L"Registry value missing", RegistryValueMissing);
}

BYTE* bytesOf(void* buffer) { return static_cast<BYTE*>(buffer); }

} // namespace

std::uint32_t ReadDWORD(RegistryKey const& key, std::wstring const& name) {
    // A damaged value may have fewer bytes than a number.
    DWORD value = 0;
    DWORD length = sizeof value;
    DWORD type = REG_NONE;
    auto const error =
        RegQueryValueExW(key.get(), name.c_str(), nullptr, &type, bytesOf(&value), &length);
    if (error != ERROR_SUCCESS || type != REG_DWORD)
        throwValueMissing(__LINE__);
    return value;
}

std::wstring ReadString(RegistryKey const& key, std::wstring const& name) {
    // Not filled with zeros, unlike any container's.
    std::unique_ptr<wchar_t[]> const text(new wchar_t[longestString]);
    DWORD length = longestString * sizeof(wchar_t);
    DWORD type = REG_NONE;
    auto const error =
        RegQueryValueExW(key.get(), name.c_str(), nullptr, &type, bytesOf(text.get()), &length);
    if (error != ERROR_SUCCESS || (type != REG_SZ && type != REG_EXPAND_SZ))
        throwValueMissing(__LINE__);

    if (length == 0)
        return {};
    if (length % sizeof(wchar_t) != 0 || text[length / sizeof(wchar_t) - 1] != L'\0')
        throwValueMissing(__LINE__);
    return text.get();
}

long WriteBytes(
    RegistryKey const& key, std::wstring const& name, std::uint32_t type, void const* bytes,
    std::size_t length) {
    return RegSetValueExW(
        key.get(), name.c_str(), 0, type, static_cast<BYTE const*>(bytes),
        static_cast<DWORD>(length));
}

long WriteDWORD(RegistryKey const& key, std::wstring const& name, std::uint32_t value) {
    return WriteBytes(key, name, REG_DWORD, &value, sizeof value);
}

long WriteString(RegistryKey const& key, std::wstring const& name, std::wstring const& value) {
    auto const units = static_cast<std::size_t>(lstrlenW(value.c_str())) + 1;
    return WriteBytes(key, name, REG_SZ, value.c_str(), units * sizeof(wchar_t));
}

} // namespace vrUtils::Registry
