#include "vrUtils/KeyValue.h"

#include "tests/support/Campaign.h"

#include <gtest/gtest.h>

#include <map>
#include <thread>
#include <type_traits>
#include <variant>
#include <vector>

using namespace vrUtils::KeyValue;

namespace {

template <typename Value, typename = void>
constexpr bool isTaken = false;

template <typename Value>
constexpr bool isTaken<
    Value, std::void_t<decltype(std::declval<vrKeyValues&>().Set(L"key", std::declval<Value>()))>> =
    true;

// What a store holds under a key, read by its type.
using Held = std::variant<std::wstring, unsigned long, bool>;

Held held(vrKeyValues const& values, std::wstring const& key) {
    auto const type = values.TypeName(key);
    if (type == L"String")
        return values.GetStringValue(key);
    if (type == L"Uint32")
        return values.GetUint32Value(key);
    return values.GetBoolValue(key);
}

void put(vrKeyValues& values, std::wstring const& key, Held const& value) {
    std::visit([&](auto const& content) { values.Set(key, content); }, value);
}

} // namespace

static_assert(!std::is_copy_constructible_v<vrKeyValues>);
static_assert(!std::is_move_constructible_v<vrKeyValues>);
static_assert(std::is_same_v<
              vrKeyValues const&,
              decltype(std::declval<vrKeyValues&>() = std::declval<vrKeyValues const&>())>);
static_assert(std::is_base_of_v<vrException, KeyValueNotPresentException>);
static_assert(std::is_base_of_v<vrException, KeyValueWrongTypeException>);
static_assert(isTaken<std::wstring> && isTaken<unsigned long> && isTaken<bool>);
static_assert(!isTaken<int> && !isTaken<long> && !isTaken<double>, "no guess at what is meant");

TEST(vrKeyValues, IsEmptyAtFirst) { EXPECT_FALSE(vrKeyValues().Contains(L"")); }

TEST(vrKeyValues, GivesBackEachType) {
    vrKeyValues values;

    values.Set(L"name", std::wstring(L"clip \u00fc \U0001F3AC"));
    values.Set(L"frames", 0xFFFFFFFFul);
    values.Set(L"done", true);
    values.Set(L"failed", false);

    EXPECT_EQ(L"clip \u00fc \U0001F3AC", values.GetStringValue(L"name"));
    EXPECT_EQ(0xFFFFFFFFul, values.GetUint32Value(L"frames"));
    EXPECT_TRUE(values.GetBoolValue(L"done"));
    EXPECT_FALSE(values.GetBoolValue(L"failed"));
}

TEST(vrKeyValues, LiteralsPickTheTypeTheyLookLike) {
    vrKeyValues values;

    values.Set(L"text", L"false");
    values.Set(L"number", 0u);
    values.Set(L"flag", false);

    EXPECT_EQ(L"String", values.TypeName(L"text"));
    EXPECT_EQ(L"false", values.GetStringValue(L"text"));
    EXPECT_EQ(L"Uint32", values.TypeName(L"number"));
    EXPECT_EQ(0u, values.GetUint32Value(L"number"));
    EXPECT_EQ(L"Bool", values.TypeName(L"flag"));
}

TEST(vrKeyValues, TypeOfAnAbsentKeyIsAFailure) {
    EXPECT_THROW(vrKeyValues().TypeName(L"a"), KeyValueNotPresentException);
}

TEST(vrKeyValues, TextIsKeptWhole) {
    std::wstring const text(L"a\0b\xD800", 4);
    vrKeyValues values;

    values.Set(L"empty", L"");
    values.Set(L"special", text);
    values.Set(L"huge", std::wstring(1000000, L'x'));

    EXPECT_EQ(L"", values.GetStringValue(L"empty"));
    EXPECT_EQ(text, values.GetStringValue(L"special"));
    EXPECT_EQ(std::wstring(1000000, L'x'), values.GetStringValue(L"huge"));
}

TEST(vrKeyValues, AbsentKeyIsAFailureOfEveryRead) {
    vrKeyValues values;
    values.Set(L"b", true);

    EXPECT_THROW(values.GetStringValue(L"a"), KeyValueNotPresentException);
    EXPECT_THROW(values.GetUint32Value(L"a"), KeyValueNotPresentException);
    EXPECT_THROW(values.GetBoolValue(L"c"), KeyValueNotPresentException);
}

TEST(vrKeyValues, NothingIsConverted) {
    vrKeyValues values;
    values.Set(L"text", L"1");
    values.Set(L"number", 1u);
    values.Set(L"flag", true);

    EXPECT_THROW(values.GetUint32Value(L"text"), KeyValueWrongTypeException);
    EXPECT_THROW(values.GetBoolValue(L"text"), KeyValueWrongTypeException);
    EXPECT_THROW(values.GetStringValue(L"number"), KeyValueWrongTypeException);
    EXPECT_THROW(values.GetBoolValue(L"number"), KeyValueWrongTypeException);
    EXPECT_THROW(values.GetStringValue(L"flag"), KeyValueWrongTypeException);
    EXPECT_THROW(values.GetUint32Value(L"flag"), KeyValueWrongTypeException);
}

TEST(vrKeyValues, FailuresAreDefaultBuilt) {
    vrKeyValues values;
    values.Set(L"flag", true);

    for (auto const* key : {L"absent", L"flag"}) {
        try {
            values.GetUint32Value(key);
            ADD_FAILURE() << "nothing thrown";
        } catch (vrException const& failure) {
            EXPECT_EQ(0u, failure.code());
            EXPECT_EQ(L"", failure.message());
            EXPECT_EQ(L"", failure.file());
            EXPECT_EQ(0u, failure.line());
        }
    }
}

TEST(vrKeyValues, FailuresAreToldApartByTheirClass) {
    static_assert(!std::is_base_of_v<KeyValueNotPresentException, KeyValueWrongTypeException>);
    static_assert(!std::is_base_of_v<KeyValueWrongTypeException, KeyValueNotPresentException>);
    vrKeyValues values;
    values.Set(L"number", 5u);

    EXPECT_THROW(values.GetBoolValue(L"number"), KeyValueWrongTypeException);
    EXPECT_THROW(values.GetBoolValue(L"Number"), KeyValueNotPresentException);
}

TEST(vrKeyValues, SetReplacesTheValue) {
    vrKeyValues values;
    values.Set(L"a", 1u);

    values.Set(L"a", 2u);
    values.Set(L"a", 3u);

    EXPECT_EQ(3u, values.GetUint32Value(L"a"));
}

TEST(vrKeyValues, SetChangesTheType) {
    vrKeyValues values;
    values.Set(L"a", L"text");

    values.Set(L"a", 5u);
    EXPECT_THROW(values.GetStringValue(L"a"), KeyValueWrongTypeException);
    EXPECT_EQ(5u, values.GetUint32Value(L"a"));

    values.Set(L"a", true);
    EXPECT_THROW(values.GetUint32Value(L"a"), KeyValueWrongTypeException);
    EXPECT_TRUE(values.GetBoolValue(L"a"));

    values.Set(L"a", L"again");
    EXPECT_THROW(values.GetBoolValue(L"a"), KeyValueWrongTypeException);
    EXPECT_EQ(L"again", values.GetStringValue(L"a"));
}

TEST(vrKeyValues, RemoveDropsAValueOfAnyType) {
    vrKeyValues values;
    values.Set(L"text", L"a");
    values.Set(L"number", 1u);

    values.Remove(L"text");

    EXPECT_FALSE(values.Contains(L"text"));
    EXPECT_THROW(values.GetStringValue(L"text"), KeyValueNotPresentException);
    EXPECT_TRUE(values.Contains(L"number"));
}

TEST(vrKeyValues, RemoveOfAnAbsentKeyDoesNothing) {
    vrKeyValues values;
    values.Set(L"a", 1u);

    values.Remove(L"b");
    values.Remove(L"");

    EXPECT_EQ(1u, values.GetUint32Value(L"a"));
}

TEST(vrKeyValues, ContainsValuesOfEveryType) {
    vrKeyValues values;
    values.Set(L"text", L"");
    values.Set(L"number", 0u);
    values.Set(L"flag", false);

    EXPECT_TRUE(values.Contains(L"text"));
    EXPECT_TRUE(values.Contains(L"number"));
    EXPECT_TRUE(values.Contains(L"flag"));
    EXPECT_FALSE(values.Contains(L"fla"));
    EXPECT_FALSE(values.Contains(L"flags"));
}

TEST(vrKeyValues, AnyTextIsAKeyOfItsOwn) {
    std::vector<std::wstring> const keys{L"",
                                         L"a",
                                         L"A",
                                         L"a ",
                                         std::wstring(L"a\0", 2),
                                         std::wstring(1, L'\0'),
                                         L"\u00e4",
                                         L"a\u0308",
                                         L"\xD83C",
                                         L"\xFFFF",
                                         L"\U0001F3AC",
                                         std::wstring(100000, L'a')};
    vrKeyValues values;

    for (std::size_t index = 0; index < keys.size(); ++index)
        values.Set(keys[index], static_cast<unsigned long>(index));

    for (std::size_t index = 0; index < keys.size(); ++index)
        EXPECT_EQ(index, values.GetUint32Value(keys[index])) << index;
}

TEST(vrKeyValues, AssignmentDropsWhatWasThere) {
    vrKeyValues values;
    vrKeyValues other;
    values.Set(L"old", 1u);
    other.Set(L"new", L"text");

    auto const& result = values = other;

    EXPECT_EQ(&values, &result);
    EXPECT_FALSE(values.Contains(L"old"));
    EXPECT_EQ(L"text", values.GetStringValue(L"new"));
    EXPECT_EQ(L"text", other.GetStringValue(L"new"));
}

TEST(vrKeyValues, AssignmentOfAnEmptyStoreEmpties) {
    vrKeyValues values;
    values.Set(L"old", 1u);

    values = vrKeyValues();

    EXPECT_FALSE(values.Contains(L"old"));
}

TEST(vrKeyValues, AssignmentToItselfChangesNothing) {
    vrKeyValues values;
    values.Set(L"a", L"text");
    auto const& itself = values;

    values = itself;

    EXPECT_EQ(L"text", values.GetStringValue(L"a"));
}

TEST(vrKeyValues, SetAfterAnAssignmentShowsInOneStoreOnly) {
    vrKeyValues values;
    values.Set(L"name", L"one");
    values.Set(L"frames", 1u);
    values.Set(L"done", false);
    vrKeyValues copy;
    copy = values;

    // Each more than once: a store writes the next value where the one before was.
    for (auto const number : {2u, 3u, 4u}) {
        values.Set(L"name", std::to_wstring(number));
        values.Set(L"frames", number);
        values.Set(L"done", true);
    }
    copy.Set(L"more", 5u);

    EXPECT_EQ(L"one", copy.GetStringValue(L"name"));
    EXPECT_EQ(1u, copy.GetUint32Value(L"frames"));
    EXPECT_FALSE(copy.GetBoolValue(L"done"));
    EXPECT_EQ(L"4", values.GetStringValue(L"name"));
    EXPECT_FALSE(values.Contains(L"more"));
}

TEST(vrKeyValues, RemoveAfterAnAssignmentShowsInOneStoreOnly) {
    vrKeyValues values;
    values.Set(L"a", L"one");
    vrKeyValues copy;
    copy = values;

    values.Remove(L"a");

    EXPECT_FALSE(values.Contains(L"a"));
    EXPECT_EQ(L"one", copy.GetStringValue(L"a"));
}

TEST(vrKeyValues, WhatWasReplacedBeforeAnAssignmentIsNotShared) {
    vrKeyValues values;
    values.Set(L"a", 1u);
    values.Set(L"a", 2u);
    vrKeyValues copy;
    copy = values;

    values.Set(L"b", 3u);
    copy.Set(L"c", 4u);

    EXPECT_EQ(3u, values.GetUint32Value(L"b"));
    EXPECT_EQ(4u, copy.GetUint32Value(L"c"));
}

TEST(vrKeyValues, ValuesOutliveTheStoreTheyComeFrom) {
    vrKeyValues values;
    {
        vrKeyValues other;
        other.Set(L"a", L"a text that needs memory of its own");
        values = other;
    }

    EXPECT_EQ(L"a text that needs memory of its own", values.GetStringValue(L"a"));
}

TEST(vrKeyValues, StoresThatShareValuesMayBeUsedByTwoThreads) {
    constexpr unsigned long keys = 50;
    vrKeyValues first;
    for (unsigned long key = 0; key < keys; ++key)
        first.Set(std::to_wstring(key), L"shared by both of them");
    vrKeyValues second;
    second = first;
    auto const work = [](vrKeyValues& values, std::wstring const& own) {
        unsigned long wrong = 0;
        for (int round = 0; round < 200; ++round)
            for (unsigned long key = 0; key < keys; ++key) {
                auto const name = std::to_wstring(key);
                auto const expected = round == 0 ? L"shared by both of them" : own;
                wrong += values.GetStringValue(name) != expected;
                values.Set(name, own);
            }
        return wrong;
    };

    unsigned long wrongInSecond = 0;
    std::thread other([&] { wrongInSecond = work(second, L"what the second thread writes"); });
    auto const wrongInFirst = work(first, L"what the first thread writes");
    other.join();

    EXPECT_EQ(0u, wrongInFirst);
    EXPECT_EQ(0u, wrongInSecond);
}

TEST(vrKeyValues, BehavesAsAModelDoes) {
    struct Pair {
        vrKeyValues values;
        std::map<std::wstring, Held> model;
    };
    test::Campaign campaign(300);
    auto const randomKey = [&] {
        std::wstring key(campaign.below(4), L'a');
        for (auto& unit : key)
            unit = L"ab\xFFFF"[campaign.below(3)];
        return key;
    };
    auto const randomValue = [&]() -> Held {
        switch (campaign.below(3)) {
        case 0:
            return std::wstring(campaign.below(1200), L'x');
        case 1:
            return static_cast<unsigned long>(campaign.random()());
        default:
            return campaign.below(2) == 0;
        }
    };

    while (campaign.nextRound()) {
        Pair pairs[2];
        for (int step = 0; step < 100; ++step) {
            auto& pair = pairs[campaign.below(2)];
            auto const key = randomKey();
            auto const what = campaign.below(20);
            if (what == 0) {
                pair.values = pairs[0].values;
                pair.model = pairs[0].model;
            } else if (what < 5) {
                pair.values.Remove(key);
                pair.model.erase(key);
            } else {
                auto const value = randomValue();
                put(pair.values, key, value);
                pair.model[key] = value;
            }
            for (auto const& each : pairs) {
                auto const known = each.model.find(key);
                ASSERT_EQ(known != each.model.end(), each.values.Contains(key)) << campaign;
                for (auto const& [name, value] : each.model)
                    ASSERT_EQ(value, held(each.values, name)) << campaign;
            }
        }
    }
}
