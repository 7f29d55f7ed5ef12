// What a restore makes of one line of a file.

#include "vrUtils/Registry/RegDumper.h"

#include "tests/config/DumpedTree.h"
#include "tests/support/ImportHook.h"

#include <gmock/gmock.h>

#include <optional>
#include <ostream>

using test::RegistryValue;
using testing::ElementsAre;
using vrUtils::Registry::RegRestoreNothing;

namespace {

using Bytes = std::vector<unsigned char>;

RegistryValue text(std::wstring const& text) {
    auto const* const bytes = reinterpret_cast<unsigned char const*>(text.c_str());
    return {REG_SZ, {bytes, bytes + (text.size() + 1) * sizeof(wchar_t)}};
}

RegistryValue number(std::uint32_t number) {
    auto const* const bytes = reinterpret_cast<unsigned char const*>(&number);
    return {REG_DWORD, {bytes, bytes + sizeof number}};
}

RegistryValue binary(Bytes const& bytes) { return {REG_BINARY, bytes}; }

RegistryValue list(Bytes const& bytes) { return {REG_MULTI_SZ, bytes}; }

// One line of the root's section, and what comes of it.
struct Line {
    std::string line;
    std::wstring name;
    // None where the line is passed over.
    std::optional<RegistryValue> value = std::nullopt;
    std::int32_t status = value ? 0 : RegRestoreNothing;
};

void PrintTo(Line const& line, std::ostream* stream) { *stream << line.line; }

class RegistryRestoreOfLine : public testing::TestWithParam<Line>, public test::DumpedTree {};

} // namespace

TEST_P(RegistryRestoreOfLine, WritesTheExpectedValueAndNoOther) {
    auto const& expected = GetParam();

    EXPECT_EQ(expected.status, restoreLines(expected.line + "\n"));

    EXPECT_EQ(expected.value, key.get(expected.name));
    EXPECT_EQ(expected.value ? 1u : 0u, values());
    EXPECT_EQ(0u, subkeys());
}

INSTANTIATE_TEST_SUITE_P(
    OfAText, RegistryRestoreOfLine,
    testing::Values(
        Line{"\"name\"=\"text\"", L"name", text(L"text")},
        Line{"\"\"=\"text\"", L"", text(L"text")}, Line{"\"name\"=\"\"", L"name", text(L"")},
        Line{"\"name\"=\"C:\\Media\\\"", L"name", text(L"C:\\Media\\")},
        Line{"\"na\"me\"=\"say \"hello\"\"", L"na\"me", text(L"say \"hello\"")},
        Line{"\"name\"=\"a=b;c\"", L"name", text(L"a=b;c")},
        Line{"\"name\"=\" a \"", L"name", text(L" a ")},
        Line{"\" name \"=\"text\"", L" name ", text(L"text")},
        Line{"\";name\"=\"text\"", L";name", text(L"text")},
        Line{"\"[name]\"=\"[text]\"", L"[name]", text(L"[text]")},
        Line{"\"hex dword\"=\"text\"", L"hex dword", text(L"text")},
        Line{"\"name\"=\"HEX DWORD\"", L"name", text(L"HEX DWORD")},
        Line{"\"\xE4\"=\"\xA0\xFF\"", L"\xE4", text(L"\xA0\xFF")}));

INSTANTIATE_TEST_SUITE_P(
    OfACharacterOfTheCodePage, RegistryRestoreOfLine,
    testing::Values(Line{"\"name\"=\"\x80\x9F\"", L"name", text(L"\x20AC\x0178")}));

INSTANTIATE_TEST_SUITE_P(
    OfBlanksAroundTheSign, RegistryRestoreOfLine,
    testing::Values(
        Line{"\"name\" = \"text\"", L"name", text(L"text")},
        Line{"  \"name\"=dword:12  ", L"name", number(0x12)}));

INSTANTIATE_TEST_SUITE_P(
    WithoutQuotes, RegistryRestoreOfLine,
    testing::Values(
        Line{"name=text", L"am", text(L"ex")}, Line{"\"name\"=x", L"name", text(L"")},
        Line{"=\"text\"", L"\"text\"", text(L"text")}, Line{"ab=\"text\"", L"", text(L"text")},
        Line{"a=\"text\"", L"=\"text\"", text(L"text")},
        Line{"\"a=b\"=\"text\"", L"", text(L"\"=\"text")}));

INSTANTIATE_TEST_SUITE_P(
    OfALineThatIsPassedOver, RegistryRestoreOfLine,
    testing::Values(
        Line{"\"name\"", L""}, Line{";\"name\"=\"text\"", L"name"},
        Line{"\"name\"=\"the hex file\"", L"name"}, Line{"\"name\"=\"a dword\"", L"name"},
        Line{"\"name\"=\"hex(7):61,00\"", L"name"}, Line{"\"name\"=hex(2):61,00", L"name"},
        Line{"\"name\"=hex(b):61,00", L"name"}, Line{"\"name\"=HEX", L"name", text(L"E")},
        Line{"\"name\"=hex", L"name"}, Line{"\"name\"=hex(7)", L"name"},
        Line{"\"name\"=dword", L"name"}, Line{"\"name\"=dword;12", L"name"},
        Line{"\"name\"=hex;12", L"name"}, Line{"\"name\"=hex(7);12", L"name"}));

INSTANTIATE_TEST_SUITE_P(
    OfANumber, RegistryRestoreOfLine,
    testing::Values(
        Line{"\"name\"=dword:00001234", L"name", number(0x1234)},
        Line{"\"name\"=dword:DeadBeef", L"name", number(0xDEADBEEF)},
        Line{"\"name\"=dword:7", L"name", number(7)}, Line{"\"name\"=dword:", L"name", number(0)},
        Line{"\"name\"=dword:-1", L"name", number(0xFFFFFFFF)},
        Line{"\"name\"=dword:+1", L"name", number(1)},
        Line{"\"name\"=dword:0x12", L"name", number(0x12)},
        Line{"\"name\"=dword: 12", L"name", number(0x12)},
        Line{"\"name\"=dword:100000000", L"name", number(0xFFFFFFFF)},
        Line{"\"name\"=dword:123456789abcdef", L"name", number(0xFFFFFFFF)}));

INSTANTIATE_TEST_SUITE_P(
    OfNoNumber, RegistryRestoreOfLine,
    testing::Values(
        Line{"\"name\"=dword:12x", L"name"}, Line{"\"name\"=dword:12 34", L"name"},
        Line{"\"name\"=dword:x", L"name"}, Line{"\"name\"=dword:\"12\"", L"name"},
        Line{"\"name\"=dword:-", L"name"}));

INSTANTIATE_TEST_SUITE_P(
    OfBytes, RegistryRestoreOfLine,
    testing::Values(
        Line{"\"name\"=hex:", L"name", binary({})},
        Line{"\"name\"=hex:0a,ff", L"name", binary({0x0A, 0xFF})},
        Line{"\"name\"=hex:0A,Ff", L"name", binary({0x0A, 0xFF})},
        Line{"\"name\"=hex:zz,1g", L"name", binary({0x00, 0x10})},
        Line{"\"name\"=hex:0a;0b 0c", L"name", binary({0x0A, 0x0B, 0x0C})},
        Line{"\"name\"=hex:0a,", L"name", binary({0x0A})},
        Line{"\"name\"=hex:10,255", L"name", binary({0x10, 0x25})}));

// The platform ends a list of strings that does not end with a zero.
INSTANTIATE_TEST_SUITE_P(
    OfAList, RegistryRestoreOfLine,
    testing::Values(
        Line{
            "\"name\"=hex(7):61,00,00,00,62,03,00,00,00,00", L"name",
            list({0x61, 0, 0, 0, 0x62, 3, 0, 0, 0, 0})},
        Line{"\"name\"=hex(7):61,00,00,00,00,00,62,00,00,00", L"name", list({0x61, 0, 0, 0, 0, 0})},
        Line{"\"name\"=hex(7):00,00,61,00", L"name", list({0, 0})},
        Line{"\"name\"=hex(7):61,00,00,00", L"name", list({0x61, 0, 0, 0})},
        Line{"\"name\"=hex(7):61,00,62,00", L"name", list({0x61, 0, 0x62, 0, 0, 0})},
        Line{"\"name\"=hex(7):61,00,62", L"name", list({0x61, 0, 0x62, 0, 0, 0})},
        Line{"\"name\"=hex(7):61", L"name", list({0x61, 0, 0, 0})},
        Line{"\"name\"=hex(7):", L"name", std::nullopt, 13}));

TEST(RegistryRestoreOfList, HandsOverAsMuchAsThereIs) {
    test::DumpedTree const tree;
    std::vector<DWORD> lengths;
    test::ImportHook<decltype(RegSetValueExW)> const sets(
        "RegSetValueExW",
        [&](HKEY, LPCWSTR, DWORD, DWORD type, BYTE const*, DWORD length) -> LSTATUS {
            EXPECT_EQ(static_cast<DWORD>(REG_MULTI_SZ), type);
            lengths.push_back(length);
            return ERROR_SUCCESS;
        });

    tree.restoreLines("\"a\"=hex(7):61,00,62\n\"b\"=hex(7):61,00,00,00\n\"c\"=hex(7):00,00\n"
                      "\"d\"=hex(7):61,00,00,00,00,00,00,00\n");

    EXPECT_THAT(lengths, ElementsAre(4u, 4u, 2u, 6u));
}
