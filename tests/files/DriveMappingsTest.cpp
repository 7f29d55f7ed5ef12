// The table is one for the process: each test has shares of its own in it.

#include "files/DriveMappings.h"

#include "files/PathMappings.h"
#include "tests/files/FakeNetwork.h"
#include "tests/support/AbsentKey.h"
#include "tests/support/HandleCount.h"
#include "tests/support/KeyCalls.h"
#include "tests/support/LogRecorder.h"
#include "vrUtils/vrException.h"

#include <gmock/gmock.h>

#include <new>
#include <string>
#include <vector>

using test::Logged;
using testing::ElementsAre;
using testing::IsEmpty;
using vrUtils::Files::findPathMapping;
using vrUtils::Files::loadDriveMappings;

namespace {

constexpr wchar_t keyPath[] = L"Software\\Vorrane\\Ostrel\\DriveMapping";

using Bytes = std::vector<unsigned char>;

// The bytes of a text as the registry keeps it, terminator included.
Bytes bytesOf(std::wstring const& text) {
    auto const* const begin = reinterpret_cast<unsigned char const*>(text.c_str());
    return {begin, begin + (text.size() + 1) * sizeof(wchar_t)};
}

// A machine whose registry lists connections, and which has no drives unless a test says so.
class DriveMappings : public testing::Test {
  protected:
    void connectThrough(void (*raise)()) {
        m_key.setText(L"M:", L"\\\\srv\\a");
        m_key.setText(L"N:", L"\\\\srv\\b");
        test::Drives const drives{{L"C:\\", {}}};
        test::ImportHook const connect(
            "WNetAddConnection2W", [=](NETRESOURCEW*, wchar_t const*, wchar_t const*, DWORD) {
                raise();
                return DWORD{NO_ERROR};
            });

        EXPECT_NO_THROW(loadDriveMappings());

        EXPECT_EQ(1u, connect.calls());
        EXPECT_THAT(drives.asked(), ElementsAre(L"C:\\"));
        EXPECT_THAT(m_log.lines(), ElementsAre(Logged(7, testing::HasSubstr(L"[C:\\]"))));
    }

    // What is connected for the values that stand in the key.
    std::vector<std::wstring> connected() const {
        test::Drives const drives{};
        loadDriveMappings();
        EXPECT_TRUE(drives.wereAskedCleanly());
        return drives.connected();
    }

    test::AbsentKey const m_product{HKEY_LOCAL_MACHINE, L"Software\\Vorrane"};
    test::RegistryPlace const m_key{HKEY_LOCAL_MACHINE, keyPath};
    test::LogRecorder const m_log;
};

} // namespace

TEST_F(DriveMappings, MissingKeyIsMadeWithoutAWord) {
    EXPECT_THAT(connected(), IsEmpty());

    EXPECT_TRUE(m_key.exists());
    EXPECT_THAT(m_log.lines(), IsEmpty());
}

TEST_F(DriveMappings, KeyIsOpenedToReadAndWriteAndClosed) {
    test::KeyCalls const calls;

    connected();

    EXPECT_THAT(calls.made(), ElementsAre(test::creates(HKEY_LOCAL_MACHINE, keyPath)));
    EXPECT_EQ(calls.handedOut(), calls.closed());
}

TEST_F(DriveMappings, EachValueIsConnectedNameToText) {
    m_key.setText(L"M:", L"\\\\server\\media");
    m_key.setText(L"N:", L"\\\\Server:8080\\News\\");
    m_key.setText(L"x", L"y");

    EXPECT_THAT(
        connected(), ElementsAre(L"M:|\\\\server\\media", L"N:|\\\\Server:8080\\News\\", L"x|y"));
    EXPECT_THAT(m_log.lines(), IsEmpty());
}

TEST_F(DriveMappings, ValueWithoutANameIsConnectedToo) {
    m_key.setText({}, L"\\\\server\\media");

    EXPECT_THAT(connected(), ElementsAre(L"|\\\\server\\media"));
}

TEST_F(DriveMappings, ExpandableTextIsNotExpanded) {
    m_key.set(L"M:", REG_EXPAND_SZ, bytesOf(L"\\\\server\\%SystemRoot%"));

    EXPECT_THAT(connected(), ElementsAre(L"M:|\\\\server\\%SystemRoot%"));
}

TEST_F(DriveMappings, ValueWithoutDataIsAnEmptyText) {
    m_key.set(L"M:", REG_SZ, {});
    m_key.set(L"N:", REG_EXPAND_SZ, {});

    EXPECT_THAT(connected(), ElementsAre(L"M:|", L"N:|"));
}

TEST_F(DriveMappings, TextEndsAtItsFirstZero) {
    m_key.setText(L"M:", std::wstring(L"\\\\a\\b\0\\c", 8));

    EXPECT_THAT(connected(), ElementsAre(L"M:|\\\\a\\b"));
}

TEST_F(DriveMappings, ValuesOfTheWrongShapeAreSkipped) {
    m_key.set(L"a number", REG_DWORD, {1, 0, 0, 0});
    m_key.set(L"b binary", REG_BINARY, bytesOf(L"\\\\a\\b"));
    m_key.set(L"c list", REG_MULTI_SZ, bytesOf(L"\\\\a\\b"));
    m_key.set(L"d none", REG_NONE, bytesOf(L"\\\\a\\b"));
    m_key.set(L"e odd", REG_SZ, {'a', 0, 0});
    m_key.set(L"e odd behind a zero", REG_SZ, {'a', 0, 0, 0, 'b'});
    m_key.set(L"f one byte", REG_SZ, {0});
    m_key.set(L"g open", REG_EXPAND_SZ, {'a', 0, 'b', 1});
    m_key.setText(L"h sound", L"\\\\a\\b");

    EXPECT_THAT(connected(), ElementsAre(L"h sound|\\\\a\\b"));
    EXPECT_THAT(m_log.lines(), IsEmpty());
}

TEST_F(DriveMappings, TextOf520BytesIsTheLongest) {
    auto const longest = std::wstring(259, L'a');
    m_key.setText(L"M:", longest + L'a');
    m_key.setText(L"N:", longest);

    EXPECT_THAT(connected(), ElementsAre(L"N:|" + longest));
}

TEST_F(DriveMappings, NameOfNineteenCharactersIsTheLongest) {
    m_key.setText(L"a", L"1");
    m_key.setText(L"b234567890123456789", L"2");
    m_key.setText(L"c", L"3");

    EXPECT_THAT(connected(), ElementsAre(L"a|1", L"b234567890123456789|2", L"c|3"));
}

TEST_F(DriveMappings, NameOfTwentyCharactersHidesAllBehindIt) {
    m_key.setText(L"a", L"1");
    m_key.setText(L"b2345678901234567890", L"2");
    m_key.setText(L"c", L"3");
    test::Drives const drives{{L"C:\\", {}}};

    loadDriveMappings();

    EXPECT_THAT(drives.connected(), ElementsAre(L"a|1"));
    EXPECT_THAT(drives.asked(), ElementsAre(L"C:\\"));
}

TEST_F(DriveMappings, OnlyNamesAreEnumerated) {
    m_key.setText(L"M:", L"\\\\a\\b");
    std::vector<DWORD> asked;
    test::ImportHook<decltype(RegEnumValueW)> hook(
        "RegEnumValueW", [&](HKEY key, DWORD index, wchar_t* name, DWORD* units, DWORD* reserved,
                             DWORD* type, BYTE* data, DWORD* length) {
            EXPECT_EQ(20u, *units);
            EXPECT_FALSE(reserved || type || data || length);
            asked.push_back(index);
            return hook.original()(key, index, name, units, reserved, type, data, length);
        });

    EXPECT_THAT(connected(), ElementsAre(L"M:|\\\\a\\b"));
    EXPECT_THAT(asked, ElementsAre(0u, 1u));
}

TEST_F(DriveMappings, KeyThatCannotBeHadCostsAndSaysNothing) {
    m_key.setText(L"M:", L"\\\\a\\b");
    test::FailingImport<decltype(RegCreateKeyExW)> const fails(
        "RegCreateKeyExW", ERROR_ACCESS_DENIED, ERROR_SUCCESS);
    test::Drives const drives{{L"C:\\", {}}};
    test::HandleLeakCheck const check;

    loadDriveMappings();

    EXPECT_THAT(drives.connected(), IsEmpty());
    EXPECT_THAT(drives.asked(), ElementsAre(L"C:\\"));
    EXPECT_THAT(m_log.lines(), ElementsAre(Logged(7, testing::HasSubstr(L"[C:\\]"))));
}

TEST_F(DriveMappings, EnumerationEndsAtItsFirstFailure) {
    m_key.setText(L"M:", L"\\\\a\\b");
    m_key.setText(L"N:", L"\\\\a\\c");
    test::FailingImport<decltype(RegEnumValueW)> const fails(
        "RegEnumValueW", ERROR_NOT_ENOUGH_MEMORY, ERROR_SUCCESS, 2);

    EXPECT_THAT(connected(), ElementsAre(L"M:|\\\\a\\b"));
    EXPECT_EQ(2u, fails.calls());
}

TEST_F(DriveMappings, ValueThatCannotBeReadIsSkipped) {
    m_key.setText(L"M:", L"\\\\a\\b");
    m_key.setText(L"N:", L"\\\\a\\c");
    test::FailingImport<decltype(RegQueryValueExW)> const fails(
        "RegQueryValueExW", ERROR_FILE_NOT_FOUND, ERROR_SUCCESS);

    EXPECT_THAT(connected(), ElementsAre(L"N:|\\\\a\\c"));
}

TEST_F(DriveMappings, ExhaustedHeapInTheKeyIsPassedOver) {
    connectThrough([] { throw std::bad_alloc(); });
}

TEST_F(DriveMappings, FailureOfTheLibraryInTheKeyIsPassedOver) {
    connectThrough([] { throw vrException(1, L"any"); });
}

TEST_F(DriveMappings, ConnectionsAreMadeBeforeDrivesAreListed) {
    m_key.setText(L"M:", L"\\\\srv\\media");
    std::vector<std::string> order;
    test::Drives const drives{{L"M:\\", {}}};
    test::ImportHook<decltype(WNetAddConnection2W)> connect(
        "WNetAddConnection2W", [&](auto... arguments) {
            order.emplace_back("connect");
            return connect.original()(arguments...);
        });
    test::ImportHook<decltype(GetLogicalDriveStringsW)> list(
        "GetLogicalDriveStringsW", [&](auto... arguments) {
            order.emplace_back("list");
            return list.original()(arguments...);
        });

    loadDriveMappings();

    EXPECT_THAT(order, ElementsAre("connect", "list"));
}

TEST_F(DriveMappings, EachDriveIsAskedForItsShareInOrder) {
    test::Drives const drives{{L"Z:\\", {}}, {L"A:\\", {}}, {L"M:\\", L"\\\\srv\\any\\"}};

    loadDriveMappings();

    EXPECT_THAT(drives.asked(), ElementsAre(L"Z:\\", L"A:\\", L"M:\\"));
    EXPECT_EQ(1u, drives.lists());
    EXPECT_TRUE(drives.wereAskedCleanly());
}

TEST_F(DriveMappings, DiskOfTheMachineHasNoRowAndALineWithTheLastError) {
    test::Drives const drives{{L"C:\\", {}}};

    loadDriveMappings();

    EXPECT_THAT(
        m_log.lines(), ElementsAre(Logged(7, L"Failed to map local path [C:\\]: err=0x4bc")));
    EXPECT_EQ(L"Failed to map local path [%s]: err=0x%x", m_log.lines().front().format);
}

TEST_F(DriveMappings, ConnectedDriveHasARowAndALine) {
    test::Drives const drives{{L"M:\\", L"\\\\SRV\\Connected\\"}};

    loadDriveMappings();

    EXPECT_EQ(L"M:\\", findPathMapping(L"\\\\srv\\connected\\"));
    EXPECT_THAT(
        m_log.lines(),
        ElementsAre(Logged(7, L"Local path [M:\\] mapped to [\\\\SRV\\Connected\\]")));
    EXPECT_EQ(L"Local path [%s] mapped to [%s]", m_log.lines().front().format);
}

TEST_F(DriveMappings, OfTwoDrivesOnOneShareTheFirstCounts) {
    test::Drives const drives{
        {L"P:\\", L"\\\\srv\\two drives\\"}, {L"Q:\\", L"\\\\srv\\two drives\\"}};

    loadDriveMappings();

    EXPECT_EQ(L"P:\\", findPathMapping(L"\\\\srv\\two drives\\"));
}

TEST_F(DriveMappings, DriveBelowTheShareTakesNoPart) {
    test::Drives const drives{{L"Z:\\", L"\\\\srv\\deep\\Sub\\Day 1\\"}};

    loadDriveMappings();

    EXPECT_EQ(L"", findPathMapping(L"\\\\srv\\deep\\"));
    EXPECT_EQ(L"Z:\\Sub\\Day 1\\", findPathMapping(L"\\\\srv\\deep\\sub\\day 1\\"));
    EXPECT_THAT(
        m_log.lines(),
        ElementsAre(
            Logged(7, L"Local path [Z:\\Sub\\Day 1\\] mapped to [\\\\srv\\deep\\Sub\\Day 1\\]")));
}

TEST_F(DriveMappings, ShareWithoutAClosingBackslashTakesNoPart) {
    test::Drives const drives{{L"Z:\\", L"\\\\srv\\open"}};

    loadDriveMappings();

    EXPECT_EQ(L"", findPathMapping(L"\\\\srv\\open\\"));
    EXPECT_THAT(
        m_log.lines(), ElementsAre(Logged(7, L"Local path [Z:\\] mapped to [\\\\srv\\open]")));
}

TEST_F(DriveMappings, FailedListIsToldWithItsErrorAndIsEmpty) {
    test::Drives const drives{{L"C:\\", {}}};
    test::FailingImport<decltype(GetLogicalDriveStringsW)> const fails(
        "GetLogicalDriveStringsW", 0, ERROR_NO_SYSTEM_RESOURCES);
    test::HandleLeakCheck const check;

    loadDriveMappings();

    EXPECT_THAT(
        m_log.lines(),
        ElementsAre(Logged(3, L"uncToLocalPath: GetLogicalDriveStrings failed - error 1450")));
    EXPECT_EQ(
        L"uncToLocalPath: GetLogicalDriveStrings failed - error %d", m_log.lines().front().format);
    EXPECT_THAT(drives.asked(), IsEmpty());
}

TEST_F(DriveMappings, WithoutADriveThereIsNothingToAskAndNothingToSay) {
    test::Drives const drives{};

    loadDriveMappings();

    EXPECT_THAT(drives.asked(), IsEmpty());
    EXPECT_THAT(m_log.lines(), IsEmpty());
}

// The platform's own drives, none of which is connected here.
TEST_F(DriveMappings, DrivesOfThePlatformAreTold) {
    loadDriveMappings();

    EXPECT_THAT(
        m_log.texts(),
        testing::Contains(testing::StartsWith(L"Failed to map local path [C:\\]: err=0x")));
}

TEST_F(DriveMappings, NoFailureLeavesAHandleOpen) {
    m_key.setText(L"M:", L"\\\\a\\b");
    auto const load = [] {
        test::Drives const drives{{L"C:\\", {}}, {L"M:\\", L"\\\\srv\\handles\\"}};
        test::HandleLeakCheck const check;
        loadDriveMappings();
    };

    load();
    {
        test::FailingImport<decltype(RegEnumValueW)> const fails(
            "RegEnumValueW", ERROR_ACCESS_DENIED, ERROR_SUCCESS);
        load();
    }
    {
        test::FailingImport<decltype(RegQueryValueExW)> const fails(
            "RegQueryValueExW", ERROR_ACCESS_DENIED, ERROR_SUCCESS);
        load();
    }
}
