#ifndef VRUTILS_REGISTRY_SETTINGS_H
#define VRUTILS_REGISTRY_SETTINGS_H

/// @file
/// The settings that the library knows by name, so that no program spells a key or a value name of
/// its own.
///
/// A getter gives its fallback where the value is missing or of another type, and where the key can
/// be neither opened nor made; it then leaves the line of `Values.h` in the log. The key is made if
/// it is missing. No setting depends on the instance of the server.

#include "vrUtils/vrUtilsApi.h"

#include <cstdint>
#include <string>

namespace vrUtils::Registry {

/// Where the settings stand, for tools that list and write them.
inline constexpr wchar_t ServerKey[] = L"Software\\Vorrane\\Ostrel\\Server";
/// The engine's key.
inline constexpr wchar_t EngineKey[] = L"Software\\Vorrane\\Ostrel\\Server\\OstrelEngine";
/// The platform's own key of its .NET framework 3.5.
inline constexpr wchar_t DotNet35Key[] = L"SOFTWARE\\Microsoft\\NET Framework Setup\\NDP\\v3.5";
/// Of the server's key, the user's own: see `GetMaximumConcurrentTransfers`.
inline constexpr wchar_t MaximumTransfersValue[] = L"MaximumTransfers";
/// Of the server's key: see `GetInterplayWSAddress`.
inline constexpr wchar_t InterplayWSHostValue[] = L"InterplayWSHost";
/// Of the server's key: see `GetInterplayAssetFilter`.
inline constexpr wchar_t InterplayAssetFilterValue[] = L"InterplayAssetFilter";
/// Of the server's key: see `GetInterplayIDNameFilter`.
inline constexpr wchar_t InterplayIDFilterValue[] = L"InterplayIDFilter";
/// Of the server's key: see `GetNumJobRebmits`.
inline constexpr wchar_t MaxNumTransferRetriesValue[] = L"MaxNumTransferRetries";
/// Of the engine's key: see `GetEngineCacheDepth`.
inline constexpr wchar_t EngineCacheDepthValue[] = L"EngineCacheDepth";
/// Of the framework's key: see `IsDotNet35Installed`.
inline constexpr wchar_t DotNet35InstallValue[] = L"Install";

/// How many transfers may run at once. This one setting is the user's own: it is "MaximumTransfers"
/// of the server's key below `HKEY_CURRENT_USER`, and the machine's hive is not looked at.
VRUTILS_API std::uint32_t GetMaximumConcurrentTransfers(std::uint32_t fallback);

/// Sets what `GetMaximumConcurrentTransfers` reads. A write that is denied is silent.
/// @throws vrRegistryAccessException "Unable to access registry": the key neither opens nor can be
///         made
VRUTILS_API void SetMaximumConcurrentTransfers(std::uint32_t value);

/// "InterplayWSHost" of the server's key below `HKEY_LOCAL_MACHINE`.
VRUTILS_API std::wstring GetInterplayWSAddress(std::wstring const& fallback);

/// "InterplayAssetFilter" of the server's key below `HKEY_LOCAL_MACHINE`; the fallback is empty.
VRUTILS_API std::wstring GetInterplayAssetFilter();

/// "InterplayIDFilter" of the server's key below `HKEY_LOCAL_MACHINE`; the fallback is empty.
VRUTILS_API std::wstring GetInterplayIDNameFilter();

/// How often a failed transfer is tried again: "MaxNumTransferRetries" of the server's key below
/// `HKEY_LOCAL_MACHINE`. The stored number is taken with its sign, so that 0xFFFFFFFF gives -1.
VRUTILS_API std::int32_t GetNumJobRebmits(std::int32_t fallback);

/// "EngineCacheDepth" of the engine's key below `HKEY_LOCAL_MACHINE`.
VRUTILS_API std::uint32_t GetEngineCacheDepth(std::uint32_t fallback);

/// Whether the platform's .NET framework 3.5 is there: "Install" of its key below
/// `HKEY_LOCAL_MACHINE` is 1, and no other number. An empty key is left behind where it is not.
VRUTILS_API bool IsDotNet35Installed();

} // namespace vrUtils::Registry

#endif
