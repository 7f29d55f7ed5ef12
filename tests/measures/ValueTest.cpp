#include "measures/Value.h"

#include <gtest/gtest.h>

#include <type_traits>

using namespace vrUtils::KeyValue;

static_assert(std::is_abstract_v<Value>);
static_assert(!std::has_virtual_destructor_v<Value>);
static_assert(!std::is_destructible_v<Value>, "nobody deletes one through its base");
static_assert(!std::is_copy_constructible_v<StringValue>);
static_assert(sizeof(Uint32Value) == 16 && sizeof(BoolValue) == 16);

TEST(Value, EachClassNamesItsType) {
    EXPECT_EQ(L"String", StringValue(L"a").TypeName());
    EXPECT_EQ(L"Uint32", Uint32Value(1).TypeName());
    EXPECT_EQ(L"Bool", BoolValue(true).TypeName());
}

TEST(Value, IsWhatItWasMadeOf) {
    EXPECT_EQ(L"text", StringValue(L"text").get());
    EXPECT_EQ(0xFFFFFFFFul, Uint32Value(0xFFFFFFFFul).get());
    EXPECT_FALSE(BoolValue(false).get());
}

TEST(Value, CanBeFilledAnew) {
    StringValue text(L"a");
    Uint32Value number(1);
    BoolValue flag(false);

    text.refill(L"b");
    number.refill(2);
    flag.refill(true);

    EXPECT_EQ(L"b", text.get());
    EXPECT_EQ(2u, number.get());
    EXPECT_TRUE(flag.get());
}

TEST(Value, OnlyLongTextsAreNotWorthKeeping) {
    EXPECT_TRUE(StringValue(std::wstring(512, L'x')).isWorthKeeping());
    EXPECT_FALSE(StringValue(std::wstring(513, L'x')).isWorthKeeping());
    EXPECT_TRUE(Uint32Value(1).isWorthKeeping());
    EXPECT_TRUE(BoolValue(true).isWorthKeeping());
}
