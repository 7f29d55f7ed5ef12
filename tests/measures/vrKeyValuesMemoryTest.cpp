// What a store costs in allocations, and what comes of a failed one.

#include "vrUtils/KeyValue.h"

#include "tests/support/AllocationCounter.h"

#include <gtest/gtest.h>

#include <new>

using test::AllocationCounter;
using vrUtils::KeyValue::vrKeyValues;

namespace {

// Keys and texts that do not fit into a string itself.
std::wstring const key = L"a key that needs the heap";
std::wstring const other = L"another key that needs it";
std::wstring const text = L"a text that needs the heap";

// Makes each allocation of the change fail in turn; the store must be as it was each time.
// @return how many allocations were made to fail
template <typename Change, typename AsItWas>
unsigned failEach(Change change, AsItWas asItWas) {
    return test::failEachAllocation([&] {
        try {
            change();
        } catch (std::bad_alloc const&) {
            EXPECT_TRUE(asItWas());
            throw;
        }
    });
}

} // namespace

TEST(vrKeyValuesMemory, FailedSetOfANewTextLeavesTheStoreAsItWas) {
    vrKeyValues values;
    values.Set(other, 1u);

    auto const failed = failEach(
        [&] { values.Set(key, text); },
        [&] { return !values.Contains(key) && values.GetUint32Value(other) == 1; });

    EXPECT_EQ(4u, failed) << "the value and its text, the entry and its key";
    EXPECT_EQ(text, values.GetStringValue(key));
}

TEST(vrKeyValuesMemory, FailedSetOfANewNumberLeavesTheStoreAsItWas) {
    vrKeyValues values;

    auto const failed =
        failEach([&] { values.Set(key, 5u); }, [&] { return !values.Contains(key); });

    EXPECT_EQ(3u, failed) << "the value, the entry and its key";
    EXPECT_EQ(5u, values.GetUint32Value(key));
}

TEST(vrKeyValuesMemory, FailedSetOfANewFlagLeavesTheStoreAsItWas) {
    vrKeyValues values;

    auto const failed =
        failEach([&] { values.Set(key, true); }, [&] { return !values.Contains(key); });

    EXPECT_EQ(3u, failed) << "the value, the entry and its key";
    EXPECT_TRUE(values.GetBoolValue(key));
}

TEST(vrKeyValuesMemory, FailedSetOfAnotherTypeLeavesTheValueAsItWas) {
    vrKeyValues values;
    values.Set(key, 7u);

    auto const failed =
        failEach([&] { values.Set(key, text); }, [&] { return values.GetUint32Value(key) == 7; });

    EXPECT_EQ(2u, failed) << "the value and its text";
    EXPECT_EQ(text, values.GetStringValue(key));
}

TEST(vrKeyValuesMemory, FailedSetOfALongerTextLeavesTheValueAsItWas) {
    vrKeyValues values;
    values.Set(key, text);
    values.Set(key, text);
    auto const longer = text + text;

    auto const failed = failEach(
        [&] { values.Set(key, longer); }, [&] { return values.GetStringValue(key) == text; });

    EXPECT_EQ(1u, failed) << "the text, where the one before was shorter";
    EXPECT_EQ(longer, values.GetStringValue(key));
}

TEST(vrKeyValuesMemory, FailedAssignmentLeavesTheStoreAsItWas) {
    vrKeyValues source;
    source.Set(key, text);
    source.Set(L"b", 1u);
    vrKeyValues values;
    values.Set(other, 2u);

    auto const failed = failEach(
        [&] { values = source; },
        [&] {
            return values.GetUint32Value(other) == 2 && !values.Contains(key) &&
                   !values.Contains(L"b");
        });

    EXPECT_EQ(4u, failed) << "the map, its two entries and the key";
    EXPECT_EQ(text, values.GetStringValue(key));
    EXPECT_EQ(text, source.GetStringValue(key));
}

TEST(vrKeyValuesMemory, AssignmentCopiesNoValue) {
    vrKeyValues source;
    source.Set(L"a", std::wstring(100000, L'x'));
    vrKeyValues values;
    AllocationCounter const counter;

    values = source;

    EXPECT_GT(1000u, counter.bytes());
}

TEST(vrKeyValuesMemory, FailedReadOfATextComesOut) {
    vrKeyValues values;
    values.Set(key, text);

    auto const failed = test::failEachAllocation([&] { values.GetStringValue(key); });

    EXPECT_EQ(1u, failed);
}

TEST(vrKeyValuesMemory, ReplacingNeedsNoMemoryOnceItHasBeenDone) {
    vrKeyValues values;
    auto const replace = [&] {
        values.Set(key, text);
        values.Set(L"number", 1u);
        values.Set(L"flag", true);
    };
    replace();
    replace();
    AllocationCounter const counter;

    replace();

    EXPECT_EQ(0u, counter.allocations());
    EXPECT_EQ(0u, counter.releases());
}

TEST(vrKeyValuesMemory, ReplacingAValueThatIsSharedTakesNewMemory) {
    vrKeyValues values;
    values.Set(L"a", 1u);
    vrKeyValues copy;
    copy = values;
    values.Set(L"a", 2u);
    AllocationCounter const counter;

    values.Set(L"b", 3u);

    EXPECT_EQ(2u, counter.allocations()) << "the value and the entry";
}

TEST(vrKeyValuesMemory, ALongTextThatWasReplacedIsReleased) {
    vrKeyValues values;
    values.Set(L"a", std::wstring(100000, L'x'));
    AllocationCounter const counter;

    values.Set(L"a", L"x");

    EXPECT_EQ(2u, counter.releases()) << "the value and its text";
}

TEST(vrKeyValuesMemory, ReadingOfNumbersAndFlagsNeedsNone) {
    vrKeyValues values;
    values.Set(key, 5u);
    values.Set(other, true);
    AllocationCounter const counter;

    EXPECT_EQ(5u, values.GetUint32Value(key));
    EXPECT_TRUE(values.GetBoolValue(other));
    EXPECT_TRUE(values.Contains(key));

    EXPECT_EQ(0u, counter.allocations());
}

TEST(vrKeyValuesMemory, AllIsReleasedInTheEnd) {
    AllocationCounter const counter;
    {
        vrKeyValues values;
        values.Set(key, text);
        values.Set(key, text + text);
        values.Set(key, 1u);
        values.Set(key, 2u);
        values.Set(other, true);
        vrKeyValues copy;
        copy = values;
        copy.Set(key, text);
        values.Remove(other);
    }

    EXPECT_LT(0u, counter.allocations());
    EXPECT_EQ(counter.allocations(), counter.releases());
}
