#include "config/ProductRoot.h"

#include "tests/config/FreshMachine.h"
#include "tests/support/ChildAction.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"

#include <aclapi.h>

#include <gmock/gmock.h>

#include <optional>
#include <ostream>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;
using namespace vrUtils::Registry;

namespace {

using Bytes = std::vector<unsigned char>;

// The identifiers of the two groups in binary form: revision, count of subauthorities, authority in
// big-endian order, subauthorities in little-endian order.
Bytes const everyone{1, 1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0};
Bytes const administrators{1, 2, 0, 0, 0, 0, 0, 5, 32, 0, 0, 0, 0x20, 2, 0, 0};

Bytes bytesOf(PSID sid) {
    auto const* const bytes = static_cast<unsigned char const*>(sid);
    return {bytes, bytes + GetLengthSid(sid)};
}

// One entry of an access list that grants something.
struct Grant {
    int type;
    int flags;
    DWORD mask;
    Bytes who;

    friend bool operator==(Grant const& left, Grant const& right) {
        return std::tie(left.type, left.flags, left.mask, left.who) ==
               std::tie(right.type, right.flags, right.mask, right.who);
    }

    friend void PrintTo(Grant const& grant, std::ostream* stream) {
        *stream << "type " << grant.type << ", flags " << grant.flags << ", mask 0x" << std::hex
                << grant.mask << std::dec << ", identifier " << testing::PrintToString(grant.who);
    }
};

// What the product's root is to grant: flags 3 is "objects and containers inherit".
auto const isTheProductsList = [] {
    return ElementsAre(
        Grant{ACCESS_ALLOWED_ACE_TYPE, 3, 0x2001F, everyone},
        Grant{ACCESS_ALLOWED_ACE_TYPE, 3, 0xF003F, administrators});
};

std::vector<Grant> grantsOf(ACL* list) {
    std::vector<Grant> grants;
    for (DWORD index = 0; index < list->AceCount; ++index) {
        void* entry = nullptr;
        EXPECT_TRUE(GetAce(list, index, &entry));
        auto& allowed = *static_cast<ACCESS_ALLOWED_ACE*>(entry);
        grants.push_back(
            {allowed.Header.AceType, allowed.Header.AceFlags, allowed.Mask,
             bytesOf(&allowed.SidStart)});
    }
    return grants;
}

// The attributes that a key is to be made with, as they were during the call.
struct SeenAttributes {
    DWORD length = 0;
    BOOL inherit = TRUE;
    bool isSound = false;
    DWORD revision = 0;
    BOOL listPresent = FALSE;
    BOOL listDefaulted = TRUE;
    std::vector<Grant> grants;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    ACL* list = nullptr;
    // What setting the descriptor on a scratch key has left there.
    std::vector<Grant> readBack;
};

std::vector<Grant> applied(PSECURITY_DESCRIPTOR descriptor) {
    test::ScratchKey const scratch;
    HKEY key = nullptr;
    RegOpenKeyExW(scratch.hive(), scratch.path().c_str(), 0, KEY_ALL_ACCESS, &key);
    EXPECT_EQ(ERROR_SUCCESS, RegSetKeySecurity(key, DACL_SECURITY_INFORMATION, descriptor));
    std::vector<unsigned char> bytes(1024);
    auto length = static_cast<DWORD>(bytes.size());
    EXPECT_EQ(
        ERROR_SUCCESS, RegGetKeySecurity(key, DACL_SECURITY_INFORMATION, bytes.data(), &length));
    RegCloseKey(key);
    BOOL present = FALSE;
    BOOL defaulted = FALSE;
    ACL* list = nullptr;
    EXPECT_TRUE(GetSecurityDescriptorDacl(bytes.data(), &present, &list, &defaulted));
    return present && list ? grantsOf(list) : std::vector<Grant>();
}

SeenAttributes seen(SECURITY_ATTRIBUTES const& attributes) {
    SeenAttributes result;
    result.length = attributes.nLength;
    result.inherit = attributes.bInheritHandle;
    result.descriptor = attributes.lpSecurityDescriptor;
    SECURITY_DESCRIPTOR_CONTROL control = 0;
    result.isSound =
        result.descriptor &&
        GetSecurityDescriptorControl(result.descriptor, &control, &result.revision) &&
        GetSecurityDescriptorDacl(
            result.descriptor, &result.listPresent, &result.list, &result.listDefaulted);
    if (result.list)
        result.grants = grantsOf(result.list);
    return result;
}

// Follows the making of the root: what is asked for, and what is given back.
class RootMaking {
  public:
    // What the call that makes the key fails with, if it is to.
    LSTATUS failure = ERROR_SUCCESS;

    // Whether the descriptor is to be tried on a key of its own.
    bool readBack = false;

    void run() {
        test::ImportHook<decltype(RegCreateKeyExW)> const create(
            "RegCreateKeyExW",
            [&](HKEY parent, LPCWSTR subkey, DWORD reserved, LPWSTR className, DWORD options,
                REGSAM access, SECURITY_ATTRIBUTES* attributes, HKEY* key, DWORD* disposition) {
                // The test's own keys come through here too.
                if (subkey != std::wstring(L"Software\\Vorrane\\Ostrel"))
                    return create.original()(
                        parent, subkey, reserved, className, options, access, attributes, key,
                        disposition);
                events.emplace_back("create");
                parents.push_back(parent);
                accesses.push_back(access);
                if (attributes) {
                    given = seen(*attributes);
                    if (readBack)
                        given->readBack = applied(attributes->lpSecurityDescriptor);
                }
                return failure != ERROR_SUCCESS ? failure
                                                : create.original()(
                                                      parent, subkey, reserved, className, options,
                                                      access, attributes, key, disposition);
            });
        test::ImportHook<decltype(RegCloseKey)> const close("RegCloseKey", [&](HKEY key) {
            events.emplace_back("close");
            return close.original()(key);
        });
        test::ImportHook<decltype(FreeSid)> const freeSid("FreeSid", [&](PSID sid) {
            ++identifiersFreed;
            return freeSid.original()(sid);
        });
        test::ImportHook<decltype(LocalFree)> const localFree("LocalFree", [&](HLOCAL memory) {
            if (given && memory == given->descriptor)
                events.emplace_back("free descriptor");
            else if (given && memory == given->list)
                events.emplace_back("free list");
            ++blocksFreed;
            return localFree.original()(memory);
        });
        test::ImportHook const debugger(
            "OutputDebugStringW", [&](LPCWSTR text) -> void { told.emplace_back(text); });
        createProductRoot();
    }

    std::vector<std::string> events;
    std::vector<HKEY> parents;
    std::vector<REGSAM> accesses;
    std::optional<SeenAttributes> given;
    unsigned identifiersFreed = 0;
    unsigned blocksFreed = 0;
    std::vector<std::wstring> told;
};

using MakeIdentifier = decltype(AllocateAndInitializeSid);
using MakeList = decltype(SetEntriesInAclW);

class ProductRoot : public test::FreshMachine {
  protected:
    RootMaking m_making;
};

} // namespace

TEST(ProductRootPath, BeginsAsTheRootDoesWithoutRegardToCase) {
    for (auto const* const path :
         {L"Software\\Vorrane\\Ostrel", L"software\\vorrane\\ostrel",
          L"SOFTWARE\\VORRANE\\OSTREL\\SERVER", L"Software\\Vorrane\\Ostrel\\DriveMapping",
          L"Software\\Vorrane\\OstrelXYZ", L"sOFTWARE\\vORRANE\\oSTREL\\a\\b",
          L"Software\\Vorrane\\Ostrel\\", L"Software\\Vorrane\\Ostrel/x"})
        EXPECT_TRUE(beginsWithProductRoot(path)) << path;
}

TEST(ProductRootPath, IsNotOneThatStandsElsewhere) {
    for (auto const* const path :
         {L"", L"Software", L"Software\\Vorrane", L"Software\\Vorrane\\Ostre",
          L"Software\\Vorrane\\Ostre1", L"\\Software\\Vorrane\\Ostrel",
          L" Software\\Vorrane\\Ostrel", L"Software\\\\Vorrane\\Ostrel", L"Software/Vorrane/Ostrel",
          L"Software\\Other\\Software\\Vorrane\\Ostrel", L"SOFTWARE\\Wow6432Node\\Vorrane\\Ostrel",
          L"Software\\Vorrane\\ \u00D6strel"})
        EXPECT_FALSE(beginsWithProductRoot(path)) << path;
}

TEST(ProductRootPath, MayHoldAnyCharacterBehindTheRoot) {
    EXPECT_TRUE(beginsWithProductRoot(L"Software\\Vorrane\\Ostrel" + std::wstring(16383, L'x')));
    EXPECT_TRUE(beginsWithProductRoot(std::wstring(L"Software\\Vorrane\\Ostrel\0\xD800", 25)));
}

TEST_F(ProductRoot, IsMadeInTheMachinesHive) {
    createProductRoot();

    EXPECT_TRUE(m_machine.exists(L"Ostrel"));
    EXPECT_FALSE(m_user.exists());
}

TEST_F(ProductRoot, IsMadeInMixedCase) {
    createProductRoot();

    HKEY parent = nullptr;
    ASSERT_EQ(
        ERROR_SUCCESS,
        RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\VORRANE", 0, KEY_READ, &parent));
    wchar_t name[64] = {};
    DWORD length = 64;
    EXPECT_EQ(
        ERROR_SUCCESS, RegEnumKeyExW(parent, 0, name, &length, nullptr, nullptr, nullptr, nullptr));
    RegCloseKey(parent);
    EXPECT_STREQ(L"Ostrel", name);
}

TEST_F(ProductRoot, IsMadeByOneCall) {
    m_making.run();

    EXPECT_THAT(m_making.parents, ElementsAre(HKEY_LOCAL_MACHINE));
    EXPECT_THAT(m_making.accesses, ElementsAre(0x2001Fu));
    EXPECT_THAT(m_making.told, IsEmpty());
}

TEST_F(ProductRoot, ThatIsThereKeepsWhatItHas) {
    m_machine.setNumber(L"number", 3, L"Ostrel");
    m_machine.setText(L"text", L"a", L"Ostrel\\Server");

    m_making.run();

    EXPECT_EQ(3u, m_machine.getNumber(L"number", L"Ostrel"));
    EXPECT_EQ(L"a", m_machine.getText(L"text", L"Ostrel\\Server"));
    EXPECT_THAT(m_making.told, IsEmpty());
}

TEST_F(ProductRoot, AttributesHoldADescriptorAndNoInheritance) {
    m_making.run();

    ASSERT_TRUE(m_making.given);
    EXPECT_EQ(sizeof(SECURITY_ATTRIBUTES), m_making.given->length);
    EXPECT_FALSE(m_making.given->inherit);
    EXPECT_TRUE(m_making.given->isSound);
    EXPECT_EQ(1u, m_making.given->revision);
    EXPECT_TRUE(m_making.given->listPresent);
    EXPECT_FALSE(m_making.given->listDefaulted);
}

TEST_F(ProductRoot, EveryoneMayWriteAndAdministratorsMayDoAll) {
    m_making.run();

    ASSERT_TRUE(m_making.given);
    EXPECT_THAT(m_making.given->grants, isTheProductsList());
}

TEST_F(ProductRoot, DescriptorHoldsOnARealKey) {
    m_making.readBack = true;

    m_making.run();

    ASSERT_TRUE(m_making.given);
    EXPECT_THAT(m_making.given->readBack, isTheProductsList());
}

TEST_F(ProductRoot, ListIsAskedForWithTwoEntries) {
    std::vector<EXPLICIT_ACCESSW> entries;
    std::vector<Bytes> who;
    ACL const* previous = nullptr;
    test::ImportHook<MakeList> const hook(
        "SetEntriesInAclW", [&](ULONG count, EXPLICIT_ACCESSW* given, ACL* old, ACL** list) {
            entries.assign(given, given + count);
            for (auto const& entry : entries)
                who.push_back(bytesOf(entry.Trustee.ptstrName));
            previous = old;
            return hook.original()(count, given, old, list);
        });

    m_making.run();

    ASSERT_EQ(2u, entries.size());
    for (auto const& entry : entries) {
        EXPECT_EQ(2, entry.grfAccessMode); // replaces what the trustee had
        EXPECT_EQ(3u, entry.grfInheritance);
        EXPECT_EQ(nullptr, entry.Trustee.pMultipleTrustee);
        EXPECT_EQ(NO_MULTIPLE_TRUSTEE, entry.Trustee.MultipleTrusteeOperation);
        EXPECT_EQ(TRUSTEE_IS_SID, entry.Trustee.TrusteeForm);
    }
    EXPECT_EQ(0x2001Fu, entries[0].grfAccessPermissions);
    EXPECT_EQ(5, entries[0].Trustee.TrusteeType); // a well-known group
    EXPECT_EQ(0xF003Fu, entries[1].grfAccessPermissions);
    EXPECT_EQ(2, entries[1].Trustee.TrusteeType); // a group
    EXPECT_THAT(who, ElementsAre(everyone, administrators));
    EXPECT_EQ(nullptr, previous);
}

TEST_F(ProductRoot, IdentifiersAreAskedForOneByOne) {
    std::vector<std::vector<DWORD>> asked;
    test::ImportHook<MakeIdentifier> const hook(
        "AllocateAndInitializeSid",
        [&](SID_IDENTIFIER_AUTHORITY* authority, BYTE count, auto... arguments) {
            std::vector<DWORD> words{authority->Value[5], count};
            auto const add = [&](auto const& word) {
                if constexpr (std::is_same_v<decltype(word), DWORD const&>)
                    words.push_back(word);
            };
            (add(arguments), ...);
            asked.push_back(words);
            return hook.original()(authority, count, arguments...);
        });

    m_making.run();

    EXPECT_THAT(
        asked, ElementsAre(
                   ElementsAre(1, 1, 0, 0, 0, 0, 0, 0, 0, 0),
                   ElementsAre(5, 2, 32, 544, 0, 0, 0, 0, 0, 0)));
}

TEST_F(ProductRoot, DescriptorIsMadeOfZeroedMemory) {
    std::vector<std::pair<UINT, SIZE_T>> asked;
    test::ImportHook<decltype(LocalAlloc)> const hook("LocalAlloc", [&](UINT flags, SIZE_T size) {
        asked.emplace_back(flags, size);
        return hook.original()(flags, size);
    });

    m_making.run();

    EXPECT_THAT(asked, ElementsAre(std::pair<UINT, SIZE_T>(0x40, 40)));
}

TEST_F(ProductRoot, EverythingIsGivenBackBehindTheKey) {
    m_making.run();

    EXPECT_THAT(m_making.events, ElementsAre("create", "close", "free descriptor", "free list"));
    EXPECT_EQ(2u, m_making.identifiersFreed);
    EXPECT_EQ(2u, m_making.blocksFreed);
}

TEST_F(ProductRoot, LeavesNoHandle) {
    createProductRoot();
    test::HandleLeakCheck const check;

    createProductRoot();
}

TEST_F(ProductRoot, ThatIsRefusedIsToldToADebugger) {
    m_making.failure = ERROR_ACCESS_DENIED;

    m_making.run();

    EXPECT_THAT(m_making.told, ElementsAre(L"Failed 0x5\n"));
    EXPECT_THAT(m_making.events, ElementsAre("create", "free descriptor", "free list"));
    EXPECT_EQ(2u, m_making.identifiersFreed);
}

TEST_F(ProductRoot, ErrorIsToldInHexadecimal) {
    m_making.failure = static_cast<LSTATUS>(0xFEDCBA98);

    m_making.run();

    EXPECT_THAT(m_making.told, ElementsAre(L"Failed 0xfedcba98\n"));
}

TEST_F(ProductRoot, WithoutAListHasNoAttributes) {
    // A list that is left half made is none.
    ACL leftBehind{};
    test::ImportHook const hook(
        "SetEntriesInAclW", [&](ULONG, EXPLICIT_ACCESSW*, ACL*, ACL** list) -> DWORD {
            *list = &leftBehind;
            return ERROR_INVALID_PARAMETER;
        });

    m_making.run();

    EXPECT_THAT(m_making.events, ElementsAre("create", "close"));
    EXPECT_FALSE(m_making.given);
    EXPECT_EQ(2u, m_making.identifiersFreed);
    EXPECT_EQ(0u, m_making.blocksFreed);
    EXPECT_TRUE(m_machine.exists(L"Ostrel"));
}

TEST_F(ProductRoot, WithoutADescriptorHasNoAttributes) {
    test::FailingImport<decltype(LocalAlloc)> const fails(
        "LocalAlloc", nullptr, ERROR_NOT_ENOUGH_MEMORY);

    m_making.run();

    EXPECT_THAT(m_making.events, ElementsAre("create", "close"));
    EXPECT_FALSE(m_making.given);
    EXPECT_EQ(2u, m_making.identifiersFreed);
    EXPECT_EQ(1u, m_making.blocksFreed);
    EXPECT_TRUE(m_machine.exists(L"Ostrel"));
}

TEST_F(ProductRoot, DescriptorThatTakesNoListHasNone) {
    test::FailingImport<decltype(SetSecurityDescriptorDacl)> const fails(
        "SetSecurityDescriptorDacl", FALSE, ERROR_INVALID_PARAMETER);

    m_making.run();

    ASSERT_TRUE(m_making.given);
    EXPECT_FALSE(m_making.given->listPresent);
    EXPECT_EQ(2u, m_making.blocksFreed);
    EXPECT_TRUE(m_machine.exists(L"Ostrel"));
}

TEST_F(ProductRoot, DescriptorThatCannotBePreparedIsStillGivenBack) {
    test::FailingImport<decltype(InitializeSecurityDescriptor)> const fails(
        "InitializeSecurityDescriptor", FALSE, ERROR_INVALID_PARAMETER);

    m_making.run();

    EXPECT_EQ(2u, m_making.identifiersFreed);
    EXPECT_EQ(2u, m_making.blocksFreed);
    ASSERT_TRUE(m_making.given);
    EXPECT_FALSE(m_making.given->isSound);
}

TEST_F(ProductRoot, WorkGoesOnWithoutAnIdentifier) {
    for (unsigned const failing : {1u, 2u}) {
        RootMaking making;
        test::FailingImport<MakeIdentifier> const fails(
            "AllocateAndInitializeSid", FALSE, ERROR_INVALID_SID, failing);

        making.run();

        EXPECT_EQ(2u, fails.calls());
        EXPECT_EQ(1u, making.identifiersFreed);
        EXPECT_EQ("create", making.events.at(0));
        EXPECT_TRUE(m_machine.exists(L"Ostrel"));
    }
}

namespace {

// Fails to make the identifier of this number, or each of them for 0, then makes the root where the
// platform makes no list of such entries.
test::ChildAction const makeRootWithoutIdentifiers(
    L"make root without identifiers", [](test::ChildAction::Arguments const& arguments) {
        test::FailingImport<MakeIdentifier> const fails(
            "AllocateAndInitializeSid", FALSE, ERROR_INVALID_SID,
            static_cast<unsigned>(std::stoul(arguments.at(0))));
        test::FailingImport<MakeList> const failsToo(
            "SetEntriesInAclW", ERROR_INVALID_PARAMETER, ERROR_SUCCESS);
        RootMaking making;
        making.run();
        return making.given || making.told.size() != 0 ? 1 : 0;
    });

constexpr char complaint[] = "AllocateAndInitializeSid Error 1337\r\n";

} // namespace

TEST_F(ProductRoot, MissingIdentifierGoesToStandardOutput) {
    for (auto const* const failing : {L"1", L"2"}) {
        auto const child = makeRootWithoutIdentifiers.start({failing});

        EXPECT_EQ(0u, child->exitCode());
        EXPECT_EQ(complaint, child->output());
    }
    EXPECT_TRUE(m_machine.exists(L"Ostrel"));
}

TEST_F(ProductRoot, EachMissingIdentifierGoesToStandardOutput) {
    auto const child = makeRootWithoutIdentifiers.start({L"0"});

    EXPECT_EQ(0u, child->exitCode());
    EXPECT_EQ(std::string(complaint) + complaint, child->output());
    EXPECT_TRUE(m_machine.exists(L"Ostrel"));
}
