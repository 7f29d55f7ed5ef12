#ifndef TESTS_SUPPORT_SCRATCHKEY_H
#define TESTS_SUPPORT_SCRATCHKEY_H

// An empty registry key of a test's own, below `HKEY_CURRENT_USER` unless another hive is named. It
// goes with the object, and so do its values and subkeys.
//
//     test::ScratchKey key;
//     key.setText(L"Folder", L"C:\\Media");
//     key.set(L"Faulty", REG_DWORD, {1, 2, 3}, L"Settings");   // in a subkey, which is made
//
// Names of subkeys are relative to the key; an empty one is the key itself. Failed preparations
// throw std::system_error.

#include "tests/support/RegistryPlace.h"

namespace test {

class ScratchKey : public RegistryPlace {
  public:
    explicit ScratchKey(HKEY hive = HKEY_CURRENT_USER);
    ScratchKey(ScratchKey const&) = delete;
    ScratchKey& operator=(ScratchKey const&) = delete;
    ~ScratchKey();
};

} // namespace test

#endif
