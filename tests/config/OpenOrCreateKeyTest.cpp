#include "config/OpenOrCreateKey.h"

#include "tests/config/FreshMachine.h"
#include "tests/config/RegistryFailures.h"
#include "tests/support/KeyCalls.h"
#include "tests/support/LogRecorder.h"

#include <string>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;
using namespace vrUtils::Registry;

namespace {

using test::KeyCall;

constexpr wchar_t productKey[] = L"Software\\Vorrane\\Ostrel\\Server";

// A platform on which the product's root key is refused, and no other.
LSTATUS refuseRoot(KeyCall const& call) {
    return call == test::createsProductRoot() ? ERROR_ACCESS_DENIED : ERROR_SUCCESS;
}

class OpenOrCreate : public test::FreshMachine {
  protected:
    test::ScratchKey m_scratch;
    std::wstring const m_missing = m_scratch.key(L"missing");
    test::LogRecorder const m_log;
    RegistryKey m_key;
};

} // namespace

TEST_F(OpenOrCreate, KeyThatIsThereIsOpenedWithAllRights) {
    test::KeyCalls const calls;

    OpenOrCreateKey(m_key, HKEY_CURRENT_USER, m_scratch.path());

    EXPECT_THAT(calls.made(), ElementsAre(test::opens(HKEY_CURRENT_USER, m_scratch.path())));
    EXPECT_EQ(calls.handedOut().back(), m_key.get());
}

TEST_F(OpenOrCreate, MissingKeyIsMadeToReadAndWrite) {
    {
        test::KeyCalls const calls;

        OpenOrCreateKey(m_key, HKEY_CURRENT_USER, m_missing);

        EXPECT_THAT(
            calls.made(), ElementsAre(
                              test::opens(HKEY_CURRENT_USER, m_missing),
                              test::creates(HKEY_CURRENT_USER, m_missing)));
        EXPECT_EQ(calls.handedOut().back(), m_key.get());
    }
    EXPECT_TRUE(m_scratch.exists(L"missing"));
    EXPECT_THAT(m_log.lines(), IsEmpty());
}

TEST_F(OpenOrCreate, AnyFailureToOpenLeadsToMaking) {
    for (LSTATUS const error : {1, 2, 3, 5, 6, 53, 87, 161, 1018, 1021, 1450}) {
        test::KeyCalls const calls(test::refusing(error, ERROR_SUCCESS));

        OpenOrCreateKey(m_key, HKEY_CURRENT_USER, m_missing);

        EXPECT_THAT(
            calls.made(), ElementsAre(
                              test::opens(HKEY_CURRENT_USER, m_missing),
                              test::creates(HKEY_CURRENT_USER, m_missing)))
            << error;
    }
}

TEST_F(OpenOrCreate, ProductKeyIsMadeBehindTheProductRoot) {
    {
        test::KeyCalls const calls;

        OpenOrCreateKey(m_key, HKEY_LOCAL_MACHINE, productKey);

        EXPECT_THAT(
            calls.made(),
            ElementsAre(
                test::opens(HKEY_LOCAL_MACHINE, productKey), test::createsProductRoot(),
                test::creates(HKEY_LOCAL_MACHINE, productKey)));
        EXPECT_EQ(calls.handedOut().back(), m_key.get());
    }
    EXPECT_TRUE(m_machine.exists(L"Ostrel\\Server"));
}

TEST_F(OpenOrCreate, RootOfAUsersProductKeyIsTheMachines) {
    {
        test::KeyCalls const calls;

        OpenOrCreateKey(m_key, HKEY_CURRENT_USER, productKey);

        EXPECT_THAT(
            calls.made(),
            ElementsAre(
                test::opens(HKEY_CURRENT_USER, productKey), test::createsProductRoot(),
                test::creates(HKEY_CURRENT_USER, productKey)));
    }
    EXPECT_TRUE(m_machine.exists(L"Ostrel"));
    EXPECT_FALSE(m_machine.exists(L"Ostrel\\Server"));
    EXPECT_TRUE(m_user.exists(L"Ostrel\\Server"));
}

TEST_F(OpenOrCreate, ProductKeyThatOpensNeedsNoRoot) {
    m_user.makeKey(L"Ostrel\\Server");

    OpenOrCreateKey(m_key, HKEY_CURRENT_USER, productKey);

    EXPECT_FALSE(m_machine.exists());
}

TEST_F(OpenOrCreate, ProductKeyThatIsRefusedAsksForTheRootAgain) {
    m_machine.makeKey(L"Ostrel\\Server");
    test::KeyCalls const calls(test::refusing(ERROR_ACCESS_DENIED, ERROR_SUCCESS));

    OpenOrCreateKey(m_key, HKEY_LOCAL_MACHINE, productKey);

    EXPECT_THAT(
        calls.made(), ElementsAre(
                          test::opens(HKEY_LOCAL_MACHINE, productKey), test::createsProductRoot(),
                          test::creates(HKEY_LOCAL_MACHINE, productKey)));
}

TEST_F(OpenOrCreate, RootItselfIsMadeTwice) {
    test::KeyCalls const calls;

    OpenOrCreateKey(m_key, HKEY_LOCAL_MACHINE, L"Software\\Vorrane\\Ostrel");

    EXPECT_THAT(
        calls.made(), ElementsAre(
                          test::opens(HKEY_LOCAL_MACHINE, L"Software\\Vorrane\\Ostrel"),
                          test::createsProductRoot(),
                          test::creates(HKEY_LOCAL_MACHINE, L"Software\\Vorrane\\Ostrel")));
}

TEST_F(OpenOrCreate, RootHasItsOwnCaseAndTheKeyTheCallers) {
    test::KeyCalls const calls;

    OpenOrCreateKey(m_key, HKEY_CURRENT_USER, L"SOFTWARE\\VORRANE\\OSTREL\\SERVER");

    EXPECT_THAT(
        calls.made(), ElementsAre(
                          test::opens(HKEY_CURRENT_USER, L"SOFTWARE\\VORRANE\\OSTREL\\SERVER"),
                          test::createsProductRoot(),
                          test::creates(HKEY_CURRENT_USER, L"SOFTWARE\\VORRANE\\OSTREL\\SERVER")));
}

TEST_F(OpenOrCreate, NeighbourWhoseNameBeginsAsTheRootsCounts) {
    OpenOrCreateKey(m_key, HKEY_CURRENT_USER, L"Software\\Vorrane\\OstrelXYZ");

    EXPECT_TRUE(m_machine.exists(L"Ostrel"));
    EXPECT_TRUE(m_user.exists(L"OstrelXYZ"));
}

TEST_F(OpenOrCreate, KeyBesideTheProductNeedsNoRoot) {
    OpenOrCreateKey(m_key, HKEY_CURRENT_USER, L"Software\\Vorrane\\Other");

    EXPECT_TRUE(m_user.exists(L"Other"));
    EXPECT_FALSE(m_machine.exists());
}

TEST_F(OpenOrCreate, LeadingBackslashIsRefusedToOpenAndDroppedToMake) {
    test::KeyCalls const calls;

    OpenOrCreateKey(m_key, HKEY_CURRENT_USER, L"\\" + std::wstring(productKey));

    EXPECT_THAT(
        calls.made(), ElementsAre(
                          test::opens(HKEY_CURRENT_USER, L"\\" + std::wstring(productKey)),
                          test::creates(HKEY_CURRENT_USER, productKey)));
}

TEST_F(OpenOrCreate, RootThatIsRefusedIsToldToTheDebuggerAlone) {
    std::vector<std::wstring> told;
    test::ImportHook const debugger(
        "OutputDebugStringW", [&](LPCWSTR text) -> void { told.emplace_back(text); });
    test::KeyCalls const calls(refuseRoot);

    OpenOrCreateKey(m_key, HKEY_LOCAL_MACHINE, productKey);

    EXPECT_THAT(told, ElementsAre(L"Failed 0x5\n"));
    EXPECT_EQ(3u, calls.made().size());
    EXPECT_NE(nullptr, m_key.get());
    EXPECT_THAT(m_log.lines(), IsEmpty());
}

TEST_F(OpenOrCreate, KeyDecidesAfterARefusedRoot) {
    test::ImportHook const debugger("OutputDebugStringW", [](LPCWSTR) -> void {});
    test::KeyCalls const calls(test::refusing(ERROR_ACCESS_DENIED, ERROR_KEY_DELETED));

    EXPECT_THAT([&] { OpenOrCreateKey(m_key, HKEY_LOCAL_MACHINE, productKey); }, FailsToAccess());

    EXPECT_EQ(1u, debugger.calls());
    EXPECT_THAT(
        m_log.lines(), ElementsAre(test::Logged(
                           4, L"Failed to create registry key Software\\Vorrane\\Ostrel\\Server"
                              L" - Error code 1018")));
}

TEST_F(OpenOrCreate, KeyThatCannotBeHadIsLoggedWithTheErrorOfMakingIt) {
    test::KeyCalls const calls(test::refusing(ERROR_ACCESS_DENIED, ERROR_CHILD_MUST_BE_VOLATILE));

    EXPECT_THAT([&] { OpenOrCreateKey(m_key, HKEY_CURRENT_USER, m_missing); }, FailsToAccess());

    auto const text = L"Failed to create registry key " + m_missing + L" - Error code 1021";
    EXPECT_THAT(m_log.lines(), ElementsAre(test::Logged(4, text)));
    EXPECT_THAT(m_log.lines(), ElementsAre(test::LoggedFormat(4, text)));
    EXPECT_THAT(m_log.lines()[0].values, IsEmpty());
    EXPECT_EQ(nullptr, m_key.get());
}

TEST_F(OpenOrCreate, LogTakesAPathForItsFormat) {
    test::KeyCalls const calls(test::refusing(ERROR_ACCESS_DENIED, ERROR_ACCESS_DENIED));

    EXPECT_THAT(
        [&] { OpenOrCreateKey(m_key, HKEY_CURRENT_USER, L"100%d\\50%% [%s]"); }, FailsToAccess());

    EXPECT_THAT(
        m_log.lines(), ElementsAre(test::LoggedFormat(
                           4, L"Failed to create registry key 100%d\\50%% [%s] - Error code 5")));
}

TEST_F(OpenOrCreate, DoubledPercentSignIsLoggedOnce) {
    test::KeyCalls const calls(test::refusing(ERROR_ACCESS_DENIED, ERROR_ACCESS_DENIED));

    EXPECT_THAT([&] { OpenOrCreateKey(m_key, HKEY_CURRENT_USER, L"50%%"); }, FailsToAccess());

    EXPECT_THAT(m_log.texts(), ElementsAre(L"Failed to create registry key 50% - Error code 5"));
}

TEST_F(OpenOrCreate, ErrorIsLoggedInPlainDecimal) {
    test::KeyCalls const calls(test::refusing(ERROR_ACCESS_DENIED, 1234567));

    EXPECT_THAT([&] { OpenOrCreateKey(m_key, HKEY_CURRENT_USER, L"a"); }, FailsToAccess());

    EXPECT_THAT(
        m_log.texts(), ElementsAre(L"Failed to create registry key a - Error code 1234567"));
}

TEST_F(OpenOrCreate, FailureLeavesTheKeyHeld) {
    OpenOrCreateKey(m_key, HKEY_CURRENT_USER, m_scratch.path());
    auto const held = m_key.get();
    test::KeyCalls const calls(test::refusing(ERROR_ACCESS_DENIED, ERROR_ACCESS_DENIED));

    EXPECT_THAT([&] { OpenOrCreateKey(m_key, HKEY_CURRENT_USER, m_missing); }, FailsToAccess());

    EXPECT_EQ(held, m_key.get());
    EXPECT_THAT(calls.closed(), IsEmpty());
}

TEST_F(OpenOrCreate, TakesTheKeysTransaction) {
    RegistryTransaction const none{nullptr, 0};
    RegistryKey key(&none);
    test::KeyCalls const calls;

    EXPECT_THAT(
        [&] { OpenOrCreateKey(key, HKEY_CURRENT_USER, m_scratch.path()); }, FailsToAccess());

    EXPECT_THAT(calls.made(), IsEmpty());
    EXPECT_THAT(
        m_log.texts(),
        ElementsAre(L"Failed to create registry key " + m_scratch.path() + L" - Error code 1"));
}
