#ifndef CONFIG_TYPEDVALUES_H
#define CONFIG_TYPEDVALUES_H

// Values of an open key, by type.

#include "config/RegistryKey.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace vrUtils::Registry {

// The two reads throw vrRegistryValueMissingException where there is no such value of that type.

std::uint32_t ReadDWORD(RegistryKey const& key, std::wstring const& name);

// A REG_SZ or REG_EXPAND_SZ value as it is stored, up to its first zero character.
std::wstring ReadString(RegistryKey const& key, std::wstring const& name);

// The writes give the platform's result.

long WriteBytes(
    RegistryKey const& key, std::wstring const& name, std::uint32_t type, void const* bytes,
    std::size_t length);

long WriteDWORD(RegistryKey const& key, std::wstring const& name, std::uint32_t value);

// The text up to its first zero character.
long WriteString(RegistryKey const& key, std::wstring const& name, std::wstring const& value);

} // namespace vrUtils::Registry

#endif
