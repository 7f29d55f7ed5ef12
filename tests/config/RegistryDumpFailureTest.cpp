// What a dump does where the registry, the file or the memory fails.

#include "vrUtils/Registry/RegDumper.h"

#include "tests/config/DumpedTree.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/OwnedHandle.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <stdexcept>

using test::Logged;
using test::LoggedFormat;
using testing::AllOf;
using testing::ElementsAre;
using testing::IsEmpty;
using vrUtils::Registry::RegDumper;
using vrUtils::Registry::RegDumpFailed;

static_assert(RegDumpFailed == static_cast<std::int32_t>(0x81A0600C));
static_assert(std::is_same_v<decltype(RegDumpFailed), std::int32_t const>);

namespace {

using OpenKey = decltype(RegOpenKeyExW);
using EnumValue = decltype(RegEnumValueW);
using EnumKey = decltype(RegEnumKeyExW);
using OpenStream = std::FILE*(wchar_t const*, wchar_t const*, int);
using Write = std::size_t(void const*, std::size_t, std::size_t, std::FILE*);
using Close = int(std::FILE*);
using Bytes = std::vector<unsigned char>;

class RegistryDumpFailure : public testing::Test, public test::DumpedTree {
  protected:
    void makeFile() const { folder.write(fileName, "what was there before"); }

    bool fileExists() const { return folder.exists(fileName); }

    auto openFailureLogged() const {
        return ElementsAre(AllOf(
            Logged(3, L"Failed to open registry hive [" + root() + L"]"),
            LoggedFormat(3, L"Failed to open registry hive [%s]")));
    }

    auto saveFailureLogged() const {
        return ElementsAre(AllOf(
            Logged(3, L"Failed to save registry hive [" + root() + L"], file deleted"),
            LoggedFormat(3, L"Failed to save registry hive [%s], file deleted")));
    }
};

// "a" with "deep" and "later" in it, and "b"; "deep" has "deepest" in it.
class RegistryDumpOfRefusedKeys : public RegistryDumpFailure {
  protected:
    RegistryDumpOfRefusedKeys() {
        key.makeKey(L"a\\deep\\deepest");
        key.makeKey(L"a\\later");
        key.makeKey(L"b");
    }

    // The root is the first key that is opened.
    auto refuse(unsigned number) const {
        return test::FailingImport<OpenKey>("RegOpenKeyExW", ERROR_ACCESS_DENIED, 0, number);
    }

    test::LogRecorder log;
};

// Answers for the values of a key in place of the platform, one entry after the other. The data of
// a value that did not fail are bytes of 10.
class ToldValues {
  public:
    struct Entry {
        LSTATUS result = ERROR_SUCCESS;
        std::wstring name = {};
        DWORD type = REG_NONE;
        DWORD length = 0;
    };

    explicit ToldValues(std::vector<Entry> entries) : m_entries(std::move(entries)) {}

    unsigned calls() const { return m_hook.calls(); }

  private:
    LSTATUS answer(DWORD index, wchar_t* name, DWORD* type, BYTE* data, DWORD* length) const {
        if (index >= m_entries.size())
            return ERROR_NO_MORE_ITEMS;
        auto const& entry = m_entries[index];
        std::copy(entry.name.begin(), entry.name.end(), name);
        *type = entry.type;
        *length = entry.length;
        if (entry.result == ERROR_SUCCESS)
            std::fill_n(data, entry.length, BYTE{10});
        return entry.result;
    }

    std::vector<Entry> const m_entries;
    test::ImportHook<EnumValue> const m_hook{
        "RegEnumValueW",
        [this](
            HKEY, DWORD index, LPWSTR name, LPDWORD, LPDWORD, LPDWORD type, LPBYTE data,
            LPDWORD length) -> LSTATUS { return answer(index, name, type, data, length); }};
};

} // namespace

TEST_F(RegistryDumpFailure, WithAPathShorterThanThePrefixIsOutOfRange) {
    makeFile();

    EXPECT_THROW(
        RegDumper(key.hive(), L"HKEY_CURRENT_USER").dumpRegistry(file()), std::out_of_range);

    EXPECT_EQ("what was there before", dumped());
}

TEST_F(RegistryDumpFailure, OfAMissingRootFailsAndTouchesNoFile) {
    makeFile();
    RegDumper const dumper(key.hive(), root() + L"\\100%s");
    test::LogRecorder const log;

    EXPECT_EQ(RegDumpFailed, dumper.dumpRegistry(file()));

    EXPECT_EQ("what was there before", dumped());
    EXPECT_THAT(
        log.lines(), ElementsAre(AllOf(
                         Logged(3, L"Failed to open registry hive [" + root() + L"\\100%s]"),
                         LoggedFormat(3, L"Failed to open registry hive [%s]"))));
}

TEST_F(RegistryDumpFailure, OfARefusedRootFailsAndMakesNoFile) {
    test::FailingImport<OpenKey> const fails("RegOpenKeyExW", ERROR_ACCESS_DENIED, 0);
    test::LogRecorder const log;

    EXPECT_EQ(RegDumpFailed, dump());

    EXPECT_FALSE(fileExists());
    EXPECT_EQ(1u, fails.calls());
    EXPECT_THAT(log.lines(), openFailureLogged());
}

TEST_F(RegistryDumpOfRefusedKeys, FailsAtTheFirstKeyBelowTheRoot) {
    makeFile();
    auto const refused = refuse(2);

    EXPECT_EQ(RegDumpFailed, dump());

    EXPECT_FALSE(fileExists());
    EXPECT_EQ(2u, refused.calls());
    EXPECT_THAT(log.lines(), saveFailureLogged());
}

TEST_F(RegistryDumpOfRefusedKeys, FailsAtTheLastKeyBelowTheRoot) {
    auto const refused = refuse(6);

    EXPECT_EQ(RegDumpFailed, dump());

    EXPECT_FALSE(fileExists());
    EXPECT_EQ(6u, refused.calls());
    EXPECT_THAT(log.lines(), saveFailureLogged());
}

TEST_F(RegistryDumpOfRefusedKeys, EndsWithoutAWordTwoLevelsBelowTheRoot) {
    auto const refused = refuse(3);

    EXPECT_EQ(0, dump());

    EXPECT_EQ(onDisk("\n\n[ROOT\\a]\n\n\n[ROOT\\a\\deep]\n"), dumpedBehindHeader());
    EXPECT_EQ(3u, refused.calls());
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(RegistryDumpOfRefusedKeys, LeavesOutTheSiblingsOfTheParentThreeLevelsBelowTheRoot) {
    auto const refused = refuse(4);

    EXPECT_EQ(0, dump());

    EXPECT_EQ(
        onDisk("\n\n[ROOT\\a]\n\n\n[ROOT\\a\\deep]\n\n\n[ROOT\\a\\deep\\deepest]\n"
               "[ROOT\\b]\n\n\n"),
        dumpedBehindHeader());
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(RegistryDumpOfRefusedKeys, ClosesTheFileBeforeItDeletesIt) {
    auto const refused = refuse(2);
    std::vector<std::string> order;
    test::ImportHook<Close> const closes("fclose", [&](std::FILE* stream) {
        order.emplace_back("close");
        return closes.original()(stream);
    });
    test::ImportHook<decltype(DeleteFileW)> const deletes("DeleteFileW", [&](LPCWSTR name) {
        EXPECT_EQ(folder.file(fileName), name);
        EXPECT_THAT(log.lines(), IsEmpty());
        order.emplace_back("delete");
        return deletes.original()(name);
    });

    dump();

    EXPECT_THAT(order, ElementsAre("close", "delete"));
}

TEST_F(RegistryDumpOfRefusedKeys, SaysTheSameWhereTheFileCannotBeDeleted) {
    makeFile();
    test::OwnedHandle const other(CreateFileW(
        folder.file(fileName).c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
        OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    auto const refused = refuse(2);

    EXPECT_EQ(RegDumpFailed, dump());

    EXPECT_EQ(onDisk("\n\n[ROOT\\a]\n"), dumpedBehindHeader());
    EXPECT_THAT(log.lines(), saveFailureLogged());
}

TEST_F(RegistryDumpFailure, ReadsNothingOfAValueThatFailed) {
    ToldValues const told({
        {ERROR_MORE_DATA, {L"a\0", 2}, REG_SZ, 0xFFFFFFFF},
        {ERROR_MORE_DATA, {L"b\0", 2}, REG_BINARY, 0xFFFFFFFF},
        {ERROR_MORE_DATA, {L"c\0", 2}, REG_MULTI_SZ, 0xFFFFFFFF},
        {ERROR_MORE_DATA, {L"d\0", 2}, REG_DWORD, 0xFFFFFFFF},
    });

    EXPECT_EQ(0, dump());

    EXPECT_EQ(
        onDisk("\"a\"=\n\"b\"=hex:\n\"c\"=hex(7):\n\"d\"=dword:\n\n\n"), dumpedBehindHeader());
}

TEST_F(RegistryDumpFailure, ReadsNothingBeyondANameWithoutAnEnd) {
    ToldValues const told({{ERROR_MORE_DATA, std::wstring(256, L'x'), REG_NONE, 0}});

    EXPECT_EQ(0, dump());

    EXPECT_EQ(onDisk('"' + std::string(256, 'x') + "\"=\n\n\n"), dumpedBehindHeader());
}

TEST_F(RegistryDumpFailure, ForgetsTheNameBeforeAValueThatFailed) {
    ToldValues const told({
        {ERROR_SUCCESS, {L"before\0", 7}, REG_NONE, 0},
        {ERROR_KEY_DELETED, L"", REG_NONE, 0},
    });

    dump();

    EXPECT_EQ(onDisk("\"before\"=\n\"\"=\n\n\n"), dumpedBehindHeader());
}

TEST_F(RegistryDumpFailure, ForgetsTheTypeBeforeAValueThatFailed) {
    key.setNumber(L"a", 1);
    test::FailingImport<EnumValue> const fails("RegEnumValueW", ERROR_KEY_DELETED, 0, 2);

    dump();

    EXPECT_EQ(onDisk("\"a\"=dword:00000001\n\"\"=\n\n\n"), dumpedBehindHeader());
}

TEST_F(RegistryDumpFailure, TakesEveryErrorForAValue) {
    ToldValues const told({
        {ERROR_FILE_NOT_FOUND, L"", REG_NONE, 0},
        {ERROR_ACCESS_DENIED, L"", REG_NONE, 0},
        {ERROR_INVALID_HANDLE, L"", REG_NONE, 0},
        {ERROR_KEY_DELETED, L"", REG_NONE, 0},
        {-1, L"", REG_NONE, 0},
    });

    EXPECT_EQ(0, dump());

    EXPECT_EQ(6u, told.calls());
    EXPECT_EQ(onDisk("\"\"=\n\"\"=\n\"\"=\n\"\"=\n\"\"=\n\n\n"), dumpedBehindHeader());
}

TEST_F(RegistryDumpFailure, AsksADyingKeyAgainUntilItHasNoMoreValues) {
    ToldValues const told({10000, {ERROR_KEY_DELETED, L"", REG_NONE, 0}});

    EXPECT_EQ(0, dump());

    EXPECT_EQ(10001u, told.calls());
    EXPECT_EQ(
        10000 * onDisk("\"\"=\n").size() + onDisk("\n\n").size(), dumpedBehindHeader().size());
}

TEST_F(RegistryDumpFailure, DoesNotChangeTheBaseForANumberThatFailed) {
    ToldValues const told({
        {ERROR_MORE_DATA, {L"a\0", 2}, REG_DWORD, 5000},
        {ERROR_SUCCESS, {L"b\0", 2}, REG_BINARY, 1},
    });

    dump();

    EXPECT_EQ(onDisk("\"a\"=dword:\n\"b\"=hex:10\n\n\n"), dumpedBehindHeader());
}

TEST_F(RegistryDumpFailure, EndsTheKeysOnAnyError) {
    key.makeKey(L"a");
    key.makeKey(L"b");
    key.makeKey(L"c");
    // The second question is the one of "a" for its own keys.
    test::FailingImport<EnumKey> const fails("RegEnumKeyExW", ERROR_MORE_DATA, 0, 3);

    EXPECT_EQ(0, dump());

    EXPECT_EQ(onDisk("\n\n[ROOT\\a]\n\n\n"), dumpedBehindHeader());
}

TEST_F(RegistryDumpFailure, IntoAMissingFolderSucceedsWithoutAFile) {
    test::LogRecorder const log;

    EXPECT_EQ(0, dumper().dumpRegistry(vr::Path::file(folder.file(L"no folder\\tree.reg"))));

    EXPECT_THAT(folder.names(), IsEmpty());
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(RegistryDumpFailure, IntoAFolderSucceedsAndKeepsIt) {
    folder.makeFolder(fileName);

    EXPECT_EQ(0, dump());

    EXPECT_THAT(folder.names(), ElementsAre(fileName));
    EXPECT_THAT(folder.names(fileName), IsEmpty());
}

TEST_F(RegistryDumpFailure, IntoAnEmptyPathSucceeds) {
    test::ImportHook<OpenStream> const opens(
        "_wfsopen", [&](wchar_t const* name, wchar_t const* mode, int share) {
            EXPECT_STREQ(L"", name);
            return opens.original()(name, mode, share);
        });

    EXPECT_EQ(0, dumper().dumpRegistry(vr::Path()));

    EXPECT_EQ(1u, opens.calls());
}

TEST_F(RegistryDumpFailure, IntoAFileThatIsNotSharedSucceedsAndKeepsIt) {
    makeFile();
    {
        test::OwnedHandle const other(CreateFileW(
            folder.file(fileName).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING,
            FILE_ATTRIBUTE_NORMAL, nullptr));

        EXPECT_EQ(0, dump());
    }

    EXPECT_EQ("what was there before", dumped());
}

TEST_F(RegistryDumpFailure, WalksTheTreeEvenWithoutAFile) {
    key.makeKey(L"a");
    test::FailingImport<OpenKey> const refused("RegOpenKeyExW", ERROR_ACCESS_DENIED, 0, 2);
    test::LogRecorder const log;
    RegDumper const dumper = this->dumper();

    EXPECT_EQ(
        RegDumpFailed, dumper.dumpRegistry(vr::Path::file(folder.file(L"no folder\\tree.reg"))));

    EXPECT_THAT(log.lines(), saveFailureLogged());
}

TEST_F(RegistryDumpFailure, EndsWhereTheDiskIsFullAndSucceeds) {
    key.setText(L"a", L"1");
    key.setText(L"b", L"2");
    key.setText(L"c", L"3");
    test::FailingImport<Write> const fails("fwrite", 0, ERROR_DISK_FULL, 4);

    EXPECT_EQ(0, dump());

    EXPECT_EQ(onDisk("\"a\"=\"1\"\n"), dumpedBehindHeader());
    EXPECT_EQ(4u, fails.calls());
}

TEST_F(RegistryDumpFailure, SucceedsWhereTheFileDoesNotClose) {
    test::ImportHook<Close> const fails("fclose", [&](std::FILE* stream) {
        fails.original()(stream);
        return EOF;
    });

    EXPECT_EQ(0, dump());

    EXPECT_EQ(1u, fails.calls());
}

TEST_F(RegistryDumpOfRefusedKeys, LeavesNothingOpenWhicheverCallFails) {
    dump();
    test::HandleLeakCheck const check;

    for (unsigned number = 1; number <= 6; ++number) {
        auto const refused = refuse(number);
        dump();
    }
    for (unsigned number = 1; number <= 6; ++number) {
        test::FailingImport<EnumKey> const fails("RegEnumKeyExW", ERROR_ACCESS_DENIED, 0, number);
        EXPECT_EQ(0, dump());
    }
    for (unsigned number = 1; number <= 6; ++number) {
        test::FailingImport<EnumValue> const fails("RegEnumValueW", ERROR_ACCESS_DENIED, 0, number);
        EXPECT_EQ(0, dump());
    }
    for (unsigned number = 1; number <= 6; ++number) {
        test::FailingImport<Write> const fails("fwrite", 0, ERROR_DISK_FULL, number);
        EXPECT_EQ(0, dump());
    }
    {
        test::FailingImport<OpenStream> const fails("_wfsopen", nullptr, ERROR_SUCCESS);
        EXPECT_EQ(0, dump());
    }
    {
        test::FailingImport<decltype(DeleteFileW)> const fails("DeleteFileW", FALSE, 5);
        auto const refused = refuse(2);
        EXPECT_EQ(RegDumpFailed, dump());
    }
}

TEST_F(RegistryDumpFailure, FailedAllocationStaysOneAndLeavesNothingOpen) {
    key.setText(L"a", L"a text that is longer than a small string");
    key.set(L"b", REG_BINARY, Bytes(100, 1), L"a key of a long name\\and another one in it");
    dump();
    test::HandleLeakCheck const check;

    auto const failed = test::failEachAllocation([&] { EXPECT_EQ(0, dump()); });

    EXPECT_LT(5u, failed);
    EXPECT_TRUE(fileExists());
}
