#ifndef TESTS_VRTOOL_KEPTKEY_H
#define TESTS_VRTOOL_KEPTKEY_H

#include "tests/support/ScratchKey.h"

#include <string>

namespace test {

// A key of the whole machine that tests may change at will: when the object goes, the key and all
// below it are as they were, and keys that were made on the way to it are gone.
class KeptKey {
  public:
    KeptKey(HKEY hive, std::wstring path);
    KeptKey(KeptKey const&) = delete;
    KeptKey& operator=(KeptKey const&) = delete;
    ~KeptKey();

    // Removes the key and all below it.
    void remove() const;

  private:
    HKEY m_hive;
    std::wstring m_path;
    // The key itself if it was there, else the topmost one that is missing on the way to it.
    std::wstring m_top;
    bool m_wasThere;
    ScratchKey m_copy;
};

} // namespace test

#endif
