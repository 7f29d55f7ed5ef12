#include "config/ProductRoot.h"

#include "config/RegistryKey.h"
#include "foundation/Text.h"

#include <aclapi.h>

#include <array>
#include <cwchar>
#include <memory>
#include <string_view>

namespace vrUtils::Registry {

namespace {

constexpr wchar_t productRoot[] = L"Software\\Vorrane\\Ostrel";
constexpr std::wstring_view loweredProductRoot = L"software\\vorrane\\ostrel";

struct SidCloser {
    void operator()(void* sid) const noexcept { FreeSid(sid); }
};

using SidOwner = std::unique_ptr<void, SidCloser>;

struct LocalCloser {
    void operator()(void* memory) const noexcept { LocalFree(memory); }
};

template <typename Content>
using LocalOwner = std::unique_ptr<Content, LocalCloser>;

// A security identifier; null if it cannot be made, which goes to standard output.
SidOwner makeSid(SID_IDENTIFIER_AUTHORITY authority, BYTE count, DWORD first, DWORD second = 0) {
    PSID sid = nullptr;
    if (!AllocateAndInitializeSid(&authority, count, first, second, 0, 0, 0, 0, 0, 0, &sid)) {
        auto const error = GetLastError();
        std::wprintf(L"AllocateAndInitializeSid Error %u\n", static_cast<unsigned>(error));
        return nullptr;
    }
    return SidOwner(sid);
}

EXPLICIT_ACCESSW inheritedAccess(void* sid, TRUSTEE_TYPE type, DWORD rights) {
    EXPLICIT_ACCESSW entry{};
    entry.grfAccessPermissions = rights;
    entry.grfAccessMode = SET_ACCESS;
    entry.grfInheritance = SUB_CONTAINERS_AND_OBJECTS_INHERIT;
    entry.Trustee.TrusteeForm = TRUSTEE_IS_SID;
    entry.Trustee.TrusteeType = type;
    entry.Trustee.ptstrName = static_cast<wchar_t*>(sid);
    return entry;
}

// Everyone may read and write, administrators may do all, here and below. Null if the list cannot
// be built.
LocalOwner<ACL> makeAccessList() {
    auto const everyone = makeSid(SECURITY_WORLD_SID_AUTHORITY, 1, SECURITY_WORLD_RID);
    auto const administrators =
        makeSid(SECURITY_NT_AUTHORITY, 2, SECURITY_BUILTIN_DOMAIN_RID, DOMAIN_ALIAS_RID_ADMINS);

    std::array entries{
        inheritedAccess(everyone.get(), TRUSTEE_IS_WELL_KNOWN_GROUP, readAndWrite),
        inheritedAccess(administrators.get(), TRUSTEE_IS_GROUP, KEY_ALL_ACCESS)};
    ACL* list = nullptr;
    if (SetEntriesInAclW(static_cast<ULONG>(entries.size()), entries.data(), nullptr, &list) !=
        ERROR_SUCCESS)
        return nullptr;
    return LocalOwner<ACL>(list);
}

// Null without a list: a descriptor whose list is present but null would let everyone do all.
LocalOwner<void> makeDescriptor(ACL* list) {
    if (!list)
        return nullptr;
    LocalOwner<void> descriptor(LocalAlloc(LPTR, SECURITY_DESCRIPTOR_MIN_LENGTH));
    if (descriptor) {
        InitializeSecurityDescriptor(descriptor.get(), SECURITY_DESCRIPTOR_REVISION);
        SetSecurityDescriptorDacl(descriptor.get(), TRUE, list, FALSE);
    }
    return descriptor;
}

} // namespace

bool beginsWithProductRoot(std::wstring const& path) {
    return Strings::toLower(path.substr(0, loweredProductRoot.size())) == loweredProductRoot;
}

void createProductRoot() {
    auto const list = makeAccessList();
    auto const descriptor = makeDescriptor(list.get());
    SECURITY_ATTRIBUTES attributes{sizeof attributes, descriptor.get(), FALSE};
    RegistryKey root;
    auto const error =
        root.Create(HKEY_LOCAL_MACHINE, productRoot, descriptor ? &attributes : nullptr);
    if (error == ERROR_SUCCESS)
        return;

    wchar_t text[32];
    wsprintfW(text, L"Failed 0x%lx\n", error);
    OutputDebugStringW(text);
}

} // namespace vrUtils::Registry
