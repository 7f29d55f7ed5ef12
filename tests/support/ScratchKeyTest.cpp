#include "tests/support/ScratchKey.h"

#include "tests/support/HandleCount.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

bool isThere(std::wstring const& path) {
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS)
        return false;
    RegCloseKey(key);
    return true;
}

} // namespace

TEST(ScratchKey, IsANewKeyEachTime) {
    test::ScratchKey const one;
    test::ScratchKey const other;

    EXPECT_TRUE(isThere(one.path()));
    EXPECT_TRUE(isThere(other.path()));
    EXPECT_NE(one.path(), other.path());
}

TEST(ScratchKey, GoesWithItsValuesAndSubkeys) {
    auto key = std::make_unique<test::ScratchKey>();
    auto const path = key->path();
    key->setText(L"a", L"text");
    key->setNumber(L"b", 1, L"Sub\\Deeper");

    key.reset();

    EXPECT_FALSE(isThere(path));
}

TEST(ScratchKey, MayBeRemovedByTheTestItself) {
    test::ScratchKey const key;

    EXPECT_EQ(ERROR_SUCCESS, key.remove());
    EXPECT_EQ(ERROR_SUCCESS, key.remove());

    EXPECT_FALSE(key.exists());
}

TEST(ScratchKey, StandsInTheHiveThatIsNamed) {
    test::ScratchKey const key(HKEY_LOCAL_MACHINE);

    EXPECT_TRUE(test::RegistryPlace(HKEY_LOCAL_MACHINE, key.path()).exists());
    EXPECT_FALSE(test::RegistryPlace(HKEY_CURRENT_USER, key.path()).exists());
}

TEST(ScratchKey, SetsAndGetsTexts) {
    test::ScratchKey const key;

    key.setText(L"Folder", L"C:\\M\u00FCsik");
    key.setText(L"Empty", L"");

    EXPECT_EQ(L"C:\\M\u00FCsik", key.getText(L"Folder"));
    EXPECT_EQ(L"", key.getText(L"Empty"));
    EXPECT_EQ(2u, key.get(L"Empty")->data.size());
}

TEST(ScratchKey, SetsAndGetsNumbers) {
    test::ScratchKey const key;

    key.setNumber(L"Count", 0xFEDCBA98);

    EXPECT_EQ(0xFEDCBA98u, key.getNumber(L"Count"));
}

TEST(ScratchKey, KeepsFaultyValuesAsTheyAre) {
    test::ScratchKey const key;

    key.set(L"odd", REG_SZ, {'a', 0, 'b'});
    key.set(L"unterminated", REG_SZ, {'a', 0, 'b', 0});
    key.set(L"short", REG_DWORD, {1, 2, 3});
    key.set(L"none", REG_SZ, {});

    EXPECT_EQ((test::RegistryValue{REG_SZ, {'a', 0, 'b'}}), key.get(L"odd"));
    EXPECT_EQ((test::RegistryValue{REG_SZ, {'a', 0, 'b', 0}}), key.get(L"unterminated"));
    EXPECT_EQ((test::RegistryValue{REG_DWORD, {1, 2, 3}}), key.get(L"short"));
    EXPECT_EQ((test::RegistryValue{REG_SZ, {}}), key.get(L"none"));
}

TEST(ScratchKey, HasNothingWhereNothingWasSet) {
    test::ScratchKey const key;
    key.setNumber(L"number", 1);
    key.setText(L"text", L"1");

    EXPECT_FALSE(key.get(L"other"));
    EXPECT_FALSE(key.get(L"number", L"NoSuchSubkey"));
    EXPECT_FALSE(key.getText(L"number"));
    EXPECT_FALSE(key.getNumber(L"text"));
}

TEST(ScratchKey, MakesSubkeys) {
    test::ScratchKey const key;

    auto const path = key.makeKey(L"a\\b");

    EXPECT_EQ(key.path() + L"\\a\\b", path);
    EXPECT_EQ(path, key.key(L"a\\b"));
    EXPECT_TRUE(key.exists(L"a\\b"));
    EXPECT_FALSE(key.exists(L"b"));
}

TEST(ScratchKey, LeavesNoHandleOpen) {
    test::ScratchKey const first;
    test::HandleLeakCheck const check;

    test::ScratchKey const key;
    key.setNumber(L"number", 1, L"Sub");
    key.get(L"number", L"Sub");
}
