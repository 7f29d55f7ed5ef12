// What a restore asks of the platform: the order, how much of an answer it takes, and refusals.

#include "vrUtils/Registry/RegDumper.h"

#include "tests/config/DumpedTree.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/ChildAction.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdio>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

using testing::ElementsAre;
using vrUtils::Registry::RegDumper;
using vrUtils::Registry::RegRestoreNothing;

namespace {

using OpenKey = decltype(RegOpenKeyExW);
using CreateKey = decltype(RegCreateKeyExW);
using SetValue = decltype(RegSetValueExW);
using ReadNames = decltype(GetPrivateProfileSectionNamesW);
using ReadSection = decltype(GetPrivateProfileSectionW);

class RegistryRestoreCalls : public testing::Test, public test::DumpedTree {};

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

TEST_F(RegistryRestoreCalls, StopsAtTheCountOfLines) {
    ToldFile told(root() + L'\0', {L"\"a\"=\"1\"\0\"b\"=\"2\"\0", 16});
    told.linesCount = 8;

    EXPECT_EQ(0, restore());

    EXPECT_EQ(L"1", key.getText(L"a"));
    EXPECT_EQ(1u, values());
}

TEST_F(RegistryRestoreCalls, StopsAtAnEmptyLine) {
    ToldFile const told(root() + L'\0', {L"\"a\"=\"1\"\0\0\"b\"=\"2\"\0", 17});

    EXPECT_EQ(0, restore());

    EXPECT_EQ(1u, values());
}

TEST_F(RegistryRestoreCalls, StopsAtTheCountOfNames) {
    auto const first = root() + L"\\a";
    ToldFile told(first + L'\0' + root() + L"\\b" + L'\0', {L"\"a\"=\"1\"\0", 8});
    told.namesCount = static_cast<DWORD>(first.size() + 1);

    EXPECT_EQ(0, restore());

    EXPECT_TRUE(key.exists(L"a"));
    EXPECT_FALSE(key.exists(L"b"));
}

TEST_F(RegistryRestoreCalls, OfAnEmptySectionNameIsOutOfRange) {
    auto const first = root() + L"\\a";
    ToldFile const told(first + L'\0' + L'\0' + root() + L"\\b" + L'\0', {L"\"a\"=\"1\"\0", 8});

    EXPECT_THROW(restore(), std::out_of_range);

    EXPECT_TRUE(key.exists(L"a"));
    EXPECT_FALSE(key.exists(L"b"));
}

TEST_F(RegistryRestoreCalls, PassesOverASectionThatCannotBeRead) {
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

TEST_F(RegistryRestoreCalls, ReadsNamesOpensTheRootAndMakesEachKeyBeforeItsLinesAreRead) {
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

TEST_F(RegistryRestoreCalls, TakesSectionsUpTo8190CharactersOfNames) {
    writeLines(sectionsOf(90, root().size()));

    EXPECT_EQ(0, restore());

    EXPECT_EQ(8190u / 90u, subkeys());
    EXPECT_EQ(L"1", key.getText(L"x", L"190" + std::wstring(85 - root().size(), L'k')));
}

TEST_F(RegistryRestoreCalls, MakesAKeyOfASectionNameThatIsCut) {
    writeLines(sectionsOf(100, root().size()));

    EXPECT_EQ(0, restore());

    EXPECT_EQ(8190u / 100u + 1, subkeys());
    auto const cut = L"181" + std::wstring(8190 % 100 - root().size() - 4, L'k');
    EXPECT_TRUE(key.exists(cut));
    EXPECT_EQ(std::nullopt, key.get(L"x", cut));
}

TEST_F(RegistryRestoreCalls, OfASectionNameCutWithinTheRootIsOutOfRange) {
    writeLines(sectionsOf(120, root().size()));

    EXPECT_THROW(restore(), std::out_of_range);

    EXPECT_EQ(8190u / 120u, subkeys());
}

TEST_F(RegistryRestoreCalls, TakesLinesUpTo32766CharactersOfASection) {
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

TEST_F(RegistryRestoreCalls, AsksForARefusedKeyUntilItIsGiven) {
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

class RegistryRestoreForEver : public RegistryRestoreCalls {
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

TEST_F(RegistryRestoreCalls, LeavesNothingOpenWhicheverCallFails) {
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

TEST_F(RegistryRestoreCalls, FailedAllocationStaysOneAndLeavesNothingOpen) {
    std::string const lines =
        "\"x\"=\"a text that is longer than a small string\"\n\"y\"=dword:12\n[ROOT\\a long key]\n"
        "\"z\"=hex:01,02,03\n\"l\"=hex(7):61,00,00,00,00,00\n";
    restoreLines(lines);
    test::HandleLeakCheck const check;

    auto const failed = test::failEachAllocation([&] { EXPECT_EQ(0, restore()); });

    EXPECT_LT(5u, failed);
    EXPECT_TRUE(key.get(L"l", L"a long key"));
}
