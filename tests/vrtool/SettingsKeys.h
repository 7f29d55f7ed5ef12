#ifndef TESTS_VRTOOL_SETTINGSKEYS_H
#define TESTS_VRTOOL_SETTINGSKEYS_H

#include "tests/vrtool/KeptKey.h"
#include "vrUtils/Registry/Settings.h"

#include <gtest/gtest.h>

namespace test {

// The keys in which the settings stand: the product's are missing at first, the platform's own is
// without its setting; all are put back in the end.
class SettingsKeys : public testing::Test {
  protected:
    SettingsKeys() {
        usersProduct.remove();
        machinesProduct.remove();
        RegDeleteKeyValueW(
            HKEY_LOCAL_MACHINE, vrUtils::Registry::DotNet35Key,
            vrUtils::Registry::DotNet35InstallValue);
    }

    KeptKey const usersProduct{HKEY_CURRENT_USER, L"Software\\Vorrane"};
    KeptKey const machinesProduct{HKEY_LOCAL_MACHINE, L"Software\\Vorrane"};
    KeptKey const framework{HKEY_LOCAL_MACHINE, vrUtils::Registry::DotNet35Key};
};

} // namespace test

#endif
