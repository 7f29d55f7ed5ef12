#include "tools/vrtool/TreeName.h"
#include "foundation/Platform.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

std::string refusalOf(std::wstring const& text) {
    try {
        TreeName const tree(text);
    } catch (std::invalid_argument const& wrong) {
        return wrong.what();
    }
    return "none";
}

} // namespace

TEST(VrtoolTreeName, TakesTheUsersHiveByBothNamesInAnyCase) {
    for (auto const* text : {L"HKCU\\Software\\A", L"hkey_current_USER\\Software\\A"}) {
        TreeName const tree(text);

        EXPECT_EQ(HKEY_CURRENT_USER, tree.hive());
        EXPECT_EQ(L"Software\\A", tree.key());
        EXPECT_EQ(L"HKEY_CURRENT_USER\\Software\\A", tree.inFile());
        EXPECT_EQ(L"HKEY_CURRENT_USER\\Software\\A", tree.text());
    }
}

TEST(VrtoolTreeName, NamesTheMachinesHiveInTheFileByEighteenCharacters) {
    for (auto const* text : {L"hklm\\Software", L"HKEY_LOCAL_MACHINE\\Software"}) {
        TreeName const tree(text);

        EXPECT_EQ(HKEY_LOCAL_MACHINE, tree.hive());
        EXPECT_EQ(L"HKEY_LOCALMACHINE\\Software", tree.inFile());
        EXPECT_EQ(L"Software", tree.inFile().substr(18));
        EXPECT_EQ(L"HKEY_LOCAL_MACHINE\\Software", tree.text());
    }
}

TEST(VrtoolTreeName, DropsBackslashesAtBothEndsOfTheKey) {
    EXPECT_EQ(L"A\\B", TreeName(L"HKCU\\A\\B\\").key());
    EXPECT_EQ(L"A\\\\B", TreeName(L"HKCU\\\\A\\\\B\\\\").key());
}

TEST(VrtoolTreeName, RefusesAWholeHive) {
    auto const* const refusal = "names a whole hive; a key below it is wanted";

    EXPECT_EQ(refusal, refusalOf(L"HKCU"));
    EXPECT_EQ(refusal, refusalOf(L"HKLM\\"));
    EXPECT_EQ(refusal, refusalOf(L"HKEY_CURRENT_USER\\\\"));
}

TEST(VrtoolTreeName, RefusesOtherHives) {
    auto const* const refusal = "begins with none of HKCU\\, HKEY_CURRENT_USER\\, HKLM\\, "
                                "HKEY_LOCAL_MACHINE\\";

    for (auto const* text :
         {L"HKU\\S-1", L"HKEY_USERS\\S-1", L"HKCR\\.txt", L"HKCUX\\A", L"HKC\\A", L"Software\\A",
          L"\\HKCU\\A", L"HKEY_LOCALMACHINE\\A", L"HKCU/A", L""})
        EXPECT_EQ(refusal, refusalOf(text)) << text;
}
