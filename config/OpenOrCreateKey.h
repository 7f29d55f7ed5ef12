#ifndef CONFIG_OPENORCREATEKEY_H
#define CONFIG_OPENORCREATEKEY_H

#include "config/RegistryKey.h"

#include <string>

namespace vrUtils::Registry {

// Opens a key with all rights, or else makes it with those to read and write; and before that the
// product's root key, where the path leads below it.
// @throws vrRegistryAccessException the key neither opens nor can be made; after a line in the log
void OpenOrCreateKey(RegistryKey& key, HKEY hive, std::wstring const& path);

} // namespace vrUtils::Registry

#endif
