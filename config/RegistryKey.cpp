#include "config/RegistryKey.h"

#include <algorithm>

namespace vrUtils::Registry {

namespace {

constexpr std::uint32_t viewBits = KEY_WOW64_64KEY | KEY_WOW64_32KEY;

// A transacted call. Not every platform has it, so it is looked up by name.
template <typename Function>
Function* systemFunction(char const* name) {
    auto const library = GetModuleHandleW(L"Advapi32.dll");
    if (!library)
        return nullptr;
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(library, name)));
}

long openTransacted(
    HKEY parent, std::wstring const& subkey, std::uint32_t access, HANDLE transaction, HKEY* key) {
    auto* const open = systemFunction<decltype(RegOpenKeyTransactedW)>("RegOpenKeyTransactedW");
    if (!open)
        return ERROR_INVALID_FUNCTION;
    return open(parent, subkey.c_str(), 0, access, key, transaction, nullptr);
}

long createTransacted(
    HKEY parent, wchar_t const* subkey, SECURITY_ATTRIBUTES* attributes, HANDLE transaction,
    HKEY* key) {
    auto* const create =
        systemFunction<decltype(RegCreateKeyTransactedW)>("RegCreateKeyTransactedW");
    if (!create)
        return ERROR_INVALID_FUNCTION;
    return create(
        parent, subkey, 0, nullptr, REG_OPTION_NON_VOLATILE, readAndWrite, attributes, key, nullptr,
        transaction, nullptr);
}

} // namespace

long RegistryKey::Open(HKEY parent, std::wstring const& subkey, std::uint32_t access) {
    HKEY key = nullptr;
    long error = ERROR_INVALID_FUNCTION;
    if (isTransacted())
        error = openTransacted(parent, subkey, access, m_transaction->transactionHandle, &key);
    else if (!isRefused())
        error = RegOpenKeyExW(parent, subkey.c_str(), 0, access, &key);

    if (error == ERROR_SUCCESS) {
        m_key.reset(key);
        m_wow64Access = access & viewBits;
    }
    return error;
}

long RegistryKey::Create(HKEY parent, std::wstring const& subkey, SECURITY_ATTRIBUTES* attributes) {
    // The platform refuses a leading backslash, which the subkeys of a restore all have.
    auto const* const name =
        subkey.c_str() + std::min(subkey.find_first_not_of(L'\\'), subkey.size());
    HKEY key = nullptr;
    long error = ERROR_INVALID_FUNCTION;
    if (isTransacted())
        error = createTransacted(parent, name, attributes, m_transaction->transactionHandle, &key);
    else if (!isRefused())
        error = RegCreateKeyExW(
            parent, name, 0, nullptr, REG_OPTION_NON_VOLATILE, readAndWrite, attributes, &key,
            nullptr);

    if (error == ERROR_SUCCESS) {
        m_key.reset(key);
        m_wow64Access = 0;
    }
    return error;
}

void RegistryKey::Close() noexcept {
    m_key.reset();
    m_wow64Access = 0;
}

} // namespace vrUtils::Registry
