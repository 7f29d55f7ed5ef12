#include "vrUtils/Registry/Values.h"

#include "tests/config/FreshMachine.h"
#include "tests/config/RegistryFailures.h"
#include "tests/support/KeyCalls.h"
#include "tests/support/LogRecorder.h"

#include <string>

using testing::ElementsAre;
using testing::IsEmpty;
using namespace vrUtils::Registry;

namespace {

constexpr wchar_t name[] = L"value";

// The functions of one hive.
struct Hive {
    char const* title;
    HKEY handle;
    HKEY other;
    std::uint32_t (*readNumber)(std::wstring const&, std::wstring const&);
    std::wstring (*readText)(std::wstring const&, std::wstring const&);
    void (*writeNumber)(std::wstring const&, std::wstring const&, std::uint32_t);
    void (*writeText)(std::wstring const&, std::wstring const&, std::wstring const&);

    friend void PrintTo(Hive const& hive, std::ostream* stream) { *stream << hive.title; }
};

Hive const hives[] = {
    {"LocalMachine", HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER, ReadLocalMachineDWORDValue,
     ReadLocalMachineString, WriteLocalMachineValue, WriteLocalMachineValue},
    {"CurrentUser", HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE, ReadCurrentUserDWORDValue,
     ReadCurrentUserString, WriteCurrentUserValue, WriteCurrentUserValue},
};

// A scratch key in the hive, and functions that reach it.
class Values : public testing::TestWithParam<Hive> {
  protected:
    std::uint32_t readNumber(std::wstring const& value = name) const {
        return GetParam().readNumber(m_path, value);
    }

    std::wstring readText(std::wstring const& value = name) const {
        return GetParam().readText(m_path, value);
    }

    void writeNumber(std::uint32_t number, std::wstring const& value = name) const {
        GetParam().writeNumber(m_path, value, number);
    }

    void writeText(std::wstring const& text, std::wstring const& value = name) const {
        GetParam().writeText(m_path, value, text);
    }

    test::ScratchKey const m_scratch{GetParam().handle};
    // The key that the functions are given.
    std::wstring m_path = m_scratch.path();
    test::RegistryPlace const m_inOtherHive{GetParam().other, m_scratch.path()};
    test::LogRecorder const m_log;
};

} // namespace

INSTANTIATE_TEST_SUITE_P(EachHive, Values, testing::ValuesIn(hives), [](auto const& hive) {
    return std::string(hive.param.title);
});

TEST_P(Values, ReadsANumber) {
    m_scratch.setNumber(name, 0xFEDCBA98);

    EXPECT_EQ(0xFEDCBA98u, readNumber());
}

TEST_P(Values, ReadsAText) {
    m_scratch.setText(name, L"C:\\M\u00FCsik");

    EXPECT_EQ(L"C:\\M\u00FCsik", readText());
}

TEST_P(Values, WritesANumber) {
    writeNumber(0x12345678);

    EXPECT_EQ((test::RegistryValue{REG_DWORD, {0x78, 0x56, 0x34, 0x12}}), m_scratch.get(name));
    EXPECT_FALSE(m_inOtherHive.exists());
}

TEST_P(Values, WritesAText) {
    writeText(L"a\u20AC");

    EXPECT_EQ((test::RegistryValue{REG_SZ, {'a', 0, 0xAC, 0x20, 0, 0}}), m_scratch.get(name));
    EXPECT_FALSE(m_inOtherHive.exists());
}

TEST_P(Values, WritesReplaceWhatWasThere) {
    writeText(L"a long text");
    writeNumber(1);
    EXPECT_EQ(1u, readNumber());

    writeText(L"text");
    EXPECT_EQ(L"text", readText());
}

TEST_P(Values, ReadOfANumberMakesItsKey) {
    m_path = m_scratch.key(L"new\\deep");

    EXPECT_THAT([&] { readNumber(); }, MissesTheValue());

    EXPECT_TRUE(m_scratch.exists(L"new\\deep"));
    EXPECT_FALSE(m_inOtherHive.exists());
    EXPECT_THAT(m_log.lines(), IsEmpty());
}

TEST_P(Values, ReadOfATextMakesItsKey) {
    m_path = m_scratch.key(L"new\\deep");

    EXPECT_THAT([&] { readText(); }, MissesTheValue());

    EXPECT_TRUE(m_scratch.exists(L"new\\deep"));
    EXPECT_FALSE(m_inOtherHive.exists());
    EXPECT_THAT(m_log.lines(), IsEmpty());
}

TEST_P(Values, WritesMakeTheirKeys) {
    m_path = m_scratch.key(L"one\\deep");
    writeNumber(1);
    m_path = m_scratch.key(L"two\\deep");
    writeText(L"a");

    EXPECT_EQ(1u, m_scratch.getNumber(name, L"one\\deep"));
    EXPECT_EQ(L"a", m_scratch.getText(name, L"two\\deep"));
}

TEST_P(Values, MissingValueIsMissing) {
    EXPECT_THAT([&] { readNumber(); }, MissesTheValue());
    EXPECT_THAT([&] { readText(); }, MissesTheValue());
    EXPECT_THAT(m_log.lines(), IsEmpty());
}

TEST_P(Values, ValueOfAnotherTypeIsMissing) {
    m_scratch.setText(L"text", L"1");
    m_scratch.setNumber(L"number", 1);
    m_scratch.set(L"long number", REG_QWORD, {1, 0, 0, 0, 0, 0, 0, 0});

    EXPECT_THAT([&] { readNumber(L"text"); }, MissesTheValue());
    EXPECT_THAT([&] { readNumber(L"long number"); }, MissesTheValue());
    EXPECT_THAT([&] { readText(L"number"); }, MissesTheValue());
}

TEST_P(Values, LongestTextThatComesBackHas2047Characters) {
    std::wstring const longest(2047, L'x');
    writeText(longest);
    EXPECT_EQ(longest, readText());

    writeText(longest + L'x');
    EXPECT_EQ(longest + L'x', m_scratch.getText(name));
    EXPECT_THAT([&] { readText(); }, MissesTheValue());
}

TEST_P(Values, TextEndsAtItsFirstZero) {
    writeText({L'a', L'\0', L'b'});

    EXPECT_EQ((test::RegistryValue{REG_SZ, {'a', 0, 0, 0}}), m_scratch.get(name));
    EXPECT_EQ(L"a", readText());
}

TEST_P(Values, TextMayBeEmpty) {
    writeText(L"");

    EXPECT_EQ((test::RegistryValue{REG_SZ, {0, 0}}), m_scratch.get(name));
    EXPECT_EQ(L"", readText());
}

TEST_P(Values, TextMayBeLong) {
    std::wstring const longText(100'000, L'\u00E4');

    writeText(longText);

    EXPECT_EQ(longText, m_scratch.getText(name));
}

TEST_P(Values, TextKeepsItsPercentSigns) {
    writeText(L"100%s %TEMP% %%");

    EXPECT_EQ(L"100%s %TEMP% %%", readText());
}

TEST_P(Values, NamesMayBeAnything) {
    for (auto const& value :
         {std::wstring(), std::wstring(16383, L'n'), std::wstring(L"100%s %d"),
          std::wstring(L"\xD800"), std::wstring(L"a\\b=\"c\"")}) {
        writeNumber(5, value);
        EXPECT_EQ(5u, readNumber(value));
        writeText(L"text", value);
        EXPECT_EQ(L"text", readText(value));
    }
    EXPECT_EQ(L"text", m_scratch.getText({}));
}

TEST_P(Values, KeysMayHoldPercentSignsAndLoneSurrogates) {
    m_path = m_scratch.key(L"100%s\\\xD800 x");

    writeNumber(5);

    EXPECT_EQ(5u, readNumber());
    EXPECT_EQ(5u, m_scratch.getNumber(name, L"100%s\\\xD800 x"));
}

TEST_P(Values, CaseDoesNotMatter) {
    m_scratch.setNumber(L"Value", 5, L"Sub");
    m_path = m_scratch.key(L"SUB");

    EXPECT_EQ(5u, readNumber(L"VALUE"));
}

TEST_P(Values, LeadingBackslashDoesNotCount) {
    m_path = L"\\" + m_scratch.path();
    m_scratch.setNumber(name, 5);

    EXPECT_EQ(5u, readNumber());
    writeText(L"text");
    EXPECT_EQ(L"text", m_scratch.getText(name));
}

TEST_P(Values, LiteralNumbersAreWrittenAsNumbers) {
    bool const isMachine = GetParam().handle == HKEY_LOCAL_MACHINE;
    auto const write = [&](auto number) {
        if (isMachine)
            WriteLocalMachineValue(m_path, name, number);
        else
            WriteCurrentUserValue(m_path, name, number);
        return m_scratch.getNumber(name);
    };

    EXPECT_EQ(4u, write(4u));
    EXPECT_EQ(0xFFFFFFFFu, write(0xFFFFFFFFul));
    if (isMachine)
        WriteLocalMachineValue(m_path, name, 0);
    else
        WriteCurrentUserValue(m_path, name, 0);
    EXPECT_EQ(0u, m_scratch.getNumber(name));
}

TEST_P(Values, WideLiteralsAreWrittenAsTexts) {
    if (GetParam().handle == HKEY_LOCAL_MACHINE)
        WriteLocalMachineValue(m_path, L"literal", L"0");
    else
        WriteCurrentUserValue(m_path, L"literal", L"0");

    EXPECT_EQ(L"0", m_scratch.getText(L"literal"));
}

TEST_P(Values, KeyThatCannotBeHadFailsEveryFunction) {
    for (LSTATUS const error : {5, 1018, 1021}) {
        test::KeyCalls const calls(test::refusing(error, error));

        EXPECT_THAT([&] { readNumber(); }, FailsToAccess()) << error;
        EXPECT_THAT([&] { readText(); }, FailsToAccess()) << error;
        EXPECT_THAT([&] { writeNumber(1); }, FailsToAccess()) << error;
        EXPECT_THAT([&] { writeText(L"a"); }, FailsToAccess()) << error;
    }
    EXPECT_FALSE(m_scratch.get(name));
}

TEST_P(Values, KeyThatCannotBeHadIsLogged) {
    test::KeyCalls const calls(test::refusing(ERROR_FILE_NOT_FOUND, ERROR_ACCESS_DENIED));

    EXPECT_THAT([&] { readNumber(); }, FailsToAccess());
    EXPECT_THAT([&] { writeText(L"a"); }, FailsToAccess());

    auto const text = L"Failed to create registry key " + m_path + L" - Error code 5";
    EXPECT_THAT(m_log.lines(), ElementsAre(test::Logged(4, text), test::Logged(4, text)));
    EXPECT_THAT(
        m_log.lines(), ElementsAre(test::LoggedFormat(4, text), test::LoggedFormat(4, text)));
}

TEST_P(Values, KeyBelowOneThatDoesNotLastCannotBeHad) {
    HKEY passing = nullptr;
    ASSERT_EQ(
        ERROR_SUCCESS, RegCreateKeyExW(
                           m_scratch.hive(), m_scratch.key(L"Passing").c_str(), 0, nullptr,
                           REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr, &passing, nullptr));
    RegCloseKey(passing);
    m_path = m_scratch.key(L"Passing\\100%d");

    EXPECT_THAT([&] { readText(); }, FailsToAccess());

    EXPECT_THAT(
        m_log.lines(), ElementsAre(test::LoggedFormat(
                           4, L"Failed to create registry key " + m_path + L" - Error code 1021")));
}

TEST_P(Values, WriteThatIsRefusedIsSilent) {
    for (LSTATUS const error : {5, 8, 87, 1018}) {
        test::FailingImport<decltype(RegSetValueExW)> const fails(
            "RegSetValueExW", error, ERROR_SUCCESS, test::everyCall);

        EXPECT_NO_THROW(writeNumber(1)) << error;
        EXPECT_NO_THROW(writeText(L"a")) << error;

        EXPECT_EQ(2u, fails.calls());
    }
    EXPECT_FALSE(m_scratch.get(name));
    EXPECT_THAT(m_log.lines(), IsEmpty());
}

TEST_P(Values, ReadThatIsRefusedIsAMissingValue) {
    m_scratch.setNumber(name, 1);
    test::FailingImport<decltype(RegQueryValueExW)> const fails(
        "RegQueryValueExW", ERROR_ACCESS_DENIED, ERROR_SUCCESS, test::everyCall);

    EXPECT_THAT([&] { readNumber(); }, MissesTheValue());
    EXPECT_THAT([&] { readText(); }, MissesTheValue());

    EXPECT_THAT(m_log.lines(), IsEmpty());
}

TEST_P(Values, KeyIsOpenedWithAllRightsEachTime) {
    test::KeyCalls const calls;

    writeNumber(1);
    readNumber();
    writeText(L"a");
    readText();

    auto const open = test::opens(m_scratch.hive(), m_path);
    EXPECT_THAT(calls.made(), ElementsAre(open, open, open, open));
}

class ProductValues : public test::FreshMachine {
  protected:
    std::wstring const m_path = L"Software\\Vorrane\\Ostrel\\Server";
};

TEST_F(ProductValues, FirstReadMakesTheRootWithItsAccessList) {
    {
        test::KeyCalls const calls;

        EXPECT_THAT([&] { ReadCurrentUserString(m_path, name); }, MissesTheValue());

        EXPECT_THAT(
            calls.made(), ElementsAre(
                              test::opens(HKEY_CURRENT_USER, m_path), test::createsProductRoot(),
                              test::creates(HKEY_CURRENT_USER, m_path)));
    }
    EXPECT_TRUE(m_machine.exists(L"Ostrel"));
    EXPECT_TRUE(m_user.exists(L"Ostrel\\Server"));
}

TEST_F(ProductValues, FirstWriteMakesTheRootWhateverTheCase) {
    WriteCurrentUserValue(L"SOFTWARE\\VORRANE\\OSTREL\\SERVER", name, 7);

    EXPECT_TRUE(m_machine.exists(L"Ostrel"));
    EXPECT_EQ(7u, m_user.getNumber(name, L"Ostrel\\Server"));
}

TEST_F(ProductValues, SecondReadFindsItsKey) {
    WriteLocalMachineValue(m_path, name, L"text");
    test::KeyCalls const calls;

    EXPECT_EQ(L"text", ReadLocalMachineString(m_path, name));

    EXPECT_THAT(calls.made(), ElementsAre(test::opens(HKEY_LOCAL_MACHINE, m_path)));
}

TEST_F(ProductValues, KeyElsewhereNeedsNoRoot) {
    test::ScratchKey const scratch(HKEY_LOCAL_MACHINE);

    WriteLocalMachineValue(scratch.key(L"Vorrane\\Ostrel"), name, 1);

    EXPECT_FALSE(m_machine.exists());
}
