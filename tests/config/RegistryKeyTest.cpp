#include "config/RegistryKey.h"

#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/KeyCalls.h"
#include "tests/support/ScratchKey.h"

#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;
using namespace vrUtils::Registry;

namespace {

// Where a failing call leaves what is no key.
HKEY const garbage = reinterpret_cast<HKEY>(0x1230);

class RegistryKeyTest : public testing::Test {
  protected:
    std::wstring path(wchar_t const* subkey) const { return m_scratch.key(subkey); }

    test::ScratchKey m_scratch;
    RegistryKey m_key;
};

} // namespace

class RegistryKeyOpen : public RegistryKeyTest {};

TEST_F(RegistryKeyOpen, OpensAKey) {
    EXPECT_EQ(ERROR_SUCCESS, m_key.Open(HKEY_CURRENT_USER, m_scratch.path(), KEY_READ));

    EXPECT_NE(nullptr, m_key.get());
    EXPECT_EQ(
        ERROR_SUCCESS, RegQueryInfoKeyW(
                           m_key.get(), nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                           nullptr, nullptr, nullptr, nullptr, nullptr));
}

TEST_F(RegistryKeyOpen, GivesTheErrorOfAMissingKey) {
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, m_key.Open(HKEY_CURRENT_USER, path(L"missing"), KEY_READ));

    EXPECT_EQ(nullptr, m_key.get());
    EXPECT_FALSE(m_scratch.exists(L"missing"));
}

TEST_F(RegistryKeyOpen, PassesItsArgumentsOn) {
    test::KeyCalls const calls;

    m_key.Open(HKEY_LOCAL_MACHINE, L"No\\Such\\Key", 0x20119);

    EXPECT_THAT(
        calls.made(),
        ElementsAre(test::KeyCall{
            test::KeyCall::open, HKEY_LOCAL_MACHINE, L"No\\Such\\Key", true, 0x20119, false}));
}

TEST_F(RegistryKeyOpen, LeavesALeadingBackslashToThePlatform) {
    m_scratch.makeKey(L"Sub");
    RegistryKey parent;
    ASSERT_EQ(ERROR_SUCCESS, parent.Open(HKEY_CURRENT_USER, m_scratch.path(), KEY_READ));

    EXPECT_EQ(ERROR_BAD_PATHNAME, m_key.Open(parent.get(), L"\\Sub", KEY_READ));
    EXPECT_EQ(ERROR_SUCCESS, m_key.Open(parent.get(), L"Sub", KEY_READ));
}

TEST_F(RegistryKeyOpen, RemembersTheViewItAskedFor) {
    for (DWORD const view : {0x0u, 0x100u, 0x200u, 0x300u}) {
        // Not every platform takes both at once.
        test::ImportHook<decltype(RegOpenKeyExW)> const hook(
            "RegOpenKeyExW", [&](auto parent, auto subkey, auto options, auto access, auto* key) {
                EXPECT_EQ(KEY_READ | view, access);
                return hook.original()(parent, subkey, options, KEY_READ, key);
            });

        EXPECT_EQ(ERROR_SUCCESS, m_key.Open(HKEY_CURRENT_USER, m_scratch.path(), KEY_READ | view));

        EXPECT_EQ(view, m_key.wow64Access());
    }
}

TEST_F(RegistryKeyOpen, ClosesTheKeyHeld) {
    test::KeyCalls const calls;

    m_key.Open(HKEY_CURRENT_USER, m_scratch.path(), KEY_READ);
    EXPECT_THAT(calls.closed(), IsEmpty());
    m_key.Open(HKEY_CURRENT_USER, m_scratch.path(), KEY_READ);

    ASSERT_EQ(2u, calls.handedOut().size());
    EXPECT_THAT(calls.closed(), ElementsAre(calls.handedOut()[0]));
    EXPECT_EQ(calls.handedOut()[1], m_key.get());
}

TEST_F(RegistryKeyOpen, FailureLeavesTheObjectAsItWas) {
    ASSERT_EQ(ERROR_SUCCESS, m_key.Open(HKEY_CURRENT_USER, m_scratch.path(), KEY_READ | 0x100));
    auto const held = m_key.get();
    test::KeyCalls const calls;

    EXPECT_EQ(ERROR_FILE_NOT_FOUND, m_key.Open(HKEY_CURRENT_USER, path(L"no"), KEY_READ | 0x200));

    EXPECT_EQ(held, m_key.get());
    EXPECT_EQ(0x100u, m_key.wow64Access());
    EXPECT_THAT(calls.closed(), IsEmpty());
}

TEST_F(RegistryKeyOpen, FailureTakesNothingThatThePlatformLeaves) {
    test::ImportHook const hook(
        "RegOpenKeyExW", [](HKEY, LPCWSTR, DWORD, REGSAM, HKEY* key) -> LSTATUS {
            *key = garbage;
            return ERROR_ACCESS_DENIED;
        });

    EXPECT_EQ(ERROR_ACCESS_DENIED, m_key.Open(HKEY_CURRENT_USER, m_scratch.path(), KEY_READ));

    EXPECT_EQ(nullptr, m_key.get());
}

class RegistryKeyCreate : public RegistryKeyTest {};

TEST_F(RegistryKeyCreate, MakesAKeyAndThoseAboveIt) {
    EXPECT_EQ(ERROR_SUCCESS, m_key.Create(HKEY_CURRENT_USER, path(L"a\\b\\c")));

    EXPECT_NE(nullptr, m_key.get());
    EXPECT_TRUE(m_scratch.exists(L"a\\b\\c"));
}

TEST_F(RegistryKeyCreate, OpensAKeyThatIsThere) {
    m_scratch.setNumber(L"number", 7, L"Sub");

    EXPECT_EQ(ERROR_SUCCESS, m_key.Create(HKEY_CURRENT_USER, path(L"Sub")));

    EXPECT_EQ(7u, m_scratch.getNumber(L"number", L"Sub"));
}

TEST_F(RegistryKeyCreate, AsksToReadAndWriteAndForNoMore) {
    test::KeyCalls const calls;

    m_key.Create(HKEY_CURRENT_USER, path(L"Sub"));

    EXPECT_THAT(calls.made(), ElementsAre(test::creates(HKEY_CURRENT_USER, path(L"Sub"))));
}

TEST_F(RegistryKeyCreate, PassesTheAttributesOn) {
    SECURITY_ATTRIBUTES attributes{sizeof attributes, nullptr, FALSE};
    SECURITY_ATTRIBUTES const* passed = nullptr;
    test::ImportHook const hook(
        "RegCreateKeyExW",
        [&](HKEY, LPCWSTR, DWORD, LPWSTR, DWORD, REGSAM, SECURITY_ATTRIBUTES* given, HKEY*,
            DWORD*) -> LSTATUS {
            passed = given;
            return ERROR_ACCESS_DENIED;
        });

    m_key.Create(HKEY_CURRENT_USER, L"Sub", &attributes);

    EXPECT_EQ(&attributes, passed);
}

TEST_F(RegistryKeyCreate, DropsLeadingBackslashes) {
    RegistryKey parent;
    ASSERT_EQ(ERROR_SUCCESS, parent.Open(HKEY_CURRENT_USER, m_scratch.path(), KEY_ALL_ACCESS));
    test::KeyCalls const calls;

    EXPECT_EQ(ERROR_SUCCESS, m_key.Create(parent.get(), L"\\one"));
    EXPECT_EQ(ERROR_SUCCESS, m_key.Create(parent.get(), L"\\\\\\two\\deep"));

    EXPECT_THAT(
        calls.made(),
        ElementsAre(
            test::creates(parent.get(), L"one"), test::creates(parent.get(), L"two\\deep")));
}

TEST_F(RegistryKeyCreate, LeavesOtherBackslashes) {
    test::KeyCalls const calls(test::refusing(ERROR_ACCESS_DENIED, ERROR_ACCESS_DENIED));

    m_key.Create(HKEY_CURRENT_USER, L"one\\\\two\\");

    EXPECT_THAT(calls.made(), ElementsAre(test::creates(HKEY_CURRENT_USER, L"one\\\\two\\")));
}

TEST_F(RegistryKeyCreate, BackslashAloneIsTheParent) {
    RegistryKey parent;
    ASSERT_EQ(ERROR_SUCCESS, parent.Open(HKEY_CURRENT_USER, m_scratch.path(), KEY_ALL_ACCESS));
    DWORD const number = 5;

    for (auto const* const name : {L"\\", L"\\\\", L""}) {
        ASSERT_EQ(ERROR_SUCCESS, m_key.Create(parent.get(), name));
        RegSetValueExW(
            m_key.get(), name, 0, REG_DWORD, reinterpret_cast<BYTE const*>(&number), sizeof number);

        EXPECT_EQ(number, m_scratch.getNumber(name));
    }
}

TEST_F(RegistryKeyCreate, ForgetsTheView) {
    ASSERT_EQ(ERROR_SUCCESS, m_key.Open(HKEY_CURRENT_USER, m_scratch.path(), KEY_READ | 0x100));

    ASSERT_EQ(ERROR_SUCCESS, m_key.Create(HKEY_CURRENT_USER, m_scratch.path()));

    EXPECT_EQ(0u, m_key.wow64Access());
}

TEST_F(RegistryKeyCreate, ClosesTheKeyHeld) {
    test::KeyCalls const calls;

    m_key.Create(HKEY_CURRENT_USER, path(L"one"));
    EXPECT_THAT(calls.closed(), IsEmpty());
    m_key.Create(HKEY_CURRENT_USER, path(L"two"));

    ASSERT_EQ(2u, calls.handedOut().size());
    EXPECT_THAT(calls.closed(), ElementsAre(calls.handedOut()[0]));
    EXPECT_EQ(calls.handedOut()[1], m_key.get());
}

TEST_F(RegistryKeyCreate, FailureLeavesTheObjectAsItWas) {
    ASSERT_EQ(ERROR_SUCCESS, m_key.Open(HKEY_CURRENT_USER, m_scratch.path(), KEY_READ | 0x200));
    auto const held = m_key.get();
    test::KeyCalls const calls(test::refusing(ERROR_SUCCESS, ERROR_ACCESS_DENIED));

    EXPECT_EQ(ERROR_ACCESS_DENIED, m_key.Create(HKEY_CURRENT_USER, path(L"Sub")));

    EXPECT_EQ(held, m_key.get());
    EXPECT_EQ(0x200u, m_key.wow64Access());
    EXPECT_THAT(calls.closed(), IsEmpty());
}

TEST_F(RegistryKeyCreate, FailureTakesNothingThatThePlatformLeaves) {
    test::ImportHook const hook(
        "RegCreateKeyExW",
        [](HKEY, LPCWSTR, DWORD, LPWSTR, DWORD, REGSAM, SECURITY_ATTRIBUTES*, HKEY* key,
           DWORD*) -> LSTATUS {
            *key = garbage;
            return ERROR_ACCESS_DENIED;
        });

    EXPECT_EQ(ERROR_ACCESS_DENIED, m_key.Create(HKEY_CURRENT_USER, path(L"Sub")));

    EXPECT_EQ(nullptr, m_key.get());
}

TEST_F(RegistryKeyCreate, IsRefusedBelowAKeyThatDoesNotLast) {
    HKEY passing = nullptr;
    ASSERT_EQ(
        ERROR_SUCCESS, RegCreateKeyExW(
                           HKEY_CURRENT_USER, path(L"Passing").c_str(), 0, nullptr,
                           REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr, &passing, nullptr));

    EXPECT_EQ(ERROR_CHILD_MUST_BE_VOLATILE, m_key.Create(passing, L"Sub"));

    RegCloseKey(passing);
}

TEST_F(RegistryKeyCreate, IsRefusedBelowAKeyThatIsGone) {
    RegistryKey parent;
    ASSERT_EQ(ERROR_SUCCESS, parent.Create(HKEY_CURRENT_USER, path(L"Gone")));
    ASSERT_EQ(ERROR_SUCCESS, RegDeleteKeyW(HKEY_CURRENT_USER, path(L"Gone").c_str()));

    EXPECT_EQ(ERROR_KEY_DELETED, m_key.Create(parent.get(), L"Sub"));
}

class RegistryKeyClose : public RegistryKeyTest {};

TEST_F(RegistryKeyClose, ClosesOnce) {
    test::KeyCalls const calls;
    m_key.Open(HKEY_CURRENT_USER, m_scratch.path(), KEY_READ | 0x100);

    m_key.Close();
    m_key.Close();

    EXPECT_EQ(calls.handedOut(), calls.closed());
    EXPECT_EQ(nullptr, m_key.get());
    EXPECT_EQ(0u, m_key.wow64Access());
}

TEST_F(RegistryKeyClose, ComesWithTheEndOfTheScope) {
    test::KeyCalls const calls;

    { RegistryKey().Open(HKEY_CURRENT_USER, m_scratch.path(), KEY_READ); }

    EXPECT_EQ(1u, calls.handedOut().size());
    EXPECT_EQ(calls.handedOut(), calls.closed());
}

TEST_F(RegistryKeyClose, ComesOnceForAKeyThatMoved) {
    test::KeyCalls const calls;

    {
        RegistryKey first;
        first.Open(HKEY_CURRENT_USER, m_scratch.path(), KEY_READ);
        RegistryKey const second(std::move(first));
        EXPECT_THAT(calls.closed(), IsEmpty());
    }

    EXPECT_EQ(calls.handedOut(), calls.closed());
}

TEST_F(RegistryKeyClose, LeavesNoHandle) {
    test::HandleLeakCheck const check;

    RegistryKey key;
    key.Open(HKEY_CURRENT_USER, m_scratch.path(), KEY_READ);
    key.Create(HKEY_CURRENT_USER, path(L"one"));
    key.Create(HKEY_CURRENT_USER, path(L"two"));
    key.Close();
    key.Open(HKEY_CURRENT_USER, path(L"missing"), KEY_READ);
    key.Open(HKEY_CURRENT_USER, path(L"two"), KEY_READ);
}

namespace {

// One transacted call, as it arrived.
struct TransactedCall {
    HKEY parent;
    std::wstring subkey;
    DWORD options;
    REGSAM access;
    SECURITY_ATTRIBUTES const* attributes;
    HANDLE transaction;
    // Whether what has no use here was null.
    bool plain;
};

std::vector<TransactedCall> transactedCalls;
LSTATUS transactedResult = ERROR_SUCCESS;

// A key that may be closed.
LSTATUS openAnyKey(HKEY* key) {
    if (transactedResult != ERROR_SUCCESS) {
        *key = garbage;
        return transactedResult;
    }
    return RegOpenKeyExW(HKEY_CURRENT_USER, L"Software", 0, KEY_READ, key);
}

LSTATUS WINAPI openTransacted(
    HKEY parent, LPCWSTR subkey, DWORD options, REGSAM access, PHKEY key, HANDLE transaction,
    PVOID extended) {
    transactedCalls.push_back(
        {parent, subkey, options, access, nullptr, transaction, extended == nullptr});
    return openAnyKey(key);
}

LSTATUS WINAPI createTransacted(
    HKEY parent, LPCWSTR subkey, DWORD reserved, LPWSTR className, DWORD options, REGSAM access,
    SECURITY_ATTRIBUTES const* attributes, PHKEY key, LPDWORD disposition, HANDLE transaction,
    PVOID extended) {
    bool const plain = reserved == 0 && !className && !disposition && !extended;
    transactedCalls.push_back({parent, subkey, options, access, attributes, transaction, plain});
    return openAnyKey(key);
}

FARPROC functionOf(std::string const& name) {
    auto const procedure = [](auto* function) {
        return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(function));
    };
    if (name == "RegOpenKeyTransactedW")
        return procedure(&openTransacted);
    return name == "RegCreateKeyTransactedW" ? procedure(&createTransacted) : nullptr;
}

HANDLE const transactionHandle = reinterpret_cast<HANDLE>(0x5678);

// The platform's ERROR_TRANSACTION_NOT_ACTIVE, which not every header knows.
constexpr LSTATUS transactionNotActive = 6701;

} // namespace

// Of the transacted calls not every platform has both, and a transaction is not to be had in a test.
class RegistryKeyInATransaction : public RegistryKeyTest {
  protected:
    RegistryKeyInATransaction() {
        transactedCalls.clear();
        transactedResult = ERROR_SUCCESS;
    }

    // What the library looks up; the test framework looks up others.
    HMODULE libraryFor(LPCWSTR name) {
        if (!name || name != std::wstring(L"Advapi32.dll"))
            return m_library.original()(name);
        ++m_libraryLookUps;
        return m_loadedLibrary;
    }

    FARPROC functionFor(HMODULE library, LPCSTR name) {
        EXPECT_EQ(m_loadedLibrary, library);
        m_functions.emplace_back(name);
        return m_hasFunctions ? functionOf(name) : nullptr;
    }

    RegistryTransaction m_transaction{transactionHandle, 0};
    RegistryKey m_key{&m_transaction};
    SECURITY_ATTRIBUTES m_attributes{sizeof m_attributes, nullptr, FALSE};
    HMODULE m_loadedLibrary = reinterpret_cast<HMODULE>(0x70000000);
    bool m_hasFunctions = true;
    unsigned m_libraryLookUps = 0;
    std::vector<std::string> m_functions;
    test::KeyCalls const m_ordinaryCalls;
    test::ImportHook<decltype(GetModuleHandleW)> const m_library{
        "GetModuleHandleW", [this](LPCWSTR name) { return libraryFor(name); }};
    test::ImportHook<decltype(GetProcAddress)> const m_lookUp{
        "GetProcAddress",
        [this](HMODULE library, LPCSTR name) { return functionFor(library, name); }};
};

TEST_F(RegistryKeyInATransaction, OpensByTheTransactedCall) {
    EXPECT_EQ(ERROR_SUCCESS, m_key.Open(HKEY_LOCAL_MACHINE, L"One\\Two", 0x20119));

    ASSERT_EQ(1u, transactedCalls.size());
    auto const& call = transactedCalls[0];
    EXPECT_EQ(HKEY_LOCAL_MACHINE, call.parent);
    EXPECT_EQ(L"One\\Two", call.subkey);
    EXPECT_EQ(0u, call.options);
    EXPECT_EQ(0x20119u, call.access);
    EXPECT_EQ(transactionHandle, call.transaction);
    EXPECT_TRUE(call.plain);
    EXPECT_EQ(1u, m_libraryLookUps);
    EXPECT_THAT(m_functions, ElementsAre("RegOpenKeyTransactedW"));
}

TEST_F(RegistryKeyInATransaction, CreatesByTheTransactedCall) {
    EXPECT_EQ(ERROR_SUCCESS, m_key.Create(HKEY_LOCAL_MACHINE, L"One\\Two", &m_attributes));

    ASSERT_EQ(1u, transactedCalls.size());
    auto const& call = transactedCalls[0];
    EXPECT_EQ(HKEY_LOCAL_MACHINE, call.parent);
    EXPECT_EQ(L"One\\Two", call.subkey);
    EXPECT_EQ(0u, call.options);
    EXPECT_EQ(0x2001Fu, call.access);
    EXPECT_EQ(&m_attributes, call.attributes);
    EXPECT_EQ(transactionHandle, call.transaction);
    EXPECT_TRUE(call.plain);
    EXPECT_EQ(1u, m_libraryLookUps);
    EXPECT_THAT(m_functions, ElementsAre("RegCreateKeyTransactedW"));
}

TEST_F(RegistryKeyInATransaction, HoldsTheKeyThatTheTransactedCallGives) {
    m_key.Open(HKEY_CURRENT_USER, L"Software", KEY_READ);
    EXPECT_EQ(m_ordinaryCalls.handedOut().back(), m_key.get());

    m_key.Create(HKEY_CURRENT_USER, L"Software");
    EXPECT_EQ(m_ordinaryCalls.handedOut().back(), m_key.get());
}

TEST_F(RegistryKeyInATransaction, CreateDropsLeadingBackslashesAndOpenDoesNot) {
    m_key.Open(HKEY_CURRENT_USER, L"\\One", KEY_READ);
    m_key.Create(HKEY_CURRENT_USER, L"\\Two");
    m_key.Create(HKEY_CURRENT_USER, L"\\");

    ASSERT_EQ(3u, transactedCalls.size());
    EXPECT_EQ(L"\\One", transactedCalls[0].subkey);
    EXPECT_EQ(L"Two", transactedCalls[1].subkey);
    EXPECT_EQ(L"", transactedCalls[2].subkey);
}

TEST_F(RegistryKeyInATransaction, LooksTheFunctionUpAtEachCall) {
    m_key.Open(HKEY_CURRENT_USER, L"One", KEY_READ);
    m_key.Open(HKEY_CURRENT_USER, L"Two", KEY_READ);
    m_key.Create(HKEY_CURRENT_USER, L"Three");
    m_key.Create(HKEY_CURRENT_USER, L"Four");

    EXPECT_EQ(4u, m_libraryLookUps);
    EXPECT_EQ(4u, m_lookUp.calls());
}

TEST_F(RegistryKeyInATransaction, KeepsTheViewOnOpenAndForgetsItOnCreate) {
    m_key.Open(HKEY_CURRENT_USER, L"One", KEY_READ | 0x300);
    EXPECT_EQ(0x300u, m_key.wow64Access());

    m_key.Create(HKEY_CURRENT_USER, L"Two");
    EXPECT_EQ(0u, m_key.wow64Access());
}

TEST_F(RegistryKeyInATransaction, SuccessClosesTheKeyHeld) {
    m_key.Open(HKEY_CURRENT_USER, L"One", KEY_READ);
    m_key.Create(HKEY_CURRENT_USER, L"Two");
    m_key.Close();

    EXPECT_EQ(2u, m_ordinaryCalls.handedOut().size());
    EXPECT_EQ(m_ordinaryCalls.handedOut(), m_ordinaryCalls.closed());
}

TEST_F(RegistryKeyInATransaction, FailureLeavesTheObjectAsItWas) {
    m_key.Open(HKEY_CURRENT_USER, L"One", KEY_READ | 0x100);
    auto const held = m_key.get();
    transactedResult = transactionNotActive;

    EXPECT_EQ(transactionNotActive, m_key.Open(HKEY_CURRENT_USER, L"Two", KEY_READ | 0x200));
    EXPECT_EQ(transactionNotActive, m_key.Create(HKEY_CURRENT_USER, L"Three"));

    EXPECT_EQ(held, m_key.get());
    EXPECT_EQ(0x100u, m_key.wow64Access());
    EXPECT_THAT(m_ordinaryCalls.closed(), IsEmpty());
}

TEST_F(RegistryKeyInATransaction, WithoutTheLibraryIsAnInvalidFunction) {
    m_loadedLibrary = nullptr;

    EXPECT_EQ(1, m_key.Open(HKEY_CURRENT_USER, m_scratch.path(), KEY_READ));
    EXPECT_EQ(1, m_key.Create(HKEY_CURRENT_USER, m_scratch.path()));

    EXPECT_EQ(nullptr, m_key.get());
    EXPECT_EQ(0u, m_lookUp.calls());
    EXPECT_THAT(m_ordinaryCalls.made(), IsEmpty());
}

TEST_F(RegistryKeyInATransaction, WithoutTheFunctionIsAnInvalidFunction) {
    m_hasFunctions = false;

    EXPECT_EQ(1, m_key.Open(HKEY_CURRENT_USER, m_scratch.path(), KEY_READ));
    EXPECT_EQ(1, m_key.Create(HKEY_CURRENT_USER, m_scratch.path()));

    EXPECT_EQ(nullptr, m_key.get());
    EXPECT_EQ(2u, m_lookUp.calls());
    EXPECT_THAT(m_ordinaryCalls.made(), IsEmpty());
}

TEST_F(RegistryKeyInATransaction, HandleGoesBeforeTheOrdinaryCalls) {
    m_transaction.fallback = 1;
    m_hasFunctions = false;

    EXPECT_EQ(1, m_key.Open(HKEY_CURRENT_USER, m_scratch.path(), KEY_READ));
    EXPECT_EQ(1, m_key.Create(HKEY_CURRENT_USER, m_scratch.path()));

    EXPECT_THAT(m_ordinaryCalls.made(), IsEmpty());
}

TEST_F(RegistryKeyInATransaction, WithoutAHandleCallsNothing) {
    m_transaction = {nullptr, 0};

    EXPECT_EQ(1, m_key.Open(HKEY_CURRENT_USER, m_scratch.path(), KEY_READ));
    EXPECT_EQ(1, m_key.Create(HKEY_CURRENT_USER, m_scratch.path()));

    EXPECT_EQ(nullptr, m_key.get());
    EXPECT_EQ(0u, m_libraryLookUps);
    EXPECT_EQ(0u, m_lookUp.calls());
    EXPECT_THAT(m_ordinaryCalls.made(), IsEmpty());
}

TEST_F(RegistryKeyInATransaction, WithoutAHandleLeavesTheObjectAsItWas) {
    m_key.Open(HKEY_CURRENT_USER, L"One", KEY_READ | 0x100);
    auto const held = m_key.get();
    m_transaction = {nullptr, 0};

    m_key.Open(HKEY_CURRENT_USER, m_scratch.path(), KEY_READ | 0x200);
    m_key.Create(HKEY_CURRENT_USER, m_scratch.path());

    EXPECT_EQ(held, m_key.get());
    EXPECT_EQ(0x100u, m_key.wow64Access());
}

TEST_F(RegistryKeyInATransaction, WithoutAHandleFallsBackWhereThatIsAllowed) {
    for (int const fallback : {1, 2, -1}) {
        test::KeyCalls const calls;
        m_transaction = {nullptr, fallback};

        EXPECT_EQ(ERROR_SUCCESS, m_key.Open(HKEY_CURRENT_USER, m_scratch.path(), 0x10000000));
        EXPECT_EQ(ERROR_SUCCESS, m_key.Create(HKEY_CURRENT_USER, path(L"Sub")));

        EXPECT_THAT(
            calls.made(), ElementsAre(
                              test::opens(HKEY_CURRENT_USER, m_scratch.path()),
                              test::creates(HKEY_CURRENT_USER, path(L"Sub"))));
        EXPECT_EQ(0u, m_libraryLookUps);
        EXPECT_EQ(0u, m_lookUp.calls());
    }
}
