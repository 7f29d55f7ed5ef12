#ifndef CONFIG_REGISTRYKEY_H
#define CONFIG_REGISTRYKEY_H

#include "foundation/Handle.h"
#include "foundation/Platform.h"

#include <cstdint>
#include <string>

namespace vrUtils::Registry {

// What reading and writing values takes, short of the rights to change the key itself.
inline constexpr std::uint32_t readAndWrite = KEY_READ | KEY_WRITE;

// A transaction of the kernel that keys may be opened and made in.
struct RegistryTransaction {
    HANDLE transactionHandle = nullptr;
    // Non-zero: without a handle, the ordinary calls are allowed.
    int fallback = 0;
};

// Owns one open key. It belongs to one thread at a time.
class RegistryKey {
  public:
    // @param transaction borrowed; null for an ordinary key
    explicit RegistryKey(RegistryTransaction const* transaction = nullptr) noexcept
        : m_transaction(transaction) {}

    // Both open the key in place of the one held so far. A failure, whose Windows error they give,
    // leaves the object as it was; a transaction that cannot be had is ERROR_INVALID_FUNCTION.

    long Open(HKEY parent, std::wstring const& subkey, std::uint32_t access);

    // Opens a key or makes it, for reading and writing. Leading backslashes do not count, so that a
    // backslash alone is the parent.
    // @param attributes what a key that is made now receives; may be null
    long Create(HKEY parent, std::wstring const& subkey, SECURITY_ATTRIBUTES* attributes = nullptr);

    void Close() noexcept;

    HKEY get() const noexcept { return m_key.get(); }

    // Which view of the registry the last Open asked for; 0 after Create and Close.
    std::uint32_t wow64Access() const noexcept { return m_wow64Access; }

  private:
    bool isTransacted() const noexcept { return m_transaction && m_transaction->transactionHandle; }

    // Whether there is a transaction without a handle that allows no other way.
    bool isRefused() const noexcept { return m_transaction && !m_transaction->fallback; }

    RegistryOwner m_key;
    std::uint32_t m_wow64Access = 0;
    RegistryTransaction const* m_transaction;
};

} // namespace vrUtils::Registry

#endif
