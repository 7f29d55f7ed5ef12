#include "vrUtils/Registry/RegDumper.h"

#include "tests/config/DumpedTree.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/LogRecorder.h"

#include <gmock/gmock.h>

#include <optional>
#include <stdexcept>
#include <string>
#include <type_traits>

using test::sampleFile;
using testing::IsEmpty;
using vrUtils::Registry::RegDumper;
using vrUtils::Registry::RegRestoreNothing;

static_assert(RegRestoreNothing == static_cast<std::int32_t>(0x81A0600D));
static_assert(std::is_same_v<decltype(RegRestoreNothing), std::int32_t const>);

namespace {

using CreateKey = decltype(RegCreateKeyExW);
using SetValue = decltype(RegSetValueExW);

class RegistryRestore : public testing::Test, public test::DumpedTree {};

} // namespace

TEST_F(RegistryRestore, TakesASampleBack) {
    write(sampleFile("nested-keys.reg"));

    EXPECT_EQ(0, restore());

    EXPECT_EQ(L"0", key.getText(L"top"));
    EXPECT_EQ(L"1", key.getText(L"in a", L"a"));
    EXPECT_EQ(L"2", key.getText(L"in deep", L"a\\deep"));
    EXPECT_TRUE(key.exists(L"a\\deep\\deepest"));
    EXPECT_TRUE(key.exists(L"a\\other"));
    EXPECT_EQ(L"3", key.getText(L"in b", L"b"));
}

TEST_F(RegistryRestore, KeepsWhatIsNotInTheFile) {
    key.setText(L"other", L"kept");
    key.setText(L"name", L"old");
    key.setText(L"other", L"kept", L"sub");

    EXPECT_EQ(0, restoreLines("\"name\"=\"new\"\n"));

    EXPECT_EQ(L"new", key.getText(L"name"));
    EXPECT_EQ(L"kept", key.getText(L"other"));
    EXPECT_EQ(L"kept", key.getText(L"other", L"sub"));
}

TEST_F(RegistryRestore, TakesOfEqualNamesTheLast) {
    EXPECT_EQ(0, restoreLines("\"name\"=\"first\"\n\"NAME\"=dword:2\n\"name\"=\"last\"\n"));

    EXPECT_EQ(L"last", key.getText(L"name"));
    EXPECT_EQ(1u, values());
}

TEST_F(RegistryRestore, TakesOfEqualSectionsTheFirst) {
    writeLines("[ROOT\\]\n\"a\"=\"first\"\n[ROOT\\]\n\"a\"=\"second\"\n\"b\"=\"second\"\n");

    EXPECT_EQ(0, restore());

    EXPECT_EQ(L"first", key.getText(L"a"));
    EXPECT_EQ(std::nullopt, key.get(L"b"));
}

TEST_F(RegistryRestore, CutsEverySectionAfterTheLengthOfThePath) {
    auto const length = root().size();
    writeLines(
        "[" + std::string(length, 'x') + "\\a]\n\"name\"=\"1\"\n[" + std::string(length, 'y') +
        "b]\n\"name\"=\"2\"\n[" + std::string(length, 'z') + "\\\\c\\d]\n\"name\"=\"3\"\n[ROOT]\n" +
        "\"name\"=\"4\"\n");

    EXPECT_EQ(0, restore());

    EXPECT_EQ(L"1", key.getText(L"name", L"a"));
    EXPECT_EQ(L"2", key.getText(L"name", L"b"));
    EXPECT_EQ(L"3", key.getText(L"name", L"c\\d"));
    EXPECT_EQ(L"4", key.getText(L"name"));
}

TEST_F(RegistryRestore, NeverLooksAtTheHivePrefix) {
    writeLines("[ROOT\\sub]\n\"name\"=\"text\"\n");

    EXPECT_EQ(0, RegDumper(key.hive(), L"123456789012345678" + key.path()).restoreRegistry(file()));

    EXPECT_EQ(L"text", key.getText(L"name", L"sub"));
}

TEST_F(RegistryRestore, WithAPathShorterThanThePrefixIsOutOfRange) {
    writeLines("[HKEY_CURRENT_USER]\n\"name\"=\"text\"\n");
    test::ImportHook<CreateKey> const creates(
        "RegCreateKeyExW", [](auto...) -> LSTATUS { return ERROR_SUCCESS; });

    EXPECT_THROW(
        RegDumper(key.hive(), L"HKEY_CURRENT_USER").restoreRegistry(file()), std::out_of_range);

    EXPECT_EQ(0u, creates.calls());
}

TEST_F(RegistryRestore, OfAMissingFileFindsNothing) {
    test::LogRecorder const log;

    EXPECT_EQ(RegRestoreNothing, restore());

    EXPECT_TRUE(isEmpty());
    EXPECT_THAT(folder.names(), IsEmpty());
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(RegistryRestore, OfAFileInAMissingFolderFindsNothing) {
    EXPECT_EQ(
        RegRestoreNothing,
        dumper().restoreRegistry(vr::Path::file(folder.file(L"no folder\\a.reg"))));
}

TEST_F(RegistryRestore, OfAMissingRootAndNoSectionsFindsNothing) {
    writeLines("\"name\"=\"text\"\n");

    EXPECT_EQ(
        RegRestoreNothing, RegDumper(key.hive(), root() + L"\\missing").restoreRegistry(file()));

    EXPECT_FALSE(key.exists(L"missing"));
}

namespace {

class RegistryRestoreOfNoSections : public RegistryRestore,
                                    public testing::WithParamInterface<std::string> {};

// Random in look, the same every time.
std::string noise() {
    std::string bytes;
    std::uint32_t state = 1;
    for (int count = 0; count < 10000; ++count) {
        state = state * 1664525 + 1013904223;
        auto const byte = static_cast<char>(state >> 24);
        bytes += byte == '[' ? '(' : byte;
    }
    return bytes;
}

} // namespace

TEST_P(RegistryRestoreOfNoSections, FindsNothingAndTouchesNothing) {
    write(GetParam());
    test::ImportHook<CreateKey> const creates(
        "RegCreateKeyExW", [](auto...) -> LSTATUS { return ERROR_SUCCESS; });

    EXPECT_EQ(RegRestoreNothing, restore());

    EXPECT_EQ(0u, creates.calls());
    EXPECT_TRUE(isEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    InTheFile, RegistryRestoreOfNoSections,
    testing::Values(
        "", "\r\r\n", "Windows Registry Editor Version 5.00\r\r\n", "\"name\"=\"text\"\r\r\n",
        "\"name\"=", "[HKEY_CURRENT_USER\\Software\\Sample\\\r\r\n\"name\"=\"text\"\r\r\n",
        "[]\r\r\n\"name\"=\"text\"\r\r\n", std::string(1000, '\0'), noise()));

namespace {

std::string inUtf16(std::string const& text) {
    std::string bytes = "\xFF\xFE";
    for (auto const character : text)
        bytes.append(1, character).append(1, '\0');
    return bytes;
}

} // namespace

TEST_F(RegistryRestore, ReadsAFileInUtf16) {
    folder.write(fileName, inUtf16(withRoot(sampleFile("one-string.reg"))));

    EXPECT_EQ(0, restore());

    EXPECT_EQ(L"C:\\Media", key.getText(L"Folder"));
}

TEST_F(RegistryRestore, ReadsAFileBehindTheMarkOfUtf8) {
    write("\xEF\xBB\xBF" + sampleFile("one-string.reg"));

    EXPECT_EQ(0, restore());

    EXPECT_EQ(L"C:\\Media", key.getText(L"Folder"));
}

TEST_F(RegistryRestore, ReadsPlainLineEndsToo) {
    write("[HKEY_CURRENT_USER\\Software\\Sample\\]\n\"a\"=\"1\"\r\n\"b\"=\"2\"");

    EXPECT_EQ(0, restore());

    EXPECT_EQ(L"1", key.getText(L"a"));
    EXPECT_EQ(L"2", key.getText(L"b"));
}

TEST_F(RegistryRestore, OfATruncatedFileTakesWhatIsThere) {
    auto const bytes = sampleFile("nested-keys.reg");
    write(bytes.substr(0, bytes.find("deep\"=") + 7));

    EXPECT_EQ(0, restore());

    EXPECT_EQ(L"0", key.getText(L"top"));
    EXPECT_EQ(L"1", key.getText(L"in a", L"a"));
    // Of `"in deep"="2"` the quote behind the sign is there, and taken for both.
    EXPECT_EQ(L"", key.getText(L"in deep", L"a\\deep"));
    EXPECT_FALSE(key.exists(L"b"));
}

TEST_F(RegistryRestore, OfEveryTruncatedFileEnds) {
    auto const bytes = sampleFile("types.reg");

    for (std::size_t size = 0; size < bytes.size(); ++size) {
        write(bytes.substr(0, size));
        try {
            restore();
        } catch (std::out_of_range const&) {
            // The cut is behind an equals sign, in the header, or between two digits.
        }
    }
}

TEST_F(RegistryRestore, TellsTheSuccessOfTheLastWrite) {
    test::FailingImport<SetValue> const fails("RegSetValueExW", ERROR_ACCESS_DENIED, 0, 1);

    EXPECT_EQ(0, restoreLines("\"a\"=\"1\"\n\"b\"=\"2\"\n"));

    EXPECT_EQ(std::nullopt, key.get(L"a"));
    EXPECT_EQ(L"2", key.getText(L"b"));
}

namespace {

class RegistryRestoreOfARefusedValue : public RegistryRestore,
                                       public testing::WithParamInterface<std::string> {};

} // namespace

TEST_P(RegistryRestoreOfARefusedValue, TellsItsFailure) {
    test::FailingImport<SetValue> const fails("RegSetValueExW", ERROR_ACCESS_DENIED, 0, 2);

    EXPECT_EQ(
        ERROR_ACCESS_DENIED, restoreLines("\"a\"=\"1\"\n\"b\"=" + GetParam() + "\n\"c\"=hex;\n"));

    EXPECT_EQ(L"1", key.getText(L"a"));
    EXPECT_EQ(std::nullopt, key.get(L"b"));
}

INSTANTIATE_TEST_SUITE_P(
    OfEachType, RegistryRestoreOfARefusedValue,
    testing::Values("\"text\"", "dword:12", "hex:12", "hex(7):00,00"));

TEST_F(RegistryRestore, TellsOfAnEmptyListThatComesLast) {
    EXPECT_EQ(13, restoreLines("\"a\"=\"1\"\n\"b\"=hex(7):\n"));

    EXPECT_EQ(1u, values());
}

TEST_F(RegistryRestore, ForgetsAnEmptyListBeforeAnotherValue) {
    EXPECT_EQ(0, restoreLines("\"a\"=hex(7):\n\"b\"=\"2\"\n"));
}

TEST_F(RegistryRestore, KeepsTheResultWhereALineIsPassedOver) {
    EXPECT_EQ(0, restoreLines("\"a\"=\"1\"\n\"b\"=dword:x\n\"c\"\n\"d\"=hex(2):\n"));
}

TEST_F(RegistryRestore, KeepsTheResultWhereASectionHasNoLines) {
    EXPECT_EQ(0, restoreLines("\"a\"=\"1\"\n[ROOT\\sub]\n\n"));

    EXPECT_TRUE(key.exists(L"sub"));
}

TEST_F(RegistryRestore, OfSectionsWithoutLinesMakesKeysAndWritesNothing) {
    EXPECT_EQ(RegRestoreNothing, restoreLines("[ROOT\\a]\n\n[ROOT\\b\\deep]\n\n"));

    EXPECT_TRUE(key.exists(L"a"));
    EXPECT_TRUE(key.exists(L"b\\deep"));
}

namespace {

class RegistryRestoreOfABrokenLine : public RegistryRestore,
                                     public testing::WithParamInterface<std::string> {};

// So that the handles of a first exception are not taken for leaks.
void throwOnce() {
    try {
        throw std::out_of_range("the first exception");
    } catch (std::out_of_range const&) {
        return;
    }
}

} // namespace

TEST_P(RegistryRestoreOfABrokenLine, IsOutOfRangeAndEndsThere) {
    throwOnce();
    restore();
    test::HandleLeakCheck const check;

    EXPECT_THROW(
        restoreLines("\"before\"=\"1\"\n\"x\"=" + GetParam() + "\n\"behind\"=\"2\"\n[ROOT\\sub]\n"),
        std::out_of_range);

    EXPECT_EQ(L"1", key.getText(L"before"));
    EXPECT_EQ(1u, values());
    EXPECT_FALSE(key.exists(L"sub"));
}

INSTANTIATE_TEST_SUITE_P(
    Each, RegistryRestoreOfABrokenLine,
    testing::Values("", "hex:0", "hex:0a,b", "hex:100,100", "hex(7):6", "hex(7):61,0"));

TEST_F(RegistryRestore, OfASectionShorterThanThePathIsOutOfRange) {
    throwOnce();
    restore();
    writeLines(
        "[ROOT\\]\n\"before\"=\"1\"\n[HKEY_CURRENT_USER]\n\"x\"=\"2\"\n[ROOT\\sub]\n\"y\"=\"3\"\n");
    test::HandleLeakCheck const check;

    EXPECT_THROW(restore(), std::out_of_range);

    EXPECT_EQ(L"1", key.getText(L"before"));
    EXPECT_FALSE(key.exists(L"sub"));
}

TEST_F(RegistryRestore, OfASectionOneCharacterShorterThanThePathIsOutOfRange) {
    writeLines("[" + std::string(root().size() - 1, 'x') + "]\n");

    EXPECT_THROW(restore(), std::out_of_range);
}

TEST_F(RegistryRestore, OfADeepTreeMakesEveryLevel) {
    std::wstring path = L"1";
    for (int level = 0; level < 200; ++level)
        path += L"\\k";
    writeLines("[ROOT\\" + std::string(path.begin(), path.end()) + "]\n\"x\"=\"deep\"\n");

    EXPECT_EQ(0, restore());

    EXPECT_EQ(L"deep", key.getText(L"x", path));
}
