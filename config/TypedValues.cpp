#include "config/TypedValues.h"

#include "foundation/FailureCodes.h"
#include "foundation/RegistryText.h"
#include "vrUtils/Registry/Exceptions.h"

#include <utility>

namespace vrUtils::Registry {

namespace {

// In bytes, terminator included.
constexpr std::size_t longestString = 4096;

[[noreturn]] void throwValueMissing(std::uint32_t line) {
    throw vrRegistryValueMissingException(
        "vrRegistry", line, L"Registry value missing", RegistryValueMissing);
}

} // namespace

std::uint32_t ReadDWORD(RegistryKey const& key, std::wstring const& name) {
    // A damaged value may have fewer bytes than a number.
    DWORD value = 0;
    DWORD length = sizeof value;
    DWORD type = REG_NONE;
    auto const error = RegQueryValueExW(
        key.get(), name.c_str(), nullptr, &type, reinterpret_cast<BYTE*>(&value), &length);
    if (error != ERROR_SUCCESS || type != REG_DWORD)
        throwValueMissing(__LINE__);
    return value;
}

std::wstring ReadString(RegistryKey const& key, std::wstring const& name) {
    auto text = readRegistryText(key.get(), name, longestString);
    if (!text)
        throwValueMissing(__LINE__);
    return *std::move(text);
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
