#ifndef TESTS_SUPPORT_REGISTRYPLACE_H
#define TESTS_SUPPORT_REGISTRYPLACE_H

// A key of the registry, which need not exist, and what stands in it:
//
//     test::RegistryPlace const place(HKEY_LOCAL_MACHINE, L"Software\\Vorrane");
//     place.setNumber(L"EngineCacheDepth", 4, L"Ostrel\\Server");   // in a subkey, which is made
//     EXPECT_TRUE(place.exists(L"Ostrel"));
//
// Names of subkeys are relative to the key; an empty one is the key itself. It stays when the object
// goes; see ScratchKey.h for one that does not. Failed preparations throw std::system_error.

#include "foundation/Platform.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
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

class RegistryPlace {
  public:
    // @param path below the hive, with no backslash at either end
    RegistryPlace(HKEY hive, std::wstring path) : m_hive(hive), m_path(std::move(path)) {}

    HKEY hive() const noexcept { return m_hive; }

    std::wstring const& path() const noexcept { return m_path; }

    // The path of a subkey below the hive; the subkey need not exist.
    std::wstring key(std::wstring const& subkey) const;

    // Makes the key, and those above it as far as they are missing; gives its path.
    std::wstring makeKey(std::wstring const& subkey = {}) const;

    // Whether there is such a key.
    bool exists(std::wstring const& subkey = {}) const;

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

    // Removes the key, if it is there, and all below it.
    // @return the platform's result
    LSTATUS remove() const;

  private:
    HKEY m_hive;
    std::wstring m_path;
};

} // namespace test

#endif
