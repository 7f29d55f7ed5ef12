#include "config/OpenOrCreateKey.h"

#include "config/ProductRoot.h"
#include "foundation/FailureCodes.h"
#include "foundation/Log.h"
#include "foundation/Message.h"
#include "vrUtils/Registry/Exceptions.h"

namespace vrUtils::Registry {

void OpenOrCreateKey(RegistryKey& key, HKEY hive, std::wstring const& path) {
    if (key.Open(hive, path, GENERIC_ALL) == ERROR_SUCCESS)
        return;

    // In the machine's hive whichever one was asked for: the root is made once for all users.
    if (beginsWithProductRoot(path))
        createProductRoot();

    auto const error = key.Create(hive, path);
    if (error != ERROR_SUCCESS) {
        logComposed(
            LogLevel::warning,
            composeMessage(
                L"Failed to create registry key ", path.c_str(), L" - Error code ", error));
        throw vrRegistryAccessException(
            "vrRegistry", __LINE__, L"Unable to access registry", RegistryAccessFailed);
    }
}

} // namespace vrUtils::Registry
