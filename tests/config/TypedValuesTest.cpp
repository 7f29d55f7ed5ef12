#include "config/TypedValues.h"

#include "tests/config/RegistryFailures.h"
#include "tests/support/ImportHook.h"
#include "tests/support/ScratchKey.h"

#include <cstring>
#include <optional>
#include <string>
#include <vector>

using namespace vrUtils::Registry;

namespace {

using Bytes = std::vector<unsigned char>;

constexpr wchar_t name[] = L"value";

// The bytes of a text, with no terminator but what the text brings.
Bytes bytesOf(std::wstring const& text) {
    Bytes bytes(text.size() * sizeof(wchar_t));
    std::memcpy(bytes.data(), text.data(), bytes.size());
    return bytes;
}

// The text and its terminator.
Bytes terminated(std::wstring const& text) { return bytesOf(text + L'\0'); }

// A platform that answers every query with this type and these bytes.
test::ImportHook<decltype(RegQueryValueExW)>
answering(LSTATUS status, DWORD type, Bytes const& bytes) {
    return {
        "RegQueryValueExW",
        [=](HKEY, LPCWSTR, DWORD*, DWORD* toldType, BYTE* data, DWORD* length) -> LSTATUS {
            *toldType = type;
            std::memcpy(data, bytes.data(), bytes.size());
            *length = static_cast<DWORD>(bytes.size());
            return status;
        }};
}

// What the platform is asked for.
class Inquiry {
  public:
    // Whether there was one, for the value of this key, with room for so many bytes.
    void expectOne(RegistryKey const& key, DWORD room) const {
        EXPECT_EQ(1u, m_hook.calls());
        EXPECT_EQ(key.get(), m_key);
        EXPECT_EQ(name, m_name);
        EXPECT_EQ(nullptr, m_reserved);
        EXPECT_EQ(room, m_room);
    }

  private:
    HKEY m_key = nullptr;
    std::wstring m_name;
    DWORD* m_reserved = nullptr;
    DWORD m_room = 0;
    test::ImportHook<decltype(RegQueryValueExW)> const m_hook{
        "RegQueryValueExW",
        [this](HKEY key, LPCWSTR value, DWORD* reserved, DWORD* type, BYTE* data, DWORD* length) {
            m_key = key;
            m_name = value;
            m_reserved = reserved;
            m_room = *length;
            return m_hook.original()(key, value, reserved, type, data, length);
        }};
};

class TypedValues : public testing::Test {
  protected:
    TypedValues() {
        EXPECT_EQ(ERROR_SUCCESS, m_key.Open(m_scratch.hive(), m_scratch.path(), KEY_ALL_ACCESS));
    }

    // None where the value counts as missing.
    std::optional<std::uint32_t> number(std::wstring const& of = name) const {
        try {
            return ReadDWORD(m_key, of);
        } catch (vrRegistryValueMissingException const&) {
            return std::nullopt;
        }
    }

    std::optional<std::wstring> text(std::wstring const& of = name) const {
        try {
            return ReadString(m_key, of);
        } catch (vrRegistryValueMissingException const&) {
            return std::nullopt;
        }
    }

    test::ScratchKey m_scratch;
    RegistryKey m_key;
};

} // namespace

class NumberReading : public TypedValues {};

TEST_F(NumberReading, GivesEveryNumber) {
    for (std::uint32_t const value : {0u, 1u, 0x7FFFFFFFu, 0x80000000u, 0x12345678u, 0xFFFFFFFFu}) {
        m_scratch.setNumber(name, value);

        EXPECT_EQ(value, ReadDWORD(m_key, name));
    }
}

TEST_F(NumberReading, TakesOneTypeOfUpToFourBytes) {
    Bytes const all{0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88};
    for (DWORD type = 0; type < 12; ++type)
        for (DWORD const length : {0u, 1u, 3u, 4u, 8u}) {
            m_scratch.set(name, type, {all.begin(), all.begin() + length});

            bool const isNumber = type == 4 && length <= 4;
            EXPECT_EQ(isNumber, number().has_value()) << type << " of " << length << " bytes";
        }
}

TEST_F(NumberReading, FillsAShortNumberWithZeros) {
    m_scratch.set(name, REG_DWORD, {0x11, 0x22, 0x33});
    EXPECT_EQ(0x332211u, number());

    m_scratch.set(name, REG_DWORD, {0xFF});
    EXPECT_EQ(0xFFu, number());

    m_scratch.set(name, REG_DWORD, {});
    EXPECT_EQ(0u, number());
}

TEST_F(NumberReading, LongNumberIsMissing) {
    m_scratch.set(name, REG_QWORD, {1, 0, 0, 0, 0, 0, 0, 0});
    EXPECT_THAT([&] { ReadDWORD(m_key, name); }, MissesTheValue());

    m_scratch.set(name, REG_DWORD, {1, 0, 0, 0, 0});
    EXPECT_THAT([&] { ReadDWORD(m_key, name); }, MissesTheValue());
}

TEST_F(NumberReading, MissingValueIsMissing) {
    EXPECT_THAT([&] { ReadDWORD(m_key, L"no such value"); }, MissesTheValue());
}

TEST_F(NumberReading, EveryErrorReadsAsMissing) {
    for (LSTATUS const error : {2, 5, 6, 234, 1018}) {
        auto const hook = answering(error, REG_DWORD, {1, 0, 0, 0});

        EXPECT_THAT([&] { ReadDWORD(m_key, name); }, MissesTheValue()) << error;
    }
}

TEST_F(NumberReading, AsksOnceForFourBytes) {
    Inquiry const inquiry;

    number();

    inquiry.expectOne(m_key, 4u);
}

TEST_F(NumberReading, KeyThatIsGoneHasNoValues) {
    m_scratch.setNumber(name, 1);
    ASSERT_EQ(ERROR_SUCCESS, m_scratch.remove());

    EXPECT_THAT([&] { ReadDWORD(m_key, name); }, MissesTheValue());
}

class TextReading : public TypedValues {};

TEST_F(TextReading, GivesTheText) {
    for (auto const* const value : {L"a", L"C:\\M\u00FCsik", L"line\r\nline", L" ", L"\xD800"}) {
        m_scratch.setText(name, value);

        EXPECT_EQ(value, ReadString(m_key, name));
    }
}

TEST_F(TextReading, TakesTwoTypes) {
    for (DWORD type = 0; type < 12; ++type) {
        m_scratch.set(name, type, terminated(L"abc"));

        EXPECT_EQ(type == 1 || type == 2, text().has_value()) << type;
    }
}

TEST_F(TextReading, WithoutATerminatorIsMissingUnlessEmpty) {
    Bytes const all = bytesOf(L"abcd");
    for (DWORD type = 0; type < 12; ++type)
        for (DWORD const length : {0u, 1u, 3u, 4u, 8u}) {
            m_scratch.set(name, type, {all.begin(), all.begin() + length});

            bool const isText = (type == 1 || type == 2) && length == 0;
            EXPECT_EQ(isText, text().has_value()) << type << " of " << length << " bytes";
        }
}

TEST_F(TextReading, OfOddLengthIsMissing) {
    for (std::size_t const length : {1u, 3u, 5u, 4093u, 4095u}) {
        // Zeros, so that nothing but the length is amiss.
        m_scratch.set(name, REG_SZ, Bytes(length));

        EXPECT_THAT([&] { ReadString(m_key, name); }, MissesTheValue()) << length;
    }
}

TEST_F(TextReading, UnterminatedTextThatFillsTheBufferIsMissing) {
    m_scratch.set(name, REG_SZ, bytesOf(std::wstring(2048, L'x')));

    EXPECT_THAT([&] { ReadString(m_key, name); }, MissesTheValue());
}

TEST_F(TextReading, TerminatorBeforeTheEndIsNotEnough) {
    m_scratch.set(name, REG_SZ, bytesOf({L'a', L'\0', L'b'}));

    EXPECT_THAT([&] { ReadString(m_key, name); }, MissesTheValue());
}

TEST_F(TextReading, LongestTextHas2047Characters) {
    std::wstring const longest(2047, L'x');
    m_scratch.setText(name, longest);
    ASSERT_EQ(4096u, m_scratch.get(name)->data.size());

    EXPECT_EQ(longest, ReadString(m_key, name));
}

TEST_F(TextReading, OneCharacterMoreIsMissing) {
    m_scratch.setText(name, std::wstring(2048, L'x'));
    ASSERT_EQ(4098u, m_scratch.get(name)->data.size());

    EXPECT_THAT([&] { ReadString(m_key, name); }, MissesTheValue());
}

TEST_F(TextReading, EndsAtTheFirstZero) {
    m_scratch.set(name, REG_SZ, bytesOf({L'a', L'b', L'\0', L'c', L'\0'}));
    EXPECT_EQ(L"ab", ReadString(m_key, name));

    m_scratch.set(name, REG_SZ, bytesOf({L'\0', L'c', L'\0'}));
    EXPECT_EQ(L"", ReadString(m_key, name));
}

TEST_F(TextReading, OfNoBytesIsEmpty) {
    m_scratch.set(name, REG_SZ, {});
    EXPECT_EQ(L"", ReadString(m_key, name));

    m_scratch.set(name, REG_EXPAND_SZ, {});
    EXPECT_EQ(L"", ReadString(m_key, name));
}

TEST_F(TextReading, OfATerminatorAloneIsEmpty) {
    m_scratch.set(name, REG_SZ, terminated(L""));

    EXPECT_EQ(L"", ReadString(m_key, name));
}

TEST_F(TextReading, LeavesVariablesAsTheyAre) {
    m_scratch.set(name, REG_EXPAND_SZ, terminated(L"%SystemRoot%\\%TEMP%"));

    EXPECT_EQ(L"%SystemRoot%\\%TEMP%", ReadString(m_key, name));
}

TEST_F(TextReading, MissingValueIsMissing) {
    EXPECT_THAT([&] { ReadString(m_key, L"no such value"); }, MissesTheValue());
}

TEST_F(TextReading, EveryErrorReadsAsMissing) {
    for (LSTATUS const error : {2, 5, 6, 234, 1018}) {
        auto const hook = answering(error, REG_SZ, terminated(L"a"));

        EXPECT_THAT([&] { ReadString(m_key, name); }, MissesTheValue()) << error;
    }
}

TEST_F(TextReading, AsksOnceFor4096Bytes) {
    Inquiry const inquiry;

    text();

    inquiry.expectOne(m_key, 4096u);
}

TEST_F(TypedValues, EachReadTellsItsOwnLine) {
    auto const lineOf = [](auto const& read) {
        try {
            read();
        } catch (vrException const& failure) {
            return failure.line();
        }
        return 0u;
    };
    m_scratch.set(name, REG_SZ, {1});

    auto const ofNumber = lineOf([&] { ReadDWORD(m_key, name); });
    auto const ofMissing = lineOf([&] { ReadString(m_key, L"no such value"); });
    auto const ofMalformed = lineOf([&] { ReadString(m_key, name); });

    EXPECT_LT(0u, ofNumber);
    EXPECT_LT(ofNumber, ofMissing);
    EXPECT_EQ(ofMissing, ofMalformed);
}

TEST_F(TypedValues, NamesMayBeAnything) {
    for (auto const& of :
         {std::wstring(), std::wstring(16383, L'n'), std::wstring(L"100%s %d"),
          std::wstring(L"\xD800"), std::wstring(L"a\\b=\"c\""), std::wstring(L" ")}) {
        EXPECT_EQ(ERROR_SUCCESS, WriteDWORD(m_key, of, 5));
        EXPECT_EQ(5u, number(of));
        EXPECT_EQ(5u, m_scratch.getNumber(of));

        EXPECT_EQ(ERROR_SUCCESS, WriteString(m_key, of, L"text"));
        EXPECT_EQ(L"text", text(of));
        EXPECT_EQ(L"text", m_scratch.getText(of));
    }
}

class ValueWriting : public TypedValues {};

TEST_F(ValueWriting, NumberTakesFourBytes) {
    EXPECT_EQ(ERROR_SUCCESS, WriteDWORD(m_key, name, 0x12345678));

    EXPECT_EQ((test::RegistryValue{REG_DWORD, {0x78, 0x56, 0x34, 0x12}}), m_scratch.get(name));
}

TEST_F(ValueWriting, TextTakesItsTerminatorAlong) {
    EXPECT_EQ(ERROR_SUCCESS, WriteString(m_key, name, L"a\u20AC"));

    EXPECT_EQ((test::RegistryValue{REG_SZ, {'a', 0, 0xAC, 0x20, 0, 0}}), m_scratch.get(name));
}

TEST_F(ValueWriting, EmptyTextIsATerminator) {
    EXPECT_EQ(ERROR_SUCCESS, WriteString(m_key, name, L""));

    EXPECT_EQ((test::RegistryValue{REG_SZ, {0, 0}}), m_scratch.get(name));
}

TEST_F(ValueWriting, TextEndsAtItsFirstZero) {
    EXPECT_EQ(ERROR_SUCCESS, WriteString(m_key, name, {L'a', L'\0', L'b'}));
    EXPECT_EQ((test::RegistryValue{REG_SZ, {'a', 0, 0, 0}}), m_scratch.get(name));

    EXPECT_EQ(ERROR_SUCCESS, WriteString(m_key, name, {L'\0', L'b'}));
    EXPECT_EQ((test::RegistryValue{REG_SZ, {0, 0}}), m_scratch.get(name));
}

TEST_F(ValueWriting, TextMayBeLongerThanAReaderTakes) {
    std::wstring const longText(100'000, L'\u00E4');

    EXPECT_EQ(ERROR_SUCCESS, WriteString(m_key, name, longText));

    EXPECT_EQ(longText, m_scratch.getText(name));
}

TEST_F(ValueWriting, BytesKeepTheirTypeAndLength) {
    Bytes const bytes{1, 0, 2};

    EXPECT_EQ(ERROR_SUCCESS, WriteBytes(m_key, name, REG_BINARY, bytes.data(), bytes.size()));
    EXPECT_EQ((test::RegistryValue{REG_BINARY, bytes}), m_scratch.get(name));

    EXPECT_EQ(ERROR_SUCCESS, WriteBytes(m_key, name, REG_MULTI_SZ, bytes.data(), 2));
    EXPECT_EQ((test::RegistryValue{REG_MULTI_SZ, {1, 0}}), m_scratch.get(name));
}

TEST_F(ValueWriting, GivesThePlatformsResult) {
    test::FailingImport<decltype(RegSetValueExW)> const fails(
        "RegSetValueExW", ERROR_KEY_DELETED, ERROR_SUCCESS, test::everyCall);

    EXPECT_EQ(ERROR_KEY_DELETED, WriteDWORD(m_key, name, 1));
    EXPECT_EQ(ERROR_KEY_DELETED, WriteString(m_key, name, L"a"));
    EXPECT_EQ(ERROR_KEY_DELETED, WriteBytes(m_key, name, REG_BINARY, "a", 1));
}

TEST_F(ValueWriting, IsRefusedThroughAKeyThatOnlyReads) {
    RegistryKey reader;
    ASSERT_EQ(ERROR_SUCCESS, reader.Open(m_scratch.hive(), m_scratch.path(), KEY_READ));

    EXPECT_EQ(ERROR_ACCESS_DENIED, WriteDWORD(reader, name, 1));

    EXPECT_FALSE(m_scratch.get(name));
}
