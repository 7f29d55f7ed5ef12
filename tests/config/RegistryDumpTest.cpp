#include "vrUtils/Registry/RegDumper.h"

#include "tests/config/DumpedTree.h"
#include "tests/support/ImportHook.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/OwnedHandle.h"

#include <gmock/gmock.h>

#include <atomic>
#include <thread>

using test::sampleFile;
using testing::ElementsAre;
using testing::IsEmpty;
using vrUtils::Registry::RegDumper;

static_assert(!std::is_polymorphic_v<RegDumper>);

namespace {

using OpenKey = decltype(RegOpenKeyExW);
using EnumValue = decltype(RegEnumValueW);
using EnumKey = decltype(RegEnumKeyExW);
using Write = std::size_t(void const*, std::size_t, std::size_t, std::FILE*);
using Bytes = std::vector<unsigned char>;

class RegistryDump : public testing::Test, public test::DumpedTree {};

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

TEST_F(RegistryDump, ReplacesALongerFile) {
    folder.write(fileName, std::string(100'000, 'x'));

    EXPECT_EQ(0, dump());

    EXPECT_EQ(withRoot(sampleFile("empty-key.reg")), dumped());
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
