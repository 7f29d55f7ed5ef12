// What docs/registry-dump.md says of the way from the registry to a file and back.

#include "tests/config/RegistryTree.h"
#include "tests/support/WideText.h"

#include <gmock/gmock.h>

#include <stdexcept>

using test::numberValue;
using test::RegistryTree;
using test::RegistryValue;
using test::textValue;
using vrUtils::Registry::RegRestoreNothing;

namespace {

class RegistryRoundTrip : public testing::Test, public test::DumpedTree {
  protected:
    // What the restore gives; none if it ends in std::out_of_range.
    std::optional<std::int32_t> goRound() const {
        EXPECT_EQ(0, dump());
        wipe();
        try {
            return restore();
        } catch (std::out_of_range const&) {
            return std::nullopt;
        }
    }

    // The characters below U+0100 of which the value with this name and text is another one after
    // the way.
    template <typename Name, typename Text>
    std::wstring lostCharacters(Name nameOf, Text textOf) const {
        std::wstring lost;
        for (wchar_t character = 1; character < 0x100; ++character) {
            std::wstring const text(1, character);
            wipe();
            key.setText(nameOf(text), textOf(text));
            goRound();
            if (key.getText(nameOf(text)) != textOf(text))
                lost += character;
        }
        return lost;
    }
};

std::wstring const ofTheCodePage =
    L"\x80\x82\x83\x84\x85\x86\x87\x88\x89\x8A\x8B\x8C\x8E\x91\x92\x93\x94\x95\x96\x97\x98\x99"
    L"\x9A\x9B\x9C\x9E\x9F";

} // namespace

TEST_F(RegistryRoundTrip, OfATextLosesTheseCharacters) {
    auto const name = [](std::wstring const&) { return L"name"; };
    auto const text = [](std::wstring const& character) { return L'a' + character + L'b'; };

    EXPECT_EQ(L"\n\r" + ofTheCodePage, lostCharacters(name, text));
}

TEST_F(RegistryRoundTrip, OfANameLosesTheseCharacters) {
    auto const name = [](std::wstring const& character) { return L'a' + character + L'b'; };
    auto const text = [](std::wstring const&) { return L"text"; };

    EXPECT_EQ(L"\n\r=" + ofTheCodePage, lostCharacters(name, text));
}

TEST_F(RegistryRoundTrip, OfAKeyLosesTheseCharacters) {
    std::wstring lost;
    for (wchar_t character = 1; character < 0x100; ++character) {
        if (character == L'\\')
            continue;
        wipe();
        auto const name = std::wstring(L"a") + character + L"b";
        key.makeKey(name);
        goRound();
        if (!key.exists(name))
            lost += character;
    }

    EXPECT_EQ(L"\n\r" + ofTheCodePage, lost);
}

namespace {

// One value of an otherwise empty root, and what the root holds after the way.
struct Trip {
    std::wstring name;
    RegistryValue before;
    test::RegistryValues after;
    // None where the restore ends in std::out_of_range.
    std::optional<std::int32_t> status = 0;
};

void PrintTo(Trip const& trip, std::ostream* stream) {
    *stream << test::utf8(trip.name.substr(0, 20)) << ", " << testing::PrintToString(trip.before);
}

class RegistryRoundTripOfAValue : public RegistryRoundTrip,
                                  public testing::WithParamInterface<Trip> {};

RegistryValue value(DWORD type, std::size_t length) {
    return {type, std::vector<unsigned char>(length, 1)};
}

Trip survivor(std::wstring const& name, RegistryValue const& value) {
    return {name, value, {{name, value}}};
}

Trip nothingLeft(std::wstring const& name, RegistryValue const& value, std::int32_t status) {
    return {name, value, {}, status};
}

Trip outOfRange(std::wstring const& name, RegistryValue const& value) {
    return {name, value, {}, std::nullopt};
}

} // namespace

TEST_P(RegistryRoundTripOfAValue, LeavesWhatIsTold) {
    auto const& trip = GetParam();
    key.set(trip.name, trip.before.type, trip.before.data);

    EXPECT_EQ(trip.status, goRound());

    EXPECT_EQ((RegistryTree{{L"", trip.after}}), test::treeOf(key));
}

INSTANTIATE_TEST_SUITE_P(
    OfUnusualLook, RegistryRoundTripOfAValue,
    testing::Values(
        survivor(L"", textValue(L"default")), survivor(L"name", textValue(L"")),
        survivor(L" name ", textValue(L" text ")), survivor(L"na\"me", textValue(L"\"text\"")),
        survivor(L";name", textValue(L";text")), survivor(L"[name]", textValue(L"[text]")),
        survivor(L"hex", textValue(L"Hex")), survivor(L"dword", textValue(L"a=b")),
        survivor(L"name", textValue(L"C:\\Media\\")), survivor(L"name", {REG_BINARY, {}}),
        survivor(L"name", textValue(std::wstring(511, L'x'))),
        survivor(std::wstring(255, L'n'), numberValue(0xFFFFFFFF))));

INSTANTIATE_TEST_SUITE_P(
    WithATypeWordInItsText, RegistryRoundTripOfAValue,
    testing::Values(
        nothingLeft(L"name", textValue(L"hexagon"), RegRestoreNothing),
        nothingLeft(L"name", textValue(L"swordword"), RegRestoreNothing)));

INSTANTIATE_TEST_SUITE_P(
    WithAnEqualsSignInItsName, RegistryRoundTripOfAValue,
    testing::Values(
        Trip{L"width=high", textValue(L"1"), {{L"widt", textValue(L"igh\"=\"1")}}},
        nothingLeft(L"width=high", numberValue(1), RegRestoreNothing),
        nothingLeft(L"width=high", {REG_BINARY, {1}}, RegRestoreNothing)));

INSTANTIATE_TEST_SUITE_P(
    WithALineBreakInItsText, RegistryRoundTripOfAValue,
    testing::Values(
        Trip{L"name", textValue(L"one\r\ntwo"), {{L"name", textValue(L"on")}}},
        Trip{L"name", textValue(L"one\r\n\"other\"=dword:7"), {{L"name", textValue(L"on")}}, 0},
        Trip{
            L"name",
            textValue(L"one\r\n\"other\"=\"two"),
            {{L"name", textValue(L"on")}, {L"other", textValue(L"two")}}},
        Trip{L"name", textValue(L"one\r\n[two]"), {{L"name", textValue(L"on")}}, std::nullopt}));

INSTANTIATE_TEST_SUITE_P(
    OfBytesWithNoNumberBefore, RegistryRoundTripOfAValue,
    testing::Values(
        survivor(L"name", {REG_BINARY, {0, 1, 9}}),
        Trip{L"name", {REG_BINARY, {10, 255}}, {{L"name", {REG_BINARY, {0x10, 0x25}}}}},
        Trip{L"name", {REG_BINARY, {255, 10}}, {{L"name", {REG_BINARY, {0x25, 0x01}}}}},
        outOfRange(L"name", {REG_BINARY, {100, 100}})));

INSTANTIATE_TEST_SUITE_P(
    OfATypeWithoutData, RegistryRoundTripOfAValue,
    testing::Values(
        outOfRange(L"name", {REG_EXPAND_SZ, textValue(L"%TEMP%").data}),
        outOfRange(L"name", value(REG_QWORD, 8)), outOfRange(L"name", value(REG_NONE, 8)),
        outOfRange(L"name", value(REG_LINK, 8)), outOfRange(L"name", value(0x1234, 0))));

INSTANTIATE_TEST_SUITE_P(
    OfMoreThan1024Bytes, RegistryRoundTripOfAValue,
    testing::Values(
        outOfRange(L"name", textValue(std::wstring(512, L'x'))),
        Trip{L"name", value(REG_BINARY, 1025), {{L"name", {REG_BINARY, {}}}}},
        Trip{L"name", value(REG_DWORD, 1025), {{L"name", numberValue(0)}}},
        nothingLeft(L"name", value(REG_MULTI_SZ, 1025), 13)));

INSTANTIATE_TEST_SUITE_P(
    WithANameOfMoreThan255Characters, RegistryRoundTripOfAValue,
    testing::Values(
        outOfRange(std::wstring(256, L'n'), textValue(L"text")),
        Trip{std::wstring(256, L'n'), value(REG_BINARY, 1), {{L"", {REG_BINARY, {}}}}},
        Trip{std::wstring(256, L'n'), numberValue(7), {{L"", numberValue(0)}}},
        nothingLeft(std::wstring(256, L'n'), value(REG_MULTI_SZ, 4), 13)));

INSTANTIATE_TEST_SUITE_P(
    WithCharactersBeyondASCII, RegistryRoundTripOfAValue,
    testing::Values(
        survivor(L"\xE4", textValue(L"\xA0\xFF")),
        Trip{L"\x8C", textValue(L"\x80"), {{L"\x152", textValue(L"\x20AC")}}},
        Trip{L"price", textValue(L"20 \x20AC a day"), {{L"price", textValue(L"2")}}},
        nothingLeft(
            L"pri\x20AC"
            L"e",
            textValue(L"20"), RegRestoreNothing)));

INSTANTIATE_TEST_SUITE_P(
    OfDamagedLook, RegistryRoundTripOfAValue,
    testing::Values(
        Trip{L"name", textValue({L"one\0two", 7}), {{L"name", textValue(L"one")}}},
        Trip{L"name", {REG_SZ, {'a', 0, 'b'}}, {{L"name", textValue(L"a")}}},
        Trip{L"name", {REG_DWORD, {1, 2, 3}}, {{L"name", numberValue(0x030201)}}},
        Trip{L"name", value(REG_DWORD, 8), {{L"name", numberValue(0x01010101)}}},
        nothingLeft(L"name", {REG_MULTI_SZ, {}}, 13),
        Trip{L"name", {REG_MULTI_SZ, {1, 0, 1}}, {{L"name", {REG_MULTI_SZ, {1, 0, 1, 0, 0, 0}}}}},
        Trip{
            L"name",
            {REG_MULTI_SZ, {1, 0, 0, 0, 0, 0, 2, 0, 0, 0, 0, 0}},
            {{L"name", {REG_MULTI_SZ, {1, 0, 0, 0, 0, 0}}}}}));

TEST_F(RegistryRoundTrip, LosesTheRestOfTheTreeBehindATypeWithoutData) {
    key.setText(L"a", L"1");
    key.set(L"b", REG_QWORD, {1, 2, 3, 4, 5, 6, 7, 8});
    key.setText(L"c", L"3");
    key.setText(L"d", L"4", L"sub");

    EXPECT_EQ(std::nullopt, goRound());

    EXPECT_EQ((RegistryTree{{L"", {{L"a", textValue(L"1")}}}}), test::treeOf(key));
}

TEST_F(RegistryRoundTrip, KeepsBytesBehindTheFirstNumber) {
    RegistryTree const tree{
        {L"", {{L"a", numberValue(1)}, {L"b", {REG_BINARY, {10, 100, 255}}}}},
        {L"sub", {{L"", {REG_MULTI_SZ, {0xAC, 0x20, 0, 0, 0, 0}}}}}};
    test::put(tree, key);

    EXPECT_EQ(0, goRound());

    EXPECT_EQ(tree, test::treeOf(key));
}

TEST_F(RegistryRoundTrip, OfAnEmptyTreeFindsNoValue) {
    RegistryTree const tree{{L"", {}}, {L"a", {}}, {L"a\\b", {}}};
    test::put(tree, key);

    EXPECT_EQ(RegRestoreNothing, goRound());

    EXPECT_EQ(tree, test::treeOf(key));
}

TEST_F(RegistryRoundTrip, KeepsBracketsInNamesOfKeys) {
    RegistryTree const tree{
        {L"", {}}, {L"[a]", {{L"x", textValue(L"1")}}}, {L"b]c\\]", {{L"x", textValue(L"2")}}}};
    auto expected = tree;
    expected[L"b]c"];
    test::put(tree, key);

    EXPECT_EQ(0, goRound());

    EXPECT_EQ(expected, test::treeOf(key));
}

TEST_F(RegistryRoundTrip, LosesBlanksAtTheEndOfTheNameOfAKey) {
    key.setText(L"x", L"1", L"key  ");

    EXPECT_EQ(0, goRound());

    EXPECT_EQ((RegistryTree{{L"", {}}, {L"key", {{L"x", textValue(L"1")}}}}), test::treeOf(key));
}

TEST_F(RegistryRoundTrip, OfANameOfAKeyWithALineBreakPutsItsValuesIntoTheKeyBefore) {
    key.setText(L"x", L"1", L"a");
    key.setText(L"y", L"2", L"b\r\nc");

    EXPECT_EQ(0, goRound());

    EXPECT_EQ(
        (RegistryTree{{L"", {}}, {L"a", {{L"x", textValue(L"1")}, {L"y", textValue(L"2")}}}}),
        test::treeOf(key));
}

TEST_F(RegistryRoundTrip, KeepsTheRestOfTheRegistry) {
    key.setText(L"x", L"1");
    dump();
    key.setText(L"x", L"2");
    key.setText(L"y", L"3");
    key.setText(L"z", L"4", L"sub");

    EXPECT_EQ(0, restore());

    EXPECT_EQ(
        (RegistryTree{
            {L"", {{L"x", textValue(L"1")}, {L"y", textValue(L"3")}}},
            {L"sub", {{L"z", textValue(L"4")}}}}),
        test::treeOf(key));
}

TEST(RegistryRoundTripCampaign, GivesSurvivingTreesBack) {
    test::Campaign campaign(1000);
    test::DumpedTree const scratch;
    while (campaign.nextRound()) {
        auto const tree = test::randomSurvivor(campaign);
        scratch.wipe();
        test::put(tree, scratch.key);

        ASSERT_EQ(0, scratch.dump()) << campaign;
        scratch.wipe();
        ASSERT_EQ(0, scratch.restore()) << campaign;

        ASSERT_EQ(tree, test::treeOf(scratch.key)) << campaign;
    }
}

TEST(RegistryRoundTripCampaign, LosesExactlyWhatIsTold) {
    test::Campaign campaign(1000);
    test::DumpedTree const scratch;
    while (campaign.nextRound()) {
        auto const tree = test::randomLoser(campaign);
        auto const remains = test::remainsOf(tree);
        scratch.wipe();
        test::put(tree, scratch.key);

        ASSERT_EQ(0, scratch.dump()) << campaign;
        scratch.wipe();
        std::optional<std::int32_t> status;
        try {
            status = scratch.restore();
        } catch (std::out_of_range const&) {
            status.reset();
        }

        ASSERT_EQ(remains.status, status) << campaign;
        ASSERT_EQ(remains.tree, test::treeOf(scratch.key)) << campaign;
    }
}
