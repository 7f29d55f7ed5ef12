#ifndef TESTS_SUPPORT_ABSENTKEY_H
#define TESTS_SUPPORT_ABSENTKEY_H

#include "tests/support/OwnedHandle.h"
#include "tests/support/ScratchKey.h"
#include "tests/support/WideText.h"

#include <gtest/gtest.h>

#include <optional>

namespace test {

// A key of the whole machine that is not there while a test runs, unless the test makes it. What
// was there before comes back, and what was not is removed.
class AbsentKey : public RegistryPlace {
  public:
    AbsentKey(HKEY hive, std::wstring const& path) : RegistryPlace(hive, path) {
        if (!exists())
            return;
        m_saved.emplace();
        copy(*this, *m_saved);
        require(remove(), "remove");
    }

    AbsentKey(AbsentKey const&) = delete;
    AbsentKey& operator=(AbsentKey const&) = delete;

    ~AbsentKey() {
        EXPECT_EQ(ERROR_SUCCESS, remove()) << utf8(path());
        if (m_saved) {
            EXPECT_NO_THROW(copy(*m_saved, *this)) << utf8(path());
        }
    }

  private:
    static void require(LSTATUS status, std::string const& what) {
        if (status != ERROR_SUCCESS)
            throw platformFailure(static_cast<DWORD>(status), "cannot " + what + " a key");
    }

    static void copy(RegistryPlace const& from, RegistryPlace const& to) {
        HKEY target = nullptr;
        require(
            RegCreateKeyExW(
                to.hive(), to.path().c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS,
                nullptr, &target, nullptr),
            "make");
        LSTATUS const status = RegCopyTreeW(from.hive(), from.path().c_str(), target);
        RegCloseKey(target);
        require(status, "copy");
    }

    std::optional<ScratchKey> m_saved;
};

} // namespace test

#endif
