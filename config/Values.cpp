#include "vrUtils/Registry/Values.h"

#include "config/OpenOrCreateKey.h"
#include "config/TypedValues.h"

namespace vrUtils::Registry {

namespace {

RegistryKey openOrCreate(HKEY hive, std::wstring const& path) {
    RegistryKey key;
    OpenOrCreateKey(key, hive, path);
    return key;
}

} // namespace

std::uint32_t ReadLocalMachineDWORDValue(std::wstring const& key, std::wstring const& name) {
    return ReadDWORD(openOrCreate(HKEY_LOCAL_MACHINE, key), name);
}

std::uint32_t ReadCurrentUserDWORDValue(std::wstring const& key, std::wstring const& name) {
    return ReadDWORD(openOrCreate(HKEY_CURRENT_USER, key), name);
}

std::wstring ReadLocalMachineString(std::wstring const& key, std::wstring const& name) {
    return ReadString(openOrCreate(HKEY_LOCAL_MACHINE, key), name);
}

std::wstring ReadCurrentUserString(std::wstring const& key, std::wstring const& name) {
    return ReadString(openOrCreate(HKEY_CURRENT_USER, key), name);
}

// A value that the platform does not take is no failure here: only a key that cannot be had is.

void WriteLocalMachineValue(
    std::wstring const& key, std::wstring const& name, std::uint32_t value) {
    WriteDWORD(openOrCreate(HKEY_LOCAL_MACHINE, key), name, value);
}

void WriteLocalMachineValue(
    std::wstring const& key, std::wstring const& name, std::wstring const& value) {
    WriteString(openOrCreate(HKEY_LOCAL_MACHINE, key), name, value);
}

void WriteCurrentUserValue(std::wstring const& key, std::wstring const& name, std::uint32_t value) {
    WriteDWORD(openOrCreate(HKEY_CURRENT_USER, key), name, value);
}

void WriteCurrentUserValue(
    std::wstring const& key, std::wstring const& name, std::wstring const& value) {
    WriteString(openOrCreate(HKEY_CURRENT_USER, key), name, value);
}

} // namespace vrUtils::Registry
