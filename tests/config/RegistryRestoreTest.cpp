#include "vrUtils/Registry/RegDumper.h"

#include "tests/config/DumpedTree.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/ChildAction.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/LogRecorder.h"

#include <gmock/gmock.h>

#include <optional>
#include <stdexcept>

using test::sampleFile;
using testing::ElementsAre;
using testing::IsEmpty;
using vrUtils::Registry::RegDumper;
using vrUtils::Registry::RegRestoreNothing;

static_assert(RegRestoreNothing == static_cast<std::int32_t>(0x81A0600D));
static_assert(std::is_same_v<decltype(RegRestoreNothing), std::int32_t const>);

namespace {

using OpenKey = decltype(RegOpenKeyExW);
using CreateKey = decltype(RegCreateKeyExW);
using SetValue = decltype(RegSetValueExW);
using ReadNames = decltype(GetPrivateProfileSectionNamesW);
using ReadSection = decltype(GetPrivateProfileSectionW);

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

namespace {

// Answers for the profile functions in place of the platform.
class ToldFile {
  public:
    ToldFile(std::wstring names, std::wstring lines)
        : m_names(std::move(names)), m_lines(std::move(lines)) {}

    // The counts, where they are not the truth.
    std::optional<DWORD> namesCount;
    std::optional<DWORD> linesCount;

  private:
    static DWORD give(std::wstring const& text, std::optional<DWORD> count, wchar_t* buffer) {
        std::copy(text.begin(), text.end(), buffer);
        return count.value_or(static_cast<DWORD>(text.size()));
    }

    std::wstring const m_names;
    std::wstring const m_lines;
    test::ImportHook<ReadNames> const m_readsNames{
        "GetPrivateProfileSectionNamesW",
        [this](LPWSTR buffer, DWORD, LPCWSTR) { return give(m_names, namesCount, buffer); }};
    test::ImportHook<ReadSection> const m_readsSection{
        "GetPrivateProfileSectionW", [this](LPCWSTR, LPWSTR buffer, DWORD, LPCWSTR) {
            return give(m_lines, linesCount, buffer);
        }};
};

} // namespace

TEST_F(RegistryRestore, StopsAtTheCountOfLines) {
    ToldFile told(root() + L'\0', {L"\"a\"=\"1\"\0\"b\"=\"2\"\0", 16});
    told.linesCount = 8;

    EXPECT_EQ(0, restore());

    EXPECT_EQ(L"1", key.getText(L"a"));
    EXPECT_EQ(1u, values());
}

TEST_F(RegistryRestore, StopsAtAnEmptyLine) {
    ToldFile const told(root() + L'\0', {L"\"a\"=\"1\"\0\0\"b\"=\"2\"\0", 17});

    EXPECT_EQ(0, restore());

    EXPECT_EQ(1u, values());
}

TEST_F(RegistryRestore, StopsAtTheCountOfNames) {
    auto const first = root() + L"\\a";
    ToldFile told(first + L'\0' + root() + L"\\b" + L'\0', {L"\"a\"=\"1\"\0", 8});
    told.namesCount = static_cast<DWORD>(first.size() + 1);

    EXPECT_EQ(0, restore());

    EXPECT_TRUE(key.exists(L"a"));
    EXPECT_FALSE(key.exists(L"b"));
}

TEST_F(RegistryRestore, OfAnEmptySectionNameIsOutOfRange) {
    auto const first = root() + L"\\a";
    ToldFile const told(first + L'\0' + L'\0' + root() + L"\\b" + L'\0', {L"\"a\"=\"1\"\0", 8});

    EXPECT_THROW(restore(), std::out_of_range);

    EXPECT_TRUE(key.exists(L"a"));
    EXPECT_FALSE(key.exists(L"b"));
}

TEST_F(RegistryRestore, PassesOverASectionThatCannotBeRead) {
    writeLines("[ROOT\\a]\n\"x\"=\"1\"\n[ROOT\\b]\n\"y\"=\"2\"\n[ROOT\\c]\n\"z\"=\"3\"\n");
    test::FailingImport<ReadSection> const fails(
        "GetPrivateProfileSectionW", 0, ERROR_FILE_NOT_FOUND, 2);

    EXPECT_EQ(0, restore());

    EXPECT_EQ(L"1", key.getText(L"x", L"a"));
    // Neither its own lines nor those that were read before.
    EXPECT_TRUE(key.exists(L"b"));
    EXPECT_EQ(std::nullopt, key.get(L"x", L"b"));
    EXPECT_EQ(std::nullopt, key.get(L"y", L"b"));
    EXPECT_EQ(L"3", key.getText(L"z", L"c"));
}

TEST_F(RegistryRestore, ReadsNamesOpensTheRootAndMakesEachKeyBeforeItsLinesAreRead) {
    restoreLines("\"x\"=\"1\"\n[ROOT\\a]\n");
    std::vector<std::wstring> order;
    test::ImportHook<ReadNames> const readsNames(
        "GetPrivateProfileSectionNamesW", [&](LPWSTR buffer, DWORD size, LPCWSTR name) {
            EXPECT_EQ(8192u, size);
            EXPECT_EQ(folder.file(fileName), name);
            order.emplace_back(L"names");
            return readsNames.original()(buffer, size, name);
        });
    test::ImportHook<OpenKey> const opens(
        "RegOpenKeyExW",
        [&](HKEY parent, LPCWSTR name, DWORD options, REGSAM access, PHKEY opened) {
            EXPECT_EQ(key.path(), name);
            EXPECT_EQ(0x2001Fu, access);
            order.emplace_back(L"open");
            return opens.original()(parent, name, options, access, opened);
        });
    test::ImportHook<CreateKey> const creates(
        "RegCreateKeyExW",
        [&](HKEY parent, LPCWSTR name, DWORD reserved, LPWSTR className, DWORD options,
            REGSAM access, LPSECURITY_ATTRIBUTES attributes, PHKEY created, LPDWORD made) {
            EXPECT_EQ(nullptr, attributes);
            EXPECT_EQ(0x2001Fu, access);
            order.push_back(std::wstring(L"make ") + name);
            return creates.original()(
                parent, name, reserved, className, options, access, attributes, created, made);
        });
    test::ImportHook<ReadSection> const readsSection(
        "GetPrivateProfileSectionW", [&](LPCWSTR section, LPWSTR buffer, DWORD size, LPCWSTR name) {
            EXPECT_EQ(32768u, size);
            EXPECT_EQ(folder.file(fileName), name);
            order.push_back(std::wstring(L"lines of ") + (section + root().size()));
            return readsSection.original()(section, buffer, size, name);
        });

    restore();

    EXPECT_THAT(
        order,
        ElementsAre(L"names", L"open", L"make ", L"lines of \\", L"make a", L"lines of \\a"));
}

namespace {

// More sections than are taken, whose names have this length, the end of each included.
std::string sectionsOf(std::size_t length, std::size_t rootLength) {
    std::string const padding(length - rootLength - 5, 'k');
    std::string lines;
    for (int number = 100; number < 300; ++number)
        lines += "[ROOT\\" + std::to_string(number) + padding + "]\n\"x\"=\"1\"\n";
    return lines;
}

} // namespace

TEST_F(RegistryRestore, TakesSectionsUpTo8190CharactersOfNames) {
    writeLines(sectionsOf(90, root().size()));

    EXPECT_EQ(0, restore());

    EXPECT_EQ(8190u / 90u, subkeys());
    EXPECT_EQ(L"1", key.getText(L"x", L"190" + std::wstring(85 - root().size(), L'k')));
}

TEST_F(RegistryRestore, MakesAKeyOfASectionNameThatIsCut) {
    writeLines(sectionsOf(100, root().size()));

    EXPECT_EQ(0, restore());

    EXPECT_EQ(8190u / 100u + 1, subkeys());
    auto const cut = L"181" + std::wstring(8190 % 100 - root().size() - 4, L'k');
    EXPECT_TRUE(key.exists(cut));
    EXPECT_EQ(std::nullopt, key.get(L"x", cut));
}

TEST_F(RegistryRestore, OfASectionNameCutWithinTheRootIsOutOfRange) {
    writeLines(sectionsOf(120, root().size()));

    EXPECT_THROW(restore(), std::out_of_range);

    EXPECT_EQ(8190u / 120u, subkeys());
}

TEST_F(RegistryRestore, TakesLinesUpTo32766CharactersOfASection) {
    std::string lines;
    // 28 characters and their end.
    for (std::uint32_t number = 10000; number < 12000; ++number)
        lines += "\"volume" + std::to_string(number) + "\"=dword:00012345\n";
    constexpr DWORD whole = 32766 / 29;

    EXPECT_EQ(0, restoreLines(lines));

    EXPECT_EQ(whole + 1, values());
    EXPECT_EQ(0x12345u, key.getNumber(L"volume" + std::to_wstring(10000 + whole - 1)));
    // Of the line behind it five digits are there, and taken for the number.
    EXPECT_EQ(0x12u, key.getNumber(L"volume" + std::to_wstring(10000 + whole)));
}

TEST_F(RegistryRestore, OfADeepTreeMakesEveryLevel) {
    std::wstring path = L"1";
    for (int level = 0; level < 200; ++level)
        path += L"\\k";
    writeLines("[ROOT\\" + std::string(path.begin(), path.end()) + "]\n\"x\"=\"deep\"\n");

    EXPECT_EQ(0, restore());

    EXPECT_EQ(L"deep", key.getText(L"x", path));
}

TEST_F(RegistryRestore, AsksForARefusedKeyUntilItIsGiven) {
    unsigned refusals = 0;
    test::ImportHook<CreateKey> const creates("RegCreateKeyExW", [&](auto... arguments) -> LSTATUS {
        return refusals++ < 1000 ? ERROR_ACCESS_DENIED : creates.original()(arguments...);
    });

    EXPECT_EQ(0, restoreLines("\"x\"=\"1\"\n[ROOT\\sub]\n\"y\"=\"2\"\n"));

    EXPECT_EQ(1002u, creates.calls());
    EXPECT_EQ(L"1", key.getText(L"x"));
    EXPECT_EQ(L"2", key.getText(L"y", L"sub"));
}

namespace {

// Restores a file, and tells when a key has been asked for many times.
// @param arguments the tree's root, the file, and the error that every key is refused with; or 0 for
//        what the platform says
test::ChildAction const restoreForEver(L"restore for ever", [](auto const& arguments) {
    auto const refusal = static_cast<LSTATUS>(std::stol(arguments.at(2)));
    unsigned count = 0;
    LSTATUS last = ERROR_SUCCESS;
    test::ImportHook<CreateKey> const creates("RegCreateKeyExW", [&](auto... values) {
        last = refusal ? refusal : creates.original()(values...);
        if (++count % 10000 == 0) {
            std::printf("%u keys refused with %ld\n", count, last);
            std::fflush(stdout);
        }
        return last;
    });
    RegDumper const dumper(HKEY_CURRENT_USER, arguments.at(0));
    std::puts("restoring");
    std::fflush(stdout);
    return static_cast<int>(dumper.restoreRegistry(vr::Path::file(arguments.at(1))));
});

class RegistryRestoreForEver : public RegistryRestore {
  protected:
    // Whether the restore asks again and again, and is refused with this error.
    void expectNoEnd(std::wstring const& tree, LSTATUS refusal, LSTATUS seen) const {
        auto const child =
            restoreForEver.start({tree, folder.file(fileName), std::to_wstring(refusal)});
        ASSERT_TRUE(child->waitForOutput("restoring"));

        EXPECT_TRUE(
            child->waitForOutput("20000 keys refused with " + std::to_string(seen) + "\r\n"));

        EXPECT_TRUE(child->isRunning());
        child->kill();
    }
};

} // namespace

TEST_F(RegistryRestoreForEver, AsksForARefusedKey) {
    writeLines("[ROOT\\]\n\"x\"=\"1\"\n");

    expectNoEnd(root(), ERROR_ACCESS_DENIED, ERROR_ACCESS_DENIED);
}

TEST_F(RegistryRestoreForEver, AsksForAKeyInAVolatileOne) {
    HKEY opened = nullptr;
    ASSERT_EQ(
        ERROR_SUCCESS, RegCreateKeyExW(
                           key.hive(), key.key(L"volatile").c_str(), 0, nullptr,
                           REG_OPTION_VOLATILE, KEY_READ, nullptr, &opened, nullptr));
    RegCloseKey(opened);
    writeLines("[ROOT\\volatile\\sub]\n\"x\"=\"1\"\n");

    expectNoEnd(root() + L"\\volatile", 0, ERROR_CHILD_MUST_BE_VOLATILE);
}

TEST_F(RegistryRestoreForEver, AsksForAKeyInAMissingRoot) {
    writeLines("[ROOT\\missing\\]\n\"x\"=\"1\"\n");

    expectNoEnd(root() + L"\\missing", 0, ERROR_INVALID_HANDLE);
}

TEST_F(RegistryRestore, LeavesNothingOpenWhicheverCallFails) {
    std::string const lines = "\"x\"=\"1\"\n[ROOT\\a]\n\"y\"=\"2\"\n";
    restoreLines(lines);
    test::HandleLeakCheck const check;

    {
        test::FailingImport<ReadNames> const fails("GetPrivateProfileSectionNamesW", 0, 2);
        EXPECT_EQ(RegRestoreNothing, restoreLines(lines));
    }
    for (unsigned number = 1; number <= 2; ++number) {
        test::FailingImport<ReadSection> const fails("GetPrivateProfileSectionW", 0, 2, number);
        EXPECT_EQ(0, restoreLines(lines));
    }
    for (unsigned number = 1; number <= 2; ++number) {
        test::FailingImport<CreateKey> const fails("RegCreateKeyExW", 5, 0, number);
        EXPECT_EQ(0, restoreLines(lines));
    }
    for (unsigned number = 1; number <= 2; ++number) {
        test::FailingImport<SetValue> const fails("RegSetValueExW", 5, 0, number);
        EXPECT_EQ(number == 1 ? 0 : 5, restoreLines(lines));
    }
}

TEST_F(RegistryRestore, FailedAllocationStaysOneAndLeavesNothingOpen) {
    std::string const lines =
        "\"x\"=\"a text that is longer than a small string\"\n\"y\"=dword:12\n[ROOT\\a long key]\n"
        "\"z\"=hex:01,02,03\n\"l\"=hex(7):61,00,00,00,00,00\n";
    restoreLines(lines);
    test::HandleLeakCheck const check;

    auto const failed = test::failEachAllocation([&] { EXPECT_EQ(0, restore()); });

    EXPECT_LT(5u, failed);
    EXPECT_TRUE(key.get(L"l", L"a long key"));
}
