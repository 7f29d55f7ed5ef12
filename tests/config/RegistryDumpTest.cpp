#include "vrUtils/Registry/RegDumper.h"

#include "tests/config/DumpedTree.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/OwnedHandle.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <stdexcept>
#include <thread>

using test::Logged;
using test::LoggedFormat;
using test::sampleFile;
using testing::AllOf;
using testing::ElementsAre;
using testing::IsEmpty;
using vrUtils::Registry::RegDumper;
using vrUtils::Registry::RegDumpFailed;

static_assert(RegDumpFailed == static_cast<std::int32_t>(0x81A0600C));
static_assert(std::is_same_v<decltype(RegDumpFailed), std::int32_t const>);
static_assert(!std::is_polymorphic_v<RegDumper>);

namespace {

using OpenKey = decltype(RegOpenKeyExW);
using EnumValue = decltype(RegEnumValueW);
using EnumKey = decltype(RegEnumKeyExW);
using OpenStream = std::FILE*(wchar_t const*, wchar_t const*, int);
using Write = std::size_t(void const*, std::size_t, std::size_t, std::FILE*);
using Close = int(std::FILE*);
using Bytes = std::vector<unsigned char>;

class RegistryDump : public testing::Test, public test::DumpedTree {
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
class RegistryDumpOfRefusedKeys : public RegistryDump {
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

Bytes bytesOf(std::wstring const& text) {
    auto const* const bytes = reinterpret_cast<unsigned char const*>(text.data());
    return {bytes, bytes + text.size() * sizeof(wchar_t)};
}

} // namespace

TEST_F(RegistryDump, OfOneStringIsTheSample) {
    key.setText(L"Folder", L"C:\\Media");

    EXPECT_EQ(0, dump());

    EXPECT_EQ(withRoot(sampleFile("one-string.reg")), dumped());
}

TEST_F(RegistryDump, OfAnEmptyKeyIsTheSample) {
    EXPECT_EQ(0, dump());

    EXPECT_EQ(withRoot(sampleFile("empty-key.reg")), dumped());
}

TEST_F(RegistryDump, OfNestedKeysIsTheSample) {
    key.setText(L"top", L"0");
    key.setText(L"in a", L"1", L"a");
    key.setText(L"in deep", L"2", L"a\\deep");
    key.makeKey(L"a\\deep\\deepest");
    key.makeKey(L"a\\other");
    key.setText(L"in b", L"3", L"b");

    EXPECT_EQ(0, dump());

    EXPECT_EQ(withRoot(sampleFile("nested-keys.reg")), dumped());
}

TEST_F(RegistryDump, OfBytesBeforeAndBehindANumberIsTheSample) {
    key.set(L"a", REG_BINARY, {0x0A, 0xFF});
    key.set(L"b", REG_MULTI_SZ, {0x61, 0, 0, 0});
    key.setNumber(L"c", 0x1234);
    key.set(L"d", REG_BINARY, {0x0A, 0xFF});
    key.set(L"e", REG_MULTI_SZ, {0x61, 0, 0, 0});

    EXPECT_EQ(0, dump());

    EXPECT_EQ(withRoot(sampleFile("number-base.reg")), dumped());
}

TEST_F(RegistryDump, OfBytesInKeysAroundADeeperNumberIsTheSample) {
    key.set(L"a", REG_BINARY, {0x0A, 0xFF});
    key.set(L"a", REG_BINARY, {0x0A, 0xFF}, L"a");
    key.set(L"a", REG_BINARY, {0x0A, 0xFF}, L"a\\deep");
    key.setNumber(L"b", 0, L"a\\deep");
    key.set(L"c", REG_BINARY, {0x0A, 0xFF}, L"a\\deep");
    key.set(L"a", REG_BINARY, {0x0A, 0xFF}, L"b");

    EXPECT_EQ(0, dump());

    EXPECT_EQ(withRoot(sampleFile("number-base-across-keys.reg")), dumped());
}

TEST_F(RegistryDump, OfAllTypesIsTheSample) {
    Bytes const bytes{0x61, 0, 0, 0, 0x62, 0, 0, 0};
    key.setText(L"", L"default");
    key.set(L"binary", REG_BINARY, {1, 2});
    key.setNumber(L"dword", 0xDEADBEEF);
    key.set(L"dword big-endian", REG_DWORD_BIG_ENDIAN, {0, 0, 0, 1});
    key.set(L"expand", REG_EXPAND_SZ, bytesOf({L"%TEMP%\0", 7}));
    key.set(L"full resource descriptor", REG_FULL_RESOURCE_DESCRIPTOR, bytes);
    key.set(L"link", REG_LINK, bytes);
    key.set(L"multi", REG_MULTI_SZ, {0x61, 0, 0, 0, 0x62, 0, 0, 0, 0, 0});
    key.set(L"none", REG_NONE, bytes);
    key.set(L"qword", REG_QWORD, bytes);
    key.set(L"resource list", REG_RESOURCE_LIST, bytes);
    key.set(L"resource requirements", REG_RESOURCE_REQUIREMENTS_LIST, bytes);
    key.setText(L"string", L"text");
    key.set(L"unknown", 0x1234, bytes);

    EXPECT_EQ(0, dump());

    EXPECT_EQ(withRoot(sampleFile("types.reg")), dumped());
}

TEST_F(RegistryDump, EscapesNothing) {
    key.setText(L"back\\slash", L"C:\\Media\\");
    key.setText(L"equals=sign", L"a=b");
    key.setText(L"quote\"", L"say \"hello\"");
    key.setText(L"text", L"two\r\nlines;%s");
    key.makeKey(L"[key;=]");

    EXPECT_EQ(0, dump());

    EXPECT_EQ(withRoot(sampleFile("unescaped.reg")), dumped());
}

TEST_F(RegistryDump, HasOneByteForEachCharacterUpToFF) {
    key.setText(L"\xE4\xFF", L"\x80\x9F\xA0\xFF");
    key.makeKey(L"\xFC\x80");

    EXPECT_EQ(0, dump());

    EXPECT_EQ(withRoot(sampleFile("one-byte-characters.reg")), dumped());
}

TEST_F(RegistryDump, WritesEachNumberInEightDigits) {
    key.setNumber(L"a", 0);
    key.setNumber(L"b", 0xABCDEF);
    key.setNumber(L"c", 0xFFFFFFFF);

    dump();

    EXPECT_EQ(
        onDisk("\"a\"=dword:00000000\n\"b\"=dword:00abcdef\n\"c\"=dword:ffffffff\n\n\n"),
        dumpedBehindHeader());
}

TEST_F(RegistryDump, FillsDecimalBytesUpToTwoDigits) {
    key.set(L"a", REG_BINARY, {0, 9, 10, 99, 100, 255});

    dump();

    EXPECT_EQ(onDisk("\"a\"=hex:00,09,10,99,100,255\n\n\n"), dumpedBehindHeader());
}

TEST_F(RegistryDump, WritesNoBytesOfEmptyValues) {
    key.set(L"a", REG_BINARY, {});
    key.set(L"b", REG_MULTI_SZ, {});
    key.set(L"c", REG_SZ, {});

    dump();

    EXPECT_EQ(onDisk("\"a\"=hex:\n\"b\"=hex(7):\n\"c\"=\"\"\n\n\n"), dumpedBehindHeader());
}

TEST_F(RegistryDump, EndsATextAtItsFirstZero) {
    key.set(L"a", REG_SZ, bytesOf({L"one\0two\0", 8}));

    dump();

    EXPECT_EQ(onDisk("\"a\"=\"one\"\n\n\n"), dumpedBehindHeader());
}

TEST_F(RegistryDump, TakesDamagedTextsAsFarAsTheyGo) {
    key.setText(L"a", L"left behind in the buffer");
    key.set(L"b", REG_SZ, bytesOf(L"no end"));
    key.set(L"c", REG_SZ, {'o', 0, 'd', 0, 'd', 0, 'x'});
    key.set(L"d", REG_SZ, {'x'});

    dump();

    EXPECT_EQ(
        onDisk("\"a\"=\"left behind in the buffer\"\n\"b\"=\"no end\"\n\"c\"=\"odd\"\n\"d\"=\"\"\n"
               "\n\n"),
        dumpedBehindHeader());
}

TEST_F(RegistryDump, TakesMissingBytesOfANumberForZeros) {
    key.set(L"a", REG_BINARY, {10});
    key.set(L"b", REG_DWORD, {});
    key.set(L"c", REG_DWORD, {1, 2, 3});
    key.set(L"d", REG_DWORD, {1, 2, 3, 4, 5, 6, 7, 8});
    key.set(L"e", REG_BINARY, {10});

    dump();

    EXPECT_EQ(
        onDisk("\"a\"=hex:10\n\"b\"=dword:00000000\n\"c\"=dword:00030201\n\"d\"=dword:04030201\n"
               "\"e\"=hex:0a\n\n\n"),
        dumpedBehindHeader());
}

TEST_F(RegistryDump, EndsAtACharacterBeyondFFInAName) {
    key.setText(L"a", L"1");
    key.setText(L"b\x0100z", L"2");
    key.setText(L"c", L"3");
    key.makeKey(L"d");

    EXPECT_EQ(0, dump());

    EXPECT_EQ(onDisk("\"a\"=\"1\"\n\"b"), dumpedBehindHeader());
}

TEST_F(RegistryDump, EndsAtACharacterBeyondFFInAText) {
    key.setText(L"a", L"1");
    key.setText(L"b", L"2\x20AC");
    key.setText(L"c", L"3");

    EXPECT_EQ(0, dump());

    EXPECT_EQ(onDisk("\"a\"=\"1\"\n\"b\"=\"2"), dumpedBehindHeader());
}

TEST_F(RegistryDump, EndsAtACharacterBeyondFFInTheNameOfAKey) {
    key.setText(L"a", L"1");
    key.setText(L"b", L"2", L"k\x0416y");
    key.setText(L"c", L"3", L"z");

    EXPECT_EQ(0, dump());

    EXPECT_EQ(onDisk("\"a\"=\"1\"\n\n\n[ROOT\\k"), dumpedBehindHeader());
}

TEST_F(RegistryDump, EndsAtACharacterBeyondFFInTheHivePrefix) {
    RegDumper const dumper(key.hive(), L"HKEY_\x0100URRENT_USER\\" + key.path());

    EXPECT_EQ(0, dumper.dumpRegistry(file()));

    EXPECT_EQ(onDisk("Windows Registry Editor Version 5.00\n[HKEY_"), dumped());
}

TEST_F(RegistryDump, NeverLooksAtTheHivePrefix) {
    key.setText(L"a", L"1");
    RegDumper const dumper(key.hive(), L"123456789012345678" + key.path());

    EXPECT_EQ(0, dumper.dumpRegistry(file()));

    EXPECT_EQ(
        onDisk("Windows Registry Editor Version 5.00\n[123456789012345678") +
            onDisk("ROOT").substr(18) + onDisk("\\]\n\"a\"=\"1\"\n\n\n"),
        dumped());
}

TEST_F(RegistryDump, OfAPrefixAloneIsTheOneOfTheHandle) {
    key.setText(L"a", L"1");
    HKEY hive = nullptr;
    ASSERT_EQ(ERROR_SUCCESS, RegOpenKeyExW(key.hive(), key.path().c_str(), 0, KEY_READ, &hive));

    EXPECT_EQ(0, RegDumper(hive, L"HKEY_CURRENT_USER\\").dumpRegistry(file()));

    RegCloseKey(hive);
    EXPECT_EQ(
        onDisk("Windows Registry Editor Version 5.00\n[HKEY_CURRENT_USER\\\\]\n\"a\"=\"1\"\n\n\n"),
        dumped());
}

TEST_F(RegistryDump, WithAPathShorterThanThePrefixIsOutOfRange) {
    makeFile();

    EXPECT_THROW(
        RegDumper(key.hive(), L"HKEY_CURRENT_USER").dumpRegistry(file()), std::out_of_range);

    EXPECT_EQ("what was there before", dumped());
}

TEST_F(RegistryDump, OpensEveryKeyForReadingAndWriting) {
    key.makeKey(L"a\\deep");
    std::vector<std::wstring> names;
    test::ImportHook<OpenKey> const opens(
        "RegOpenKeyExW",
        [&](HKEY parent, LPCWSTR name, DWORD options, REGSAM access, PHKEY opened) {
            EXPECT_EQ(0u, options);
            EXPECT_EQ(0x2001Fu, access);
            names.emplace_back(name);
            return opens.original()(parent, name, options, access, opened);
        });

    dump();

    EXPECT_THAT(names, ElementsAre(key.path(), L"a", L"deep"));
}

TEST_F(RegistryDump, AsksForValuesWithFreshLengths) {
    key.setText(L"a", L"1");
    key.set(L"b", REG_BINARY, Bytes(1025));
    key.setText(L"c", L"3");
    std::vector<DWORD> indices;
    test::ImportHook<EnumValue> const asks(
        "RegEnumValueW", [&](HKEY asked, DWORD index, LPWSTR name, LPDWORD units, LPDWORD reserved,
                             LPDWORD type, LPBYTE data, LPDWORD length) {
            indices.push_back(index);
            EXPECT_EQ(256u, *units);
            EXPECT_EQ(1024u, *length);
            return asks.original()(asked, index, name, units, reserved, type, data, length);
        });

    dump();

    EXPECT_THAT(indices, ElementsAre(0u, 1u, 2u, 3u));
}

TEST_F(RegistryDump, AsksForKeysWithFreshLengths) {
    key.makeKey(L"a");
    key.makeKey(L"b");
    std::vector<DWORD> indices;
    test::ImportHook<EnumKey> const asks(
        "RegEnumKeyExW", [&](HKEY asked, DWORD index, LPWSTR name, LPDWORD units, LPDWORD reserved,
                             LPWSTR className, LPDWORD classUnits, PFILETIME time) {
            indices.push_back(index);
            EXPECT_EQ(256u, *units);
            return asks.original()(
                asked, index, name, units, reserved, className, classUnits, time);
        });

    dump();

    // "a" and "b" have no keys themselves.
    EXPECT_THAT(indices, ElementsAre(0u, 0u, 1u, 0u, 2u));
}

namespace {

struct TypeOfLongValues {
    DWORD type;
    // What stands behind the equals sign in place of the data.
    std::string prefix;
};

class RegistryDumpOfLongValues : public RegistryDump,
                                 public testing::WithParamInterface<TypeOfLongValues> {};

} // namespace

TEST_P(RegistryDumpOfLongValues, LeavesOutTheDataAndGoesOn) {
    auto const& [type, prefix] = GetParam();
    key.set(L"a", REG_BINARY, {10});
    key.set(L"b", type, Bytes(1025, 'x'));
    key.set(L"c", REG_BINARY, {11});
    key.set(L"d", type, Bytes(5000, 'x'));
    key.set(L"e", REG_BINARY, {12});
    test::LogRecorder const log;

    EXPECT_EQ(0, dump());

    EXPECT_EQ(
        onDisk(
            "\"a\"=hex:10\n\"b\"=" + prefix + "\n\"c\"=hex:11\n\"d\"=" + prefix +
            "\n\"e\"=hex:12\n\n\n"),
        dumpedBehindHeader());
    EXPECT_THAT(log.lines(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    OfEachType, RegistryDumpOfLongValues,
    testing::Values(
        TypeOfLongValues{REG_SZ, ""}, TypeOfLongValues{REG_DWORD, "dword:"},
        TypeOfLongValues{REG_BINARY, "hex:"}, TypeOfLongValues{REG_MULTI_SZ, "hex(7):"},
        TypeOfLongValues{REG_EXPAND_SZ, ""}, TypeOfLongValues{REG_QWORD, ""}));

TEST_F(RegistryDump, KeepsAllOf1024Bytes) {
    std::wstring const text(512, L'x');
    key.set(L"a", REG_SZ, bytesOf(text));
    key.set(L"b", REG_BINARY, Bytes(1024, 7));
    key.set(L"c", REG_MULTI_SZ, Bytes(1024, 7));
    key.set(L"d", REG_DWORD, Bytes(1024, 7));
    std::string list = "07";
    for (int count = 1; count < 1024; ++count)
        list += ",07";

    dump();

    EXPECT_EQ(
        onDisk(
            "\"a\"=\"" + std::string(512, 'x') + "\"\n\"b\"=hex:" + list +
            "\n\"c\"=hex(7):" + list + "\n\"d\"=dword:07070707\n\n\n"),
        dumpedBehindHeader());
}

TEST_F(RegistryDump, KeepsNamesOf255Characters) {
    std::wstring const name(255, L'n');
    key.setText(name, L"text");
    key.makeKey(std::wstring(255, L'k'));

    dump();

    EXPECT_EQ(
        onDisk(
            '"' + std::string(255, 'n') + "\"=\"text\"\n\n\n[ROOT\\" + std::string(255, 'k') +
            "]\n\n\n"),
        dumpedBehindHeader());
}

TEST_F(RegistryDump, LeavesOutLongerNamesAndTheirDataAndGoesOn) {
    key.setText(L"a", L"1");
    key.setText(std::wstring(256, L'b'), L"text");
    key.set(std::wstring(256, L'c'), REG_BINARY, {1});
    key.setText(std::wstring(16383, L'd'), L"text");
    key.setText(L"e", L"2");

    EXPECT_EQ(0, dump());

    EXPECT_EQ(
        onDisk("\"a\"=\"1\"\n\"\"=\n\"\"=hex:\n\"\"=\n\"e\"=\"2\"\n\n\n"), dumpedBehindHeader());
}

TEST_F(RegistryDump, ReadsNothingOfAValueThatFailed) {
    ToldValues const told({
        {ERROR_MORE_DATA, L"a", REG_SZ, 0xFFFFFFFF},
        {ERROR_MORE_DATA, L"b", REG_BINARY, 0xFFFFFFFF},
        {ERROR_MORE_DATA, L"c", REG_MULTI_SZ, 0xFFFFFFFF},
        {ERROR_MORE_DATA, L"d", REG_DWORD, 0xFFFFFFFF},
    });

    EXPECT_EQ(0, dump());

    EXPECT_EQ(
        onDisk("\"a\"=\n\"b\"=hex:\n\"c\"=hex(7):\n\"d\"=dword:\n\n\n"), dumpedBehindHeader());
}

TEST_F(RegistryDump, ReadsNothingBeyondANameWithoutAnEnd) {
    ToldValues const told({{ERROR_MORE_DATA, std::wstring(256, L'x'), REG_NONE, 0}});

    EXPECT_EQ(0, dump());

    EXPECT_EQ(onDisk('"' + std::string(256, 'x') + "\"=\n\n\n"), dumpedBehindHeader());
}

TEST_F(RegistryDump, ForgetsTheNameBeforeAValueThatFailed) {
    ToldValues const told({
        {ERROR_SUCCESS, {L"before\0", 7}, REG_NONE, 0},
        {ERROR_KEY_DELETED, L"", REG_NONE, 0},
    });

    dump();

    EXPECT_EQ(onDisk("\"before\"=\n\"\"=\n\n\n"), dumpedBehindHeader());
}

TEST_F(RegistryDump, TakesEveryErrorForAValue) {
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

TEST_F(RegistryDump, AsksADyingKeyAgainUntilItHasNoMoreValues) {
    ToldValues const told({10000, {ERROR_KEY_DELETED, L"", REG_NONE, 0}});

    EXPECT_EQ(0, dump());

    EXPECT_EQ(10001u, told.calls());
    EXPECT_EQ(
        10000 * onDisk("\"\"=\n").size() + onDisk("\n\n").size(), dumpedBehindHeader().size());
}

TEST_F(RegistryDump, DoesNotChangeTheBaseForANumberThatFailed) {
    ToldValues const told({
        {ERROR_MORE_DATA, L"a", REG_DWORD, 5000},
        {ERROR_SUCCESS, {L"b\0", 2}, REG_BINARY, 1},
    });

    dump();

    EXPECT_EQ(onDisk("\"a\"=dword:\n\"b\"=hex:10\n\n\n"), dumpedBehindHeader());
}

TEST_F(RegistryDump, EndsTheKeysOnAnyError) {
    key.makeKey(L"a");
    key.makeKey(L"b");
    key.makeKey(L"c");
    // The second question is the one of "a" for its own keys.
    test::FailingImport<EnumKey> const fails("RegEnumKeyExW", ERROR_MORE_DATA, 0, 3);

    EXPECT_EQ(0, dump());

    EXPECT_EQ(onDisk("\n\n[ROOT\\a]\n\n\n"), dumpedBehindHeader());
}

TEST_F(RegistryDump, OfADeepTreeHasEveryLevel) {
    std::string expected = "\n\n";
    std::wstring path;
    std::string header = "[ROOT";
    for (int level = 0; level < 200; ++level) {
        path += path.empty() ? L"k" : L"\\k";
        header += "\\k";
        expected += header + "]\n\n\n";
    }
    key.makeKey(path);

    EXPECT_EQ(0, dump());

    EXPECT_EQ(onDisk(expected), dumpedBehindHeader());
}

TEST_F(RegistryDump, OfAWideTreeHasEveryValue) {
    std::string expected;
    for (std::uint32_t number = 0; number < 2000; ++number) {
        auto const name = "v" + std::to_string(10000 + number);
        key.setNumber({name.begin(), name.end()}, number);
        char digits[9];
        std::snprintf(digits, sizeof digits, "%08x", number);
        expected += '"' + name + "\"=dword:" + digits + '\n';
    }

    EXPECT_EQ(0, dump());

    EXPECT_EQ(onDisk(expected + "\n\n"), dumpedBehindHeader());
}

TEST_F(RegistryDump, OfAMissingRootFailsAndTouchesNoFile) {
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

TEST_F(RegistryDump, OfARefusedRootFailsAndMakesNoFile) {
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

TEST_F(RegistryDump, ReplacesALongerFile) {
    folder.write(fileName, std::string(100'000, 'x'));

    EXPECT_EQ(0, dump());

    EXPECT_EQ(withRoot(sampleFile("empty-key.reg")), dumped());
}

TEST_F(RegistryDump, IntoAMissingFolderSucceedsWithoutAFile) {
    test::LogRecorder const log;

    EXPECT_EQ(0, dumper().dumpRegistry(vr::Path::file(folder.file(L"no folder\\tree.reg"))));

    EXPECT_THAT(folder.names(), IsEmpty());
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(RegistryDump, IntoAFolderSucceedsAndKeepsIt) {
    folder.makeFolder(fileName);

    EXPECT_EQ(0, dump());

    EXPECT_THAT(folder.names(), ElementsAre(fileName));
    EXPECT_THAT(folder.names(fileName), IsEmpty());
}

TEST_F(RegistryDump, IntoAnEmptyPathSucceeds) {
    test::ImportHook<OpenStream> const opens(
        "_wfsopen", [&](wchar_t const* name, wchar_t const* mode, int share) {
            EXPECT_STREQ(L"", name);
            return opens.original()(name, mode, share);
        });

    EXPECT_EQ(0, dumper().dumpRegistry(vr::Path()));

    EXPECT_EQ(1u, opens.calls());
}

TEST_F(RegistryDump, IntoAFileThatIsNotSharedSucceedsAndKeepsIt) {
    makeFile();
    {
        test::OwnedHandle const other(CreateFileW(
            folder.file(fileName).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING,
            FILE_ATTRIBUTE_NORMAL, nullptr));

        EXPECT_EQ(0, dump());
    }

    EXPECT_EQ("what was there before", dumped());
}

TEST_F(RegistryDump, WalksTheTreeEvenWithoutAFile) {
    key.makeKey(L"a");
    test::FailingImport<OpenKey> const refused("RegOpenKeyExW", ERROR_ACCESS_DENIED, 0, 2);
    test::LogRecorder const log;
    RegDumper const dumper = this->dumper();

    EXPECT_EQ(
        RegDumpFailed, dumper.dumpRegistry(vr::Path::file(folder.file(L"no folder\\tree.reg"))));

    EXPECT_THAT(log.lines(), saveFailureLogged());
}

TEST_F(RegistryDump, EndsWhereTheDiskIsFullAndSucceeds) {
    key.setText(L"a", L"1");
    key.setText(L"b", L"2");
    key.setText(L"c", L"3");
    test::FailingImport<Write> const fails("fwrite", 0, ERROR_DISK_FULL, 4);

    EXPECT_EQ(0, dump());

    EXPECT_EQ(onDisk("\"a\"=\"1\"\n"), dumpedBehindHeader());
    EXPECT_EQ(4u, fails.calls());
}

TEST_F(RegistryDump, SucceedsWhereTheFileDoesNotClose) {
    test::ImportHook<Close> const fails("fclose", [&](std::FILE* stream) {
        fails.original()(stream);
        return EOF;
    });

    EXPECT_EQ(0, dump());

    EXPECT_EQ(1u, fails.calls());
}

TEST_F(RegistryDump, LetsOthersReadAndWriteTheFileMeanwhile) {
    bool wasShared = true;
    test::ImportHook<Write> const writes(
        "fwrite", [&](void const* data, std::size_t size, std::size_t count, std::FILE* stream) {
            test::OwnedHandle const other(CreateFileW(
                folder.file(fileName).c_str(), GENERIC_READ | GENERIC_WRITE,
                FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL,
                nullptr));
            wasShared = wasShared && other.get() != INVALID_HANDLE_VALUE;
            return writes.original()(data, size, count, stream);
        });

    dump();

    EXPECT_LT(0u, writes.calls());
    EXPECT_TRUE(wasShared);
}

TEST_F(RegistryDump, OfOneTreeSideBySideGivesEqualFiles) {
    for (int number = 0; number < 50; ++number)
        key.set(std::to_wstring(number), REG_BINARY, {10, 255}, L"k" + std::to_wstring(number));
    dump();
    auto const expected = dumped();
    std::atomic<unsigned> equal{0};

    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number)
        threads.emplace_back([&, name = std::to_wstring(number)] {
            for (int round = 0; round < 5; ++round) {
                dumper().dumpRegistry(vr::Path::file(folder.file(name)));
                equal += folder.read(name) == expected;
            }
        });
    for (auto& thread : threads)
        thread.join();

    EXPECT_EQ(20u, equal);
}

TEST_F(RegistryDump, OfACopyIsThatOfTheOriginal) {
    key.setText(L"a", L"1");
    auto const original = dumper();
    auto copy = original;
    RegDumper assigned(nullptr, L"");
    assigned = copy;

    EXPECT_EQ(0, original.dumpRegistry(vr::Path::file(folder.file(L"original"))));
    EXPECT_EQ(0, copy.dumpRegistry(vr::Path::file(folder.file(L"copy"))));
    EXPECT_EQ(0, assigned.dumpRegistry(vr::Path::file(folder.file(L"assigned"))));

    EXPECT_EQ(folder.read(L"original"), folder.read(L"copy"));
    EXPECT_EQ(folder.read(L"original"), folder.read(L"assigned"));
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

TEST_F(RegistryDump, FailedAllocationStaysOneAndLeavesNothingOpen) {
    key.setText(L"a", L"a text that is longer than a small string");
    key.set(L"b", REG_BINARY, Bytes(100, 1), L"a key of a long name\\and another one in it");
    dump();
    test::HandleLeakCheck const check;

    auto const failed = test::failEachAllocation([&] { EXPECT_EQ(0, dump()); });

    EXPECT_LT(5u, failed);
    EXPECT_TRUE(fileExists());
}
