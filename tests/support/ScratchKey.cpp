#include "tests/support/ScratchKey.h"

#include "tests/support/WideText.h"

#include <gtest/gtest.h>

#include <atomic>

namespace test {

namespace {

// A path that no key has in either hive, even where a process of this id has left its keys behind.
std::wstring unusedPath() {
    static std::atomic<unsigned> number{0};
    auto const stem = L"Software\\vrUtilsTests\\" + std::to_wstring(GetCurrentProcessId()) + L"-";
    for (;;) {
        auto path = stem + std::to_wstring(++number);
        if (!RegistryPlace(HKEY_CURRENT_USER, path).exists() &&
            !RegistryPlace(HKEY_LOCAL_MACHINE, path).exists())
            return path;
    }
}

} // namespace

ScratchKey::ScratchKey(HKEY hive) : RegistryPlace(hive, unusedPath()) { makeKey(); }

ScratchKey::~ScratchKey() {
    LSTATUS const status = remove();
    if (status != ERROR_SUCCESS)
        ADD_FAILURE() << "scratch key: cannot remove " << utf8(path()) << ", error " << status;
}

} // namespace test
