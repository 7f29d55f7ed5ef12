#ifndef VRUTILS_REGISTRY_VALUES_H
#define VRUTILS_REGISTRY_VALUES_H

/// @file
/// One value of the registry, read or written.
///
/// A key is named by its path below the hive, with no backslash at either end, such as
/// "Software\Vorrane\Ostrel\Server"; an empty value name is the key's default value. Names are read
/// up to their first zero character. Case does not matter.
///
/// Each function opens the key with all rights, or else makes it. Where neither goes, the log
/// receives "Failed to create registry key PATH - Error code NUMBER" at level 4, and
/// `vrRegistryAccessException` is thrown.

#include "vrUtils/vrUtilsApi.h"

#include <cstdint>
#include <string>

namespace vrUtils::Registry {

/// Reads a `REG_DWORD` value below `HKEY_LOCAL_MACHINE`.
/// @throws vrRegistryAccessException "Unable to access registry": the key neither opens nor can be
///         made
/// @throws vrRegistryValueMissingException "Registry value missing": there is no such value, which
///         includes a key that was only made just now, or it is of another type or longer
VRUTILS_API std::uint32_t
ReadLocalMachineDWORDValue(std::wstring const& key, std::wstring const& name);

/// As `ReadLocalMachineDWORDValue`, below `HKEY_CURRENT_USER`.
VRUTILS_API std::uint32_t
ReadCurrentUserDWORDValue(std::wstring const& key, std::wstring const& name);

/// Reads a `REG_SZ` or `REG_EXPAND_SZ` value below `HKEY_LOCAL_MACHINE`, up to its first zero
/// character. Variables stay as they are stored.
/// @throws vrRegistryAccessException as `ReadLocalMachineDWORDValue`
/// @throws vrRegistryValueMissingException "Registry value missing": there is no such value, it is
///         of another type, does not end with a zero character, or has more than 2047 characters
///         before that
VRUTILS_API std::wstring ReadLocalMachineString(std::wstring const& key, std::wstring const& name);

/// As `ReadLocalMachineString`, below `HKEY_CURRENT_USER`.
VRUTILS_API std::wstring ReadCurrentUserString(std::wstring const& key, std::wstring const& name);

/// Writes a `REG_DWORD` value below `HKEY_LOCAL_MACHINE`. Whether the platform takes the value is
/// not looked at: a denied write is silent.
/// @throws vrRegistryAccessException "Unable to access registry": the key neither opens nor can be
///         made
VRUTILS_API void
WriteLocalMachineValue(std::wstring const& key, std::wstring const& name, std::uint32_t value);

/// As the other `WriteLocalMachineValue`, for a `REG_SZ` value: the text up to its first zero
/// character. `ReadLocalMachineString` takes back up to 2047 characters of it.
VRUTILS_API void WriteLocalMachineValue(
    std::wstring const& key, std::wstring const& name, std::wstring const& value);

/// As `WriteLocalMachineValue`, below `HKEY_CURRENT_USER`.
VRUTILS_API void
WriteCurrentUserValue(std::wstring const& key, std::wstring const& name, std::uint32_t value);

/// As `WriteLocalMachineValue`, below `HKEY_CURRENT_USER`.
VRUTILS_API void
WriteCurrentUserValue(std::wstring const& key, std::wstring const& name, std::wstring const& value);

} // namespace vrUtils::Registry

#endif
