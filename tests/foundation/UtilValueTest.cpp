#include "vrUtils/UtilValue.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <type_traits>

TEST(UtilValue, IsUnsetAtFirst) { EXPECT_FALSE(UtilValue<std::uint32_t>().isSet()); }

TEST(UtilValue, ReadingAnUnsetValueThrows) {
    UtilValue<std::uint32_t> const value;

    try {
        value.get();
        FAIL() << "nothing thrown";
    } catch (vrUnsetValueException const& failure) {
        EXPECT_EQ(0x80004005u, failure.code());
        EXPECT_EQ(L"Value not set", failure.message());
        EXPECT_EQ(L"UtilValue", failure.file());
        EXPECT_EQ(58u, failure.line());
    }
}

TEST(UtilValue, FailureIsAVrException) {
    EXPECT_THROW(UtilValue<std::wstring>().get(), vrException);
}

TEST(UtilValue, FailedReadLeavesItUnset) {
    UtilValue<std::uint32_t> const value;

    EXPECT_THROW(value.get(), vrUnsetValueException);

    EXPECT_FALSE(value.isSet());
    EXPECT_THROW(value.get(), vrUnsetValueException);
}

TEST(UtilValue, GivesTheValueThatWasSet) {
    UtilValue<std::uint32_t> value;

    value.set(48000);

    EXPECT_TRUE(value.isSet());
    EXPECT_EQ(48000u, value.get());
}

TEST(UtilValue, ReadingKeepsItSet) {
    UtilValue<std::uint32_t> value;
    value.set(48000);

    value.get();

    EXPECT_TRUE(value.isSet());
    EXPECT_EQ(48000u, value.get());
}

TEST(UtilValue, SettingAgainReplacesTheValue) {
    UtilValue<std::uint32_t> value;
    value.set(48000);

    value.set(0);

    EXPECT_TRUE(value.isSet());
    EXPECT_EQ(0u, value.get());
}

TEST(UtilValue, CopiesCarryFlagAndValue) {
    UtilValue<std::wstring> const unset;
    UtilValue<std::wstring> set;
    set.set(L"text");

    auto const copyOfUnset = unset;
    auto const copyOfSet = set;
    set.set(L"later");

    EXPECT_FALSE(copyOfUnset.isSet());
    EXPECT_EQ(L"text", copyOfSet.get());
}

TEST(UtilValue, AssignmentCanUnset) {
    UtilValue<std::uint32_t> value;
    value.set(16);

    value = UtilValue<std::uint32_t>();

    EXPECT_FALSE(value.isSet());
}

// The first member of such a class stands at its beginning.
TEST(UtilValue, FlagStandsBeforeTheValue) {
    using Value = UtilValue<std::uint32_t>;
    ASSERT_TRUE(std::is_standard_layout_v<Value>);
    Value value;
    auto const& flag = *reinterpret_cast<bool const*>(&value);
    EXPECT_FALSE(flag);

    value.set(0xFFFFFF00);

    EXPECT_TRUE(value.isSet());
    EXPECT_TRUE(*reinterpret_cast<bool const*>(&value));
    EXPECT_EQ(2 * sizeof(std::uint32_t), sizeof(Value));
}
