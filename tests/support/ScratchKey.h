#ifndef TESTS_SUPPORT_SCRATCHKEY_H
#define TESTS_SUPPORT_SCRATCHKEY_H

// An empty registry key of a test's own below `HKEY_CURRENT_USER`. It goes with the object, and so
// do its values and subkeys.
//
//     test::ScratchKey key;
//     key.setText(L"Folder", L"C:\\Media");
//     key.set(L"Faulty", REG_DWORD, {1, 2, 3}, L"Settings");   // in a subkey, which is made
//
// Names of subkeys are relative to the key; an empty one is the key itself. Failed preparations
// throw std::system_error.

#include "foundation/Platform.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace test {

// What stands behind a name in the registry, bytes as they are.
struct RegistryValue {
    DWORD type = REG_NONE;
    std::vector<unsigned char> data;

    friend bool operator==(RegistryValue const& left, RegistryValue const& right) {
        return left.type == right.type && left.data == right.data;
    }
};

class ScratchKey {
  public:
    ScratchKey();
    ScratchKey(ScratchKey const&) = delete;
    ScratchKey& operator=(ScratchKey const&) = delete;
    ~ScratchKey();

    HKEY hive() const noexcept { return HKEY_CURRENT_USER; }

    // The key below its hive, with no backslash at either end.
    std::wstring const& path() const noexcept { return m_path; }

    // The path of a subkey below the hive; the subkey need not exist.
    std::wstring key(std::wstring const& subkey) const;

    // Makes a subkey, and those above it as far as they are missing; gives its path.
    std::wstring makeKey(std::wstring const& subkey) const;

    // Whether there is such a subkey.
    bool exists(std::wstring const& subkey) const;

    // Sets a value of any type, sound or not: nothing is added to the bytes.
    void
    set(std::wstring const& name, DWORD type, std::vector<unsigned char> const& data,
        std::wstring const& subkey = {}) const;

    // Sets a REG_SZ value, with its terminator.
    void setText(
        std::wstring const& name, std::wstring const& text, std::wstring const& subkey = {}) const;

    // Sets a REG_DWORD value.
    void setNumber(
        std::wstring const& name, std::uint32_t number, std::wstring const& subkey = {}) const;

    // A value, if there is one of this name.
    std::optional<RegistryValue>
    get(std::wstring const& name, std::wstring const& subkey = {}) const;

    // The text of a REG_SZ value without its terminator; none if there is no such value.
    std::optional<std::wstring>
    getText(std::wstring const& name, std::wstring const& subkey = {}) const;

    // The number of a REG_DWORD value; none if there is no such value.
    std::optional<std::uint32_t>
    getNumber(std::wstring const& name, std::wstring const& subkey = {}) const;

  private:
    std::wstring m_path;
};

} // namespace test

#endif
